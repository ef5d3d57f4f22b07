#include "chassis/state/ont_life.h"

#include <cmath>

#include "wire/records/ont.h"

namespace tarn::chassis {
namespace {

// Between -1 and 1, from 0 at the start on, back there every `period` ms.
double swing(Moment now, Moment period) {
    const double phase = static_cast<double>((now + 3 * period / 4) % period) / static_cast<double>(period);
    return 4 * std::abs(phase - 0.5) - 1;
}

// Five to ten minutes, another one for each ONT.
Moment swing_period(const Ont &ont) {
    return (Moment{300} + ont.serial.back()) * 1000;
}

}  // namespace

void live(std::vector<Ont> &onts, Moment now, Moment duration, std::uint32_t start_time) {
    for (Ont &ont : onts) {
        Outages &outages = ont.outages;
        for (; outages.period != 0 && outages.next <= now; outages.next += outages.period) {
            if (ont.enabled && ont.has_signal) {
                ont.lost_until = outages.next + outages.length;
                reregister(ont, outages.next, outages.length + duration, start_time);
            }
        }
    }
}

double optical_power_at(const Ont &ont, Moment now) {
    constexpr double most = 0.3;  // dB
    return std::round(10 * (ont.optical_power + most * swing(now, swing_period(ont)))) / 10;
}

RecordBytes<ont_i2c::size> optics_at(const Ont &ont, Moment now) {
    RecordBytes<ont_i2c::size> record = ont.i2c;
    const auto move = [&](Field field, int most) {
        const int moved = static_cast<int>(most * swing(now, swing_period(ont)));
        put(record, field, load_integer(record.data(), field) + moved);
    };
    move(ont_i2c::value_0, 30);
    move(ont_i2c::value_2, 15);
    move(ont_i2c::value_6, 512);
    move(ont_i2c::value_10, 100);
    return record;
}

}  // namespace tarn::chassis
