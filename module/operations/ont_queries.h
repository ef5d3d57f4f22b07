// Queries of a card's ONTs: the list, and per ONT its state, optical module, UNI ports and quality figures.
// Each returns a place in the slot database, refreshed where its stamp had expired, or null.
//
// The per-ONT sections belong to list positions: when a refresh shifts the list, the sections of positions
// that change hands are emptied.
#ifndef TARN_MODULE_OPERATIONS_ONT_QUERIES_H
#define TARN_MODULE_OPERATIONS_ONT_QUERIES_H

#include <cstdint>
#include <span>

#include "module/common/exports.h"
#include "module/store/ont_sections.h"

// Both refresh the same 1024 records of 106 bytes (see ont_list), each under its own stamp; they differ in
// the time-out, 10 s and 3 s.
TARN_EXPORT std::uint8_t *get_ont_list(int slot);
TARN_EXPORT std::uint8_t *get_all_ont_list(int slot);
// Rebuilds the order by serial of a slot database's ONT list; equal serials keep their list order.
TARN_EXPORT void insert_sort_ont_states(void *slot_database);
// The first position with the 8-byte serial, or 65535. The all-zero serial finds the first free position.
TARN_EXPORT int get_ont_state_id_by_serial(int slot, const std::uint8_t *serial);
TARN_EXPORT std::uint8_t *get_all_ont_state_list_by_serial(int slot, const std::uint8_t *serial);

// 170 bytes (see ont_state). Null for an ONT that is not in the list, with a log line; zeros after a failed
// request.
TARN_EXPORT std::uint8_t *get_ont_state(int slot, const std::uint8_t *serial);
// The same for a record of the ONT list; one with state code 13 gets the record as cached, without a request.
TARN_EXPORT std::uint8_t *get_ont_state_check_state(int slot, const std::uint8_t *list_record);
// 14 bytes (see ont_i2c).
TARN_EXPORT std::uint8_t *get_ont_i2c(int slot, const std::uint8_t *serial);
// 66 bytes (see ont_uni_ports).
TARN_EXPORT std::uint8_t *get_ont_uni_ports_state(int slot, const std::uint8_t *serial);
// 22 bytes and 512 bytes, as the card sends them.
TARN_EXPORT std::uint8_t *get_ont_downstream_ber(int slot, const std::uint8_t *serial);
TARN_EXPORT std::uint8_t *get_ont_services_utilization(int slot, const std::uint8_t *serial);

namespace tarn {

// A part of the order by serial: positions in the ONT list, ascending by serial as unsigned bytes, equal
// serials by position. Free positions (serial all zero) come first.
using OntOrder = std::span<const std::uint16_t>;

// From the first record whose serial is not less than the given one, and from the first that is greater.
OntOrder onts_from(const OntSections &db, const std::uint8_t *serial);
OntOrder onts_after(const OntSections &db, const std::uint8_t *serial);
// The first position of the list with the serial, or -1. The list is taken as it is.
int find_ont_position(const OntSections &db, const std::uint8_t *serial);

}  // namespace tarn

#endif
