#include "host/tables/answer_size.h"

#include <net-snmp/agent/bulk_to_next.h>

#include <algorithm>

namespace tarn::host {
namespace {

// Type and length of a variable, of its name and of its value.
constexpr std::size_t headers = 4 + 4 + 4;
constexpr std::size_t largest_subid = 5;

// Everything else of a message but the names in its header: type and length of each part, numbers of up to
// five octets, the longest authentication code, salt and padding.
constexpr std::size_t message_header = 200;

bool is_answered(const netsnmp_variable_list *binding) {
    return binding->name_length > 0 && binding->type != ASN_NULL && binding->type != ASN_PRIV_RETRY &&
           binding->type != ASN_PRIV_STOP;
}

// The octets that a variable takes at most, quickly.
std::size_t wide_bound(const netsnmp_variable_list *binding) {
    return headers + largest_subid * binding->name_length + binding->val_len;
}

// The same more closely.
std::size_t close_bound(const netsnmp_variable_list *binding) {
    std::size_t size = headers + binding->val_len;
    for (std::size_t i = 0; i < binding->name_length; ++i) {
        oid subid = binding->name[i];
        do {
            ++size;
            subid >>= 7;  // seven bits an octet
        } while (subid != 0);
    }
    return size;
}

std::size_t room_of(const netsnmp_pdu *pdu) {
    const std::size_t header = message_header + pdu->community_len + pdu->securityEngineIDLen +
                               pdu->securityNameLen + pdu->contextEngineIDLen + pdu->contextNameLen;
    const auto message = static_cast<std::size_t>(std::max(pdu->msgMaxSize, 0L));
    return message > header ? message - header : 0;
}

// The current repetition, from 0.
long repetition_of(const netsnmp_request_info *request) {
    return request->orig_repeat - request->repeat;
}

}  // namespace

AnswerSize::AnswerSize(const netsnmp_agent_session *session)
    : session_(session), room_(room_of(session->pdu)) {
    for (const auto *binding = session->pdu->variables; binding != nullptr;
         binding = binding->next_variable) {
        if (is_answered(binding)) {
            size_ += wide_bound(binding);
        }
    }
}

bool AnswerSize::add(const netsnmp_request_info *request) {
    if (counted_.empty()) {
        size_ += wide_bound(request->requestvb);
        if (size_ <= room_) {
            return true;
        }
        size_ = 0;
        locate_requests();
    }
    count_in_front_of(request);
    return size_ <= room_;
}

// Until the answer is complete, all repetitions of one request stand in front of those of the next.
void AnswerSize::locate_requests() {
    const netsnmp_pdu *pdu = session_->pdu;
    const netsnmp_variable_list *binding = pdu->variables;
    for (int i = 0; i < session_->vbcount; ++i) {
        const long repetitions = i < pdu->non_repeaters ? 1 : pdu->max_repetitions;
        counted_.push_back({binding, 0, repetitions});
        for (long k = 0; k < repetitions && binding != nullptr; ++k) {
            binding = binding->next_variable;
        }
    }
}

void AnswerSize::count_in_front_of(const netsnmp_request_info *request) {
    const long repetition = repetition_of(request);
    for (std::size_t i = 0; i < counted_.size(); ++i) {
        Counted &counted = counted_[i];
        const long before = static_cast<int>(i) < request->index ? repetition + 1 : repetition;
        const long wanted = std::min(before, counted.most_repetitions);
        while (counted.repetitions < wanted && counted.next != nullptr && is_answered(counted.next)) {
            size_ += close_bound(counted.next);
            counted.next = counted.next->next_variable;
            ++counted.repetitions;
        }
    }
}

void end_answer(netsnmp_request_info *requests, netsnmp_request_info *overflowing) {
    if (overflowing->index == 1 && repetition_of(overflowing) == 0) {
        (void)netsnmp_request_set_error(overflowing, SNMP_ERR_TOOBIG);
    }
    // net-snmp sends the variables in front of the first one of this type. The repetitions of the requests
    // are interleaved: each of them must stop.
    overflowing->requestvb->type = ASN_PRIV_STOP;
    overflowing->repeat = 0;
    netsnmp_bulk_to_next_fix_requests(requests);
    for (auto *request = requests; request != nullptr; request = request->next) {
        if (request->requestvb->type == ASN_NULL || request->requestvb->type == ASN_PRIV_RETRY) {
            request->requestvb->type = ASN_PRIV_STOP;
        }
        request->repeat = 0;
    }
}

}  // namespace tarn::host
