// Identity, state and optical readings of every ONT that a line card knows, with triggers to reconfigure, to
// update and to reboot it and to reset it to its defaults.
#include <algorithm>
#include <cmath>

#include "module/config/ont_reconfigure.h"
#include "module/operations/board_actions.h"
#include "module/operations/firmware_update.h"
#include "module/operations/ont_queries.h"
#include "module/tables/tarnONT/ont_rows.h"
#include "wire/records/ont.h"

using namespace tarn;

namespace {

std::uint8_t *state(Row &row) {
    return get_ont_state_check_state(row.slot, row.record);
}

std::uint8_t *optics(Row &row) {
    return get_ont_i2c(row.slot, row.serial.data());
}

// Towards zero, as far as the target type goes; not a number becomes its lowest value.
std::int64_t whole_number(double value, double low, double high) {
    return static_cast<std::int64_t>(value >= low ? std::min(value, high) : low);
}

std::int64_t state_is_1(const std::uint8_t *record) {
    return load_integer(record, ont_state::value_68) == 1 ? 1 : 2;
}

std::int64_t thousandths(const std::uint8_t *record) {
    return whole_number(load_double(record, ont_state::value_128) * 1000, 0, UINT32_MAX);
}

std::int64_t power_in_tenths(const std::uint8_t *record) {
    constexpr std::int64_t no_reading = 65535;
    const double power = load_double(record, ont_list::optical_power);
    return std::isnan(power) ? no_reading : whole_number(power * 10, INT32_MIN, INT32_MAX);
}

// The module's own encoding of a power: readings outside the plausible range are shifted.
std::int64_t power_reading(std::int64_t reading) {
    return reading > -1000 && reading < 5000 ? 2 * reading : 2 * (reading - 15000);
}

std::int64_t tenths_of_256ths(std::int64_t reading) {
    return reading == 256 ? 0 : static_cast<std::int64_t>(static_cast<double>(reading) / 256.0 * 10);
}

constexpr std::int64_t byte_not_read = 255;

std::int64_t thousandfold_reading(const std::uint8_t *record) {
    constexpr std::int64_t no_reading = 32767;
    const std::int64_t reading = load_integer(record, ont_i2c::value_8);
    return reading > -30 && load_integer(record, ont_i2c::value_4) != byte_not_read ? 1000 * reading
                                                                                    : no_reading;
}

std::int64_t truth_or_not_read(std::int64_t byte) {
    return byte == byte_not_read ? byte : (byte != 0 ? 1 : 2);
}

std::int64_t doubled(std::int64_t reading) {
    return 2 * reading;
}

// Whether the card could do these two is not reported to the manager.
int reconfigure(const Row &row) {
    reconfigure_ont(row.slot, row.serial.data());
    return 0;
}

int update_firmware(const Row &row) {
    update_ont_firmware(row.slot, row.serial.data());
    return 0;
}

int reboot(const Row &row) {
    return reboot_ont(row.slot, row.serial.data());
}

int reset_to_defaults(const Row &row) {
    return ont_default_via_omci(row.slot, row.record);
}

constexpr Column columns[] = {
    {1, unsigned32, slot_plus(1)},
    {2, octet_string, row_serial},
    {3, unsigned32, field(ont_list::channel)},
    {4, unsigned32, field(ont_list::ont_id)},
    {5, integer, field(ont_list::state_code)},
    {6, unsigned32, field_of(state, ont_state::value_66)},
    {7, integer, computed_of(state, state_is_1)},
    {8, octet_string, field_of(state, ont_state::text_70)},
    {9, integer, field_of(state, ont_state::value_86)},
    {10, unsigned32, computed_of(state, thousandths)},
    {11, integer, computed(power_in_tenths)},
    {12, octet_string, field(ont_list::text_18)},
    {13, integer, field_of(optics, ont_i2c::value_0, {power_reading})},
    {14, integer, field_of(optics, ont_i2c::value_2, {power_reading})},
    {15, integer, field_of(optics, ont_i2c::value_6, {tenths_of_256ths})},
    {16, integer, computed_of(optics, thousandfold_reading)},
    {17, octet_string, field(ont_list::text_50)},
    {18, octet_string, field(ont_list::text_91)},
    {20, unsigned32, reads_zero, any_unsigned32, on_one<reconfigure>},
    {21, unsigned32, reads_zero, any_unsigned32, on_one<update_firmware>},
    {22, unsigned32, reads_zero, any_unsigned32, on_one<reboot>},
    {23, unsigned32, reads_zero, any_unsigned32, on_one<reset_to_defaults>},
    {24, integer, field_of(optics, ont_i2c::value_4, {truth_or_not_read})},
    {25, integer, field_of(optics, ont_i2c::value_10, {doubled})},
    {26, unsigned32, field_of(optics, ont_i2c::value_12, {doubled})},
};

constexpr Table table{
    .index = ont_index,
    .columns = columns,
    .rows = sorted_rows_of<ListedOnts>("append_index_state"),
    .answers = row_first,
};

}  // namespace

MODULE_NEXTGEN_TABLE(tarnONTStateTable, table)
