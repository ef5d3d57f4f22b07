#include "host/agent/agent_mib.h"

#include <array>
#include <cstdlib>
#include <iterator>
#include <memory>
#include <utility>

namespace tarn::host {
namespace {

// As in TARN-AGENT-MIB: tarnAgentFigures and tarnAgentSlotTable.
constexpr std::array<oid, 11> figures_root = {1, 3, 6, 1, 4, 1, 32473, 1, 23, 1, 1};
constexpr std::array<oid, 11> table_root = {1, 3, 6, 1, 4, 1, 32473, 1, 23, 1, 2};
constexpr unsigned first_column = 2;  // after the index

struct Scalar {
    unsigned char type;
    std::uint64_t (*value)(const AgentFigures &figures);
};

// From 1 on.
constexpr std::array scalars = {
    Scalar{ASN_GAUGE, [](const AgentFigures &f) { return f.requests.parked_now; }},
    Scalar{ASN_GAUGE, [](const AgentFigures &f) { return f.requests.parked_at_most; }},
    Scalar{ASN_COUNTER, [](const AgentFigures &f) { return f.requests.parked_in_all; }},
    Scalar{ASN_COUNTER, [](const AgentFigures &f) { return f.requests.repeated; }},
    Scalar{ASN_COUNTER, [](const AgentFigures &f) { return f.requests.turned_away; }},
    Scalar{ASN_COUNTER, [](const AgentFigures &f) { return f.requests.passes; }},
    Scalar{ASN_GAUGE, [](const AgentFigures &f) { return f.requests.changes_waiting; }},
    Scalar{ASN_GAUGE, [](const AgentFigures &f) { return f.longest_turn_us; }},
    Scalar{ASN_GAUGE, [](const AgentFigures &f) { return f.outstanding_blocks; }},
    Scalar{ASN_GAUGE, [](const AgentFigures &f) { return f.outstanding_bytes; }},
    Scalar{ASN_COUNTER, [](const AgentFigures &f) { return f.cache.hits; }},
    Scalar{ASN_COUNTER, [](const AgentFigures &f) { return f.cache.misses; }},
    Scalar{ASN_COUNTER, [](const AgentFigures &f) { return f.notifications_sent; }},
    Scalar{ASN_COUNTER, [](const AgentFigures &f) { return f.notifications_held_back; }},
};

struct Card {
    const IpcClient &client;
    int slot;
    const CacheUse &cache;
    [[nodiscard]] const CardFigures &figures() const { return client.figures(slot); }
};

template <std::uint64_t CommandFigures::*...outcomes>
std::uint64_t sum_of(const Card &card) {
    std::uint64_t sum = 0;
    for (const auto &[command, figures] : card.figures().commands) {
        sum += ((figures.*outcomes) + ...);
    }
    return sum;
}

// sysUpTime, in hundredths of a second, at the last answer.
std::uint64_t last_answer(const Card &card) {
    const auto at = card.figures().last_answer_at;
    if (at == std::chrono::steady_clock::time_point{}) {
        return 0;
    }
    const auto ago =
        std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - at);
    const auto up = static_cast<std::int64_t>(netsnmp_get_agent_uptime());
    return static_cast<std::uint64_t>(std::max<std::int64_t>(up - ago.count() / 10, 1));
}

std::uint64_t in_us(std::chrono::microseconds time) {
    return static_cast<std::uint64_t>(time.count());
}

struct SlotColumn {
    unsigned char type;
    std::uint64_t (*value)(const Card &card);
};

using Of = CommandFigures;
constexpr std::array slot_columns = {
    SlotColumn{ASN_INTEGER,
               [](const Card &c) { return static_cast<std::uint64_t>(c.client.state(c.slot)) + 1; }},
    SlotColumn{ASN_INTEGER,
               [](const Card &c) { return static_cast<std::uint64_t>(c.client.reason(c.slot)); }},
    SlotColumn{ASN_COUNTER, sum_of<&Of::answered, &Of::refused, &Of::timed_out, &Of::lost, &Of::other>},
    SlotColumn{ASN_COUNTER, sum_of<&Of::answered>},
    SlotColumn{ASN_COUNTER, sum_of<&Of::refused>},
    SlotColumn{ASN_COUNTER, sum_of<&Of::timed_out>},
    SlotColumn{ASN_COUNTER, sum_of<&Of::lost>},
    SlotColumn{ASN_COUNTER, sum_of<&Of::other>},
    SlotColumn{ASN_COUNTER, [](const Card &c) { return c.figures().late; }},
    SlotColumn{ASN_COUNTER, [](const Card &c) { return c.figures().holds; }},
    SlotColumn{ASN_COUNTER, [](const Card &c) { return c.figures().probes; }},
    SlotColumn{ASN_TIMETICKS, last_answer},
    SlotColumn{ASN_GAUGE, [](const Card &c) { return in_us(c.figures().last_answer_time); }},
    SlotColumn{ASN_GAUGE, [](const Card &c) { return in_us(c.figures().longest_answer_time); }},
    SlotColumn{ASN_COUNTER, [](const Card &c) { return in_us(c.figures().total_answer_time) / 1000; }},
    SlotColumn{ASN_COUNTER, [](const Card &c) { return c.cache.hits; }},
    SlotColumn{ASN_COUNTER, [](const Card &c) { return c.cache.misses; }},
};

// Counters go on from 0; a gauge stays at its end.
void set_value(netsnmp_request_info *request, unsigned char type, std::uint64_t value) {
    constexpr std::uint64_t largest = 0xFFFFFFFF;
    const std::uint64_t shown = type == ASN_COUNTER ? value & largest : std::min(value, largest);
    const auto number = static_cast<long>(shown);
    (void)snmp_set_var_typed_value(request->requestvb, type, &number, sizeof number);
}

std::array<int, IpcClient::slots> slot_numbers = [] {
    std::array<int, IpcClient::slots> numbers{};
    for (int i = 0; i < IpcClient::slots; ++i) {
        numbers[static_cast<std::size_t>(i)] = i;
    }
    return numbers;
}();

netsnmp_variable_list *next_slot(void **loop, void **data, netsnmp_variable_list *index,
                                 netsnmp_iterator_info * /*info*/) {
    auto *slot = static_cast<int *>(*loop);
    if (slot == std::end(slot_numbers)) {
        return nullptr;
    }
    (void)snmp_set_var_typed_integer(index, ASN_UNSIGNED, *slot + 1);
    *data = slot;
    *loop = slot + 1;
    return index;
}

netsnmp_variable_list *first_slot(void **loop, void **data, netsnmp_variable_list *index,
                                  netsnmp_iterator_info *info) {
    *loop = slot_numbers.data();
    return next_slot(loop, data, index, info);
}

struct Free {
    void operator()(void *block) const { std::free(block); }
};

netsnmp_handler_registration *registration_of(const char *name, Netsnmp_Node_Handler *handler,
                                              const std::array<oid, 11> &root, void *self) {
    netsnmp_handler_registration *registration =
        netsnmp_create_handler_registration(name, handler, root.data(), root.size(), HANDLER_CAN_RONLY);
    if (registration != nullptr) {
        registration->my_reg_void = self;
    }
    return registration;
}

}  // namespace

bool AgentMib::register_objects(const IpcClient &cards, std::function<AgentFigures()> figures) {
    cards_ = &cards;
    figures_ = std::move(figures);
    scalars_ = registration_of("tarnAgentFigures", serve_figures, figures_root, this);
    if (scalars_ == nullptr ||
        netsnmp_register_scalar_group(scalars_, 1, static_cast<oid>(scalars.size())) != SNMPERR_SUCCESS) {
        scalars_ = nullptr;
        return false;
    }
    // Both go to net-snmp, which frees them with the registration.
    std::unique_ptr<netsnmp_table_registration_info, Free> columns(
        SNMP_MALLOC_TYPEDEF(netsnmp_table_registration_info));
    std::unique_ptr<netsnmp_iterator_info, Free> rows(SNMP_MALLOC_TYPEDEF(netsnmp_iterator_info));
    slots_ = registration_of("tarnAgentSlotTable", serve_slots, table_root, this);
    if (columns == nullptr || rows == nullptr || slots_ == nullptr) {
        return false;
    }
    netsnmp_table_helper_add_indexes(columns.get(), ASN_UNSIGNED, 0);
    columns->min_column = first_column;
    columns->max_column = first_column + static_cast<unsigned>(slot_columns.size()) - 1;
    rows->get_first_data_point = first_slot;
    rows->get_next_data_point = next_slot;
    rows->table_reginfo = columns.release();
    netsnmp_iterator_info *given = rows.release();  // what follows is a macro
    if (netsnmp_register_table_iterator2(slots_, given) != SNMPERR_SUCCESS) {
        slots_ = nullptr;
        return false;
    }
    return true;
}

void AgentMib::unregister_objects() {
    for (netsnmp_handler_registration **registration : {&scalars_, &slots_}) {
        if (*registration != nullptr) {
            (void)netsnmp_unregister_handler(std::exchange(*registration, nullptr));
        }
    }
}

int AgentMib::serve_figures(netsnmp_mib_handler * /*handler*/, netsnmp_handler_registration *registration,
                            netsnmp_agent_request_info * /*reqinfo*/, netsnmp_request_info *requests) {
    const AgentFigures figures = static_cast<AgentMib *>(registration->my_reg_void)->figures_();
    for (auto *request = requests; request != nullptr; request = request->next) {
        const oid number = request->requestvb->name[figures_root.size()];
        if (request->processed == 0 && number >= 1 && number <= scalars.size()) {
            const Scalar &scalar = scalars[number - 1];
            set_value(request, scalar.type, scalar.value(figures));
        }
    }
    return SNMP_ERR_NOERROR;
}

int AgentMib::serve_slots(netsnmp_mib_handler * /*handler*/, netsnmp_handler_registration *registration,
                          netsnmp_agent_request_info * /*reqinfo*/, netsnmp_request_info *requests) {
    const auto *self = static_cast<AgentMib *>(registration->my_reg_void);
    const AgentFigures figures = self->figures_();
    for (auto *request = requests; request != nullptr; request = request->next) {
        const auto *slot = static_cast<const int *>(netsnmp_extract_iterator_context(request));
        const netsnmp_table_request_info *place = netsnmp_extract_table_info(request);
        if (request->processed != 0) {
            continue;
        }
        if (slot == nullptr || place == nullptr) {
            (void)netsnmp_set_request_error(nullptr, request, SNMP_NOSUCHINSTANCE);
            continue;
        }
        const SlotColumn &column = slot_columns[place->colnum - first_column];
        const Card card{*self->cards_, *slot, figures.cache_by_slot[static_cast<std::size_t>(*slot)]};
        set_value(request, column.type, column.value(card));
    }
    return SNMP_ERR_NOERROR;
}

}  // namespace tarn::host
