// The ONT configuration records of a slot: 532 records, found by serial, written one by one. Records are as
// ont_config describes them.
#ifndef TARN_MODULE_CONFIG_ONT_CONFIG_STORE_H
#define TARN_MODULE_CONFIG_ONT_CONFIG_STORE_H

#include <cstdint>

#include "module/common/exports.h"
#include "module/store/ont_config_sections.h"
#include "wire/records/ont_config.h"

// The slot's records in store order, refreshed from its image when they have expired. Null for a slot
// without a database.
TARN_EXPORT std::uint8_t *get_all_ont_config(int slot);
// Rebuilds the view of a slot database's records in the order of their serials; equal serials keep their
// store order.
TARN_EXPORT void insert_sort_ont_configs(void *slot_database);
// Store index of the first record with this serial, in use or not; 65535: none.
TARN_EXPORT int get_ont_config_index_by_serial(int slot, const std::uint8_t *serial);
// The first record with this serial that is in use, with its store index in *index when asked for; null and
// -1: none.
TARN_EXPORT std::uint8_t *get_all_ont_config_by_serial(int slot, const std::uint8_t *serial, int *index);
// Makes a new record: in use, with the defaults, without a serial.
TARN_EXPORT void init_ont_config(std::uint8_t *record);
// Writes a record to channel 0-7 and ONT id 0-63 of a card. Its first word is replaced by what the card keeps
// there. 0, or -1 when the host refuses it, the position is wrong (logged) or the card does not answer.
TARN_EXPORT int set_ont_config_new(int slot, int channel, int id, const std::uint8_t *record);
// Marks the record with this serial as free, on the card too. 0, or -1 also where the card's own records have
// not come since the last write (logged).
TARN_EXPORT int delete_ont_config(int slot, const std::uint8_t *serial);

namespace tarn {

// Refreshes a slot's records; whether one may be changed and written. False, logged, unless the card's own
// have come since the last write.
bool may_edit_ont_configs(int slot, const char *operation);

inline std::uint8_t *ont_config_at(OntConfigSections &db, int index) {
    return db.ont_configs[static_cast<std::size_t>(index)].data();
}
inline bool ont_in_use(const std::uint8_t *record) {
    return load_integer(record, ont_config::in_use) != 0;
}

// Positions in the sorted view of refreshed records: of the first whose serial is not less, and of the first
// whose serial is greater; 532 after the last.
int first_ont_not_below(const OntConfigSections &db, const std::uint8_t *serial);
int first_ont_above(const OntConfigSections &db, const std::uint8_t *serial);

}  // namespace tarn

#endif
