#include "host/control/card_trace.h"

#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <ctime>
#include <nlohmann/json.hpp>

#include "host/board/ipc_client.h"
#include "tarn/host_services.h"
#include "wire/command_names.h"

namespace tarn::host {
namespace {

using Json = nlohmann::ordered_json;
using Bytes = std::vector<std::uint8_t>;

// The local time of day to the millisecond.
std::string time_of_day() {
    timespec now{};
    (void)clock_gettime(CLOCK_REALTIME, &now);
    tm parts{};
    (void)localtime_r(&now.tv_sec, &parts);
    std::array<char, 32> text{};
    const std::size_t length = std::strftime(text.data(), text.size(), "%H:%M:%S.", &parts);
    const std::string milliseconds = std::to_string(1000 + now.tv_nsec / 1'000'000);
    return std::string(text.data(), length) + milliseconds.substr(1);
}

std::string hexadecimal(const std::uint8_t *bytes, std::size_t size) {
    constexpr std::string_view digits = "0123456789abcdef";
    std::string text;
    for (std::size_t i = 0; i < size; ++i) {
        text += {digits[bytes[i] >> 4], digits[bytes[i] & 0x0F]};
    }
    return text;
}

// What every line begins with.
Json begin_line(const Exchange &exchange, const char *what) {
    const std::uint8_t *header = exchange.request.data();
    const auto command = static_cast<std::uint16_t>(load_integer(header, board_header::command));
    const auto destination = static_cast<std::uint8_t>(load_integer(header, board_header::destination));
    return {{"time", time_of_day()},
            {"slot", exchange.slot + 1},
            {"what", what},
            {"name", command_name(command, destination)},
            {"command", command}};
}

std::string release_of(const std::uint8_t *header) {
    std::string text;
    for (const Field &field : {board_header::version_1, board_header::version_2, board_header::version_3,
                               board_header::version_4, board_header::version_5}) {
        text += (text.empty() ? "" : ".") + std::to_string(load_integer(header, field));
    }
    return text;
}

void add_fields(Json &line, const Bytes &request) {
    const auto command = static_cast<std::uint16_t>(load_integer(request.data(), board_header::command));
    const auto destination =
        static_cast<std::uint8_t>(load_integer(request.data(), board_header::destination));
    const CommandName *entry = find_command_name(command, destination);
    if (entry == nullptr) {
        return;
    }
    for (const RequestField &named : entry->fields) {
        const Field &field = named.field;
        if (std::size_t{field.offset} + field.size > request.size()) {
            continue;
        }
        line[std::string(named.name)] = field.encoding == Encoding::octets
                                            ? Json(hexadecimal(request.data() + field.offset, field.size))
                                            : Json(load_integer(request.data(), field));
    }
}

}  // namespace

CardTrace::~CardTrace() {
    for (const Reader &reader : readers_) {
        (void)close(reader.connection);
    }
}

bool CardTrace::take_over(const std::string &line, int connection) {
    const Json request = Json::parse(line, nullptr, false);
    if (!request.is_object() || request.size() != 2 || request.value("do", Json()) != "trace" ||
        readers_.size() >= most_readers) {
        return false;
    }
    const Json slot = request.value("slot", Json());
    if (!slot.is_number_integer() || slot < 1 || slot > IpcClient::slots) {
        return false;
    }
    readers_.push_back({connection, slot.get<int>() - 1});
    give(readers_.back(), Json{{"trace", slot}}.dump() + '\n');
    return true;
}

void CardTrace::sent(const Exchange &exchange) {
    if (readers_.empty()) {
        return;
    }
    const std::uint8_t *header = exchange.request.data();
    Json line = begin_line(exchange, exchange.probe ? "probe" : "request");
    line["length"] = load_integer(header, board_header::length);
    line["destination"] = load_integer(header, board_header::destination);
    line["release"] = release_of(header);
    add_fields(line, exchange.request);
    show(exchange.slot, line.dump() + '\n');
}

void CardTrace::finished(const Exchange &exchange) {
    if (readers_.empty()) {
        return;
    }
    Json line = begin_line(exchange, exchange.result == 0 ? "answer" : "failure");
    if (exchange.result == 0) {
        const auto status = static_cast<int>(load_integer(exchange.answer.data(), board_header::status));
        line["length"] = exchange.answer.size();
        line["status"] = status;
        if (status != 0) {
            line["reason"] = ipcGetError(status);
        }
    } else {
        line["reason"] = ipcGetError(exchange.result);
    }
    const auto taken = std::chrono::duration_cast<std::chrono::microseconds>(
        std::chrono::steady_clock::now() - exchange.started);
    line["duration_ms"] = static_cast<double>(taken.count()) / 1000;
    show(exchange.slot, line.dump() + '\n');
}

void CardTrace::show(int slot, const std::string &line) {
    for (Reader &reader : readers_) {
        if (reader.slot == slot) {
            give(reader, line);
        }
    }
}

void CardTrace::give(Reader &reader, const std::string &line) {
    if (catch_up(reader)) {
        write(reader, line);
    } else {
        ++reader.dropped;
    }
}

// The socket's own buffer is all that is kept for a reader, with the rest of one line.
bool CardTrace::catch_up(Reader &reader) {
    if (!reader.rest.empty()) {
        write(reader, std::exchange(reader.rest, {}));
    }
    if (reader.rest.empty() && reader.dropped > 0) {
        write(reader, Json{{"dropped", std::exchange(reader.dropped, 0)}}.dump() + '\n');
    }
    return reader.rest.empty();
}

void CardTrace::write(Reader &reader, std::string_view text) {
    const ssize_t taken = send(reader.connection, text.data(), text.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
    if (taken < 0 && errno != EAGAIN && errno != EINTR) {
        reader.gone = true;
        return;
    }
    reader.rest = text.substr(static_cast<std::size_t>(std::max<ssize_t>(taken, 0)));
}

void CardTrace::tidy() {
    for (auto reader = readers_.begin(); reader != readers_.end();) {
        (void)catch_up(*reader);
        char byte = 0;
        if (reader->gone || recv(reader->connection, &byte, 1, MSG_DONTWAIT) == 0) {
            (void)close(reader->connection);
            reader = readers_.erase(reader);
        } else {
            ++reader;
        }
    }
}

}  // namespace tarn::host
