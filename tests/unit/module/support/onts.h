// ONT lists as a card answers them, and the identifiers of ONT rows.
#ifndef TARN_TESTS_UNIT_MODULE_SUPPORT_ONTS_H
#define TARN_TESTS_UNIT_MODULE_SUPPORT_ONTS_H

#include "support/scripted_board.h"
#include "support/snmp_calls.h"
#include "wire/bytes.h"

// The payload of a list of these serials, with state code 7 at bytes 68-69 of each record. Record i begins at
// byte 5 + 106 i.
inline Bytes list_of(const std::vector<std::string> &serials) {
    Bytes payload(5 + 106 * serials.size(), 0);
    payload[0] = 255;
    tarn::store_le32(&payload[1], static_cast<std::uint32_t>(serials.size()));
    for (std::size_t i = 0; i < serials.size(); ++i) {
        std::copy(serials[i].begin(), serials[i].end(), payload.begin() + static_cast<long>(5 + 106 * i));
        payload[5 + 106 * i + 68] = 7;
    }
    return payload;
}

inline const std::uint8_t *serial(const char *text) {
    return reinterpret_cast<const std::uint8_t *>(text);
}

// table.1.column.(slot+1).8.serial[.rest]
inline Oid ont_oid(const Oid &table, oid column, oid slot_number, const std::string &serial,
                   const std::vector<oid> &rest = {}) {
    Oid name = table;
    name.insert(name.end(), {1, column, slot_number, 8});
    for (const char byte : serial) {
        name.push_back(static_cast<unsigned char>(byte));
    }
    name.insert(name.end(), rest.begin(), rest.end());
    return name;
}

// The identifiers of several rows of a column.
inline std::vector<Oid> ont_oids(const Oid &table, oid column, oid slot_number,
                                 const std::vector<std::pair<std::string, std::vector<oid>>> &rows) {
    std::vector<Oid> names;
    for (const auto &[serial, rest] : rows) {
        names.push_back(ont_oid(table, column, slot_number, serial, rest));
    }
    return names;
}

#endif
