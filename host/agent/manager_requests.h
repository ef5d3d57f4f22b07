// Stands in front of net-snmp's handling of requests: a read that has to wait for cards is parked here and
// served again, while others are served. SETs are served one after the other, beside the reads.
#ifndef TARN_HOST_AGENT_MANAGER_REQUESTS_H
#define TARN_HOST_AGENT_MANAGER_REQUESTS_H

#include <chrono>
#include <cstdint>
#include <deque>
#include <functional>
#include <list>
#include <memory>
#include <span>
#include <string>

#include "host/board/pass.h"
#include "host/board/writer.h"
#include "host/control/figures.h"
#include "tarn/module_api.h"

namespace tarn::host {

struct PduDeleter {
    void operator()(netsnmp_pdu *pdu) const { snmp_free_pdu(pdu); }
};
using PduPointer = std::unique_ptr<netsnmp_pdu, PduDeleter>;

class ManagerRequests {
  public:
    // More parked requests than this are not taken: their managers repeat them.
    static constexpr std::size_t most_parked = 256;

    // `slot_of`: the slot that an OID is about; 16 for what is about no line card.
    ManagerRequests(IpcClient &client, std::function<int(std::span<const oid>)> slot_of);

    // Takes what a session of the agent received, in the place of net-snmp's handle_snmp_packet.
    int take(int operation, netsnmp_session *session, int reqid, netsnmp_pdu *pdu, void *magic);
    // Carries out what changes cards or what is known of them, after the SETs that were there before.
    void change(const BoardSlots &slots, std::function<void()> work);
    // Whether a change is going on, and waits for a card.
    [[nodiscard]] bool is_changing() const { return writer_.busy(); }
    // Ends what is going on, with all that is on its way to cards.
    void stop();

    // After a change: what was asked for before it may be out of date.
    void forget_answers(const BoardSlots &slots = BoardSlots().set());
    // Serves what waited and need not wait any more, for a few milliseconds at most; true when some is left.
    bool serve_ready();

    [[nodiscard]] RequestFigures figures() const;

  private:
    struct Request {
        netsnmp_session *session;
        PduPointer pdu;
        std::string identity;
        AnswerMemory memory;
        int passes = 0;
        bool met_bar = false;
    };
    // A SET, or another change.
    struct Change {
        netsnmp_session *session = nullptr;
        std::string identity{};
        BoardSlots slots{};
        std::function<void()> work{};
    };

    int take_set(netsnmp_session *session, int reqid, const netsnmp_pdu *pdu);
    void run_changes();
    void end_session(const netsnmp_session *session);
    bool serve_for_a_turn(std::chrono::steady_clock::time_point end);
    bool serve_read(Request &request);
    Request *find(const std::string &identity);
    void park(Request request);

    SharedRequests shared_;
    std::function<int(std::span<const oid>)> slot_of_;
    Writer writer_;
    std::list<Request> parked_;
    std::deque<Change> changes_;                 // the first one is the one that is going on
    netsnmp_agent_session *left_set_ = nullptr;  // net-snmp's, of the SET that waits for a card
    RequestFigures figures_;
};

// Who takes what sessions receive; null: net-snmp itself.
void set_manager_requests(ManagerRequests *requests);
// What a program does in the place of net-snmp's handle_snmp_packet.
int take_packet(int operation, netsnmp_session *session, int reqid, netsnmp_pdu *pdu, void *magic);

}  // namespace tarn::host

#endif
