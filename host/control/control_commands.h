// What the agent's control socket does: one JSON object in, one out; docs/protocol.md describes them.
#ifndef TARN_HOST_CONTROL_CONTROL_COMMANDS_H
#define TARN_HOST_CONTROL_CONTROL_COMMANDS_H

#include <cstdint>
#include <functional>
#include <string>

#include "host/board/ipc_client.h"
#include "host/board/slots.h"
#include "host/control/figures.h"
#include "host/control/unconfirmed_commits.h"
#include "host/loader/module_loader.h"

namespace tarn::host {

class ControlCommands {
  public:
    // `confirm_time`: after which a card takes back a commit that was not confirmed. `changed` is called when
    // a card's or the chassis' configuration may have changed. Module and slots must outlive the commands.
    ControlCommands(const Module &module, Slots &slots, std::chrono::seconds confirm_time,
                    std::function<void()> changed)
        : module_(module), slots_(slots), unconfirmed_(confirm_time), changed_(std::move(changed)) {}

    // What "slots" and "stats" tell of cards and of the agent; `cards` must outlive the commands.
    void observe(const IpcClient &cards, std::function<AgentFigures()> figures) {
        cards_ = &cards;
        figures_ = std::move(figures);
    }

    // Whether a line asks for what is known without a card: it need not wait for what is going on.
    static bool is_question(const std::string &line);

    // The answer to one line, with its newline. A request that is not understood changes nothing and is
    // answered {"error": "what is wrong"}.
    std::string answer(const std::string &line);

    // The commits that are about to be taken back, by slot, each once.
    std::vector<std::pair<int, std::chrono::seconds>> take_expiring() { return unconfirmed_.take_expiring(); }
    // Forgets what was known of the slots whose commit was taken back; to be called every second or so.
    void follow_commits();

    static std::string error_line(const std::string &text);

  private:
    const IpcClient *cards_ = nullptr;
    std::function<AgentFigures()> figures_;
    const Module &module_;
    Slots &slots_;
    UnconfirmedCommits unconfirmed_;
    std::function<void()> changed_;
};

}  // namespace tarn::host

#endif
