#include "module/tables/frame/index.h"

#include <algorithm>

#include "wire/serial.h"

namespace tarn {

namespace {

using Kind = IndexPart::Kind;

constexpr int base_of(const IndexPart &part) {
    return part.kind == Kind::number ? 0 : 1;
}

bool in_range(const IndexPart &part, std::uint64_t sub_id) {
    const auto base = static_cast<std::uint64_t>(base_of(part));
    return !part.checked || (sub_id >= base && sub_id - base < static_cast<std::uint64_t>(part.limit));
}

std::int64_t value_of(const IndexPart &part, std::uint64_t sub_id) {
    return static_cast<std::int64_t>(sub_id) - base_of(part);
}

// Reads a length and the bytes of a serial; false when not exactly 8 bytes.
bool parse_serial(const oid *&from, const oid *end, Serial &serial) {
    if (end - from < static_cast<std::ptrdiff_t>(1 + serial_size) || *from++ != serial_size) {
        return false;
    }
    for (std::uint8_t &byte : serial) {
        if (*from > 255) {
            return false;
        }
        byte = static_cast<std::uint8_t>(*from++);
    }
    return true;
}

// Reads as much of a serial as there is; true when nothing of it was out of range, so that parts may follow.
bool parse_partial_serial(const oid *&from, const oid *end, Serial &serial) {
    serial.fill(0);
    if (from == end) {
        return true;
    }
    if (*from++ > serial_size) {  // a longer index follows every serial
        serial.fill(255);
        return false;
    }
    for (std::size_t i = 0; i < serial.size() && from != end; ++i) {
        const oid sub_id = *from++;
        if (sub_id > 255) {
            std::fill(serial.begin() + static_cast<std::ptrdiff_t>(i), serial.end(), std::uint8_t{255});
            return false;
        }
        serial[i] = static_cast<std::uint8_t>(sub_id);
    }
    return true;
}

}  // namespace

std::size_t index_length(Index index) {
    std::size_t length = 0;
    for (const IndexPart &part : index) {
        length += part.kind == Kind::serial ? 1 + serial_size : 1;
    }
    return length;
}

void build_index(Index index, const Row &row, oid *to) {
    std::size_t next_number = 0;
    for (const IndexPart &part : index) {
        switch (part.kind) {
            case Kind::slot:
                *to++ = static_cast<oid>(row.slot) + 1;
                break;
            case Kind::serial:
                *to++ = serial_size;
                to = std::copy(row.serial.begin(), row.serial.end(), to);
                break;
            case Kind::ordinal:
            case Kind::number:
                *to++ = static_cast<oid>(row.number[next_number++] + base_of(part));
                break;
            case Kind::text:
                break;
        }
    }
}

bool parse_exact_index(Index index, const oid *from, std::size_t length, Row &row) {
    const oid *end = from + length;
    std::size_t next_number = 0;
    for (const IndexPart &part : index) {
        if (part.kind == Kind::serial) {
            if (!parse_serial(from, end, row.serial)) {
                return false;
            }
            continue;
        }
        if (from == end || !in_range(part, *from)) {
            return false;
        }
        if (part.kind != Kind::slot) {
            row.number[next_number++] = value_of(part, *from);
        }
        ++from;
    }
    return true;
}

void parse_partial_index(Index index, const oid *from, std::size_t length, Row &row) {
    const oid *end = from + length;
    std::size_t next_number = 0;
    bool beyond = false;  // a part lay above its range: what follows is at its end
    for (const IndexPart &part : index) {
        switch (part.kind) {
            case Kind::slot:
                from += from != end ? 1 : 0;
                break;
            case Kind::serial:
                if (beyond) {
                    row.serial.fill(255);
                } else {
                    beyond = !parse_partial_serial(from, end, row.serial);
                }
                break;
            case Kind::ordinal:
            case Kind::number: {
                std::int64_t &number = row.number[next_number++];
                if (!beyond && from == end) {
                    number = -1;
                    break;
                }
                beyond =
                    beyond || *from > UINT32_MAX || (part.checked && value_of(part, *from) >= part.limit);
                number = beyond ? part.limit - 1 : value_of(part, *from++);
                break;
            }
            case Kind::text:
                break;
        }
    }
}

void fill_index_list(Index index, const Row &row, netsnmp_variable_list *list) {
    std::size_t next_number = 0;
    for (const IndexPart &part : index) {
        if (part.kind == Kind::serial) {
            snmp_set_var_typed_value(list, ASN_OCTET_STR, row.serial.data(), row.serial.size());
        } else if (part.kind == Kind::text) {
            snmp_set_var_typed_value(list, ASN_OCTET_STR, row.text.data(), row.text.size());
        } else {
            const std::int64_t number = part.kind == Kind::slot ? row.slot : row.number[next_number++];
            const auto sub_id = static_cast<std::uint32_t>(number + base_of(part));
            snmp_set_var_typed_integer(list, part.type, static_cast<long>(sub_id));
        }
        list = list->next_variable;
    }
}

bool parse_index_list(Index index, const netsnmp_variable_list *list, Row &row) {
    std::size_t next_number = 0;
    for (const IndexPart &part : index) {
        if (list == nullptr) {
            return false;
        }
        if (part.kind == Kind::serial) {
            if (list->val_len != serial_size) {
                return false;
            }
            row.serial = serial_at(list->val.string);
        } else if (part.kind == Kind::text) {
            row.text = {reinterpret_cast<const char *>(list->val.string), list->val_len};
        } else {
            const auto sub_id = static_cast<std::uint32_t>(*list->val.integer);
            if (!in_range(part, sub_id)) {
                return false;
            }
            const std::int64_t number = value_of(part, sub_id);
            if (part.kind == Kind::slot) {
                row.slot = static_cast<int>(number);
            } else {
                row.number[next_number++] = number;
            }
        }
        list = list->next_variable;
    }
    return true;
}

}  // namespace tarn
