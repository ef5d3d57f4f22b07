// Authentication of ONTs at activation, per PON channel.
#include "module/common/truth_value.h"
#include "module/operations/board_actions.h"
#include "module/tables/frame/table.h"
#include "wire/records/channel.h"

using namespace tarn;

namespace {

constexpr IndexPart row_index[] = {slot_part, ordinal_part(channels_per_slot)};

int channel_of(const Row &row) {
    return static_cast<int>(row.number[0]);
}

int get_mode(Row &row, const Reply &reply) {
    const int mode = get_activation_auth_mode(row.slot, channel_of(row));
    return reply.number(get_truth_value(mode));
}

int set_mode(Row &row, const Binding &value) {
    const int flag = set_truth_value(static_cast<int>(*value.val.integer));
    return set_activation_auth_mode(row.slot, channel_of(row), flag) == 0 ? SNMP_ERR_NOERROR
                                                                          : SNMP_ERR_GENERR;
}

constexpr Column columns[] = {
    {3, integer, answered_by(get_mode), integer_in(1, 2), set_mode},
};

constexpr Table table{
    .index = row_index,
    .columns = columns,
    .rows = numbers_up_to<channels_per_slot>,
    .answers = usual.with(setting, no_row_data, SNMP_NOSUCHINSTANCE),
};

}  // namespace

MODULE_ITERATOR_TABLE(tarnPONChannelActModeTable, table)
