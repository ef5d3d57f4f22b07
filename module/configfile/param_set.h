// The in-memory image of a parameter file, and the commands applied to it.
#ifndef TARN_MODULE_CONFIGFILE_PARAM_SET_H
#define TARN_MODULE_CONFIGFILE_PARAM_SET_H

#include <array>
#include <cstdint>
#include <cstdio>
#include <string_view>

namespace tarn {

inline constexpr int max_params = 16;

// The longest texts are 31 and 1023 characters; a NUL follows.
struct ParamEntry {
    char name[32];
    char value[1024];
};

// Entries stand in the order in which their names were first met, without gaps.
struct ParamSet {
    std::array<ParamEntry, max_params> entries;
    std::int32_t count;
};

namespace param_error {
inline constexpr std::uint32_t ok = 0;
inline constexpr std::uint32_t wrong_parameters = 1;
inline constexpr std::uint32_t open_for_reading = 2;
inline constexpr std::uint32_t open_for_writing = 3;
inline constexpr std::uint32_t seek = 4;
inline constexpr std::uint32_t write = 5;
inline constexpr std::uint32_t too_many = 6;
inline constexpr std::uint32_t not_found = 7;
inline constexpr std::uint32_t internal = 8;
inline constexpr std::uint32_t name_too_long = 9;
inline constexpr std::uint32_t value_too_long = 10;
inline constexpr std::uint32_t no_memory = 11;
inline constexpr std::uint32_t command_failed = 12;
}  // namespace param_error

// Whole-file read and write. A last line without a line feed is not taken; lines that would add a 17th name
// are dropped. A written line is cut to 1023 characters, its line feed included.
std::uint32_t ReadAllParams(std::FILE *stream, ParamSet &set);
std::uint32_t WriteAllParams(std::FILE *stream, const ParamSet &set);

// Null when the set has no such name.
const char *GetValue(const ParamSet &set, std::string_view name);
// Replaces or appends; ok or too_many. Longer texts are cut to what an entry holds.
std::uint32_t SetValue(ParamSet &set, std::string_view name, std::string_view value);
// ok or not_found.
std::uint32_t DelValue(ParamSet &set, std::string_view name);

// Apply a list of `n` strings to the set: name and value pairs, name and buffer pairs, pairs of buffers of 32
// and 1024 bytes, names.
// A set that is full, or a name that is absent, ends the list without an error.
std::uint32_t SetStructParam(ParamSet &set, int n, char *const *strings);
std::uint32_t GetStructParam(const ParamSet &set, int n, char *const *strings);
std::uint32_t GetAllStructParam(const ParamSet &set, int start_index, int *count_out, int n,
                                char *const *strings);
std::uint32_t DelStructParam(ParamSet &set, int n, char *const *strings);

}  // namespace tarn

#endif
