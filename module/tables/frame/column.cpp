#include "module/tables/frame/column.h"

#include <algorithm>

#include "module/switch/switch_operations.h"

namespace tarn {

namespace {

int answer_field(const Source &source, const std::uint8_t *record, const Reply &reply) {
    const Field &field = source.field;
    if (field.encoding == Encoding::text) {
        return reply.text(load_text(record, field));
    }
    if (field.encoding == Encoding::octets) {
        return reply.octets(record + field.offset, field.size);
    }
    const std::int64_t stored = load_integer(record, field);
    const auto convert = source.conversion.to_snmp;
    return reply.number(convert != nullptr ? convert(stored) : stored);
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

// net-snmp holds every integer but a Counter64 in a long; Gauge32 must not carry sign bits beyond its 32.
int Reply::number(std::int64_t value) const {
    if (type == ASN_COUNTER64) {
        struct counter64 counter {};
        to_c64(&counter, static_cast<std::uint64_t>(value));
        return octets(&counter, sizeof counter);
    }
    const long held = type == ASN_INTEGER ? static_cast<std::int32_t>(value)
                                          : static_cast<long>(static_cast<std::uint32_t>(value));
    snmp_set_var_typed_integer(binding, type, held);
    return SNMP_ERR_NOERROR;
}

int Reply::octets(const void *bytes, std::size_t count) const {
    snmp_set_var_typed_value(binding, type, bytes, count);
    return SNMP_ERR_NOERROR;
}

int read_column(const Column &column, Row &row, Binding *binding, int missing) {
    const Source &source = column.source;
    const Reply reply{binding, column.type};
    switch (source.kind) {
        case Source::Kind::slot:
            return reply.number(row.slot + source.argument);
        case Source::Kind::serial:
            return reply.octets(row.serial.data(), row.serial.size());
        case Source::Kind::number:
            return reply.number(row.number[static_cast<std::size_t>(source.position)] + source.argument);
        case Source::Kind::constant:
            return reply.number(source.argument);
        case Source::Kind::function:
            return source.answer(row, reply);
        case Source::Kind::field:
        case Source::Kind::computed:
            break;
    }
    const std::uint8_t *record = source.record != nullptr ? source.record(row) : row.record;
    if (record == nullptr) {
        return missing;
    }
    return source.kind == Source::Kind::computed ? reply.number(source.compute(record))
                                                 : answer_field(source, record, reply);
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
