// Files of name=value parameters. Each call is one whole transaction: the file is read, the command applied
// and, where it changes something, the whole file written again. The calls end their list of strings, of
// which there are at most 16, with a null pointer and return one of the codes of cf_ErrorToStr. Nothing is
// locked: callers that share a file take turns.
#ifndef TARN_MODULE_CONFIGFILE_CONFIGFILE_H
#define TARN_MODULE_CONFIGFILE_CONFIGFILE_H

#include <cstdint>

#include "module/common/exports.h"

#define TARN_NULL_ENDS_LIST __attribute__((sentinel))

// name, value, ...: creates the file where there is none. Names beyond the sixteenth are dropped silently.
TARN_EXPORT std::uint32_t cf_SetParam(const char *file, ...) TARN_NULL_ENDS_LIST;
// name, buffer of 1024 bytes, ...: buffers in front of a failure are filled.
TARN_EXPORT std::uint32_t cf_GetParam(const char *file, ...) TARN_NULL_ENDS_LIST;
// name buffer of 32 bytes, value buffer of 1024 bytes, ...: entries from start_index (0-based, in the order
// of the file) until entries or buffers run out; *count_out receives their number.
TARN_EXPORT std::uint32_t cf_GetAllParam(const char *file, int start_index, int *count_out,
                                         ...) TARN_NULL_ENDS_LIST;
// name, ...: a name that is absent ends the list without an error.
TARN_EXPORT std::uint32_t cf_DelParam(const char *file, ...) TARN_NULL_ENDS_LIST;

TARN_EXPORT const char *cf_ErrorToStr(std::uint32_t code);
// 0 set, 1 get, 2 get-all, 3 del.
TARN_EXPORT const char *CmdToStr(int cmd);

// Runs a formatted command through the shell: 0, 8 and 11 when it could not be formatted, 12 when its status
// was not zero.
TARN_EXPORT std::uint32_t DoSystemCmd(const char *format, ...) __attribute__((format(printf, 1, 2)));

#endif
