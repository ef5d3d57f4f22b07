#include "chassis/requests/request_log.h"

namespace tarn::chassis {

const RequestEntry &RequestLog::add(RequestEntry entry) {
    entry.sequence = next_sequence_++;
    ++counts_[{entry.slot, entry.command}];
    payload_bytes_ += entry.payload.size();
    entries_.push_back(std::move(entry));
    while (entries_.size() > max_entries || (payload_bytes_ > max_payload_bytes && entries_.size() > 1)) {
        payload_bytes_ -= entries_.front().payload.size();
        entries_.pop_front();
    }
    return entries_.back();
}

void RequestLog::reset() {
    entries_.clear();
    counts_.clear();
    payload_bytes_ = 0;
}

}  // namespace tarn::chassis
