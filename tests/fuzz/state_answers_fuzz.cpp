// Whatever a card answers, the state queries and the tables on top of them stay inside their memory. The
// input is the identifier of a GETNEXT (first byte its length, then one byte a sub-identifier) and the
// payload of every answer.
#include "module/operations/address_table.h"
#include "module/operations/channel_queries.h"
#include "module/operations/ont_queries.h"
#include "module/operations/sessions.h"
#include "module/start/start.h"
#include "support/scripted_board.h"
#include "support/snmp_calls.h"

extern "C" {
get_next_entry_function tarnPONChannelAddressTable_get_next_entry;
table_handler_nextgen_function tarnPONChannelAddressTable_table_handler_nextgen;
next_index_function tarnPONChannelStateTable_next_index;
module_handler_function tarnPONChannelStateTable_module_handler;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    if (size == 0) {
        return 0;
    }
    const std::size_t index_length = std::min<std::size_t>(data[0] % 16, size - 1);
    Oid name = {1, 3, 6, 1, 4, 1, 32473, 1, 22, 1, 3, 1, 4};
    name.insert(name.end(), data + 1, data + 1 + index_length);
    const Bytes payload(data + 1 + index_length, data + size);

    board = ScriptedBoard();
    board.everything_stale = true;
    for (const int command : {69, 70, 71, 72, 73, 79, 80, 85, 205, 250, 277, 298, 450}) {
        board.answer(command, payload);
    }
    slot_initializer(0);  // the databases of earlier inputs stay: what they left must not harm the next
    const std::uint8_t *list = get_ont_list(0);
    get_ont_state_check_state(0, list);
    get_ont_i2c(0, list);
    get_ont_uni_ports_state(0, list);
    get_ont_downstream_ber(0, list);
    get_ont_services_utilization(0, list);
    get_olt_state(0);
    get_pppoe_sessions(0);
    get_global_ont_address_table_raw(0);
    next_of(tarnPONChannelAddressTable_get_next_entry, 0, name, 4);
    for (const oid column : {4U, 9U, 16U}) {
        name[12] = column;
        call_nextgen(tarnPONChannelAddressTable_table_handler_nextgen, MODE_GET, 0, name);
    }
    for (const WalkedRow &row : walk_iterator(tarnPONChannelStateTable_next_index, 0, {0, 0})) {
        for (int column = 1; column <= 12; ++column) {
            call_iterator(tarnPONChannelStateTable_module_handler, MODE_GET, column, row.index, row.row);
        }
    }
    if (board.outstanding_blocks != 0) {
        __builtin_trap();
    }
    return 0;
}
