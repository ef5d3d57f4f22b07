// Versions, hardware identity, and per-ONT records that the agent carries without reading them.
#include <algorithm>

#include "chassis/requests/selectors.h"
#include "chassis/state/generator.h"

namespace tarn::chassis {
namespace {

constexpr Moment bits_a_ms = 2'488'320;  // of the line downstream

Refusal get_versions(Exchange &exchange) {
    append(exchange.answer, exchange.card.identity.versions);
    return {};
}

Refusal get_hardware(Exchange &exchange) {
    append(exchange.answer, exchange.card.identity.hardware);
    return {};
}

// The serial, then error and bit counts since the ONT's counters were cleared.
void get_ber(Exchange &exchange, Ont &ont) {
    RecordBytes<ont_downstream_ber::size> record{};
    std::ranges::copy(ont.serial, record.begin() + ont_downstream_ber::serial.offset);
    put(record, ont_downstream_ber::errors, static_cast<std::int64_t>(ont.errors.value(exchange.now)));
    put(record, ont_downstream_ber::bits,
        static_cast<std::int64_t>((exchange.now - ont.errors.since) * bits_a_ms));
    append(exchange.answer, record);
}

// Two blocks, downstream and upstream: the rate of each service in kbit/s, 32 bits each.
void get_utilization(Exchange &exchange, Ont &ont) {
    RecordBytes<ont_services_utilization::size> blocks{};
    const bool working = ont.code_at(exchange.now) == ont_code::working;
    for (const Field &block : {ont_services_utilization::downstream, ont_services_utilization::upstream}) {
        // A new sample every second of chassis time.
        Generator generator(exchange.card.seed, exchange.card.slot, "utilization",
                            exchange.now / 1000 * 512 + block.offset + load_le32(ont.serial.data() + 4));
        for (int service = 0; working && service < ont_services_utilization::services; ++service) {
            put(blocks, block.at(service, ont_services_utilization::stride), generator.between(0, 100000));
        }
    }
    append(exchange.answer, blocks);
}

constexpr RequestRule rules[] = {
    {command::get_version_information, destination::services, 32, get_versions},
    {command::get_hardware_information, destination::services, 32, get_hardware},
    {command::get_ont_downstream_ber, destination::services, 45, with_ont<get_ber>},
    {command::get_ont_services_utilization, destination::services, 45, with_ont<get_utilization>},
};

}  // namespace

std::span<const RequestRule> identity_requests() {
    return rules;
}

}  // namespace tarn::chassis
