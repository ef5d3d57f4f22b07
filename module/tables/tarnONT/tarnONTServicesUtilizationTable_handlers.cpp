// What the sixteen services of each ONT of the list carry. Figures are kept for the ONT that was read last.
#include "module/tables/tarnONT/ont_rows.h"

using namespace tarn;

namespace {

constexpr IndexPart row_index[] = {slot_part, serial_part, ordinal_part(ont_services_utilization::services)};

// The record, moved so that the fields of service 0 are those of the row's service.
std::uint8_t *service(Row &row) {
    std::uint8_t *record = get_ont_services_utilization(row.slot, row.serial.data());
    return record != nullptr
               ? record + row.number[0] * static_cast<std::ptrdiff_t>(ont_services_utilization::stride)
               : nullptr;
}

bool is_listed(const std::uint8_t *ont) {
    return !is_zero_serial(ont);
}

constexpr Column columns[] = {
    {1, unsigned32, slot_plus(1)},
    {2, octet_string, row_serial},
    {3, unsigned32, index_number(0, 1)},
    {4, unsigned32, field_of(service, ont_services_utilization::downstream)},
    {5, unsigned32, field_of(service, ont_services_utilization::upstream)},
};

constexpr Table table{
    .index = row_index,
    .columns = columns,
    .rows = sorted_rows_of<EntriesOfListedOnts<ont_services_utilization::services, is_listed>>(
        "append_index_tarnONTServicesUtilizationTable"),
};

}  // namespace

MODULE_NEXTGEN_TABLE(tarnONTServicesUtilizationTable, table)
