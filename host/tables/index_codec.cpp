#include "host/tables/index_codec.h"

#include <array>
#include <limits>

#include "wire/protocol.h"

namespace tarn::host {
namespace {

constexpr oid largest_subid = std::numeric_limits<std::uint32_t>::max();
constexpr oid largest_integer = std::numeric_limits<std::int32_t>::max();
constexpr std::size_t address_octets = 4;

// Takes the next sub-identifiers off the suffix; false when there are not as many.
bool take(std::span<const oid> &suffix, std::size_t count, std::span<const oid> &taken) {
    if (suffix.size() < count) {
        return false;
    }
    taken = suffix.first(count);
    suffix = suffix.subspan(count);
    return true;
}

bool to_octets(std::span<const oid> subids, std::span<u_char> octets) {
    for (std::size_t i = 0; i < subids.size(); ++i) {
        if (subids[i] > 255) {
            return false;
        }
        octets[i] = static_cast<u_char>(subids[i]);
    }
    return true;
}

bool decode_octets(const IndexPart &part, std::span<const oid> &suffix, netsnmp_variable_list *value) {
    std::size_t length = part.type == ASN_IPADDRESS ? address_octets : part.maximum_length;
    if (part.type == ASN_OCTET_STR) {
        if (part.length_prefixed) {
            std::span<const oid> prefix;
            if (!take(suffix, 1, prefix) || prefix[0] > largest_subid) {
                return false;
            }
            length = prefix[0];
        } else if (part.minimum_length != part.maximum_length) {
            length = suffix.size();  // implied: the rest
        }
        if (length < part.minimum_length || length > part.maximum_length) {
            return false;
        }
    }
    std::array<u_char, MAX_OID_LEN> octets{};
    std::span<const oid> subids;
    return length <= octets.size() && take(suffix, length, subids) && to_octets(subids, octets) &&
           snmp_set_var_typed_value(value, part.type, octets.data(), length) == 0;
}

bool decode_number(const IndexPart &part, std::span<const oid> &suffix, netsnmp_variable_list *value) {
    std::span<const oid> subid;
    if (!take(suffix, 1, subid)) {
        return false;
    }
    if (subid[0] > (part.type == ASN_INTEGER ? largest_integer : largest_subid)) {
        return false;
    }
    if (part.is_slot && (subid[0] == 0 || subid[0] > chassis_slot::line_cards)) {
        return false;
    }
    return snmp_set_var_typed_integer(value, part.type, static_cast<long>(subid[0])) == 0;
}

bool is_octets(const IndexPart &part) {
    return part.type == ASN_OCTET_STR || part.type == ASN_IPADDRESS;
}

}  // namespace

IndexValues::IndexValues(std::span<const IndexPart> parts) : parts_(parts.begin(), parts.end()) {
    for (const IndexPart &part : parts_) {
        snmp_varlist_add_variable(&list_, nullptr, 0, part.type, nullptr, 0);
    }
}

bool IndexValues::decode(std::span<const oid> suffix) {
    netsnmp_variable_list *value = list_;
    for (const IndexPart &part : parts_) {
        if (!(is_octets(part) ? decode_octets(part, suffix, value) : decode_number(part, suffix, value))) {
            return false;
        }
        value = value->next_variable;
    }
    return suffix.empty();
}

bool encode_index(std::span<const IndexPart> parts, const netsnmp_variable_list *values,
                  std::vector<std::uint32_t> &suffix) {
    for (const IndexPart &part : parts) {
        if (values == nullptr) {
            return false;
        }
        if (is_octets(part)) {
            const bool fits = part.type == ASN_IPADDRESS ? values->val_len == address_octets
                                                         : values->val_len >= part.minimum_length &&
                                                               values->val_len <= part.maximum_length;
            if (!fits) {
                return false;
            }
            if (part.length_prefixed) {
                suffix.push_back(static_cast<std::uint32_t>(values->val_len));
            }
            suffix.insert(suffix.end(), values->val.string, values->val.string + values->val_len);
        } else {
            if (values->val.integer == nullptr || values->val_len < sizeof(long)) {
                return false;
            }
            suffix.push_back(static_cast<std::uint32_t>(*values->val.integer));
        }
        values = values->next_variable;
    }
    return true;
}

}  // namespace tarn::host
