// The VLANs configured on a card's switch, which a manager creates, edits and destroys. Edits are made in the
// cached records and sent in the commit phase.
#include "module/store/switch_sections.h"
#include "module/switch/switch_ports.h"
#include "module/switch/switch_vlans.h"
#include "module/tables/frame/table.h"
#include "module/tables/tarnSwitch/vlan_columns.h"
#include "wire/records/switch.h"

using namespace tarn;

namespace {

// The VLAN index is the identifier, 1 to 4094; 0 stands for none, and a list may hold any 16-bit number.
constexpr IndexPart row_index[] = {slot_part, number_part(UINT16_MAX + 2)};

int vlan_of(const Row &row) {
    return static_cast<int>(row.number[0]);
}

bool is_vlan(int index) {
    return index >= 1 && index <= switch_vlans;
}

// ---- What waits for the commit phase ----

struct PendingVlan {
    std::uint8_t slot;
    std::uint16_t index;
};

struct PendingVlans {
    std::array<PendingVlan, 16> vlans;
    std::size_t count;
};
Transaction<PendingVlans> edited;

}  // namespace

// Queues a VLAN for the commit phase: 0, or -1 when the queue is full. Entries that are passed over take the
// new slot, and slot 0 finds no entry again.
TARN_EXPORT int add_vlan_to_commit(int slot, int index) {
    edited.enter(MODE_SET_ACTION);
    auto &[vlans, count] = edited.state;
    if (count == vlans.size()) {
        return -1;
    }
    const auto new_slot = static_cast<std::uint8_t>(slot);
    const auto new_index = static_cast<std::uint16_t>(index);
    for (std::size_t i = 0; i < count; ++i) {
        vlans[i].slot = new_slot;
        if (new_slot != 0 && vlans[i].index == new_index) {
            return 0;
        }
    }
    vlans[count++] = {new_slot, new_index};
    return 0;
}

namespace {

int commit_pending(Row & /*row*/) {
    int error = SNMP_ERR_NOERROR;
    auto &[vlans, count] = edited.state;
    for (std::size_t i = 0; i < count && error == SNMP_ERR_NOERROR; ++i) {
        if (set_switch_vlan(vlans[i].slot, vlans[i].index) != 0) {
            error = SNMP_ERR_COMMITFAILED;
        }
    }
    count = 0;
    drop_unsent_vlans();
    return error;
}

// ---- Rows ----

bool find_vlan(Row &row) {
    std::uint8_t **vlans = is_vlan(vlan_of(row)) ? get_switch_vlans_block(row.slot) : nullptr;
    row.record = vlans != nullptr ? vlans[vlan_of(row) - 1] : nullptr;
    return row.record != nullptr;
}

// The record as it is cached: an edit does not wait for the card.
std::uint8_t *cached_vlan(const Row &row) {
    const SwitchSections *db = slot_sections<SwitchSections>(row.slot);
    return db != nullptr && is_vlan(vlan_of(row)) ? db->vlans[static_cast<std::size_t>(vlan_of(row) - 1)]
                                                  : nullptr;
}

constexpr int row_status = 6;

int stage(Row &row, const Column &column, const Binding & /*value*/) {
    row.record = cached_vlan(row);
    if (column.number != row_status &&
        (row.record == nullptr || load_integer(row.record, vlan_record::present) == 0)) {
        return SNMP_NOSUCHINSTANCE;
    }
    if (!is_vlan(vlan_of(row)) || add_vlan_to_commit(row.slot, vlan_of(row)) != 0) {
        return SNMP_ERR_GENERR;
    }
    note_unsent_vlan(row.slot, vlan_of(row));
    return SNMP_ERR_NOERROR;
}

int set_name(Row &row, const Binding &value) {
    std::uint8_t *name = row.record + vlan_record::name.offset;
    std::memcpy(name, value.val.string, value.val_len);
    name[value.val_len] = '\0';
    return SNMP_ERR_NOERROR;
}

template <Field Ports, Field Groups>
int set_ports(Row &row, const Binding &value) {
    const std::uint32_t list = load_le32(value.val.string);
    store_integer(row.record, Ports, portlist_snmp_to_switch(list));
    store_integer(row.record, Groups, portlist_snmp_to_switch_groups(list));
    return SNMP_ERR_NOERROR;
}

int set_row_status(Row &row, const Binding &value) {
    const long status = value.type == ASN_INTEGER ? *value.val.integer : 0;
    if (status == SNMP_ROW_CREATEANDGO || status == SNMP_ROW_CREATEANDWAIT) {
        return init_switch_vlan(row.slot, vlan_of(row)) == 0 ? SNMP_ERR_NOERROR : SNMP_ERR_GENERR;
    }
    // A VLAN without a record has nothing to take back; sending it will fail.
    if (status == SNMP_ROW_DESTROY && row.record != nullptr) {
        store_integer(row.record, vlan_record::present, 0);
    }
    return SNMP_ERR_NOERROR;
}

namespace fields = vlan_record;

constexpr Column columns[] = {
    {1, unsigned32, slot_plus(1)},
    {2, unsigned32, index_number(0, 0)},
    {3, octet_string, field(fields::name), octets_up_to(fields::longest_name), set_name},
    {4, octet_string, answered_by(answer_ports<fields::first_ports, fields::first_groups>), octets_of(4),
     set_ports<fields::first_ports, fields::first_groups>},
    {5, octet_string, answered_by(answer_ports<fields::second_ports, fields::second_groups>), octets_of(4),
     set_ports<fields::second_ports, fields::second_groups>},
    {row_status, integer, constant(SNMP_ROW_ACTIVE), not_checked, set_row_status},
    {10, integer, truth(fields::flag_46), any_integer},
    {11, integer, truth(fields::flag_47), any_integer},
    {20, integer, truth(fields::flag_67), any_integer},
    {21, integer, truth(fields::flag_68), any_integer},
};

}  // namespace

// The first position in a VLAN list whose VLAN has a greater index; the list's count when there is none.
TARN_EXPORT int get_next_vlan_index(const std::uint8_t *list, int index) {
    const int count = vlans_listed(list);
    int position = 0;
    while (position < count && load_integer(list, vlan_list::number(position)) + 1 <= index) {
        ++position;
    }
    return position;
}

namespace {

bool next_vlan(Row &row) {
    const std::uint8_t *list = get_switch_vlan_list(row.slot);
    if (list == nullptr) {
        return false;
    }
    const int position = get_next_vlan_index(list, vlan_of(row));
    if (position == vlans_listed(list)) {
        return false;
    }
    row.number[0] = load_integer(list, vlan_list::number(position)) + 1;
    return true;
}

constexpr Table table{
    .index = row_index,
    .columns = columns,
    .rows = {.find = find_vlan, .successor = next_vlan, .index_builder = "append_vlan_index"},
    .writes = collects_request<edited, stage, commit_pending>.undone_by(drop_unsent_vlans).for_any_index(),
    .answers = row_first,
};

}  // namespace

MODULE_NEXTGEN_TABLE(tarnSwitchVLANTable, table)
