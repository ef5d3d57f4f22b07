// Bit errors that the ONTs of the list counted downstream. An ONT that does not answer is asked at each
// reading.
#include <array>
#include <cstdio>

#include "module/tables/tarnONT/ont_rows.h"

using namespace tarn;

namespace {

// Null also when the card's record is another ONT's.
std::uint8_t *errors_of_ont(Row &row) {
    std::uint8_t *record = get_ont_downstream_ber(row.slot, row.serial.data());
    return record != nullptr && compare_serials(record, row.serial.data()) == 0 ? record : nullptr;
}

// All 64 bits as they are.
int bits(Row &row, const Reply &reply) {
    const std::uint8_t *record = errors_of_ont(row);
    if (record == nullptr) {
        return SNMP_NOSUCHINSTANCE;
    }
    const auto count = static_cast<std::uint64_t>(load_integer(record, ont_downstream_ber::bits));
    const counter64 value{count >> 32U, count & 0xFFFFFFFFU};
    return reply.octets(&value, sizeof value);
}

// Errors a bit, "0" where no bits were counted.
int rate(Row &row, const Reply &reply) {
    const std::uint8_t *record = errors_of_ont(row);
    if (record == nullptr) {
        return SNMP_NOSUCHINSTANCE;
    }
    const auto bits = static_cast<std::uint64_t>(load_integer(record, ont_downstream_ber::bits));
    if (bits == 0) {
        return reply.text("0");
    }
    const auto errors = static_cast<double>(load_integer(record, ont_downstream_ber::errors));
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), "%.2E", errors / static_cast<double>(bits));
    return reply.text(text.data());
}

constexpr Column columns[] = {
    {1, unsigned32, slot_plus(1)},
    {2, octet_string, row_serial},
    {3, unsigned32, field_of(errors_of_ont, ont_downstream_ber::errors)},
    {4, counter_64, answered_by(bits)},
    {5, octet_string, answered_by(rate)},
};

constexpr Table table{
    .index = ont_index,
    .columns = columns,
    .rows = sorted_rows_of<ListedOnts>("append_index_tarnONTDownstreamBERTable"),
};

}  // namespace

MODULE_NEXTGEN_TABLE(tarnONTDownstreamBERTable, table)
