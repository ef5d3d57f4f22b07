// State, counters and identity texts of the PON channels, with triggers to reconfigure a channel and to reset
// its counters.
#include "module/common/truth_value.h"
#include "module/config/olt_channel_config.h"
#include "module/operations/board_actions.h"
#include "module/operations/channel_queries.h"
#include "module/store/cached_query.h"
#include "module/store/channel_sections.h"
#include "module/tables/frame/table.h"
#include "wire/records/channel.h"

using namespace tarn;

namespace {

constexpr IndexPart row_index[] = {slot_part, ordinal_part(channels_per_slot)};

int channel_of(const Row &row) {
    return static_cast<int>(row.number[0]);
}

std::uint8_t *short_state(Row &row) {
    std::uint8_t *first = get_olt_channels_state_lite(row.slot);
    return first != nullptr ? first + static_cast<std::size_t>(channel_of(row)) * channel_state::size
                            : nullptr;
}

std::uint8_t *full_state(Row &row) {
    return get_olt_channel_state(row.slot, channel_of(row));
}

std::uint8_t *configuration(Row &row) {
    return get_olt_channel_config(row.slot, channel_of(row));
}

int set_enabled(Row &row, const Binding &value) {
    std::uint8_t *config = configuration(row);
    if (config == nullptr) {
        return SNMP_NOSUCHINSTANCE;
    }
    const auto channel = static_cast<std::size_t>(channel_of(row));
    Stamp &stamp = slot_sections<ChannelSections>(row.slot)->olt_channel_configs[channel].stamp;
    if (!may_edit(stamp, __func__, row.slot)) {
        return SNMP_ERR_GENERR;
    }
    store_integer(config, olt_channel_config::enabled, set_truth_value(static_cast<int>(*value.val.integer)));
    if (set_olt_channel_config(row.slot, channel_of(row)) != 0) {
        stamp.drop();
        return SNMP_ERR_GENERR;
    }
    return SNMP_ERR_NOERROR;
}

int reconfigure(const Row &row) {
    return reconfigure_olt_channel(row.slot, channel_of(row));
}

int reset_counters(const Row &row) {
    return reset_pon_channel_counters(row.slot, channel_of(row));
}

constexpr Column columns[] = {
    {1, unsigned32, slot_plus(0)},
    {2, unsigned32, index_number(0, 0)},
    {3, unsigned32, field_of(short_state, channel_state::value_3)},
    {4, unsigned32, field_of(short_state, channel_state::value_7)},
    {5, integer, truth_of(configuration, olt_channel_config::enabled), any_integer, set_enabled},
    {6, octet_string, field_of(full_state, channel_state::text_12)},
    {7, octet_string, field_of(full_state, channel_state::text_29)},
    {8, octet_string, field_of(full_state, channel_state::text_46)},
    {9, integer, field_of(full_state, channel_state::value_63)},
    {10, integer, field_of(full_state, channel_state::value_51)},
    {11, integer, field_of(full_state, channel_state::value_55)},
    {12, integer, field_of(full_state, channel_state::value_59)},
    {20, unsigned32, reads_zero, any_unsigned32, on_any_value<reconfigure>},
    {21, unsigned32, reads_zero, any_unsigned32, on_any_value<reset_counters>},
};

bool next_channel(std::int64_t &cursor, Row &row) {
    ChannelSections *db = slot_sections<ChannelSections>(row.slot);
    if (db == nullptr || cursor >= channels_per_slot) {
        return false;
    }
    row.record = db->channel_states[static_cast<std::size_t>(cursor)].data();
    row.number[0] = cursor++;
    return true;
}

constexpr Table table{
    .index = row_index,
    .columns = columns,
    .rows = {.next = next_channel},
    .answers = usual.with(reading, no_row_data, SNMP_NOSUCHOBJECT).with(&Answers::returns_errors),
};

}  // namespace

MODULE_ITERATOR_TABLE(tarnPONChannelStateTable, table)
