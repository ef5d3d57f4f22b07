#include "host/agent/manager_requests.h"

#include <dlfcn.h>

#include <algorithm>
#include <chrono>

#include "host/services/logger.h"
#include "host/tables/request_identity.h"

// Exported by net-snmp's agent library, but in none of its headers.
extern "C" {
int check_access(netsnmp_pdu *pdu);
int handle_pdu(netsnmp_agent_session *session);
int netsnmp_wrap_up_request(netsnmp_agent_session *session, int status);
int netsnmp_check_for_delegated_and_add(netsnmp_agent_session *session);
void netsnmp_remove_and_free_agent_snmp_session(netsnmp_agent_session *session);
}

namespace tarn::host {
namespace {

using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;

// How long parked requests are served before new ones get their turn.
constexpr auto turn = 10ms;
// A request whose answers depend on each other takes one pass for each; nothing takes so many.
constexpr int most_passes = 1000;

ManagerRequests *the_requests = nullptr;

// net-snmp's own function, also where this process stands in front of it.
snmp_callback net_snmp_function() {
    static const auto function = reinterpret_cast<snmp_callback>(dlsym(RTLD_NEXT, "handle_snmp_packet"));
    return function;
}

bool is_read(const netsnmp_pdu *pdu) {
    return pdu->command == SNMP_MSG_GET || pdu->command == SNMP_MSG_GETNEXT || pdu->command == SNMP_MSG_GETBULK;
}

}  // namespace

void set_manager_requests(ManagerRequests *requests) {
    the_requests = requests;
}

int take_packet(int operation, netsnmp_session *session, int reqid, netsnmp_pdu *pdu, void *magic) {
    return the_requests != nullptr ? the_requests->take(operation, session, reqid, pdu, magic)
                                   : net_snmp_function()(operation, session, reqid, pdu, magic);
}

int ManagerRequests::take(int operation, netsnmp_session *session, int reqid, netsnmp_pdu *pdu, void *magic) {
    if (operation == NETSNMP_CALLBACK_OP_DISCONNECT) {
        std::erase_if(parked_, [session](const Request &request) { return request.session == session; });
    }
    // Whom net-snmp refuses is refused by it, with its notifications and counters.
    if (operation != NETSNMP_CALLBACK_OP_RECEIVED_MESSAGE || magic != nullptr || !is_read(pdu) ||
        (pdu->version == SNMP_VERSION_3 && session->s_snmp_errno == SNMPERR_USM_AUTHENTICATIONFAILURE) ||
        check_access(pdu) != 0) {
        const int result = net_snmp_function()(operation, session, reqid, pdu, magic);
        if (operation == NETSNMP_CALLBACK_OP_RECEIVED_MESSAGE && pdu->command == SNMP_MSG_SET) {
            forget_answers();
        }
        return result;
    }
    Request request{session, PduPointer(snmp_clone_pdu(pdu)), {}, {}, 0};
    if (request.pdu == nullptr) {
        return 1;
    }
    if (!parked_.empty()) {
        request.identity = source_of(pdu) + identity_of(pdu);
        if (Request *earlier = find(request.identity)) {
            ++figures_.repeated;
            // A manager takes the answer to the message that it sent last.
            earlier->pdu = std::move(request.pdu);
            earlier->session = session;
            return 1;
        }
    }
    if (!serve_read(request)) {
        park(std::move(request));
    }
    return 1;
}

void ManagerRequests::forget_answers(const BoardSlots &slots) {
    shared_.forget(slots);
    for (Request &request : parked_) {
        request.memory.forget(slots);
    }
    shared_.client().wake();
}

ManagerRequests::Request *ManagerRequests::find(const std::string &identity) {
    const auto found = std::ranges::find_if(
        parked_, [&](const Request &request) { return request.identity == identity; });
    return found == parked_.end() ? nullptr : &*found;
}

// One pass; false when it was incomplete.
bool ManagerRequests::serve_read(Request &request) {
    netsnmp_agent_session *session = init_agent_snmp_session(request.session, request.pdu.get());
    if (session == nullptr) {
        return true;  // no memory: the manager asks again
    }
    ++figures_.passes;
    bool complete = true;
    int status = SNMP_ERR_NOERROR;
    {
        LogHold log;  // what is logged is in the log before the manager has its answer
        const Pass pass(shared_, request.memory, {}, ++request.passes >= most_passes);
        status = handle_pdu(session);
        complete = pass.omissions() == 0;
        if (!complete) {
            log.drop();
        }
    }
    if (!complete) {
        netsnmp_remove_and_free_agent_snmp_session(session);
        return false;
    }
    if (netsnmp_check_for_delegated_and_add(session) != 0) {
        session->status = status;
    } else {
        (void)netsnmp_wrap_up_request(session, status);
    }
    return true;
}

void ManagerRequests::park(Request request) {
    if (parked_.size() >= most_parked) {
        if (figures_.turned_away++ == 0) {
            log_add(log_level::warning, "%zu requests wait for cards: further ones are dropped\n", parked_.size());
        }
        return;
    }
    if (request.identity.empty()) {
        request.identity = source_of(request.pdu.get()) + identity_of(request.pdu.get());
    }
    parked_.push_back(std::move(request));
    ++figures_.parked;
    figures_.most_at_a_time = std::max(figures_.most_at_a_time, parked_.size());
}

bool ManagerRequests::serve_ready() {
    const auto end = Clock::now() + turn;
    for (auto place = parked_.begin(); place != parked_.end();) {
        if (!place->memory.complete()) {
            ++place;
        } else if (Clock::now() >= end) {
            return true;
        } else if (serve_read(*place)) {
            place = parked_.erase(place);
        } else {
            // The next turn begins with those that were not served in this one.
            parked_.splice(parked_.end(), parked_, place++);
        }
    }
    return false;
}

}  // namespace tarn::host
