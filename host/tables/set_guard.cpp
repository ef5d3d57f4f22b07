#include "host/tables/set_guard.h"

#include <net-snmp/agent/agent_callbacks.h>

#include <algorithm>

#include "host/services/logger.h"
#include "host/tables/request_identity.h"
#include "host/tables/set_log.h"

namespace tarn::host {
namespace {

constexpr std::chrono::seconds lifetime{10};
constexpr std::size_t most_entries = 64;

}  // namespace

const SetHistory::Outcome *SetHistory::find(const netsnmp_pdu *pdu) const {
    const auto oldest = std::chrono::steady_clock::now() - lifetime;
    const std::string source = source_of(pdu);
    const std::string request = identity_of(pdu);
    const auto found = std::ranges::find_if(entries_, [&](const Entry &entry) {
        return entry.answered >= oldest && entry.source == source && entry.request == request;
    });
    return found == entries_.end() ? nullptr : &found->outcome;
}

// A source is remembered for its last SET only: what it wrote before is no longer what stands, so a SET that
// comes again after another one is meant.
void SetHistory::record(const netsnmp_pdu *pdu, const Outcome &outcome) {
    std::string source = source_of(pdu);
    std::erase_if(entries_, [&source](const Entry &entry) { return entry.source == source; });
    entries_.push_back({std::move(source), identity_of(pdu), outcome, std::chrono::steady_clock::now()});
    if (entries_.size() > most_entries) {
        entries_.pop_front();
    }
}

void SetGuard::watch(bool on) {
    if (on == watching_) {
        return;
    }
    watching_ = on;
    if (on) {
        (void)snmp_register_callback(SNMP_CALLBACK_APPLICATION, SNMPD_CALLBACK_REGISTER_OID,
                                     guard_registration, this);
    } else {
        (void)snmp_unregister_callback(SNMP_CALLBACK_APPLICATION, SNMPD_CALLBACK_REGISTER_OID,
                                       guard_registration, this, 1);
    }
}

int SetGuard::guard_registration(int /*major*/, int /*minor*/, void *parameters, void *guard) {
    netsnmp_handler_registration *registration = static_cast<register_parameters *>(parameters)->reginfo;
    netsnmp_mib_handler *handler = netsnmp_create_handler("tarn_set_guard", serve);
    if (handler != nullptr) {
        handler->myvoid = guard;
        (void)netsnmp_inject_handler(registration, handler);
    }
    return SNMP_ERR_NOERROR;
}

// Whether the SET is a repeated one; its first phase is then given the outcome of the first time.
bool SetGuard::answers(netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests) {
    const netsnmp_pdu *pdu = reqinfo->asp->pdu;
    if (transaction_ != pdu->transid) {
        transaction_ = pdu->transid;
        const SetHistory::Outcome *outcome = history_.find(pdu);
        earlier_ = outcome == nullptr ? std::nullopt : std::optional(*outcome);
        if (earlier_) {
            log_add(log_level::information, "a SET that was repeated is answered, not carried out again\n");
        }
    }
    if (!earlier_) {
        return false;
    }
    for (auto *request = requests; request != nullptr; request = request->next) {
        if (earlier_->status != SNMP_ERR_NOERROR && request->index == earlier_->index) {
            (void)netsnmp_set_request_error(reqinfo, request, earlier_->status);
        }
    }
    return true;
}

int SetGuard::serve(netsnmp_mib_handler *handler, netsnmp_handler_registration *registration,
                    netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests) {
    auto &guard = *static_cast<SetGuard *>(handler->myvoid);
    const int mode = reqinfo->mode;
    if (MODE_IS_GET(mode)) {
        return netsnmp_call_next_handler(handler, registration, reqinfo, requests);
    }
    if (guard.answers(reqinfo, requests)) {
        return SNMP_ERR_NOERROR;
    }
    const int result = netsnmp_call_next_handler(handler, registration, reqinfo, requests);
    if (mode == MODE_SET_COMMIT || mode == MODE_SET_FREE || mode == MODE_SET_UNDO) {
        SetHistory::Outcome outcome{reqinfo->asp->status, reqinfo->asp->index};
        for (int i = 0; i < reqinfo->asp->vbcount && outcome.status == SNMP_ERR_NOERROR; ++i) {
            outcome = {reqinfo->asp->requests[i].status, reqinfo->asp->requests[i].index};
        }
        guard.history_.record(reqinfo->asp->pdu, outcome);
        log_set(reqinfo, requests);
        if (mode != MODE_SET_FREE) {
            guard.told_(registration->handlerName);
        }
    }
    return result;
}

}  // namespace tarn::host
