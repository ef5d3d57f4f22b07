#include "module/tables/frame/column.h"

#include <algorithm>

#include "module/switch/switch_operations.h"

namespace tarn {

namespace {

// net-snmp holds every other integer in a long; Gauge32 must not carry sign bits beyond its 32.
void set_integer(Binding *binding, std::uint8_t type, std::int64_t value) {
    if (type == ASN_COUNTER64) {
        struct counter64 counter {};
        to_c64(&counter, static_cast<std::uint64_t>(value));
        snmp_set_var_typed_value(binding, type, &counter, sizeof counter);
        return;
    }
    const long held = type == ASN_INTEGER ? static_cast<std::int32_t>(value)
                                          : static_cast<long>(static_cast<std::uint32_t>(value));
    snmp_set_var_typed_integer(binding, type, held);
}

void set_octets(Binding *binding, std::uint8_t type, const void *bytes, std::size_t count) {
    snmp_set_var_typed_value(binding, type, bytes, count);
}

void set_field(const Column &column, const std::uint8_t *record, Binding *binding) {
    const Field &field = column.source.field;
    if (field.encoding == Encoding::text) {
        const std::string_view text = load_text(record, field);
        set_octets(binding, column.type, text.data(), text.size());
    } else if (field.encoding == Encoding::octets) {
        set_octets(binding, column.type, record + field.offset, field.size);
    } else {
        const std::int64_t stored = load_integer(record, field);
        const auto convert = column.source.conversion.to_snmp;
        set_integer(binding, column.type, convert != nullptr ? convert(stored) : stored);
    }
}

int check_integer(const Check &check, const Binding *value) {
    const bool is_signed = check.kind == Check::Kind::signed_integer;
    const int error = is_signed ? netsnmp_check_vb_int(value) : netsnmp_check_vb_uint(value);
    if (error != SNMP_ERR_NOERROR || check.code == 0 || !holds_integer(value)) {
        return error;
    }
    const long held = *value->val.integer;
    const std::int64_t number = is_signed ? std::int64_t{static_cast<std::int32_t>(held)}
                                          : std::int64_t{static_cast<std::uint32_t>(held)};
    return number < check.low || number > check.high ? check.code : SNMP_ERR_NOERROR;
}

}  // namespace

bool holds_integer(const Binding *value) {
    return value->type == ASN_INTEGER || value->type == ASN_UNSIGNED || value->type == ASN_COUNTER ||
           value->type == ASN_TIMETICKS;
}

int read_column(const Column &column, Row &row, Binding *binding, int missing) {
    const Source &source = column.source;
    switch (source.kind) {
        case Source::Kind::slot:
            set_integer(binding, column.type, row.slot + source.argument);
            return SNMP_ERR_NOERROR;
        case Source::Kind::serial:
            set_octets(binding, column.type, row.serial.data(), row.serial.size());
            return SNMP_ERR_NOERROR;
        case Source::Kind::number:
            set_integer(binding, column.type,
                        row.number[static_cast<std::size_t>(source.position)] + source.argument);
            return SNMP_ERR_NOERROR;
        case Source::Kind::constant:
            set_integer(binding, column.type, source.argument);
            return SNMP_ERR_NOERROR;
        case Source::Kind::function:
            return source.answer(row, binding);
        case Source::Kind::field:
        case Source::Kind::computed:
            break;
    }
    const std::uint8_t *record = source.record != nullptr ? source.record(row) : row.record;
    if (record == nullptr) {
        return missing;
    }
    if (source.kind == Source::Kind::computed) {
        set_integer(binding, column.type, source.compute(record));
    } else {
        set_field(column, record, binding);
    }
    return SNMP_ERR_NOERROR;
}

int check_value(const Check &check, const Binding *value) {
    const auto count = static_cast<std::size_t>(check.high);
    switch (check.kind) {
        case Check::Kind::read_only:
            return SNMP_ERR_NOTWRITABLE;
        case Check::Kind::none:
            return SNMP_ERR_NOERROR;
        case Check::Kind::signed_integer:
        case Check::Kind::unsigned_integer:
            return check_integer(check, value);
        case Check::Kind::integer_range:
            return netsnmp_check_vb_int_range(value, static_cast<int>(check.low),
                                              static_cast<int>(check.high));
        case Check::Kind::truth_value:
            return netsnmp_check_vb_truthvalue(value);
        case Check::Kind::octets_at_most:
            return netsnmp_check_vb_type_and_max_size(value, ASN_OCTET_STR, count);
        case Check::Kind::octets_exactly:
            return netsnmp_check_vb_type_and_size(value, ASN_OCTET_STR, count);
        case Check::Kind::address_at_most:
            return netsnmp_check_vb_type_and_max_size(value, ASN_IPADDRESS, count);
        case Check::Kind::address_exactly:
            return netsnmp_check_vb_type_and_size(value, ASN_IPADDRESS, count);
        case Check::Kind::custom:
            return check.custom(value);
    }
    return SNMP_ERR_GENERR;
}

void store_value(const Column &column, std::uint8_t *record, const Binding &value) {
    const Field &field = column.source.field;
    if (field.encoding == Encoding::text || field.encoding == Encoding::octets) {
        store_text(record, field, {reinterpret_cast<const char *>(value.val.string), value.val_len});
        return;
    }
    const std::int64_t number = *value.val.integer;
    const auto convert = column.source.conversion.from_snmp;
    store_integer(record, field, convert != nullptr ? convert(number) : number);
}

}  // namespace tarn
