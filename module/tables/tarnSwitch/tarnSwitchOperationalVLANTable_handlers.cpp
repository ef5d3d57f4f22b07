// The VLANs as a card's switch runs them, numbered as the card lists them.
#include "module/switch/switch_vlans.h"
#include "module/tables/frame/table.h"
#include "module/tables/tarnSwitch/vlan_columns.h"
#include "wire/records/switch.h"

using namespace tarn;

namespace {

constexpr IndexPart row_index[] = {slot_part, number_part(65536)};

using namespace vlan_record;

constexpr Column columns[] = {
    {1, unsigned32, slot_plus(1)},
    {2, unsigned32, index_number(0, 0)},
    {3, octet_string, field(name)},
    {4, octet_string, answered_by(answer_ports<first_ports, first_groups>)},
    {5, octet_string, answered_by(answer_ports<second_ports, second_groups>)},
};

bool find_vlan(Row &row) {
    row.record = get_switch_vlan_operational(row.slot, static_cast<int>(row.number[0]));
    return row.record != nullptr;
}

bool next_vlan(std::int64_t &cursor, Row &row) {
    const std::uint8_t *list = get_switch_vlan_list_operational(row.slot);
    if (list == nullptr || cursor >= vlans_listed(list)) {
        return false;
    }
    row.number[0] = load_integer(list, vlan_list::number(static_cast<int>(cursor++)));
    return true;
}

constexpr Table table{
    .index = row_index,
    .columns = columns,
    .rows = {.find = find_vlan, .next = next_vlan},
    .answers = no_row_no_object,
};

}  // namespace

MODULE_ITERATOR_TABLE(tarnSwitchOperationalVLANTable, table)
