// Changes cannot be served again like reads: they run on a stack of their own, one at a time, which is left
// while a card is waited for.
#ifndef TARN_HOST_BOARD_WRITER_H
#define TARN_HOST_BOARD_WRITER_H

#include <ucontext.h>

#include <cstdint>
#include <functional>
#include <span>

#include "host/board/pass.h"

namespace tarn::host {

class Writer {
  public:
    explicit Writer(IpcClient &client);
    ~Writer();
    Writer(const Writer &) = delete;
    Writer &operator=(const Writer &) = delete;

    // The writer whose stack is running; null outside of it.
    static Writer *running();

    // Begins the work, which touches these slots; it goes on until it is done or waits for a card. Only when
    // the writer is not busy.
    void run(const BoardSlots &slots, std::function<void()> work);
    // Goes on when what the work waits for has come. True when it was done.
    bool resume();
    [[nodiscard]] bool busy() const { return busy_; }
    // The slots that others must leave alone: those that the work was begun with, and the one that it waits
    // for.
    [[nodiscard]] const BoardSlots &slots() const { return slots_; }
    // All slots that the work has sent something to, and those that it was begun with.
    [[nodiscard]] const BoardSlots &touched() const { return touched_; }

    // What ipcSendRequest does on the writer's stack.
    int request(std::span<const std::uint8_t> request, std::uint8_t **answer, int timeout_ms);

    // Called when the stack is left and when it is entered again, to put away what must not be shared.
    std::function<void()> on_leave = [] {};
    std::function<void()> on_enter = [] {};
    // The table whose rows are being enumerated on the writer's stack: its cursor is shared by all slots.
    const void *enumerated_table = nullptr;

  private:
    static void begin();
    void enter();
    void leave();

    IpcClient &client_;
    void *stack_ = nullptr;
    ucontext_t own_{};
    ucontext_t outside_{};
    std::function<void()> work_;
    BoardSlots given_;
    BoardSlots slots_;
    BoardSlots touched_;
    ExchangePtr awaited_;
    bool busy_ = false;
    // What the sanitizers are told of the change of stacks.
    void *outside_fake_stack_ = nullptr;
    void *own_fake_stack_ = nullptr;
    const void *outside_bottom_ = nullptr;
    std::size_t outside_size_ = 0;
    void *own_fiber_ = nullptr;
    void *outside_fiber_ = nullptr;
};

// All slots of the chassis' own services belong together.
BoardSlots touched_slots(int slot);

}  // namespace tarn::host

#endif
