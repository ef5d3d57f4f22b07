// Faults that are switched on and off while the chassis runs.
#ifndef TARN_CHASSIS_STATE_FAULTS_H
#define TARN_CHASSIS_STATE_FAULTS_H

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tarn::chassis {

enum class FaultKind {
    silent,        // the request is neither carried out nor answered
    slow,          // the answer goes out `value` ms late
    status,        // the request is refused with status `value`
    truncated,     // the answer ends after `value` bytes, and its length says so
    wrong_count,   // the answer's count says `value`; its length stays true
    wrong_length,  // the answer's header says `value` bytes; the answer itself is whole
    corrupt,       // a few of the answer's bytes are inverted, from byte `value` on
    dropped,       // the connection is closed instead of an answer
};

struct Fault {
    int id = 0;
    FaultKind kind = FaultKind::silent;
    std::uint32_t value = 0;
    std::optional<int> slot = {};               // every slot without it
    std::optional<std::uint16_t> command = {};  // every command but the link frame without it
    std::optional<std::uint32_t> times = {};    // how many requests are left to hit; without end without it
    std::uint64_t hits = 0;
};

// A kind as scenario files and the control socket write it, and the value that goes with it.
struct FaultName {
    FaultKind kind;
    std::string_view name;
    std::string_view value_name;  // empty: the kind takes none
    std::uint32_t lowest;
    std::uint32_t highest;
};
std::span<const FaultName> fault_names();
const FaultName &fault_name(FaultKind kind);

// The number under a key, absent when the key is. What it throws on a value that isn't an integer passes
// through.
using NumberOf = std::function<std::optional<std::int64_t>(std::string_view key)>;

// Builds a fault from its kind's name and the keys "slot", "command", "times" and the kind's value name.
// Throws std::invalid_argument that says what is wrong.
Fault parse_fault(std::string_view kind, const NumberOf &number);

// What the faults do to one request.
struct FaultEffects {
    bool silent = false;
    bool dropped = false;
    std::uint32_t delay_ms = 0;
    std::optional<std::uint8_t> status;
    std::optional<std::uint32_t> truncated;
    std::optional<std::uint32_t> count;
    std::optional<std::uint32_t> length;
    std::optional<std::uint32_t> corrupt;
    std::string names;  // of the faults that hit, for the log
};

class Faults {
  public:
    int add(Fault fault);
    // The number removed: of one id, of one slot's, or of all.
    std::size_t clear(std::optional<int> id, std::optional<int> slot);
    [[nodiscard]] const std::vector<Fault> &list() const { return faults_; }
    // Counts the hits; a fault that has hit as often as it may is removed.
    FaultEffects hit(int slot, std::uint16_t command);

  private:
    std::vector<Fault> faults_;
    int next_id_ = 1;
};

}  // namespace tarn::chassis

#endif
