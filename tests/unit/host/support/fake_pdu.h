// An SNMP request as net-snmp hands it to a handler.
#ifndef TARN_TEST_FAKE_PDU_H
#define TARN_TEST_FAKE_PDU_H

#include <gtest/gtest.h>

#include <vector>

#include "host/tables/table.h"
#include "support/fake_table.h"

namespace tarn::host::test {

class FakePdu {
  public:
    explicit FakePdu(long transaction) {
        pdu_.version = SNMP_VERSION_2c;
        pdu_.transid = transaction;
        pdu_.msgMaxSize = 65000;
        pdu_.flags = UCD_MSG_FLAG_ALWAYS_IN_VIEW;
        session_.pdu = &pdu_;
        reqinfo_.asp = &session_;
        requests_.reserve(most_variables);
        ++range_end_.back();
    }
    ~FakePdu() {
        for (const auto &request : requests_) {
            netsnmp_free_all_list_data(request.parent_data);
        }
        snmp_free_varbind(pdu_.variables);
    }
    FakePdu(const FakePdu &) = delete;
    FakePdu &operator=(const FakePdu &) = delete;

    // A variable, with places for `repeat` further repetitions of a GETBULK.
    netsnmp_request_info &add(const std::vector<oid> &name, int repeat = 0) {
        netsnmp_variable_list *binding = nullptr;
        (void)snmp_varlist_add_variable(&binding, name.data(), name.size(), ASN_NULL, nullptr, 0);
        for (int i = 0; i < repeat; ++i) {
            (void)snmp_varlist_add_variable(&binding, nullptr, 0, ASN_NULL, nullptr, 0);
        }
        netsnmp_variable_list **end = &pdu_.variables;
        while (*end != nullptr) {
            end = &(*end)->next_variable;
        }
        *end = binding;
        netsnmp_request_info request{};
        request.requestvb = binding;
        request.requestvb_start = binding;
        pdu_.max_repetitions = repeat + 1;
        request.repeat = repeat;
        request.orig_repeat = repeat;
        request.agent_req_info = &reqinfo_;
        request.range_end = range_end_.data();
        request.range_end_len = range_end_.size();
        request.index = static_cast<int>(requests_.size()) + 1;
        bindings_.push_back(binding);
        requests_.push_back(request);
        if (requests_.size() > 1) {
            (&requests_.back())[-1].next = &requests_.back();
        }
        session_.requests = requests_.data();
        session_.vbcount = request.index;
        return requests_.back();
    }

    // A variable of a SET.
    void add_integer(const std::vector<oid> &name, long value) {
        (void)snmp_set_var_typed_integer(add(name).requestvb, ASN_INTEGER, value);
    }

    void serve(Table &table, int mode) {
        prepare(mode);
        table.serve(&reqinfo_, requests_.data());
    }

    // The same through net-snmp, for a handler that is registered.
    void serve(netsnmp_handler_registration *registration, int mode) {
        prepare(mode);
        (void)netsnmp_call_handlers(registration, &reqinfo_, requests_.data());
    }

    [[nodiscard]] netsnmp_pdu &pdu() { return pdu_; }

    // The error-index: the position from 1 of the first request that failed, 0 when none did.
    [[nodiscard]] int failed() const {
        for (const auto &request : requests_) {
            if (request.status != 0) {
                return request.index;
            }
        }
        return 0;
    }
    // The error-status, 0 when there is none.
    [[nodiscard]] int error() const {
        return failed() == 0 ? 0 : requests_[static_cast<std::size_t>(failed()) - 1].status;
    }

    // The variables of a GETBULK's answer that net-snmp would send: repetition by repetition, up to a stop.
    [[nodiscard]] int sent() const {
        int count = 0;
        for (int repetition = 0; repetition <= requests_.front().orig_repeat; ++repetition) {
            for (std::size_t request = 0; request < requests_.size(); ++request) {
                const auto *answer = binding(request, repetition);
                if (answer->type == ASN_PRIV_STOP) {
                    return count;
                }
                EXPECT_EQ(answer->type, ASN_OCTET_STR) << request << " " << repetition;
                ++count;
            }
        }
        return count;
    }

    [[nodiscard]] const netsnmp_variable_list *binding(std::size_t request, int repetition = 0) const {
        const netsnmp_variable_list *binding = bindings_[request];
        for (; repetition > 0; --repetition) {
            binding = binding->next_variable;
        }
        return binding;
    }

    [[nodiscard]] std::vector<oid> name(std::size_t request, int repetition = 0) const {
        const netsnmp_variable_list *found = binding(request, repetition);
        return {found->name, found->name + found->name_length};
    }

  private:
    static constexpr std::size_t most_variables = 8;

    // A variable of a SET has a value.
    void prepare(int mode) {
        reqinfo_.mode = mode;
        for (const auto &request : requests_) {
            if (mode == MODE_SET_RESERVE1 && request.requestvb->type == ASN_NULL) {
                (void)snmp_set_var_typed_integer(request.requestvb, ASN_INTEGER, 1);
            }
        }
    }

    netsnmp_pdu pdu_{};
    netsnmp_agent_session session_{};
    netsnmp_agent_request_info reqinfo_{};
    std::vector<netsnmp_request_info> requests_;  // never moved: net-snmp links them
    std::vector<oid> range_end_ = table_root;
    std::vector<netsnmp_variable_list *> bindings_;
};

}  // namespace tarn::host::test

#endif
