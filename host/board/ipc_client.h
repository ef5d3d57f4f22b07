// The agent's side of the board protocol (docs/protocol.md): one connection a slot, one request at a time.
#ifndef TARN_HOST_BOARD_IPC_CLIENT_H
#define TARN_HOST_BOARD_IPC_CLIENT_H

#include <array>
#include <chrono>
#include <cstdint>
#include <mutex>

#include "host/board/deadline_socket.h"
#include "tarn/board_protocol.h"

namespace tarn::host {

// How long a request may wait for a card that let that many requests in a row time out: at first its own
// time-out, then no more than 1, 2, 4, 8 s, or one dead card would keep the agent from serving the others
// most of the time while a slow one would never be heard again.
int patience_ms(int silent_requests, int timeout_ms);

class IpcClient {
  public:
    // Slots 0-15 are line cards, 16-18 the chassis' own services.
    static constexpr int slots = 19;

    // After two time-outs in a row a slot is left alone for `hold`, its requests fail at once; the hold
    // doubles with each further one, up to eight times. One answer ends it.
    IpcClient(const ChassisAddress &address, std::chrono::seconds hold) : address_(address), hold_(hold) {}

    // Sends the request and waits for its answer, at most timeout_ms in all, connecting first where needed.
    // Returns 0 and a balloc'ed answer, or a negative ipc_result. The answer's block is longer than the
    // answer and zero behind it, so that a count or length inside the answer cannot lead past the block.
    int send_request(const std::uint8_t *request, std::uint8_t **answer, int timeout_ms);

    // Whether the slot had a card at the last contact.
    [[nodiscard]] bool link(int slot);

    // Notices a connection that the chassis ended, and connects where there is no connection, waiting at most
    // timeout_ms. Returns the link.
    bool check_link(int slot, int timeout_ms);

  private:
    struct Slot {
        std::mutex mutex;
        DeadlineSocket socket;
        bool link = false;
        int silent_requests = 0;
        Deadline hold_until{};
    };

    int connect(Slot &slot, int number, Deadline deadline);
    int exchange(Slot &slot, std::span<const std::uint8_t> request, std::uint8_t **answer, Deadline deadline);
    static bool on_hold(const Slot &slot);
    void count_silence(Slot &slot) const;
    static int fail(Slot &slot, SocketResult result);

    ChassisAddress address_;
    std::chrono::seconds hold_;
    std::array<Slot, slots> slots_;
};

// The client that ipcSendRequest and check_slot_link use; null: none.
void set_ipc_client(IpcClient *client);

}  // namespace tarn::host

#endif
