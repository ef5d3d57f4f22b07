#include "module/configfile/configfile.h"

#include <array>
#include <cstdarg>
#include <cstdlib>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>

#include "module/common/files.h"
#include "module/common/shell.h"
#include "module/configfile/param_set.h"

using namespace tarn;

namespace {

enum ParamCmd : int { cmd_set, cmd_get, cmd_get_all, cmd_del };

constexpr std::array<const char *, 4> cmd_names = {"set", "get", "get-all", "del"};

constexpr std::array<const char *, 13> error_texts = {
    "OK",
    "WRONG_INCOMMING_PARAMETERS",
    "FILE_OPEN_FOR_READING_FAILED",
    "FILE_OPEN_FOR_WRITING_FAILED",
    "FSEEK_FAILED",
    "FWRITE_FAILED",
    "TOO_MANY_PARAMS",
    "PARAM_NOT_FOUND",
    "INTERNAL_ERROR",
    "TOO_LENGTH_NAME",
    "TOO_LENGTH_VALUE",
    "MALLOC_FAILED",
    "SYSTEM_CMD_FAILED",
};

// The strings of a call, without the null that ends them.
struct Strings {
    static constexpr int capacity = 16;
    std::array<char *, capacity> list{};
    int count = 0;

    // False when there are more than the list holds.
    bool collect(std::va_list arguments) {
        for (;;) {
            char *string = va_arg(arguments, char *);
            if (string == nullptr) {
                return true;
            }
            if (count == capacity) {
                return false;
            }
            list[static_cast<std::size_t>(count++)] = string;
        }
    }
};

struct CloseFile {
    void operator()(std::FILE *stream) const { static_cast<void>(std::fclose(stream)); }
};
using File = std::unique_ptr<std::FILE, CloseFile>;

File open_file(const char *file, const char *mode) {
    return File(std::fopen(file, mode));
}

// The repair command runs with the rights of root: only on a path that means what it says.
bool may_repair(std::string_view file) {
    return file.find_first_of("\r\n") == std::string_view::npos && file != ".." && !file.starts_with("../") &&
           !file.ends_with("/..") && file.find("/../") == std::string_view::npos;
}

// The set as a file's text; an error code where there is no memory for it.
std::uint32_t text_of(const ParamSet &set, std::string &text) {
    char *bytes = nullptr;
    std::size_t size = 0;
    File stream(open_memstream(&bytes, &size));
    const std::uint32_t error =
        stream != nullptr ? WriteAllParams(stream.get(), set) : param_error::no_memory;
    stream.reset();
    text.assign(bytes != nullptr ? bytes : "", size);
    std::free(bytes);
    return error;
}

std::uint32_t write_back(const char *file, const ParamSet &set) {
    std::string text;
    const std::uint32_t error = text_of(set, text);
    if (error != param_error::ok) {
        return error;
    }
    Written written = replace_file(file, text);
    if (written == Written::not_opened && may_repair(file)) {
        const std::string word = shell_word(file);
        DoSystemCmd("sudo touch %s; sudo chmod 777 %s", word.c_str(), word.c_str());
        written = replace_file(file, text);
    }
    if (written == Written::whole) {
        return param_error::ok;
    }
    return written == Written::not_opened ? param_error::open_for_writing : param_error::write;
}

std::uint32_t apply(ParamCmd cmd, ParamSet &set, int start_index, int *count_out, const Strings &strings) {
    switch (cmd) {
        case cmd_set:
            return SetStructParam(set, strings.count, strings.list.data());
        case cmd_get:
            return GetStructParam(set, strings.count, strings.list.data());
        case cmd_get_all:
            return GetAllStructParam(set, start_index, count_out, strings.count, strings.list.data());
        case cmd_del:
            return DelStructParam(set, strings.count, strings.list.data());
    }
    return param_error::ok;
}

std::uint32_t DoCmd(ParamCmd cmd, const char *file, int start_index, int *count_out, std::va_list arguments) {
    Strings strings;
    if (!strings.collect(arguments)) {
        return param_error::internal;
    }
    if (cmd != cmd_del && strings.count % 2 != 0) {
        return param_error::wrong_parameters;
    }
    const bool changes = cmd == cmd_set || cmd == cmd_del;
    // A download's thread changes files, too: what it reads and writes back must not take another's change.
    static std::mutex changing;
    std::unique_lock alone(changing, std::defer_lock);
    if (changes) {
        alone.lock();
    }
    File stream = open_file(file, "r");
    if (stream == nullptr && cmd != cmd_set) {
        return param_error::open_for_reading;
    }
    ParamSet set{};
    if (stream != nullptr) {
        const std::uint32_t error = ReadAllParams(stream.get(), set);
        stream.reset();
        if (error != param_error::ok) {
            return error;
        }
    }
    const std::uint32_t error = apply(cmd, set, start_index, count_out, strings);
    return error == param_error::ok && changes ? write_back(file, set) : error;
}

}  // namespace

std::uint32_t cf_SetParam(const char *file, ...) {
    std::va_list arguments;
    va_start(arguments, file);
    const std::uint32_t error = DoCmd(cmd_set, file, 0, nullptr, arguments);
    va_end(arguments);
    return error;
}

std::uint32_t cf_GetParam(const char *file, ...) {
    std::va_list arguments;
    va_start(arguments, file);
    const std::uint32_t error = DoCmd(cmd_get, file, 0, nullptr, arguments);
    va_end(arguments);
    return error;
}

std::uint32_t cf_GetAllParam(const char *file, int start_index, int *count_out, ...) {
    *count_out = 0;
    std::va_list arguments;
    va_start(arguments, count_out);
    const std::uint32_t error = DoCmd(cmd_get_all, file, start_index, count_out, arguments);
    va_end(arguments);
    return error;
}

std::uint32_t cf_DelParam(const char *file, ...) {
    std::va_list arguments;
    va_start(arguments, file);
    const std::uint32_t error = DoCmd(cmd_del, file, 0, nullptr, arguments);
    va_end(arguments);
    return error;
}

const char *cf_ErrorToStr(std::uint32_t code) {
    return code < error_texts.size() ? error_texts[code] : "__unknown_error__";
}

const char *CmdToStr(int cmd) {
    const auto index = static_cast<unsigned>(cmd);
    return index < cmd_names.size() ? cmd_names[index] : "__unknown_cmd__";
}

std::uint32_t DoSystemCmd(const char *format, ...) {
    std::va_list measured;
    va_start(measured, format);
    std::va_list arguments;
    va_copy(arguments, measured);
    const int length = std::vsnprintf(nullptr, 0, format, measured);
    va_end(measured);
    const std::size_t size = static_cast<std::size_t>(length < 0 ? 0 : length) + 1;
    const std::unique_ptr<char, decltype(&std::free)> command(static_cast<char *>(std::calloc(1, size)),
                                                              &std::free);
    const int written = command != nullptr ? std::vsnprintf(command.get(), size, format, arguments) : -1;
    va_end(arguments);
    if (command == nullptr) {
        return param_error::no_memory;
    }
    if (length < 0 || written != length) {
        return param_error::internal;
    }
    return std::system(command.get()) != 0 ? param_error::command_failed : param_error::ok;
}
