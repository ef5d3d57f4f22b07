// An SNMP request as net-snmp hands it to a handler.
#ifndef TARN_TEST_FAKE_PDU_H
#define TARN_TEST_FAKE_PDU_H

#include <vector>

#include "host/table.h"
#include "support/fake_table.h"

namespace tarn::host::test {

class FakePdu {
  public:
    explicit FakePdu(long transaction) {
        pdu_.version = SNMP_VERSION_2c;
        pdu_.transid = transaction;
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
        for (netsnmp_variable_list *binding : bindings_) {
            snmp_free_varbind(binding);
        }
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
        netsnmp_request_info request{};
        request.requestvb = binding;
        request.requestvb_start = binding;
        request.repeat = repeat;
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

    void serve(Table &table, int mode) {
        reqinfo_.mode = mode;
        table.serve(&reqinfo_, requests_.data());
    }

    // The same through net-snmp, for a handler that is registered.
    void serve(netsnmp_handler_registration *registration, int mode) {
        reqinfo_.mode = mode;
        (void)netsnmp_call_handlers(registration, &reqinfo_, requests_.data());
    }

    [[nodiscard]] netsnmp_pdu &pdu() { return pdu_; }

    // The first error-status of a request, 0 when there is none.
    [[nodiscard]] int error() const {
        for (const auto &request : requests_) {
            if (request.status != 0) {
                return request.status;
            }
        }
        return 0;
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

    netsnmp_pdu pdu_{};
    netsnmp_agent_session session_{};
    netsnmp_agent_request_info reqinfo_{};
    std::vector<netsnmp_request_info> requests_;  // never moved: net-snmp links them
    std::vector<oid> range_end_ = table_root;
    std::vector<netsnmp_variable_list *> bindings_;
};

}  // namespace tarn::host::test

#endif
