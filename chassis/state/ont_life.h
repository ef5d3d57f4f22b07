// What happens to ONTs by itself as chassis time passes: some lose their signal now and then, and readings of
// their optical modules move a little. All of it depends on the scenario's seed and the time alone.
#ifndef TARN_CHASSIS_STATE_ONT_LIFE_H
#define TARN_CHASSIS_STATE_ONT_LIFE_H

#include "chassis/state/onts.h"
#include "wire/records/ont.h"

namespace tarn::chassis {

// Lets happen what was due until `now`. `duration`: what an ONT takes to register, in ms.
void live(std::vector<Ont> &onts, Moment now, Moment duration, std::uint32_t start_time);

// The ONT's optical power (dBm) and module readings at a moment.
double optical_power_at(const Ont &ont, Moment now);
RecordBytes<ont_i2c::size> optics_at(const Ont &ont, Moment now);

}  // namespace tarn::chassis

#endif
