// The VLAN identifiers of an ONT's selective tunnels: 42 places in each of 16 services, all of them rows.
#include "module/store/ont_config_sections.h"
#include "module/tables/tarnONT/ont_config_rows.h"

using namespace tarn;
using namespace tarn::ont_config;

namespace {

constexpr IndexPart row_index[] = {slot_part, serial_part, ordinal_part(services),
                                   ordinal_part(tunnel_places)};
constexpr std::size_t service = 0;
constexpr std::size_t place = 1;

int check_vid(const Binding *value) {
    const int error = netsnmp_check_vb_int(value);
    if (error != SNMP_ERR_NOERROR) {
        return error;
    }
    const auto vid = static_cast<std::int32_t>(*value->val.integer);
    return vid == -1 || (vid >= 1 && vid <= 4094) ? SNMP_ERR_NOERROR : SNMP_ERR_WRONGVALUE;
}

constexpr Column columns[] = {
    {5, integer, field(tunnel_vid), checked_by(check_vid)},
};

std::int64_t offset_of_place(const Row &row) {
    return (row.number[service] * tunnel_places + row.number[place]) * tunnel_vid_size;
}

bool find_place(Row &row) {
    if (!find_ont_config(row)) {
        return false;
    }
    row.record += offset_of_place(row);
    return true;
}

std::uint8_t *staged_place(Row &row) {
    return get_ont_cb() + offset_of_place(row);
}

// The walk goes by positions in the sorted view.
struct Position {
    const OntConfigSections &db;
    int value;

    [[nodiscard]] const std::uint8_t *ont() const {
        return db.ont_configs[db.ont_configs_by_serial[static_cast<std::size_t>(value)]].data();
    }
    [[nodiscard]] bool has_ont() const { return value < count && ont_in_use(ont()); }
    // Moves to the first ONT in use before `end`; false when there is none.
    bool find_in_use(int end) {
        while (value < end && !ont_in_use(ont())) {
            ++value;
        }
        return value < end;
    }
};

// Moves to the place after the row's; false when that was the ONT's last.
bool advance_within_ont(Row &row) {
    if (row.number[service] < 0) {
        row.number[service] = row.number[place] = 0;
    } else if (++row.number[place] == tunnel_places) {
        row.number[place] = 0;
        ++row.number[service];
    }
    return row.number[service] < services;
}

bool next_place(Row &row) {
    const OntConfigSections *db = slot_sections<OntConfigSections>(row.slot);
    if (db == nullptr || get_all_ont_config(row.slot) == nullptr) {
        return false;
    }
    const int above = first_ont_above(*db, row.serial.data());
    Position position{*db, first_ont_not_below(*db, row.serial.data())};
    if (position.find_in_use(above)) {
        if (advance_within_ont(row)) {
            return true;
        }
        ++position.value;  // the walk ends at an ONT that is not in use
    } else {
        position.value = above;
        position.find_in_use(count);
    }
    if (!position.has_ont()) {
        return false;
    }
    row.serial = serial_at(position.ont() + serial.offset);
    row.number[service] = row.number[place] = 0;
    return true;
}

int commit(Row &row) {
    reorganize_ont_selective_tunnel_vids();
    return commit_ont(row);
}

constexpr Table table{
    .index = row_index,
    .columns = columns,
    .rows = {.find = find_place,
             .successor = next_place,
             .index_builder = "tarnONTSelectiveTunnelTable_get_next_entry"},
    .writes = stages_one_ont<staged_place, commit>,
    .answers =
        usual.with(reserving, no_column, SNMP_NOSUCHOBJECT).with(setting, no_row, SNMP_ERR_INCONSISTENTNAME),
};

}  // namespace

MODULE_NEXTGEN_TABLE(tarnONTSelectiveTunnelTable, table)
