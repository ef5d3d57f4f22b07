// How much of a GETBULK's answer fits in its message. net-snmp cuts an answer that is too long, but an SNMPv3
// one becomes an error; and a table need not give more rows than can be sent.
#ifndef TARN_HOST_TABLES_ANSWER_SIZE_H
#define TARN_HOST_TABLES_ANSWER_SIZE_H

#include <cstddef>
#include <vector>

#include "tarn/module_api.h"

namespace tarn::host {

class AnswerSize {
  public:
    // Counts what other handlers answered of the PDU, which is kept by reference.
    explicit AnswerSize(const netsnmp_agent_session *session);

    // Counts the request's current variable, which was answered. False when the message cannot take it and
    // all that comes in front of it: the variables of one repetition, then those of the next.
    bool add(const netsnmp_request_info *request);

  private:
    // A request's variables that are counted.
    struct Counted {
        const netsnmp_variable_list *next;
        long repetitions;
        long most_repetitions;
    };
    void locate_requests();
    void count_in_front_of(const netsnmp_request_info *request);

    const netsnmp_agent_session *session_;
    std::size_t room_;              // octets of the message for variables
    std::size_t size_ = 0;          // at most, of the variables that are counted
    std::vector<Counted> counted_;  // by request, as soon as an upper bound of all answers does not do
};

// Ends the GETBULK in front of the request's current variable. When that is the very first one, the request
// fails.
void end_answer(netsnmp_request_info *requests, netsnmp_request_info *overflowing);

}  // namespace tarn::host

#endif
