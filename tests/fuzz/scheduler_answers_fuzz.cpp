// Whatever a card says of its scheduled updates, the table stays inside its memory.
#include "module/start/start.h"
#include "support/scripted_board.h"
#include "support/snmp_calls.h"

extern "C" {
next_index_function tarnONTFWUpdateSchedulerTable_next_index;
module_handler_function tarnONTFWUpdateSchedulerTable_module_handler;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    board = ScriptedBoard();
    board.everything_stale = true;  // every row fetches the schedule again
    board.answer(225, {data, data + size});
    slot_initializer(0);
    for (const WalkedRow &row : walk_iterator(tarnONTFWUpdateSchedulerTable_next_index, 0, {0, 0})) {
        for (int column = 1; column <= 10; ++column) {
            int any_row = 0;
            call_iterator(tarnONTFWUpdateSchedulerTable_module_handler, MODE_GET, column, row.index,
                          &any_row);
        }
    }
    return 0;
}
