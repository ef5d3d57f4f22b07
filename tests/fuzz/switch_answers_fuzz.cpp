// Whatever a card answers about its switch, the requests and the tables on top of them stay inside their
// memory. The input is the identifier of a GETNEXT (first byte its length, then one byte a sub-identifier),
// and the payload of every answer.
#include "module/start/start.h"
#include "module/switch/switch_mac_table.h"
#include "module/switch/switch_operations.h"
#include "module/switch/switch_vlans.h"
#include "support/scripted_board.h"
#include "support/snmp_calls.h"

extern "C" {
get_next_entry_function tarnSwitchVLANTable_get_next_entry, tarnSwitchMacListTable_get_next_entry,
    tarnRawSwitchMacTable_get_next_entry;
table_handler_nextgen_function tarnSwitchVLANTable_table_handler_nextgen,
    tarnSwitchMacListTable_table_handler_nextgen, tarnRawSwitchMacTable_table_handler_nextgen;
next_index_function tarnSwitchOperationalVLANTable_next_index;
module_handler_function tarnSwitchOperationalVLANTable_module_handler;
}

namespace {

struct NextgenTable {
    get_next_entry_function *next;
    table_handler_nextgen_function *handler;
};

constexpr NextgenTable nextgen_tables[] = {
    {tarnSwitchVLANTable_get_next_entry, tarnSwitchVLANTable_table_handler_nextgen},
    {tarnSwitchMacListTable_get_next_entry, tarnSwitchMacListTable_table_handler_nextgen},
    {tarnRawSwitchMacTable_get_next_entry, tarnRawSwitchMacTable_table_handler_nextgen},
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    if (size < 2) {
        return 0;
    }
    const std::size_t index_length = std::min<std::size_t>(data[0] % 16, size - 1);
    Oid name = {1, 3, 6, 1, 4, 1, 32473, 1, 22, 4, 1, 1, 3};
    name.insert(name.end(), data + 1, data + 1 + index_length);
    const Bytes payload(data + 1 + index_length, data + size);

    board = ScriptedBoard();
    board.everything_stale = true;
    for (const int command : {167, 170, 171, 173, 179, 180, 182, 184, 185, 195, 200, 201, 434}) {
        board.answer(command, payload);
    }
    // A part of the MAC table of its full size, which says that it is the last one.
    board.scripts[171] = [payload](const SentRequest &request) {
        Bytes part = payload;
        part.resize(1321 - 32);
        part.back() = request.bytes[32] | 1;
        return make_answer(part);
    };
    slot_initializer(0);
    slot_initializer(16);
    for (const auto get : {get_switch_vlan_list, get_switch_vlan_list_operational, get_switch_general_cfg,
                           get_switch_qos_cfg, get_switch_blacklist_cfg, get_switch_blacklist_rules}) {
        get(0);
    }
    get_switch_vlans_block(0);
    get_switch_vlan(0, 1 + data[0]);
    get_switch_port_counters(0, data[0] % 16);
    get_switch_port_utilization(0, data[0] % 16);
    set_switch_blacklist_rules(0);
    set_switch_qos_cfg(0);
    for (const NextgenTable &table : nextgen_tables) {
        next_of(table.next, 0, name, 3);
        for (const oid column : {3U, 4U, 5U, 6U}) {
            name[12] = column;
            call_nextgen(table.handler, MODE_GET, 0, name);
        }
    }
    int rows = 0;
    for (const WalkedRow &row : walk_iterator(tarnSwitchOperationalVLANTable_next_index, 0, {0, 0})) {
        call_iterator(tarnSwitchOperationalVLANTable_module_handler, MODE_GET, 3, row.index, row.row);
        if (++rows == 4) {
            break;
        }
    }
    slot_deinitializer(0);  // VLAN records go with their slot
    if (board.outstanding_blocks != 0) {
        __builtin_trap();
    }
    return 0;
}
