// What the chassis has been asked: the last requests, and how often each was sent.
#ifndef TARN_CHASSIS_REQUESTS_REQUEST_LOG_H
#define TARN_CHASSIS_REQUESTS_REQUEST_LOG_H

#include <cstdint>
#include <deque>
#include <map>
#include <string>
#include <vector>

namespace tarn::chassis {

enum class Outcome { answered, silent, dropped };

struct RequestEntry {
    std::uint64_t sequence = 0;  // from 1, never reused
    std::uint64_t time_ms = 0;   // of chassis time
    int slot = 0;
    std::uint16_t command = 0;
    std::uint8_t destination = 0;  // as on the wire
    std::string name = {};
    std::uint32_t length = 0;
    std::vector<std::uint8_t> payload = {};
    Outcome outcome = Outcome::answered;
    std::uint8_t status = 0;  // of the answer
};

class RequestLog {
  public:
    static constexpr std::size_t max_entries = 8192;
    static constexpr std::size_t max_payload_bytes = std::size_t{16} * 1024 * 1024;

    // Gives the entry its sequence number; the oldest entries make room for it.
    const RequestEntry &add(RequestEntry entry);
    // Forgets entries and counts; sequence numbers go on.
    void reset();
    [[nodiscard]] const std::deque<RequestEntry> &entries() const { return entries_; }
    // By slot and command.
    [[nodiscard]] const std::map<std::pair<int, std::uint16_t>, std::uint64_t> &counts() const {
        return counts_;
    }

  private:
    std::deque<RequestEntry> entries_;
    std::map<std::pair<int, std::uint16_t>, std::uint64_t> counts_;
    std::uint64_t next_sequence_ = 1;
    std::size_t payload_bytes_ = 0;
};

}  // namespace tarn::chassis

#endif
