// Whatever a card answers, the configuration and the tables on top of it stay inside their memory. The first
// byte of the input says what the rest is: a compressed image as it came, bytes strewn over a sound image, or
// the payload of every profile answer.
#include <zlib.h>

#include "module/config/alarms_config.h"
#include "module/config/config_buffer.h"
#include "module/config/network_config.h"
#include "module/config/olt_config.h"
#include "module/config/ont_config_store.h"
#include "module/config/ont_templates.h"
#include "module/config/profiles.h"
#include "module/start/start.h"
#include "support/config_image.h"
#include "support/snmp_calls.h"

extern "C" {
get_next_entry_function tarnONTConfigTable_get_next_entry, tarnONTSelectiveTunnelTable_get_next_entry;
table_handler_nextgen_function tarnONTConfigTable_table_handler_nextgen,
    tarnONTSelectiveTunnelTable_table_handler_nextgen;
next_index_function tarnOntConfigUniPortTable_next_index, tarnONTPortsProfileTable_next_index,
    tarnONTTemplateValuesTable_next_index, tarnOLTVlanProfilesTable_next_index;
module_handler_function tarnOntConfigUniPortTable_module_handler, tarnONTPortsProfileTable_module_handler,
    tarnONTTemplateValuesTable_module_handler, tarnOLTVlanProfilesTable_module_handler;
}

namespace {

constexpr std::size_t most_rows = 100;

// Every 3 bytes: how far to go, and what to write there; record by record, so that they hit what is read.
void strew(Bytes &image, const std::uint8_t *data, std::size_t size) {
    std::size_t at = 53054;
    for (std::size_t i = 0; i + 2 < size; i += 3) {
        at = (at + data[i] + 256U * data[i + 1] * 31U) % image.size();
        image[at] = data[i + 2];
    }
}

void read_nextgen(get_next_entry_function *next, table_handler_nextgen_function *handler) {
    const Oid table = {1, 3, 6, 1, 4, 1, 32473, 1, 22, 3, 40};
    for (Oid &name : walk_nextgen(next, 0, table, 1, most_rows)) {
        for (oid column = 1; column <= 43; ++column) {
            name[12] = column;
            call_nextgen(handler, MODE_GET, 0, name);
        }
    }
}

void read_iterator(next_index_function *next, module_handler_function *handler, const IndexValues &shape) {
    const auto rows = walk_iterator(next, 0, shape);
    for (std::size_t i = 0; i < rows.size() && i < most_rows; ++i) {
        for (int column = 1; column <= 43; ++column) {
            call_iterator(handler, MODE_GET, column, rows[i].index, rows[i].row);
        }
    }
}

Bytes image_answer(const std::uint8_t *data, std::size_t size, bool compressed) {
    if (compressed) {
        return image_payload(Bytes(data, data + size), size > 4 ? tarn::load_le32(data) : 0);
    }
    ConfigImage image;
    strew(image.bytes, data, size);
    return image.payload();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    if (size == 0) {
        return 0;
    }
    const Bytes rest(data + 1, data + size);
    board = ScriptedBoard();
    board.everything_stale = true;
    slot_initializer(16);
    slot_initializer(0);  // the databases of earlier inputs stay: what they left must not harm the next
    if (data[0] % 3 == 2) {
        for (const int command : {84, 87, 97, 103, 127, 137, 142, 208, 246, 280}) {
            board.answer(command, rest);
        }
        get_management_profiles();
        get_crossconnect_profiles();
        get_shaping_profiles();
        get_alloc_profiles();
        read_iterator(tarnONTPortsProfileTable_next_index, tarnONTPortsProfileTable_module_handler, {0});
        read_iterator(tarnOLTVlanProfilesTable_next_index, tarnOLTVlanProfilesTable_module_handler, {0});
        get_olt_address_table_profiles();
        get_olt_cfg(0);
        slot_lib_get_alarms_config();
        slot_lib_set_alarms_config();
        update_slots_terminal_vlans(0);
    } else {
        board.answer(302, image_answer(rest.data(), rest.size(), data[0] % 3 == 0));
        get_all_config(0);
        // Fresh from here on: one image serves all the reads.
        get_all_ont_config(0);
        get_ont_templates();
        get_common_network_cfg();
        board.everything_stale = false;
        read_nextgen(tarnONTConfigTable_get_next_entry, tarnONTConfigTable_table_handler_nextgen);
        read_nextgen(tarnONTSelectiveTunnelTable_get_next_entry,
                     tarnONTSelectiveTunnelTable_table_handler_nextgen);
        read_iterator(tarnOntConfigUniPortTable_next_index, tarnOntConfigUniPortTable_module_handler,
                      {0, "", 0});
        read_iterator(tarnONTTemplateValuesTable_next_index, tarnONTTemplateValuesTable_module_handler, {0});
    }
    if (board.outstanding_blocks != 0) {
        __builtin_trap();
    }
    return 0;
}
