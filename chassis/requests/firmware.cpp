// Firmware updates of the card and of its ONTs, and their schedule.
#include "chassis/requests/selectors.h"
#include "wire/records/ont.h"

namespace tarn::chassis {
namespace {

// The request that updates one ONT.
constexpr Field update_channel = u8_at(32);
constexpr Field update_ont = u32_at(33);
constexpr Field update_file = text_at(37, 128);
constexpr Field update_path = text_at(165, 256);
constexpr Field update_size = u32_at(421);
constexpr Field update_crc = u32_at(425);

Refusal update_card(Exchange &exchange) {
    ++exchange.card.firmware.card_updates;
    reregister_onts(exchange.card, -1, exchange.now);
    return {};
}

// Whether the image is what the request announces. Without a file name the card has the image already.
Refusal check_image(const Exchange &exchange) {
    const std::uint8_t *request = exchange.request.data();
    const std::string file(load_text(request, update_file));
    const std::string &root = exchange.card.firmware.tftp_root;
    if (file.empty() || root.empty()) {
        return {};
    }
    const std::string path = root + "/" + std::string(load_text(request, update_path)) + "/" + file;
    const auto sum = image_sum(path);
    if (!sum) {
        return {board_status::no_such_item, "cannot fetch " + path};
    }
    if (sum->size != load_integer(request, update_size) || sum->crc != load_integer(request, update_crc)) {
        return {board_status::malformed, "size or CRC-32 is not that of " + path};
    }
    return {};
}

Refusal update_one_ont(Exchange &exchange) {
    const std::uint8_t *request = exchange.request.data();
    const auto channel = static_cast<std::uint8_t>(load_integer(request, update_channel));
    if (!is_channel(channel)) {
        return no_such_channel(channel);
    }
    Ont *ont =
        find_ont(exchange.card.onts, channel, static_cast<std::uint32_t>(load_integer(request, update_ont)));
    if (ont == nullptr) {
        return no_such_ont();
    }
    if (exchange.now < ont->update.done) {
        return {board_status::busy, "the ONT is being updated"};
    }
    Refusal refusal = check_image(exchange);
    if (refusal.status == board_status::success) {
        start_update(exchange.card, *ont, std::string(load_text(request, update_file)), exchange.now);
    }
    return refusal;
}

// A serial that is not zero names the ONT; otherwise the channel after it and the ONT's number do.
OntName requested_name(const Exchange &exchange) {
    const auto request = exchange.request;
    OntName name;
    std::copy_n(request.begin() + payload, serial_size, name.serial.begin());
    name.use_serial = name.serial != Serial{};
    name.channel = request[payload + 8];
    name.id = load_le32(request.data() + payload + 9);
    return name;
}

Refusal add_task(Exchange &exchange) {
    Firmware &firmware = exchange.card.firmware;
    const OntName ont = requested_name(exchange);
    if (!is_channel(ont.channel)) {
        return no_such_channel(ont.channel);
    }
    if (firmware.tasks.size() >= max_update_tasks) {
        return {board_status::busy, "the schedule is full"};
    }
    firmware.tasks.push_back({.id = ++firmware.last_task,
                              .ont = ont,
                              .file_name = std::string(load_text(exchange.request.data(), text_at(47, 128))),
                              .start = exchange.now + task_delay});
    return {};
}

Refusal delete_task(Exchange &exchange) {
    std::vector<ScheduledUpdate> &tasks = exchange.card.firmware.tasks;
    const OntName ont = requested_name(exchange);
    const auto found =
        std::ranges::find_if(tasks, [&](const ScheduledUpdate &task) { return task.ont == ont; });
    if (found == tasks.end()) {
        return {board_status::no_such_item, "no update of this ONT is scheduled"};
    }
    tasks.erase(found);
    return {};
}

// The answer repeats the payload; then the count and the tasks.
Refusal get_tasks(Exchange &exchange) {
    append(exchange.answer, exchange.request.subspan(payload));
    append_le32(exchange.answer, static_cast<std::uint32_t>(exchange.card.firmware.tasks.size()));
    for (const ScheduledUpdate &task : exchange.card.firmware.tasks) {
        append(exchange.answer, task_record(exchange.card, task, exchange.now));
    }
    return {};
}

Refusal read_rules(Exchange &exchange) {
    ++exchange.card.firmware.rule_reads;
    return {};
}

constexpr RequestRule rules[] = {
    {command::update_olt_firmware, destination::services, 32, update_card},
    {command::update_ont_firmware, destination::services, 438, update_one_ont},
    {command::add_update_scheduler, destination::services, 175, add_task},
    {command::delete_update_scheduler, destination::services, 47, delete_task},
    {command::get_update_scheduler, destination::services, 34, get_tasks, u32_at(34)},
    {command::parse_auto_update_entries, destination::services, 32, read_rules},
};

}  // namespace

std::span<const RequestRule> firmware_requests() {
    return rules;
}

}  // namespace tarn::chassis
