// Whatever a card answers about its ONTs and their counters, the ONT, OLT and performance-monitoring tables
// stay inside their memory and their finders come to an end. The input is the identifier of a GETNEXT (first
// byte its length, then one byte a sub-identifier) and the payload of every answer.
#include "module/start/start.h"
#include "module/store/ont_config_sections.h"
#include "support/scripted_board.h"
#include "support/snmp_calls.h"

#define NEXTGEN_TABLES(X)                              \
    X(tarnONTStateTable, 11, 26)                       \
    X(tarnONTUNIPortsStateTable, 11, 13)               \
    X(tarnONTAddressTable, 11, 14)                     \
    X(tarnONTEthPerformMonitoringHistDataTable, 12, 6) \
    X(tarnONTFecPerformMonitoringHistDataTable, 12, 6) \
    X(tarnONTGEMPortPerformMonitoringUSTable, 12, 6)   \
    X(tarnONTCrossConnectDSTable, 12, 6)

#define DECLARE(T, prefix, columns)             \
    get_next_entry_function T##_get_next_entry; \
    table_handler_nextgen_function T##_table_handler_nextgen;

extern "C" {
NEXTGEN_TABLES(DECLARE)
next_index_function tarnONTResetCountersTable_next_index;
module_handler_function tarnOLTStateTable_module_handler;
char *generate_ont_connections(int, const std::uint8_t *);
}

namespace {

struct Walked {
    get_next_entry_function *next;
    table_handler_nextgen_function *handler;
    std::size_t prefix;
    oid columns;
};

#define DESCRIBE(T, prefix, columns) {T##_get_next_entry, T##_table_handler_nextgen, prefix, columns},
constexpr Walked tables[] = {NEXTGEN_TABLES(DESCRIBE)};

// A few steps from wherever the input says, reading every column of every row.
void walk(const Walked &table, const Oid &index) {
    Oid name(table.prefix, 1);
    name.insert(name.end(), {1, 1, 1});
    name.insert(name.end(), index.begin(), index.end());
    for (int step = 0; step < 6 && !name.empty(); ++step) {
        for (oid column = 0; column <= table.columns + 1; ++column) {
            name[table.prefix + 1] = column;
            call_nextgen(table.handler, MODE_GET, 0, name);
        }
        name = next_of(table.next, 0, name, 1);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    if (size == 0) {
        return 0;
    }
    const std::size_t index_length = std::min<std::size_t>(data[0] % 16, size - 1);
    const Oid index(data + 1, data + 1 + index_length);
    const Bytes payload(data + 1 + index_length, data + size);

    board = ScriptedBoard();
    board.everything_stale = true;
    for (const int command : {66, 69, 72, 73, 80, 250, 298, 305}) {
        board.answer(command, payload);
    }
    slot_initializer(0);  // the databases of earlier inputs stay: what they left must not harm the next
    for (const Walked &table : tables) {
        walk(table, index);
    }
    walk_iterator(tarnONTResetCountersTable_next_index, 0, {0, ""});
    static int row = 0;
    for (int column = 1; column <= 10; ++column) {
        call_iterator(tarnOLTStateTable_module_handler, MODE_GET, column, {1}, &row);
    }
    // A configured ONT, without the image that would say so: the log itself is what the card answers.
    tarn::OntConfigSections &db = *tarn::slot_sections<tarn::OntConfigSections>(0);
    db.ont_configs[5][264] = 'T';
    board.everything_stale = false;
    db.ont_configs_stamp.set();
    generate_ont_connections(0, db.ont_configs[5].data() + 264);
    if (board.outstanding_blocks != 0) {
        __builtin_trap();
    }
    return 0;
}
