#include "host/board/ont_watch.h"

#include <algorithm>
#include <utility>

#include "wire/records/ont.h"

namespace tarn::host {
namespace {

constexpr std::size_t selector_at = board_header::size;
constexpr std::uint8_t all_channels = 255;
constexpr Field count = u32_at(33);
constexpr std::size_t first_record = 37;

std::size_t stated_records(const std::vector<std::uint8_t> &answer) {
    return static_cast<std::size_t>(std::min<std::int64_t>(load_integer(answer.data(), count), max_onts));
}

// A list that is cut says nothing of those that it does not get to.
bool is_list_of_all(const std::vector<std::uint8_t> &request, const std::vector<std::uint8_t> &answer) {
    return request.size() > selector_at && request[selector_at] == all_channels &&
           load_integer(request.data(), board_header::command) == command::get_ont_list &&
           answer.size() >= first_record &&
           load_integer(answer.data(), board_header::status) == board_status::success &&
           answer.size() >= first_record + stated_records(answer) * ont_list::size;
}

std::map<OntSerial, int> working_onts(const std::vector<std::uint8_t> &answer) {
    std::map<OntSerial, int> working;
    for (std::size_t i = 0; i < stated_records(answer); ++i) {
        const std::uint8_t *record = answer.data() + first_record + i * ont_list::size;
        if (load_integer(record, ont_list::state_code) == ont_list::state_working) {
            OntSerial serial{};
            std::copy_n(record + ont_list::serial.offset, serial.size(), serial.begin());
            working[serial] = static_cast<int>(load_integer(record, ont_list::channel));
        }
    }
    return working;
}

}  // namespace

std::vector<OntChange> OntWatch::take(int number, const std::vector<std::uint8_t> &request,
                                      const std::vector<std::uint8_t> &answer) {
    std::vector<OntChange> changes;
    if (number >= chassis_slot::line_cards || !is_list_of_all(request, answer)) {
        return changes;
    }
    Slot &slot = slots_[static_cast<std::size_t>(number)];
    Channels working = working_onts(answer);
    for (const auto &[serial, channel] : slot.working) {
        if (!working.contains(serial) && slot.lost.size() < static_cast<std::size_t>(max_onts)) {
            slot.lost[serial] = channel;
            changes.push_back({serial, channel, true});
        }
    }
    for (const auto &[serial, channel] : working) {
        if (slot.lost.erase(serial) > 0) {
            changes.push_back({serial, channel, false});
        }
    }
    slot.working = std::move(working);
    if (!std::exchange(slot.known, true)) {
        changes.clear();
    }
    return changes;
}

}  // namespace tarn::host
