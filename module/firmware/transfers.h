// The transfers of images under way, which the module's clean-up ends: a thread must not outlive what it
// uses.
#ifndef TARN_MODULE_FIRMWARE_TRANSFERS_H
#define TARN_MODULE_FIRMWARE_TRANSFERS_H

#include <string>

namespace tarn {

// Counts as under way as long as it lives.
class Transfer {
  public:
    Transfer();
    ~Transfer();
    Transfer(const Transfer &) = delete;
    Transfer &operator=(const Transfer &) = delete;
};

// Runs a shell command in a process group of its own and waits for it. Its status as `system` returns it; -1
// when it cannot be started, as during end_transfers.
int run_transfer_command(const std::string &command);

// Ends the commands that run, lets no other one start, and returns when no transfer is under way any more.
// One that begins afterwards runs as ever.
void end_transfers();

}  // namespace tarn

#endif
