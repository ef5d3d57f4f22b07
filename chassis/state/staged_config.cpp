#include "chassis/state/staged_config.h"

#include <utility>

namespace tarn::chassis {

StagedConfig::StagedConfig(CardConfig factory, Moment confirm_time)
    : factory_(std::move(factory)),
      working_(factory_),
      running_(factory_),
      startup_(factory_),
      confirm_time_(confirm_time) {}

void StagedConfig::settle(Moment now) {
    if (unconfirmed_ && now >= unconfirmed_->until) {
        take_back();
    }
}

void StagedConfig::take_back() {
    ++counts_.roll_backs;
    if (unconfirmed_) {
        running_ = std::move(unconfirmed_->before);
        unconfirmed_.reset();
    }
    working_ = running_;
}

CardConfig &StagedConfig::working(Moment now) {
    settle(now);
    return working_;
}

const CardConfig &StagedConfig::running(Moment now) {
    settle(now);
    return running_;
}

void StagedConfig::commit(Moment now) {
    settle(now);
    ++counts_.commits;
    if (confirm_time_ > 0) {
        // A second commit before the first is confirmed does not make the first one safe.
        CardConfig before = unconfirmed_ ? std::move(unconfirmed_->before) : std::move(running_);
        unconfirmed_ = Unconfirmed{std::move(before), now + confirm_time_};
    }
    running_ = working_;
}

void StagedConfig::confirm(Moment now) {
    settle(now);
    ++counts_.confirmations;
    unconfirmed_.reset();
}

void StagedConfig::roll_back(Moment now) {
    settle(now);
    take_back();
}

void StagedConfig::save(Moment now) {
    settle(now);
    ++counts_.saves;
    startup_ = running_;
}

void StagedConfig::set_to_default(Moment now) {
    settle(now);
    ++counts_.defaults;
    working_ = factory_;
}

void StagedConfig::reload(Moment now) {
    settle(now);
    ++counts_.reloads;
    unconfirmed_.reset();
    running_ = startup_;
    working_ = startup_;
}

StagedConfig::Status StagedConfig::status(Moment now) {
    settle(now);
    Status status = counts_;
    status.edited = working_ != running_;
    status.saved = running_ == startup_;
    if (unconfirmed_) {
        status.confirm_within = unconfirmed_->until - now;
    }
    return status;
}

}  // namespace tarn::chassis
