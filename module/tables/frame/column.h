// A column of a table, as data: number, SNMP type, where its value comes from, what a SET must pass and what
// it does.
#ifndef TARN_MODULE_TABLES_FRAME_COLUMN_H
#define TARN_MODULE_TABLES_FRAME_COLUMN_H

#include "module/common/truth_value.h"
#include "module/tables/frame/row.h"
#include "module/tables/frame/row_status.h"
#include "wire/record.h"

namespace tarn {

using Binding = netsnmp_variable_list;

inline constexpr std::uint8_t integer = ASN_INTEGER;
inline constexpr std::uint8_t unsigned32 = ASN_GAUGE;
inline constexpr std::uint8_t octet_string = ASN_OCTET_STR;
inline constexpr std::uint8_t ip_address = ASN_IPADDRESS;
inline constexpr std::uint8_t counter_64 = ASN_COUNTER64;

// Where the value of a GET is written, and the SNMP type that it gets. Each of these returns no error.
struct Reply {
    Binding *binding;
    std::uint8_t type;

    int number(std::int64_t value) const;
    int octets(const void *bytes, std::size_t count) const;
    int text(std::string_view value) const { return octets(value.data(), value.size()); }
};

// ---- Where a value comes from ----

// Refreshes and returns the record that a field lies in; null: it could not be had, the row is missing.
using RecordOf = std::uint8_t *(*)(Row &row);

// Between the stored integer and the SNMP value.
struct Conversion {
    std::int64_t (*to_snmp)(std::int64_t stored) = nullptr;  // null: as it is
    std::int64_t (*from_snmp)(std::int64_t value) = nullptr;
};

// Only an exact 1 is true.
inline constexpr Conversion truth_conversion{
    [](std::int64_t stored) -> std::int64_t { return get_truth_value(static_cast<int>(stored)); },
    [](std::int64_t value) -> std::int64_t { return set_truth_value(static_cast<int>(value)); }};
// Everything but 0 is true.
inline constexpr Conversion nonzero_conversion{
    [](std::int64_t stored) -> std::int64_t { return stored != 0 ? 1 : 2; },
    [](std::int64_t value) -> std::int64_t { return set_truth_value(static_cast<int>(value)); }};

// The status of a row that is always active when it can be read: only destroy clears the stored flag.
inline constexpr Conversion row_status_conversion{
    [](std::int64_t /*stored*/) -> std::int64_t { return 1; },
    [](std::int64_t value) -> std::int64_t { return value != destroy ? 1 : 0; }};

struct Source {
    enum class Kind : std::uint8_t { slot, serial, number, constant, field, computed, function };
    Kind kind = Kind::constant;
    int argument = 0;           // slot, number: added to the value; constant: the value
    int position = 0;           // number: which of the row's
    RecordOf record = nullptr;  // null: the row's own record
    Field field{};
    Conversion conversion{};
    std::int64_t (*compute)(const std::uint8_t *record) = nullptr;
    int (*answer)(Row &row, const Reply &reply) = nullptr;  // 0 or an exception
};

constexpr Source slot_plus(int added) {
    return {.kind = Source::Kind::slot, .argument = added};
}
inline constexpr Source row_serial{.kind = Source::Kind::serial};
// The row's index number at `position`, plus `added`.
constexpr Source index_number(int position, int added) {
    return {.kind = Source::Kind::number, .argument = added, .position = position};
}
constexpr Source constant(int value) {
    return {.kind = Source::Kind::constant, .argument = value};
}
inline constexpr Source reads_zero = constant(0);
// A field of the record that `record` returns, or of the row's own.
constexpr Source field_of(RecordOf record, Field field, Conversion conversion = {}) {
    return {.kind = Source::Kind::field, .record = record, .field = field, .conversion = conversion};
}
constexpr Source field(Field field, Conversion conversion = {}) {
    return field_of(nullptr, field, conversion);
}
constexpr Source truth_of(RecordOf record, Field field) {
    return field_of(record, field, truth_conversion);
}
constexpr Source truth(Field field) {
    return field_of(nullptr, field, truth_conversion);
}
// An integer that a named function makes of a record.
constexpr Source computed_of(RecordOf record, std::int64_t (*compute)(const std::uint8_t *)) {
    return {.kind = Source::Kind::computed, .record = record, .compute = compute};
}
constexpr Source computed(std::int64_t (*compute)(const std::uint8_t *)) {
    return computed_of(nullptr, compute);
}
// A column that cannot be read.
inline constexpr Source not_readable{
    .kind = Source::Kind::function,
    .answer = [](Row & /*row*/, const Reply & /*reply*/) -> int { return SNMP_NOSUCHOBJECT; }};
// Whatever else: the function writes the value itself.
constexpr Source answered_by(int (*answer)(Row &row, const Reply &reply)) {
    return {.kind = Source::Kind::function, .answer = answer};
}

// ---- What a SET must pass ----

// A check in the first phase. Type errors are net-snmp's; where `code` is set, a value of the right type
// outside low..high gives that code.
struct Check {
    enum class Kind : std::uint8_t {
        read_only,
        none,
        signed_integer,
        unsigned_integer,
        integer_range,  // net-snmp's own error outside
        truth_value,
        octets_at_most,
        octets_exactly,
        address_at_most,
        address_exactly,
        custom
    };
    Kind kind = Kind::read_only;
    std::int64_t low = 0;
    std::int64_t high = 0;  // octets: their number
    int code = 0;
    int (*custom)(const Binding *value) = nullptr;
};

inline constexpr Check read_only{};
inline constexpr Check not_checked{.kind = Check::Kind::none};
inline constexpr Check any_integer{.kind = Check::Kind::signed_integer};
inline constexpr Check any_unsigned32{.kind = Check::Kind::unsigned_integer};
inline constexpr Check truth_value{.kind = Check::Kind::truth_value};
constexpr Check integer_in(std::int64_t low, std::int64_t high) {
    return {.kind = Check::Kind::integer_range, .low = low, .high = high};
}
constexpr Check integer_within(std::int64_t low, std::int64_t high, int code) {
    return {.kind = Check::Kind::signed_integer, .low = low, .high = high, .code = code};
}
constexpr Check unsigned_within(std::int64_t low, std::int64_t high, int code) {
    return {.kind = Check::Kind::unsigned_integer, .low = low, .high = high, .code = code};
}
constexpr Check octets_up_to(int count) {
    return {.kind = Check::Kind::octets_at_most, .high = count};
}
// Whatever does not fit the field is cut.
inline constexpr Check any_octets = octets_up_to(65535);
constexpr Check octets_of(int count) {
    return {.kind = Check::Kind::octets_exactly, .high = count};
}
constexpr Check address_up_to(int count) {
    return {.kind = Check::Kind::address_at_most, .high = count};
}
constexpr Check address_of(int count) {
    return {.kind = Check::Kind::address_exactly, .high = count};
}
constexpr Check checked_by(int (*custom)(const Binding *value)) {
    return {.kind = Check::Kind::custom, .custom = custom};
}

// ---- What a SET does ----

// 0 or an SNMP error. Without an action a SET stores into the column's field of the record being edited.
using Action = int (*)(Row &row, const Binding &value);

// A trigger on any value, and one on exactly 1, with the error of a failure.
template <int (*Act)(const Row &row), int Failure = SNMP_ERR_GENERR>
int on_any_value(Row &row, const Binding & /*value*/) {
    return Act(row) == 0 ? SNMP_ERR_NOERROR : Failure;
}
template <int (*Act)(const Row &row), int Failure = SNMP_ERR_GENERR>
int on_one(Row &row, const Binding &value) {
    return *value.val.integer != 1 || Act(row) == 0 ? SNMP_ERR_NOERROR : Failure;
}
// Accepted without effect.
inline int ignored(Row & /*row*/, const Binding & /*value*/) {
    return SNMP_ERR_NOERROR;
}

struct Column {
    int number;
    std::uint8_t type;
    Source source;
    Check check = read_only;
    Action action = nullptr;
    bool creates = false;              // a SET of this column does not need the row to exist
    Check second_check = not_checked;  // in the second phase
};

constexpr bool is_readable(const Column &column) {
    return column.source.kind != Source::Kind::function || column.source.answer != not_readable.answer;
}
constexpr bool is_writable(const Column &column) {
    return column.check.kind != Check::Kind::read_only;
}

// Answers a column of a row; 0 or an exception. `missing` is the exception for a record that could not be
// had.
int read_column(const Column &column, Row &row, Binding *binding, int missing);
// Whether the value is of one of the types that carry a 32-bit number.
bool holds_integer(const Binding *value);
// 0 or the error of a value that does not pass.
int check_value(const Check &check, const Binding *value);
// Stores a checked value into the column's field of `record`.
void store_value(const Column &column, std::uint8_t *record, const Binding &value);

}  // namespace tarn

#endif
