// Which working ONTs went and came back, seen by the lists of ONTs that are read of the cards anyway.
#ifndef TARN_HOST_BOARD_ONT_WATCH_H
#define TARN_HOST_BOARD_ONT_WATCH_H

#include <array>
#include <cstdint>
#include <map>
#include <vector>

#include "wire/protocol.h"
#include "wire/serial.h"

namespace tarn::host {

using OntSerial = std::array<std::uint8_t, serial_size>;

struct OntChange {
    OntSerial serial;
    int channel;  // from 0
    bool lost;    // or back
};

class OntWatch {
  public:
    // What changed since the list before; nothing for the first one of a card, or when the request was not
    // for all ONTs of a line card or was refused. Both are whole messages.
    std::vector<OntChange> take(int slot, const std::vector<std::uint8_t> &request,
                                const std::vector<std::uint8_t> &answer);
    // The card is another one, or begins anew.
    void forget(int slot) { slots_[static_cast<std::size_t>(slot)] = {}; }

  private:
    using Channels = std::map<OntSerial, int>;
    struct Slot {
        bool known = false;
        Channels working;
        Channels lost;
    };
    std::array<Slot, chassis_slot::line_cards> slots_;
};

}  // namespace tarn::host

#endif
