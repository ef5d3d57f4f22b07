#include "host/agent/manager_requests.h"

#include <dlfcn.h>

#include <algorithm>
#include <chrono>
#include <utility>

#include "host/board/ipc_result.h"
#include "host/services/logger.h"
#include "host/tables/request_identity.h"

// Exported by net-snmp's agent library, but in none of its headers.
extern "C" {
int check_access(netsnmp_pdu *pdu);
int handle_pdu(netsnmp_agent_session *session);
int netsnmp_wrap_up_request(netsnmp_agent_session *session, int status);
int netsnmp_check_for_delegated_and_add(netsnmp_agent_session *session);
void netsnmp_remove_and_free_agent_snmp_session(netsnmp_agent_session *session);
extern netsnmp_agent_session *netsnmp_processing_set;
extern netsnmp_session *main_session;
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
    return pdu->command == SNMP_MSG_GET || pdu->command == SNMP_MSG_GETNEXT ||
           pdu->command == SNMP_MSG_GETBULK;
}

}  // namespace

void set_manager_requests(ManagerRequests *requests) {
    the_requests = requests;
}

int take_packet(int operation, netsnmp_session *session, int reqid, netsnmp_pdu *pdu, void *magic) {
    return the_requests != nullptr ? the_requests->take(operation, session, reqid, pdu, magic)
                                   : net_snmp_function()(operation, session, reqid, pdu, magic);
}

ManagerRequests::ManagerRequests(IpcClient &client, std::function<int(std::span<const oid>)> slot_of)
    : shared_(client), slot_of_(std::move(slot_of)), writer_(client) {
    // net-snmp serves nobody else while it knows of a SET.
    writer_.on_leave = [this] { left_set_ = std::exchange(netsnmp_processing_set, nullptr); };
    writer_.on_enter = [this] { netsnmp_processing_set = std::exchange(left_set_, nullptr); };
}

void ManagerRequests::end_session(const netsnmp_session *session) {
    std::erase_if(parked_, [session](const Request &request) { return request.session == session; });
    const bool is_going_on = writer_.busy();
    for (std::size_t i = changes_.size(); i-- > (is_going_on ? 1U : 0U);) {
        if (changes_[i].session == session) {
            changes_.erase(changes_.begin() + static_cast<std::ptrdiff_t>(i));
        }
    }
    // A SET that was begun goes on to its end; its answer has nowhere to go.
    if (is_going_on && changes_.front().session == session && left_set_ != nullptr) {
        left_set_->session = main_session;
    }
}

void ManagerRequests::change(const BoardSlots &slots, std::function<void()> work) {
    changes_.push_back({nullptr, {}, slots, std::move(work)});
    run_changes();
}

int ManagerRequests::take_set(netsnmp_session *session, int reqid, const netsnmp_pdu *pdu) {
    Change set{session, source_of(pdu) + identity_of(pdu), {}, {}};
    const bool repeated =
        std::ranges::any_of(changes_, [&](const Change &change) { return change.identity == set.identity; });
    if (repeated || changes_.size() >= most_parked) {
        ++(repeated ? figures_.repeated : figures_.turned_away);
        return 1;
    }
    for (const auto *variable = pdu->variables; variable != nullptr; variable = variable->next_variable) {
        set.slots |= touched_slots(slot_of_({variable->name, variable->name_length}));
    }
    // A function must be copyable, as the PDU is not.
    const std::shared_ptr<netsnmp_pdu> clone(snmp_clone_pdu(const_cast<netsnmp_pdu *>(pdu)), snmp_free_pdu);
    if (clone == nullptr) {
        return 1;
    }
    set.work = [session, reqid, clone] {
        (void)net_snmp_function()(NETSNMP_CALLBACK_OP_RECEIVED_MESSAGE, session, reqid, clone.get(), nullptr);
    };
    changes_.push_back(std::move(set));
    run_changes();
    return 1;
}

// Goes on with the change that is going on, and begins those that follow.
void ManagerRequests::run_changes() {
    if (Writer::running() != nullptr || Pass::current() != nullptr) {
        return;
    }
    while (!changes_.empty()) {
        if (!writer_.busy()) {
            writer_.run(changes_.front().slots, changes_.front().work);
        } else if (!writer_.resume()) {
            return;
        }
        if (writer_.busy()) {
            return;
        }
        forget_answers(writer_.touched());
        changes_.pop_front();
    }
}

RequestFigures ManagerRequests::figures() const {
    RequestFigures figures = figures_;
    figures.parked_now = parked_.size();
    figures.changes_waiting = changes_.size();
    return figures;
}

void ManagerRequests::stop() {
    parked_.clear();
    while (writer_.busy()) {
        shared_.client().abandon(ipc_result::no_connection);
        (void)writer_.resume();
    }
    changes_.clear();
}

int ManagerRequests::take(int operation, netsnmp_session *session, int reqid, netsnmp_pdu *pdu, void *magic) {
    if (operation == NETSNMP_CALLBACK_OP_DISCONNECT) {
        end_session(session);
    }
    // Whom net-snmp refuses is refused by it, with its notifications and counters.
    if (operation != NETSNMP_CALLBACK_OP_RECEIVED_MESSAGE || magic != nullptr ||
        (!is_read(pdu) && pdu->command != SNMP_MSG_SET) ||
        (pdu->version == SNMP_VERSION_3 && session->s_snmp_errno == SNMPERR_USM_AUTHENTICATIONFAILURE) ||
        check_access(pdu) != 0) {
        return net_snmp_function()(operation, session, reqid, pdu, magic);
    }
    if (pdu->command == SNMP_MSG_SET) {
        return take_set(session, reqid, pdu);
    }
    Request request{session, PduPointer(snmp_clone_pdu(pdu)), {}, {}, 0, false};
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
    const auto found =
        std::ranges::find_if(parked_, [&](const Request &request) { return request.identity == identity; });
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
        const Pass::Barred barred =
            writer_.busy() ? Pass::Barred{writer_.slots(), writer_.enumerated_table} : Pass::Barred{};
        const Pass pass(shared_, request.memory, barred, ++request.passes >= most_passes);
        status = handle_pdu(session);
        complete = pass.omissions() == 0;
        request.met_bar = pass.met_bar();
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
            log_add(log_level::warning, "%zu requests wait for cards: further ones are dropped\n",
                    parked_.size());
        }
        return;
    }
    if (request.identity.empty()) {
        request.identity = source_of(request.pdu.get()) + identity_of(request.pdu.get());
    }
    parked_.push_back(std::move(request));
    ++figures_.parked_in_all;
    figures_.parked_at_most = std::max<std::uint64_t>(figures_.parked_at_most, parked_.size());
}

bool ManagerRequests::serve_ready() {
    const auto begin = Clock::now();
    const bool more = serve_for_a_turn(begin + turn);
    const auto taken = std::chrono::duration_cast<std::chrono::microseconds>(Clock::now() - begin).count();
    figures_.longest_serving_us = std::max(figures_.longest_serving_us, static_cast<std::uint64_t>(taken));
    return more;
}

bool ManagerRequests::serve_for_a_turn(Clock::time_point end) {
    run_changes();
    for (auto place = parked_.begin(); place != parked_.end();) {
        if (!place->memory.complete() || (place->met_bar && writer_.busy())) {
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
