#include "module/configfile/param_set.h"

#include <algorithm>
#include <cstring>

namespace tarn {

namespace {

constexpr std::size_t line_size = 1024;  // of a line read or written, its NUL included
constexpr std::size_t longest_name = sizeof(ParamEntry::name) - 1;
constexpr std::size_t longest_value = sizeof(ParamEntry::value) - 1;

// Cuts the text to what the field holds before its NUL.
template <std::size_t Size>
void copy_text(char (&to)[Size], std::string_view text) {
    const std::size_t length = std::min(text.size(), Size - 1);
    std::memcpy(to, text.data(), length);
    to[length] = '\0';
}

int find(const ParamSet &set, std::string_view name) {
    for (int i = 0; i < set.count; ++i) {
        if (name == set.entries[static_cast<std::size_t>(i)].name) {
            return i;
        }
    }
    return -1;
}

bool at_end(std::FILE *stream) {
    return std::ferror(stream) != 0 || std::feof(stream) != 0;
}

}  // namespace

std::uint32_t ReadAllParams(std::FILE *stream, ParamSet &set) {
    set = {};
    if (std::fseek(stream, 0, SEEK_SET) != 0) {
        return param_error::seek;
    }
    char buffer[line_size];
    while (!at_end(stream)) {
        if (std::fgets(buffer, sizeof buffer, stream) == nullptr) {
            continue;
        }
        std::string_view line = buffer;
        if (line.ends_with('\n')) {
            line.remove_suffix(1);
        }
        if (at_end(stream)) {
            break;  // a line without a line feed of its own is not whole
        }
        const std::size_t equals = line.find('=');
        if (line.starts_with('#') || equals == std::string_view::npos) {
            continue;
        }
        SetValue(set, line.substr(0, equals), line.substr(equals + 1));
    }
    return param_error::ok;
}

std::uint32_t WriteAllParams(std::FILE *stream, const ParamSet &set) {
    if (std::fseek(stream, 0, SEEK_SET) != 0) {
        return param_error::seek;
    }
    for (int i = 0; i < set.count; ++i) {
        const ParamEntry &entry = set.entries[static_cast<std::size_t>(i)];
        char line[line_size];
        const int formatted = std::snprintf(line, sizeof line, "%s=%s\n", entry.name, entry.value);
        const std::size_t length = std::min(static_cast<std::size_t>(formatted), sizeof line - 1);
        if (std::fwrite(line, 1, length, stream) < length) {
            return param_error::write;
        }
    }
    return std::fflush(stream) == 0 ? param_error::ok : param_error::write;
}

const char *GetValue(const ParamSet &set, std::string_view name) {
    const int index = find(set, name);
    return index >= 0 ? set.entries[static_cast<std::size_t>(index)].value : nullptr;
}

std::uint32_t SetValue(ParamSet &set, std::string_view name, std::string_view value) {
    name = name.substr(0, longest_name);
    int index = find(set, name);
    if (index < 0) {
        if (set.count >= max_params) {
            return param_error::too_many;
        }
        index = set.count++;
        copy_text(set.entries[static_cast<std::size_t>(index)].name, name);
    }
    copy_text(set.entries[static_cast<std::size_t>(index)].value, value);
    return param_error::ok;
}

std::uint32_t DelValue(ParamSet &set, std::string_view name) {
    const int index = find(set, name);
    if (index < 0) {
        return param_error::not_found;
    }
    const auto begin = set.entries.begin();
    std::copy(begin + index + 1, begin + set.count, begin + index);
    --set.count;
    return param_error::ok;
}

std::uint32_t SetStructParam(ParamSet &set, int n, char *const *strings) {
    for (int i = 0; i < n / 2; ++i) {
        const char *name = strings[std::ptrdiff_t{2} * i];
        const char *value = strings[std::ptrdiff_t{2} * i + 1];
        if (name == nullptr || value == nullptr) {
            return param_error::internal;
        }
        if (std::strlen(name) > longest_name) {
            return param_error::name_too_long;
        }
        if (std::strlen(value) > longest_value) {
            return param_error::value_too_long;
        }
        if (SetValue(set, name, value) != param_error::ok) {
            break;
        }
    }
    return param_error::ok;
}

// A text with its terminator; the caller's buffer holds the longest.
static void copy_text(char *to, const char *text) {
    std::memcpy(to, text, std::strlen(text) + 1);
}

std::uint32_t GetStructParam(const ParamSet &set, int n, char *const *strings) {
    for (int i = 0; i < n / 2; ++i) {
        const char *name = strings[std::ptrdiff_t{2} * i];
        char *buffer = strings[std::ptrdiff_t{2} * i + 1];
        if (name == nullptr || buffer == nullptr) {
            return param_error::internal;
        }
        if (std::strlen(name) > longest_name) {
            return param_error::name_too_long;
        }
        const char *value = GetValue(set, name);
        if (value == nullptr) {
            return param_error::not_found;
        }
        copy_text(buffer, value);
    }
    return param_error::ok;
}

std::uint32_t GetAllStructParam(const ParamSet &set, int start_index, int *count_out, int n,
                                char *const *strings) {
    *count_out = 0;
    for (int k = std::max(start_index, 0); k < set.count && *count_out < n / 2; ++k) {
        char *name = strings[std::ptrdiff_t{2} * *count_out];
        char *value = strings[std::ptrdiff_t{2} * *count_out + 1];
        if (name == nullptr || value == nullptr) {
            return param_error::internal;
        }
        const ParamEntry &entry = set.entries[static_cast<std::size_t>(k)];
        copy_text(name, entry.name);
        copy_text(value, entry.value);
        ++*count_out;
    }
    return param_error::ok;
}

std::uint32_t DelStructParam(ParamSet &set, int n, char *const *strings) {
    for (int i = 0; i < n; ++i) {
        if (strings[i] == nullptr) {
            return param_error::internal;
        }
        if (std::strlen(strings[i]) > longest_name) {
            return param_error::name_too_long;
        }
        if (DelValue(set, strings[i]) != param_error::ok) {
            break;
        }
    }
    return param_error::ok;
}

}  // namespace tarn
