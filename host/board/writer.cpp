#include "host/board/writer.h"

#include <sys/mman.h>

#include <cerrno>
#include <system_error>
#include <utility>

#include "host/services/cache_clock.h"

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/common_interface_defs.h>
#endif
#if defined(__SANITIZE_THREAD__)
#include <sanitizer/tsan_interface.h>
#endif

namespace tarn::host {
namespace {

constexpr std::size_t stack_size = std::size_t{8} * 1024 * 1024;  // as a main thread's; taken as it is used
constexpr std::size_t guard_size = std::size_t{64} * 1024;

Writer *running_writer = nullptr;

}  // namespace

Writer::Writer(IpcClient &client) : client_(client) {
    stack_ =
        mmap(nullptr, stack_size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_STACK, -1, 0);
    if (stack_ == MAP_FAILED || mprotect(stack_, guard_size, PROT_NONE) != 0) {
        throw std::system_error(errno, std::generic_category(), "stack for SETs");
    }
}

Writer::~Writer() {
    (void)munmap(stack_, stack_size);
}

Writer *Writer::running() {
    return running_writer;
}

BoardSlots touched_slots(int slot) {
    BoardSlots slots;
    if (slot >= 0 && slot < chassis_slot::line_cards) {
        slots.set(static_cast<std::size_t>(slot));
    } else {
        for (std::size_t i = chassis_slot::line_cards; i < slots.size(); ++i) {
            slots.set(i);
        }
    }
    return slots;
}

void Writer::run(const BoardSlots &slots, std::function<void()> work) {
    given_ = slots_ = touched_ = slots;
    work_ = std::move(work);
    busy_ = true;
    (void)getcontext(&own_);
    own_.uc_stack.ss_sp = stack_;
    own_.uc_stack.ss_size = stack_size;
    own_.uc_link = nullptr;
    makecontext(&own_, begin, 0);
#if defined(__SANITIZE_THREAD__)
    own_fiber_ = __tsan_create_fiber(0);
#endif
    enter();
}

// makecontext hands on nothing but ints; enter() has said whose stack this is.
void Writer::begin() {
    Writer *writer = running_writer;
#if defined(__SANITIZE_ADDRESS__)
    __sanitizer_finish_switch_fiber(nullptr, &writer->outside_bottom_, &writer->outside_size_);
#endif
    writer->work_();
    writer->work_ = nullptr;
    writer->busy_ = false;
#if defined(__SANITIZE_ADDRESS__)
    __sanitizer_start_switch_fiber(nullptr, writer->outside_bottom_, writer->outside_size_);
#endif
#if defined(__SANITIZE_THREAD__)
    __tsan_switch_to_fiber(writer->outside_fiber_, 0);
#endif
    (void)setcontext(&writer->outside_);
}

void Writer::enter() {
    running_writer = this;
#if defined(__SANITIZE_ADDRESS__)
    __sanitizer_start_switch_fiber(&outside_fake_stack_, stack_, stack_size);
#endif
#if defined(__SANITIZE_THREAD__)
    outside_fiber_ = __tsan_get_current_fiber();
    __tsan_switch_to_fiber(own_fiber_, 0);
#endif
    (void)swapcontext(&outside_, &own_);
#if defined(__SANITIZE_ADDRESS__)
    __sanitizer_finish_switch_fiber(outside_fake_stack_, nullptr, nullptr);
#endif
    running_writer = nullptr;
#if defined(__SANITIZE_THREAD__)
    if (!busy_) {
        __tsan_destroy_fiber(own_fiber_);
    }
#endif
}

void Writer::leave() {
    const ClockPause pause;
    on_leave();
#if defined(__SANITIZE_ADDRESS__)
    __sanitizer_start_switch_fiber(&own_fake_stack_, outside_bottom_, outside_size_);
#endif
#if defined(__SANITIZE_THREAD__)
    __tsan_switch_to_fiber(outside_fiber_, 0);
#endif
    (void)swapcontext(&own_, &outside_);
#if defined(__SANITIZE_ADDRESS__)
    __sanitizer_finish_switch_fiber(own_fake_stack_, &outside_bottom_, &outside_size_);
#endif
    on_enter();
}

bool Writer::resume() {
    if (!busy_ || (awaited_ != nullptr && !awaited_->finished)) {
        return false;
    }
    enter();
    return !busy_;
}

int Writer::request(std::span<const std::uint8_t> request, std::uint8_t **answer, int timeout_ms) {
    const auto slot = static_cast<int>(load_integer(request.data(), board_header::slot));
    slots_ = given_ | touched_slots(slot);
    touched_ |= slots_;
    client_.process();  // a connection that the chassis ended in the meantime must not be used
    awaited_ = client_.start(request, timeout_ms);
    if (!awaited_->finished && client_.state(slot) == CardState::ok) {
        client_.wait(*awaited_, std::chrono::steady_clock::now() + Pass::budget);
    }
    while (!awaited_->finished) {
        leave();
    }
    const ExchangePtr exchange = std::exchange(awaited_, nullptr);
    return take_answer(*exchange, answer);
}

}  // namespace tarn::host
