#include "host/tables/table.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <utility>

#include "host/board/pass.h"
#include "host/board/writer.h"
#include "host/services/cache_clock.h"
#include "host/tables/table_set.h"
#include "host/tables/table_walk.h"

namespace tarn::host {
namespace {

const std::vector<int> chassis_only{profiles_slot};

// net-snmp's data list takes names and data without const.
char table_list_name[] = TABLE_HANDLER_NAME;

std::span<const oid> name_of(const netsnmp_variable_list *binding) {
    return {binding->name, binding->name_length};
}

}  // namespace

Table::Table(TableSchema schema, const TableCallbacks &callbacks, RowCache &cache, const Slots &slots)
    : schema_(std::move(schema)),
      callbacks_(callbacks),
      cache_(cache),
      slots_(slots),
      source_(schema_, callbacks_),
      call_info_(schema_) {}

Table::CallInfo::CallInfo(const TableSchema &schema) : index_values(schema.index) {
    registration.indexes = index_values.list();
    registration.number_indexes = static_cast<unsigned>(schema.index.size());
    registration.min_column = static_cast<unsigned>(schema.columns.front().number);
    registration.max_column = static_cast<unsigned>(schema.columns.back().number);
    table_info.reg_info = &registration;
    table_info.indexes = index_values.list();
    table_info.number_indexes = registration.number_indexes;
}

const std::vector<int> &Table::slots() const {
    return schema_.per_slot() ? slots_.up() : chassis_only;
}

std::shared_ptr<const RowIndex> Table::rows(int slot, long transaction, bool fresh) {
    const auto build = [this, slot, transaction] { return enumerate(slot, transaction); };
    return fresh ? cache_.renew(this, slot, transaction, build) : cache_.get(this, slot, transaction, build);
}

// What was begun before a change, or too long ago by another request, is begun again.
Table::Unfinished &Table::unfinished(int slot, long transaction) {
    Unfinished &unfinished = unfinished_[slot];
    const std::int64_t period = std::int64_t{cache_period()} * 1'000'000'000;
    if (unfinished.changes != cache_.changes() ||
        (unfinished.transaction != transaction && agent_time() - unfinished.begun_at >= period)) {
        unfinished = {.transaction = transaction, .changes = cache_.changes(), .begun_at = agent_time()};
    }
    return unfinished;
}

RowIndex Table::enumerate(int slot, long transaction) {
    Pass *pass = Pass::current();
    RowIndex rows;
    rows.origin = RowIndex::Origin::nothing;
    Writer *writer = Writer::running();
    if (pass != nullptr && !pass->may_enumerate(this, slot)) {
        return rows;
    }
    const CacheUseCount count(cache_use_[static_cast<std::size_t>(slot)]);
    const bool in_parts = pass != nullptr && !pass->is_last();
    Unfinished whole;
    Unfinished &work = in_parts ? unfinished(slot, transaction) : whole;
    Enumeration &enumeration = work.enumeration;
    const Enumeration::Place place = enumeration.place();
    const std::uint64_t failures = failed_requests();
    if (writer != nullptr) {
        writer->enumerated_table = this;
    }
    const bool ended = source_.enumerate(slot, enumeration, in_parts ? rows_of_a_turn : most_rows_of_a_slot);
    if (writer != nullptr) {
        writer->enumerated_table = nullptr;
    }
    // Once a pass had to leave something out, what the module shows may be what it could not fill.
    if (pass != nullptr && pass->omissions() > 0) {
        enumeration.go_back(place);
        return rows;
    }
    work.met_failure |= failed_requests() != failures;
    if (!ended && pass != nullptr) {
        pass->pause();
        return rows;
    }
    rows = enumeration.rows.finish();
    rows.origin = work.met_failure ? RowIndex::Origin::failure : RowIndex::Origin::card;
    unfinished_.erase(slot);
    return rows;
}

const Column *Table::column_of(std::span<const oid> name) const {
    const std::size_t root_length = schema_.root.size();
    if (name.size() < schema_.prefix_length() || name[root_length] != 1) {
        return nullptr;
    }
    const auto found =
        std::lower_bound(schema_.columns.begin(), schema_.columns.end(), name[root_length + 1],
                         [](const Column &column, oid number) { return column.number < number; });
    return found != schema_.columns.end() && found->number == name[root_length + 1] ? &*found : nullptr;
}

NameForm Table::parse(std::span<const oid> name, Instance &instance) {
    const std::size_t root_length = schema_.root.size();
    if (name.size() <= schema_.prefix_length() || name[root_length] != 1) {
        return NameForm::nothing;
    }
    instance.column = name[root_length + 1];
    if (instance.column > std::numeric_limits<std::int32_t>::max()) {
        return NameForm::nothing;
    }
    const std::span<const oid> suffix = name.subspan(schema_.prefix_length());
    instance.suffix.assign(suffix.begin(), suffix.end());
    instance.slot = profiles_slot;
    if (schema_.per_slot()) {
        if (suffix.front() == 0 || suffix.front() > chassis_slot::line_cards) {
            return NameForm::nothing;
        }
        instance.slot = static_cast<int>(suffix.front()) - 1;  // in names, slots count from 1
        if (!slots_.is_up(instance.slot)) {
            return NameForm::nothing;
        }
    }
    if (suffix.size() < schema_.shortest_index()) {
        return NameForm::part_of_a_row;
    }
    return call_info_.index_values.decode(suffix) ? NameForm::row : NameForm::nothing;
}

int Table::call(int mode, netsnmp_agent_request_info *reqinfo, netsnmp_request_info *request,
                const Instance &instance) {
    if (Pass *pass = Pass::current(); pass != nullptr && !pass->may_touch(instance.slot)) {
        return SNMP_ERR_GENERR;
    }
    const CacheUseCount count(cache_use_[static_cast<std::size_t>(instance.slot)]);
    netsnmp_request_info single = *request;
    single.next = nullptr;
    single.prev = nullptr;
    single.status = SNMP_ERR_NOERROR;
    single.processed = 0;
    single.agent_req_info = reqinfo;
    const int outer_mode = std::exchange(reqinfo->mode, mode);
    int result = SNMP_ERR_NOERROR;
    if (is_iterator()) {
        // Others are served while a SET waits for its card.
        std::optional<CallInfo> own;
        CallInfo &call = Writer::running() != nullptr ? own.emplace(schema_) : call_info_;
        (void)call.index_values.decode(instance.suffix);
        call.table_info.colnum = static_cast<unsigned>(instance.column);
        std::copy(instance.suffix.begin(), instance.suffix.end(), call.table_info.index_oid);
        call.table_info.index_oid_len = instance.suffix.size();
        netsnmp_data_list info{request->parent_data, table_list_name, &call.table_info, nullptr};
        single.parent_data = &info;
        result = callbacks_.module_handler(&single, reqinfo, instance.row, &call.table_info);
    } else {
        result = callbacks_.table_handler_nextgen(mode, &single, instance.slot, instance.row);
    }
    reqinfo->mode = outer_mode;
    return single.status != SNMP_ERR_NOERROR ? single.status : result;
}

void Table::get(netsnmp_agent_request_info *reqinfo, netsnmp_request_info *request) {
    netsnmp_variable_list *binding = request->requestvb;
    const std::span<const oid> name = name_of(binding);
    if (column_of(name) == nullptr) {
        (void)netsnmp_request_set_error(request, SNMP_NOSUCHOBJECT);
        return;
    }
    Instance instance;
    const NameForm form = parse(name, instance);
    // What a name means that is too short for a row is for an OID-exact table to say.
    if (form == NameForm::nothing || (form == NameForm::part_of_a_row && is_iterator())) {
        (void)netsnmp_request_set_error(request, SNMP_NOSUCHINSTANCE);
        return;
    }
    if (is_iterator()) {
        // A row that does not exist goes to the module without data: what that means is the table's.
        const auto index = rows(instance.slot, reqinfo->asp->pdu->transid);
        if (index->origin == RowIndex::Origin::nothing) {
            (void)netsnmp_request_set_error(request, SNMP_ERR_GENERR);
            return;
        }
        const std::size_t row = index->find(instance.suffix);
        instance.row = row < index->size() ? index->data(row) : nullptr;
    }
    const int code = call(MODE_GET, reqinfo, request, instance);
    if (binding->type != ASN_NULL) {
        return;
    }
    if (code == SNMP_ERR_NOERROR) {
        (void)netsnmp_request_set_error(request, SNMP_NOSUCHOBJECT);
    } else {
        (void)netsnmp_request_set_error(request, code);
    }
}

void Table::serve(netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests) {
    const PduClock clock(reqinfo->asp->pdu->transid);
    switch (reqinfo->mode) {
        case MODE_GET:
            for (auto *request = requests; request != nullptr; request = request->next) {
                if (request->processed == 0) {
                    get(reqinfo, request);
                }
            }
            break;
        case MODE_GETNEXT:
        case MODE_GETBULK:
            walk_table(*this, reqinfo, requests);
            break;
        default:
            set_table(*this, reqinfo, requests);
            if (reqinfo->mode == MODE_SET_COMMIT || reqinfo->mode == MODE_SET_UNDO ||
                reqinfo->mode == MODE_SET_FREE) {
                cache_.expire();
            }
            break;
    }
}

}  // namespace tarn::host
