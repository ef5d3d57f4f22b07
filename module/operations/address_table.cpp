#include "module/operations/address_table.h"

#include <algorithm>
#include <cstdio>
#include <numeric>

#include "module/common/log.h"
#include "module/common/serial.h"
#include "module/store/address_sections.h"
#include "module/store/cached_query.h"
#include "wire/records/address.h"

using namespace tarn;

namespace {

constexpr std::size_t initial_bytes = 1024;
constexpr std::size_t answer_count = payload + 1;
constexpr std::size_t answer_entries = answer_count + 2;
constexpr Query addresses{command::get_global_ont_address_table, destination::services, usual_pace,
                          &AddressSections::addresses_stamp};
constexpr Selector<15> of_every_channel{255};
constexpr int text_head = 2;          // "v1"
constexpr int text_record_size = 56;  // characters

// The sorted positions lie in the database as bytes; they are aligned, as realloc's memory is.
std::uint32_t *sorted_positions(const AddressSections &db) {
    return reinterpret_cast<std::uint32_t *>(static_cast<void *>(db.addresses_by_serial.bytes));
}

void sort_entries(AddressSections &db) {
    if (db.address_count == 0) {
        return;
    }
    const std::size_t count = address_entries(db);
    if (!db.addresses_by_serial.resize(count)) {
        log_add(log_error, "%s : memory allocation failed. Tried to allocate %lu bytes\n",
                "insert_sort_global_ont_address_table",
                static_cast<unsigned long>(count * sizeof(std::uint32_t)));
        db.addresses_by_serial.release();  // its positions are those of another table
        return;
    }
    std::uint32_t *positions = sorted_positions(db);
    std::iota(positions, positions + count, 0U);
    const auto serial = [&db](std::uint32_t position) {
        return db.addresses.at(position) + ont_address::serial.offset;
    };
    std::stable_sort(positions, positions + count, [&](std::uint32_t a, std::uint32_t b) {
        return compare_serials(serial(a), serial(b)) < 0;
    });
}

void read_entries(AddressSections &db, const Answer &answer, const char *operation) {
    const std::size_t stated = answer.get<std::uint16_t>(answer_count);
    const std::size_t count = answer.records(stated, answer_entries, ont_address::size);
    if (count != stated) {
        log_add(log_error, "%s : %zu entries stated, %zu taken\n", operation, stated, count);
    }
    db.address_count = static_cast<std::uint16_t>(count);
    if (count == 0) {
        return;
    }
    if (!db.addresses.resize(count)) {
        log_add(log_error, "%s : memory allocation failed. Tried to allocate %lu bytes\n", operation,
                static_cast<unsigned long>(count * ont_address::size));
        return;
    }
    answer.copy(db.addresses.bytes, answer_entries, count * ont_address::size);
    sort_entries(db);
}

void write_text_record(char *to, const std::uint8_t *entry) {
    const std::uint8_t *serial = entry + ont_address::serial.offset;
    const std::uint8_t *mac = entry + ont_address::mac.offset;
    const auto number = [entry](Field field) { return static_cast<int>(load_integer(entry, field)); };
    char record[80];
    std::snprintf(record, sizeof record,
                  "|%02X%02X%02X%02X%02X%02X%02X%02X,%1d,%03d,%02X:%02X:%02X:%02X:%02X:%02X,%04d,%04d,%04d",
                  serial[0], serial[1], serial[2], serial[3], serial[4], serial[5], serial[6], serial[7],
                  number(ont_address::channel), number(ont_address::value_18), mac[0], mac[1], mac[2], mac[3],
                  mac[4], mac[5], number(ont_address::value_4), number(ont_address::value_6),
                  number(ont_address::value_2));
    std::memcpy(to, record, text_record_size);  // wide values are cut at the record's end
}

}  // namespace

std::uint8_t *get_global_ont_address_table(int slot) {
    auto *db = slot_sections<AddressSections>(slot);
    if (db == nullptr) {
        return nullptr;
    }
    if (db->addresses.bytes == nullptr && db->addresses.resize(initial_bytes / ont_address::size)) {
        std::memset(db->addresses.bytes, 0, db->addresses.capacity * ont_address::size);
    }
    refresh(addresses, slot, of_every_channel, answer_entries, __func__, read_entries);
    return db->addresses.bytes;
}

void insert_sort_global_ont_address_table(int slot) {
    if (auto *db = slot_sections<AddressSections>(slot)) {
        sort_entries(*db);
    }
}

char *get_global_ont_address_table_raw(int slot) {
    AddressSections *db = slot_sections<AddressSections>(slot);
    if (db == nullptr) {
        return nullptr;
    }
    auto *text = reinterpret_cast<char *>(db->address_text.bytes);
    if (!db->address_text_stamp.expired()) {
        return text;
    }
    get_global_ont_address_table(slot);
    const std::size_t count = address_entries(*db);
    const std::size_t length = text_head + text_record_size * count;
    if (!db->address_text.resize(length + 1)) {
        log_add(log_error, "%s : [%d] memory allocation error. Tried to allocate %d bytes for %d records\n",
                __func__, slot, static_cast<int>(length + 1), static_cast<int>(count));
        return text;
    }
    text = reinterpret_cast<char *>(db->address_text.bytes);
    std::memcpy(text, "v1", text_head);
    for (std::size_t i = 0; i < count; ++i) {
        write_text_record(text + text_head + text_record_size * i, db->addresses.at(i));
    }
    text[length] = '\0';
    db->address_text_length = length;
    db->address_text_stamp.set();
    return text;
}

namespace tarn {

std::size_t address_entries(const AddressSections &db) {
    return std::min<std::size_t>(db.address_count, db.addresses.capacity);
}

std::size_t sorted_address_entries(const AddressSections &db) {
    return std::min(address_entries(db), db.addresses_by_serial.capacity);
}

const std::uint8_t *address_by_serial(const AddressSections &db, std::size_t position) {
    if (position >= sorted_address_entries(db)) {
        return nullptr;
    }
    const std::uint32_t entry = sorted_positions(db)[position];
    return entry < address_entries(db) ? db.addresses.at(entry) : nullptr;
}

}  // namespace tarn
