// Keeps a SET that a manager sent twice from being carried out twice: a card may take half a minute, and a
// manager that hears nothing repeats its request.
#ifndef TARN_HOST_TABLES_SET_GUARD_H
#define TARN_HOST_TABLES_SET_GUARD_H

#include <chrono>
#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "tarn/module_api.h"

namespace tarn::host {

// The SETs that were answered lately, and how.
class SetHistory {
  public:
    struct Outcome {
        int status;  // error-status
        int index;   // error-index
    };

    // The outcome of the last SET of the same source when that was the very same and is not older than ten
    // seconds; null when it was not.
    [[nodiscard]] const Outcome *find(const netsnmp_pdu *pdu) const;
    void record(const netsnmp_pdu *pdu, const Outcome &outcome);

  private:
    struct Entry {
        std::string source;
        std::string request;
        Outcome outcome;
        std::chrono::steady_clock::time_point answered;
    };
    std::deque<Entry> entries_;
};

// Stands before the handlers that are registered with net-snmp while it watches, tables and scalars alike,
// and answers repeated SETs in their place.
class SetGuard {
  public:
    SetGuard() = default;
    ~SetGuard() { watch(false); }
    SetGuard(const SetGuard &) = delete;
    SetGuard &operator=(const SetGuard &) = delete;

    void watch(bool on);

    // `told` is called with the name of each table or scalar that a SET may have written to.
    void tell(std::function<void(std::string_view name)> told) { told_ = std::move(told); }

  private:
    static int guard_registration(int major, int minor, void *parameters, void *guard);
    static int serve(netsnmp_mib_handler *handler, netsnmp_handler_registration *registration,
                     netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests);
    bool answers(netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests);

    SetHistory history_;
    std::function<void(std::string_view)> told_ = [](std::string_view /*name*/) {};
    bool watching_ = false;
    long transaction_ = -1;  // of the SET that is being served
    std::optional<SetHistory::Outcome>
        earlier_;  // how it was answered the first time, when it is a repeated one
};

}  // namespace tarn::host

#endif
