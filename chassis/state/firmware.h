// Firmware of a card and of its ONTs: updates under way and updates that the card has scheduled.
#ifndef TARN_CHASSIS_STATE_FIRMWARE_H
#define TARN_CHASSIS_STATE_FIRMWARE_H

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "chassis/state/onts.h"
#include "wire/records/firmware.h"

namespace tarn::chassis {

struct Card;

inline constexpr std::size_t max_update_tasks = 1024;
inline constexpr Moment ont_update_time = 10'000;  // ms from start to the ONT's restart
inline constexpr Moment task_delay = 5'000;        // ms from scheduling to start

// What the simulated card reports as a task's status; its counter word is the progress in per cent.
namespace task_status {
inline constexpr std::uint16_t waiting = 0;
inline constexpr std::uint16_t running = 1;
inline constexpr std::uint16_t done = 2;
inline constexpr std::uint16_t failed = 3;  // there was no such ONT
}  // namespace task_status

// The ONT that a request or a task is about: by its serial, or by channel and number.
struct OntName {
    bool use_serial = false;
    Serial serial{};
    std::uint8_t channel = 0;
    std::uint32_t id = 0;

    bool operator==(const OntName &) const = default;
};

struct ScheduledUpdate {
    std::uint32_t id = 0;
    OntName ont;
    std::string file_name;
    Moment start = 0;
    bool started = false;
    bool failed = false;
};

struct Firmware {
    std::string tftp_root;  // where images are fetched from; empty: taken as they are announced
    std::vector<ScheduledUpdate> tasks;
    std::uint32_t last_task = 0;
    std::uint32_t card_updates = 0;
    std::uint32_t rule_reads = 0;  // how often the rules of automatic updates were read
};

Ont *find_ont(std::vector<Ont> &onts, const OntName &name);

// Updates the ONT from `start` on: it can be asked nothing until it has restarted.
void start_update(Card &card, Ont &ont, std::string file_name, Moment start);
// 0 to 100 per cent.
std::uint16_t update_progress(const Ont &ont, Moment now);

// Starts what is due.
void run_due_tasks(Card &card, Moment now);
RecordBytes<update_task::size> task_record(Card &card, const ScheduledUpdate &task, Moment now);

// Size in bytes and CRC-32 of an image below the TFTP root; none when it cannot be read.
struct ImageSum {
    std::uint32_t size = 0;
    std::uint32_t crc = 0;
};
std::optional<ImageSum> image_sum(const std::string &path);

}  // namespace tarn::chassis

#endif
