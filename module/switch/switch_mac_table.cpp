#include "module/switch/switch_mac_table.h"

#include <cstdio>
#include <memory>

#include "module/common/log.h"
#include "module/store/cached_query.h"
#include "module/store/switch_sections.h"
#include "wire/records/switch.h"

using namespace tarn;

namespace {

constexpr int text_head = 2;          // "v1"
constexpr int text_record_size = 29;  // characters

// Entries as the parts of an answer bring them, before they replace the table.
struct Staging {
    std::unique_ptr<std::uint8_t[], decltype(&std::free)> bytes{nullptr, &std::free};
    std::size_t count = 0;
};

constexpr Query mac_table{command::get_switch_mac_table, destination::services, usual_pace,
                          &SwitchSections::mac_stamp};

enum class Fetch : std::uint8_t { complete, no_answer, too_many };

// Takes one part's entries.
Fetch take_part(Staging &staging, const Answer &answer, const char *operation) {
    const std::uint64_t count = answer.get<std::uint32_t>(switch_mac::part_count);
    if (staging.count + count > switch_mac::max_entries) {
        log_add(log_error, "%s : records count exceeds %d limit!\n", operation, switch_mac::max_entries);
        return Fetch::too_many;
    }
    if (count > switch_mac::max_entries_per_part) {
        log_add(log_error, "%s : %d entries in one part\n", operation, static_cast<int>(count));
        return Fetch::no_answer;
    }
    answer.copy(staging.bytes.get() + staging.count * switch_mac::size, switch_mac::part_entries,
                count * switch_mac::size);
    staging.count += count;
    return Fetch::complete;
}

// Fetches part after part until the card marks the last one.
Fetch fetch_parts(Staging &staging, int slot, const char *operation) {
    // Empty parts make no progress: a card that sends nothing else is given up.
    constexpr int most_parts = switch_mac::max_entries + switch_mac::max_entries_per_part;
    std::uint32_t cursor = 0;
    for (int part = 0; part < most_parts; ++part) {
        Request<55> request(mac_table.command, mac_table.destination);
        request.put(32, cursor).put(36, std::uint32_t{switch_mac::max_entries});
        const Answer answer = ask(request, operation, slot, switch_mac::part_is_last + 1);
        if (!answer) {
            return Fetch::no_answer;
        }
        const Fetch taken = take_part(staging, answer, operation);
        if (taken != Fetch::complete || answer.get<std::uint8_t>(switch_mac::part_is_last) != 0) {
            return taken;
        }
        cursor = answer.get<std::uint32_t>(switch_mac::part_cursor);
    }
    log_add(log_error, "%s : no end after %d parts\n", operation, most_parts);
    return Fetch::no_answer;
}

MacEntries entries_of(const SwitchSections &db) {
    // Entries are bytes throughout, so they may lie anywhere.
    return {reinterpret_cast<switch_mac_list_t *>(db.mac_table.bytes), db.mac_count};
}

// False, which leaves the table unstamped, so that the next read tries again, where the card has too many.
bool fetch_mac_table(SwitchSections &db, int slot, const char *operation) {
    constexpr std::size_t staging_bytes = switch_mac::max_entries * switch_mac::size;
    Staging staging;
    staging.bytes.reset(static_cast<std::uint8_t *>(std::malloc(staging_bytes)));
    if (staging.bytes == nullptr) {
        log_add(log_error, "%s : memory allocation failed. Tried to allocate %d bytes\n", operation,
                static_cast<int>(staging_bytes));
        return true;
    }
    const Fetch fetched = fetch_parts(staging, slot, operation);
    if (fetched != Fetch::complete) {
        return fetched != Fetch::too_many;
    }
    if (!db.mac_table.resize(staging.count)) {
        log_add(log_error, "%s : memory allocation failed. Tried to allocate %d bytes\n", operation,
                static_cast<int>(staging.count * switch_mac::size));
        return true;
    }
    db.mac_count = static_cast<std::uint32_t>(staging.count);
    if (staging.count > 0) {
        std::memcpy(db.mac_table.bytes, staging.bytes.get(), staging.count * switch_mac::size);
        sort_mac_entries(entries_of(db));
    }
    return true;
}

void write_text_record(char *to, const switch_mac_list_t &entry) {
    char record[64];
    const std::uint8_t *mac = entry.mac;
    std::snprintf(record, sizeof record, "|%02X:%02X:%02X:%02X:%02X:%02X,%04u,%03u,%d", mac[0], mac[1],
                  mac[2], mac[3], mac[4], mac[5], unsigned{load_le16(entry.vlan)},
                  static_cast<unsigned>(presented_port(entry)), entry.flags & switch_mac::flag_bit);
    std::memcpy(to, record, text_record_size);  // a wide VLAN is cut at the record's end
}

}  // namespace

std::uint8_t *get_switch_mac_table(int slot) {
    const char *const operation = __func__;
    const auto *sections = refresh_in_parts(mac_table, slot, [slot, operation](SwitchSections &db) {
        return fetch_mac_table(db, slot, operation);
    });
    return sections != nullptr ? sections->mac_table.bytes : nullptr;
}

char *get_raw_switch_mac_table(int slot) {
    SwitchSections *db = slot_sections<SwitchSections>(slot);
    if (db == nullptr) {
        return nullptr;
    }
    if (db->mac_text_stamp.expired()) {
        const MacEntries entries = mac_entries(slot);
        const std::size_t length = text_head + text_record_size * entries.size();
        db->mac_text_stamp.set();
        if (!db->mac_text.resize(length + 1) || db->mac_text.bytes == nullptr) {
            log_add(log_error, "%s : memory allocation error. Tried to allocate %d bytes\n", __func__,
                    static_cast<int>(length + 1));
        } else {
            auto *text = reinterpret_cast<char *>(db->mac_text.bytes);
            std::memcpy(text, "v1", text_head);
            for (std::size_t i = 0; i < entries.size(); ++i) {
                write_text_record(text + text_head + text_record_size * i, entries[i]);
            }
            text[length] = '\0';
            db->mac_text_length = length;
        }
    }
    return reinterpret_cast<char *>(db->mac_text.bytes);
}

int switch_mac_list_t_comparator(switch_mac_list_t a, switch_mac_list_t b) {
    const std::uint16_t vlan_a = load_le16(a.vlan);
    const std::uint16_t vlan_b = load_le16(b.vlan);
    if (vlan_a != vlan_b) {
        return vlan_a < vlan_b ? -1 : 1;
    }
    return std::memcmp(a.mac, b.mac, sizeof a.mac);
}

namespace tarn {

MacEntries mac_entries(int slot) {
    get_switch_mac_table(slot);
    const SwitchSections *db = slot_sections<SwitchSections>(slot);
    return db != nullptr ? entries_of(*db) : MacEntries{};
}

}  // namespace tarn
