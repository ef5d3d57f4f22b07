#include "chassis/state/firmware.h"

#include <zlib.h>

#include <algorithm>
#include <cstring>
#include <fstream>

#include "chassis/state/card.h"
#include "wire/records/firmware.h"
#include "wire/records/ont.h"

namespace tarn::chassis {

Ont *find_ont(std::vector<Ont> &onts, const OntName &name) {
    return name.use_serial ? find_ont(onts, name.serial) : find_ont(onts, name.channel, name.id);
}

void start_update(Card &card, Ont &ont, std::string file_name, Moment start) {
    ont.update = {std::move(file_name), start, start + ont_update_time, ont.update.count + 1};
    reregister(ont, ont.update.done, card.reregister_time, card.start_time);
}

std::uint16_t update_progress(const Ont &ont, Moment now) {
    if (now >= ont.update.done) {
        return 100;
    }
    const Moment passed = now > ont.update.start ? now - ont.update.start : 0;
    return static_cast<std::uint16_t>(passed * 100 / ont_update_time);
}

void run_due_tasks(Card &card, Moment now) {
    for (ScheduledUpdate &task : card.firmware.tasks) {
        if (task.started || now < task.start) {
            continue;
        }
        task.started = true;
        if (Ont *ont = find_ont(card.onts, task.ont)) {
            start_update(card, *ont, task.file_name, task.start);
        } else {
            task.failed = true;
        }
    }
}

RecordBytes<update_task::size> task_record(Card &card, const ScheduledUpdate &task, Moment now) {
    RecordBytes<update_task::size> record{};
    put(record, update_task::id, task.id);
    put(record, update_task::use_serial, task.ont.use_serial ? 1 : 0);
    std::memcpy(record.data() + update_task::serial.offset, task.ont.serial.data(), serial_size);
    put(record, update_task::channel, task.ont.channel);
    put(record, update_task::ont_id, task.ont.id);
    store_text(record.data(), update_task::file_name, task.file_name);
    const Ont *ont = find_ont(card.onts, task.ont);
    if (task.failed || (task.started && ont == nullptr)) {
        put(record, update_task::status, task_status::failed);
    } else if (task.started) {
        const std::uint16_t progress = update_progress(*ont, now);
        put(record, update_task::status, progress < 100 ? task_status::running : task_status::done);
        put(record, update_task::counter, progress);
    }
    return record;
}

std::optional<ImageSum> image_sum(const std::string &path) {
    std::ifstream file(path, std::ios::binary);
    ImageSum sum;
    std::array<char, 4096> block{};
    while (file) {
        file.read(block.data(), block.size());
        const auto count = static_cast<uInt>(file.gcount());
        sum.size += count;
        sum.crc =
            static_cast<std::uint32_t>(crc32(sum.crc, reinterpret_cast<const Bytef *>(block.data()), count));
    }
    return file.eof() ? std::optional(sum) : std::nullopt;
}

}  // namespace tarn::chassis
