// What the agent's control socket does: one JSON object in, one out; docs/protocol.md describes them.
#ifndef TARN_HOST_CONTROL_CONTROL_COMMANDS_H
#define TARN_HOST_CONTROL_CONTROL_COMMANDS_H

#include <functional>
#include <string>

#include "host/board/slots.h"
#include "host/loader/module_loader.h"

namespace tarn::host {

class ControlCommands {
  public:
    // `changed` is called when a card's or the chassis' configuration may have changed. All three must
    // outlive the commands.
    ControlCommands(const Module &module, Slots &slots, std::function<void()> changed)
        : module_(module), slots_(slots), changed_(std::move(changed)) {}

    // The answer to one line, with its newline. A request that is not understood changes nothing and is
    // answered {"error": "what is wrong"}.
    std::string answer(const std::string &line);

    static std::string error_line(const std::string &text);

  private:
    const Module &module_;
    Slots &slots_;
    std::function<void()> changed_;
};

}  // namespace tarn::host

#endif
