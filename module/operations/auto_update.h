// The rules of the automatic ONT firmware updates, one list for the chassis, kept in a file that the line
// cards read.
#ifndef TARN_MODULE_OPERATIONS_AUTO_UPDATE_H
#define TARN_MODULE_OPERATIONS_AUTO_UPDATE_H

#include "module/common/exports.h"
#include "tarn/firmware_records.h"

// The list of the profiles database, loaded again from the file when that is due. Null when the file could
// not be opened or there is no database; the list is as it was then.
TARN_EXPORT AutoUpdateEntry **get_ont_auto_update_entries(void);
// A new entry, which the caller frees with bfree; null for a line of fewer than five fields.
TARN_EXPORT AutoUpdateEntry *parse_entry(const char *line);
// Change the list, not the file: 0, or -1 when it is full or has no such entry.
TARN_EXPORT int add_ont_autoupdate_entry(const AutoUpdateEntry *entry);
TARN_EXPORT int delete_ont_autoupdate_entry(const char *description);
// Replaces the file by the list; 0 or -1, and then the file is as it was.
TARN_EXPORT int generate_ont_autoupdate_file(void);
// Asks the card in the first slot to read the file again; 0 or -1.
TARN_EXPORT int parse_ont_autoupdate_file(void);

// Whether automatic updates are switched on: the number in their file, 0 without one.
TARN_EXPORT int get_ont_fw_autoupdate(void);
// The same without a log line.
TARN_EXPORT int get_ont_fw_autoupdate_enabled_old(void);
// 0 or -1.
TARN_EXPORT int set_ont_fw_autoupdate_enabled(int value);

#endif
