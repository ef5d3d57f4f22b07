#include "module/operations/ont_connections.h"

#include "module/common/log.h"
#include "module/common/serial.h"
#include "module/config/ont_config_store.h"
#include "module/store/cached_query.h"
#include "module/store/ont_sections.h"
#include "wire/records/ont.h"
#include "wire/records/ont_config.h"

using namespace tarn;

namespace {

constexpr std::size_t answer_count = 45;
constexpr std::size_t answer_block = answer_count + 1;

constexpr Query connections{command::get_ont_connections, destination::services, usual_pace,
                            &OntSections::connections, answer_block};

// The ONT at a place of the configuration.
Selector<13> ont_selector(int index) {
    Selector<13> selector{};
    selector[8] = static_cast<std::uint8_t>(index / ont_config::onts_per_channel);
    store_le32(&selector[9], static_cast<std::uint32_t>(index % ont_config::onts_per_channel));
    return selector;
}

}  // namespace

std::uint8_t *get_ont_connections(int slot, const std::uint8_t *serial_bytes) {
    const Serial serial = serial_at(serial_bytes);  // may lie in the records that are refreshed next
    const int index = get_ont_config_index_by_serial(slot, serial.data());
    if (index == ont_not_found) {
        log_add(log_error, "%s : Can't find ont state with this serial\n", __func__);
        return nullptr;
    }
    OntSections &db = *slot_sections<OntSections>(slot);
    if (db.connections_serial != serial) {
        db.connections_serial = serial;
        db.connections_count = 0;
        db.connections = {};
    }
    ask_when_due(connections, db.connections.stamp, slot, ont_selector(index),
                 answer_block + ont_connections::size, __func__, [&db](const Answer &answer) {
                     db.connections_count = answer.get<std::uint8_t>(answer_count);
                     answer.copy(db.connections.record.data(), answer_block, ont_connections::size);
                     return true;
                 });
    return db.connections.record.data();
}
