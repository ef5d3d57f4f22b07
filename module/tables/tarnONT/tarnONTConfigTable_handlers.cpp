// The configuration of a card's ONTs, with creation (RowStatus, channel and ONT id in one SET) and deletion.
#include "module/store/ont_config_sections.h"
#include "module/tables/tarnONT/ont_config_rows.h"

using namespace tarn;
using namespace tarn::ont_config;

namespace {

// Where the record is stored stands in the numbers that the index leaves free.
constexpr std::size_t channel = 0;
constexpr std::size_t ont_id = 1;

struct PlacedOnt {
    bool place_given;
    bool created;
};
Transaction<PlacedOnt> placing;

int set_channel(Row & /*row*/, const Binding &value) {
    set_ont_cb_tree(static_cast<int>(*value.val.integer));
    placing.state.place_given = true;
    return SNMP_ERR_NOERROR;
}

int set_id(Row & /*row*/, const Binding &value) {
    set_ont_cb_id(static_cast<int>(*value.val.integer));
    placing.state.place_given = true;
    return SNMP_ERR_NOERROR;
}

// Deletes at once, and drops what columns of the same SET have staged of the ONT: sent, it would come back.
int delete_ont(const Serial &ont, int slot) {
    if (delete_ont_config(slot, ont.data()) != 0) {
        return SNMP_ERR_GENERR;
    }
    if (is_staged(slot, ont.data())) {
        invalidate_config_buffer();
    }
    return SNMP_ERR_NOERROR;
}

int set_row_status(Row &row, const Binding &value) {
    if (*value.val.integer == destroy) {
        return delete_ont(row.serial, row.slot);
    }
    if (*value.val.integer == create_and_go) {
        store_integer(get_ont_cb(), in_use, 1);
    }
    return SNMP_ERR_NOERROR;
}

constexpr int row_status = 20;

constexpr Source service_1756(int service) {
    return profile(service_profile_1756.at(service, service_profile_size));
}
constexpr Source service_1788(int service) {
    return profile(service_profile_1788.at(service, service_profile_size));
}

constexpr Column columns[] = {
    {1, unsigned32, slot_plus(1)},
    {2, octet_string, row_serial},
    {3, unsigned32, index_number(channel, 0), any_unsigned32, set_channel},
    {4, unsigned32, index_number(ont_id, 0), any_unsigned32, set_id},
    {6, octet_string, field(password), octets_up_to(10)},
    {7, integer, field(flag_284, nonzero_conversion), any_integer},
    {8, octet_string, field(description), octets_up_to(256)},
    {9, unsigned32, profile(profile_1824), any_unsigned32},
    {11, unsigned32, service_1756(0), any_unsigned32},
    {12, unsigned32, service_1756(1), any_unsigned32},
    {13, unsigned32, service_1756(2), any_unsigned32},
    {14, unsigned32, service_1756(3), any_unsigned32},
    {15, unsigned32, service_1756(4), any_unsigned32},
    {16, unsigned32, service_1756(5), any_unsigned32},
    {17, unsigned32, service_1756(6), any_unsigned32},
    {18, unsigned32, service_1756(7), any_unsigned32},
    {19, unsigned32, profile(profile_1754), any_unsigned32},
    {row_status, integer, constant(1), integer_within(1, 6, SNMP_ERR_BADVALUE), set_row_status},
    {21, integer, constant(2), any_integer, ignored},
    {22, integer, truth(flag_286), any_integer},
    {23, unsigned32, service_1788(0), any_unsigned32},
    {24, unsigned32, service_1788(1), any_unsigned32},
    {25, unsigned32, service_1788(2), any_unsigned32},
    {26, unsigned32, service_1788(3), any_unsigned32},
    {27, unsigned32, service_1788(4), any_unsigned32},
    {28, unsigned32, service_1788(5), any_unsigned32},
    {29, unsigned32, service_1788(6), any_unsigned32},
    {30, unsigned32, service_1788(7), any_unsigned32},
    {31, unsigned32, field(value_1820), any_unsigned32},
    {32, integer, field(value_1828), any_integer},
    {33, integer, constant(2), any_integer, ignored},
    {34, unsigned32, not_readable, any_unsigned32, ignored},
    {35, integer, truth(flag_262), any_integer},
    {36, unsigned32, not_readable, any_unsigned32, ignored},
    {37, unsigned32, field(value_288), any_unsigned32},
    {38, unsigned32, field(value_292), any_unsigned32},
    {39, integer, truth(flag_1830), any_integer},
    {40, integer, field(value_1832), any_integer},
    {41, unsigned32, profile(profile_1834), any_unsigned32},
    {43, unsigned32, profile(profile_1826), any_unsigned32},
};

struct OntsBySerial {
    static OntConfigSections *read(const Row &row) { return ont_configs_of(row); }
    static std::int64_t count(const OntConfigSections * /*db*/) { return ont_config::count; }
    static std::int64_t after(const OntConfigSections *db, const Row &row) {
        return first_ont_above(*db, row.serial.data());
    }
    static bool enter(OntConfigSections *db, Row &row, std::int64_t position) {
        row.record = ont_config_at(*db, db->ont_configs_by_serial[static_cast<std::size_t>(position)]);
        row.serial = serial_at(row.record + serial.offset);
        return ont_in_use(row.record);
    }
    static bool find(Row &row) {
        int index = 0;
        row.record = get_all_ont_config_by_serial(row.slot, row.serial.data(), &index);
        row.number = {index / onts_per_channel, index % onts_per_channel};
        return row.record != nullptr;
    }
};

int stage(Row &row, const Column &column, const Binding &value) {
    const long status = column.number == row_status ? *value.val.integer : 0;
    if (status == destroy) {
        return SNMP_ERR_NOERROR;
    }
    const bool create = status == create_and_go;
    placing.state.created = placing.state.created || create;
    return init_ont_config_buffer(row.slot, row.serial.data(), create ? 1 : 0) == 0
               ? SNMP_ERR_NOERROR
               : SNMP_ERR_INCONSISTENTNAME;
}

// An ONT gets its place when it is created and keeps it.
int commit(Row &row) {
    if (placing.state.place_given && !placing.state.created) {
        invalidate_config_buffer();
        return SNMP_ERR_COMMITFAILED;
    }
    return commit_ont(row);
}

constexpr Table table{
    .index = ont_index,
    .columns = columns,
    .rows = sorted_rows_of<OntsBySerial>("tarnONTConfigTable_get_next_entry"),
    .writes = stages_one_ont<staged_entry<0>, commit>.staged_by(stage).remembering(transaction_of<placing>),
    .answers = row_first,
};

}  // namespace

MODULE_NEXTGEN_TABLE(tarnONTConfigTable, table)
