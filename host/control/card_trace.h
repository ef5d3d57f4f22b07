// Shows requests to cards as they happen, a line of JSON each, to those who follow a slot on the control
// socket. Nobody is waited for: what a reader does not take is dropped and counted.
#ifndef TARN_HOST_CONTROL_CARD_TRACE_H
#define TARN_HOST_CONTROL_CARD_TRACE_H

#include <cstdint>
#include <list>
#include <string>

#include "host/board/board_connection.h"

namespace tarn::host {

class CardTrace {
  public:
    static constexpr std::size_t most_readers = 8;

    ~CardTrace();
    CardTrace() = default;
    CardTrace(const CardTrace &) = delete;
    CardTrace &operator=(const CardTrace &) = delete;

    // Takes a connection, which must not block, when the line asks for a trace. It is closed at its end.
    bool take_over(const std::string &line, int connection);
    // A request that was sent now, or one that is finished.
    void sent(const Exchange &exchange);
    void finished(const Exchange &exchange);
    // Sends what is left to those who read again, and drops those who are gone; once a second.
    void tidy();

  private:
    struct Reader {
        int connection;
        int slot;
        std::string rest{};  // of a line that was begun
        std::uint64_t dropped = 0;
        bool gone = false;
    };
    void show(int slot, const std::string &line);
    static void give(Reader &reader, const std::string &line);
    static bool catch_up(Reader &reader);
    static void write(Reader &reader, std::string_view text);

    std::list<Reader> readers_;
};

}  // namespace tarn::host

#endif
