// A card's configuration in its stages. SETs edit the working one; a commit makes it the running one, for
// good only when it is confirmed in time; the startup one is what a reload begins with.
#ifndef TARN_CHASSIS_STATE_STAGED_CONFIG_H
#define TARN_CHASSIS_STATE_STAGED_CONFIG_H

#include <cstdint>
#include <optional>

#include "chassis/state/provisioning.h"
#include "chassis/state/switch_config.h"
#include "chassis/state/time.h"

namespace tarn::chassis {

// Everything that is committed together.
struct CardConfig {
    SwitchConfig ethernet_switch;
    Provisioning provisioning;

    bool operator==(const CardConfig &) const = default;
};

class StagedConfig {
  public:
    // Begins with `factory` in every stage. `confirm_time`: how long a commit waits to be confirmed; 0: it
    // does not need to be.
    explicit StagedConfig(CardConfig factory = {}, Moment confirm_time = 0);

    // Every one of these first takes back a commit that was not confirmed in time.
    CardConfig &working(Moment now);
    const CardConfig &running(Moment now);

    void commit(Moment now);
    void confirm(Moment now);
    // Takes back a commit that waits to be confirmed, and all edits since the last commit; so does a commit
    // that runs out of time.
    void roll_back(Moment now);
    void save(Moment now);
    // Edits the working configuration back to the factory's.
    void set_to_default(Moment now);
    void reload(Moment now);

    struct Status {
        bool edited = false;  // the working configuration differs from the running one
        bool saved = false;   // the running one is the startup one
        std::optional<Moment> confirm_within;
        std::uint32_t commits = 0;
        std::uint32_t confirmations = 0;
        std::uint32_t roll_backs = 0;
        std::uint32_t saves = 0;
        std::uint32_t defaults = 0;
        std::uint32_t reloads = 0;
    };
    Status status(Moment now);

  private:
    void settle(Moment now);
    void take_back();

    CardConfig factory_;
    CardConfig working_;
    CardConfig running_;
    CardConfig startup_;
    struct Unconfirmed {
        CardConfig before;
        Moment until;
    };
    std::optional<Unconfirmed> unconfirmed_;
    Moment confirm_time_;
    Status counts_;
};

}  // namespace tarn::chassis

#endif
