// Stands in front of net-snmp's handling of requests: a read that has to wait for cards is parked here and
// served again, while others are served.
#ifndef TARN_HOST_AGENT_MANAGER_REQUESTS_H
#define TARN_HOST_AGENT_MANAGER_REQUESTS_H

#include <cstdint>
#include <list>
#include <memory>
#include <string>

#include "host/board/pass.h"
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

    struct Figures {
        std::uint64_t passes = 0;  // in all, also those that were complete
        std::uint64_t parked = 0;
        std::uint64_t repeated = 0;  // requests that came again while they were parked
        std::uint64_t turned_away = 0;
        std::size_t most_at_a_time = 0;
    };

    explicit ManagerRequests(IpcClient &client) : shared_(client) {}

    // Takes what a session of the agent received, in the place of net-snmp's handle_snmp_packet.
    int take(int operation, netsnmp_session *session, int reqid, netsnmp_pdu *pdu, void *magic);
    // After a change: what was asked for before it may be out of date.
    void forget_answers(const BoardSlots &slots = BoardSlots().set());
    // Serves what waited and need not wait any more, for a few milliseconds at most; true when some is left.
    bool serve_ready();

    [[nodiscard]] const Figures &figures() const { return figures_; }
    [[nodiscard]] std::size_t parked() const { return parked_.size(); }

  private:
    struct Request {
        netsnmp_session *session;
        PduPointer pdu;
        std::string identity;
        AnswerMemory memory;
        int passes = 0;
    };

    bool serve_read(Request &request);
    Request *find(const std::string &identity);
    void park(Request request);

    SharedRequests shared_;
    std::list<Request> parked_;
    Figures figures_;
};

// Who takes what sessions receive; null: net-snmp itself.
void set_manager_requests(ManagerRequests *requests);
// What a program does in the place of net-snmp's handle_snmp_packet.
int take_packet(int operation, netsnmp_session *session, int reqid, netsnmp_pdu *pdu, void *magic);

}  // namespace tarn::host

#endif
