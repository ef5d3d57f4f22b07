#include "support/scripted_board.h"

#include <algorithm>
#include <condition_variable>
#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <mutex>

#include "module/start/start.h"
#include "tarn/host_services.h"
#include "wire/protocol.h"

ScriptedBoard board;

namespace {

// Logs and traps may come from another thread, which may still be at it when the process ends.
std::mutex &reports_mutex = *new std::mutex;
std::condition_variable &trap_sent = *new std::condition_variable;

int copy_out(const std::string &text, char *buffer, int size) {
    if (text.empty() || text.size() >= static_cast<std::size_t>(size)) {
        return -1;
    }
    std::strcpy(buffer, text.c_str());
    return 0;
}

}  // namespace

void ScriptedBoard::wait_for_traps(std::size_t count) {
    std::unique_lock lock(reports_mutex);
    trap_sent.wait(lock, [&] { return traps.size() >= count; });
}

Bytes make_answer(const Bytes &payload, int status) {
    Bytes answer(32 + payload.size(), 0);
    answer[14] = static_cast<std::uint8_t>(status);
    std::copy(payload.begin(), payload.end(), answer.begin() + 32);
    tarn::store_le32(&answer[20], static_cast<std::uint32_t>(answer.size()));
    return answer;
}

void ScriptedBoard::answer(int command, const Bytes &payload) {
    scripts[command] = [payload](const SentRequest &) { return make_answer(payload); };
}

void ScriptedBoard::refuse(int command, int status) {
    scripts[command] = [status](const SentRequest &) { return make_answer({}, status); };
}

void ScriptedBoard::silence(int command) {
    scripts[command] = [](const SentRequest &) { return Bytes{}; };
}

int ScriptedBoard::count(int command) const {
    int n = 0;
    for (const SentRequest &request : sent) {
        n += request.command() == command ? 1 : 0;
    }
    return n;
}

Bytes ScriptedBoard::payload_of(std::size_t request) const {
    return {sent.at(request).bytes.begin() + 32, sent.at(request).bytes.end()};
}

bool ScriptedBoard::logged(const std::string &line) const {
    for (const std::string &entry : log) {
        if (entry == line) {
            return true;
        }
    }
    return false;
}

void ModuleTest::SetUp() {
    board = ScriptedBoard();
}

void ModuleTest::TearDown() {
    cleanup_lib();
    EXPECT_EQ(board.outstanding_blocks, 0);
}

void ModuleTest::start(std::initializer_list<int> slots) {
    ASSERT_EQ(slot_initializer(16), 0);
    for (const int slot : slots) {
        ASSERT_EQ(slot_initializer(slot), 0);
    }
}

// ---- The host's services ----

int ipcSendRequest(void *request, void **answer, int timeout_ms) {
    const auto *bytes = static_cast<const std::uint8_t *>(request);
    SentRequest sent{{bytes, bytes + tarn::load_le32(bytes + 20)}, timeout_ms};
    board.sent.push_back(sent);
    const auto script = board.scripts.find(sent.command());
    const Bytes reply = script != board.scripts.end() ? script->second(sent) : Bytes{};
    if (reply.empty()) {
        return -1;
    }
    *answer = balloc(__FILE__, __LINE__, reply.size());
    std::memcpy(*answer, reply.data(), reply.size());
    return 0;
}

const char *ipcGetError(int code) {
    return code < 0 ? "no answer" : "refused";
}

void *balloc(const char *, int, size_t size) {
    if (board.balloc_fails) {
        return nullptr;
    }
    ++board.outstanding_blocks;
    return std::malloc(size);
}

void bfree(const char *, int, void *pointer) {
    board.outstanding_blocks -= pointer != nullptr ? 1 : 0;
    std::free(pointer);
}

void log_add(int level, const char *format, ...) {
    char text[1024];
    std::va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    const std::lock_guard lock(reports_mutex);
    board.log.push_back(std::to_string(level) + " " + text);
}

int check_cache(long seconds, long nanoseconds) {
    return board.everything_stale || (seconds == 0 && nanoseconds == 0) ? 1 : 0;
}

int check_cache_custom_period(long seconds, long nanoseconds, int) {
    return check_cache(seconds, nanoseconds);
}

void create_pair(oid_pair *pair, const netsnmp_variable_list *binding) {
    pair->name = binding->name;
    pair->length = binding->name_length;
}

int get_int_from_oid(const oid *name, size_t length, int position) {
    const auto index = static_cast<size_t>(position);
    return index < length ? static_cast<int>(name[index]) : 0;
}

int get_colnum_from_oid(const oid *name, size_t length) {
    return get_int_from_oid(name, length, 12);
}

int check_slot_link(int slot) {
    return board.link.count(slot) == 0 || board.link[slot] ? 1 : 0;
}

int slot_isconfigured(int slot) {
    return board.configured.count(slot) == 0 || board.configured[slot] ? 1 : 0;
}

int slot_isconfigured_candidate(int slot) {
    return slot_isconfigured(slot);
}

int check_firmware_select(int, int, int) {
    return board.firmware_select;
}

void send_acs_firmware_download_trap(int status, const char *text) {
    const std::lock_guard lock(reports_mutex);
    board.traps.emplace_back(status, text);
    trap_sent.notify_all();
}

int hub_remove_cpe_firmware_file(const char *file_name) {
    return board.remove_firmware ? board.remove_firmware(file_name) : -1;
}

void *get_table_handlers(int) {
    return nullptr;
}

int fsa_calc_md5sum(const char *, char *buffer, int size) {
    return copy_out(board.md5, buffer, size);
}

int fsa_get_tftpboot_directory(char *buffer, int size, int) {
    return copy_out(board.tftp_root, buffer, size);
}

int fsa_get_ont_firmware_tftppath(int kind, char *buffer, int size) {
    return kind == 3 ? copy_out(board.ont_firmware_path, buffer, size) : -1;
}

int fp_GetHeaderInfo(const char *path, int, int, uint32_t *packed_version, uint32_t *fourth_number,
                     uint32_t *, char **description) {
    const auto header = board.headers.find(path);
    if (header == board.headers.end()) {
        return -1;
    }
    *packed_version = header->second.packed_version;
    *fourth_number = header->second.fourth_number;
    *description = strdup(header->second.description.c_str());
    return 0;
}

const char *gpon_enum_find_name_by_type(const char *enumeration, int value) {
    static std::string name;
    name = std::string(enumeration) + " " + std::to_string(value);
    return name.c_str();
}
