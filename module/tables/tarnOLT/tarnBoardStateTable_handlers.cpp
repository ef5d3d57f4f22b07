// What a line card is: hardware and versions, as texts, and whether it is there and configured.
#include "module/operations/channel_queries.h"
#include "module/tables/frame/table.h"
#include "tarn/host_services.h"
#include "wire/records/identity.h"

using namespace tarn;

namespace {

std::uint8_t *hardware(Row &row) {
    return get_hardware_information(row.slot);
}

std::uint8_t *versions(Row &row) {
    return get_version_information(row.slot);
}

// 1 or 2, a truth value.
template <int (*Service)(int slot)>
int truth_about(Row &row, const Reply &reply) {
    return reply.number(Service(row.slot) != 0 ? 1 : 2);
}

constexpr Column columns[] = {
    {1, unsigned32, slot_plus(1)},
    {2, octet_string, field_of(hardware, board_hardware::type)},
    {3, octet_string, field_of(hardware, board_hardware::serial_number)},
    {4, octet_string, field_of(hardware, board_hardware::revision)},
    {5, octet_string, field_of(hardware, board_hardware::place)},
    {6, octet_string, field_of(versions, board_versions::software)},
    {7, octet_string, field_of(versions, board_versions::boot_loader)},
    {8, octet_string, field_of(versions, board_versions::kernel)},
    {9, octet_string, field_of(versions, board_versions::logic)},
    {10, integer, answered_by(truth_about<check_slot_link>)},
    {11, integer, answered_by(truth_about<slot_isconfigured>)},
};

constexpr Table table{
    .index = slot_index,
    .columns = columns,
    .rows = row_of_slot,
};

}  // namespace

MODULE_ITERATOR_TABLE(tarnBoardStateTable, table)
