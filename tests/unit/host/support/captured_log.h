// What the agent logs while it lives, a line each.
#ifndef TARN_TEST_CAPTURED_LOG_H
#define TARN_TEST_CAPTURED_LOG_H

#include <string>
#include <vector>

#include "host/services/logger.h"

namespace tarn::host::test {

class CapturedLog {
  public:
    // `add_handler`: unless somebody else has net-snmp pass its log on to callbacks.
    explicit CapturedLog(bool add_handler = true) {
        flush_log();
        snmp_disable_log();
        if (add_handler) {
            netsnmp_register_loghandler(NETSNMP_LOGHANDLER_CALLBACK, LOG_DEBUG)->enabled = 1;
        }
        (void)snmp_register_callback(SNMP_CALLBACK_LIBRARY, SNMP_CALLBACK_LOGGING, capture, this);
    }
    ~CapturedLog() {
        (void)snmp_unregister_callback(SNMP_CALLBACK_LIBRARY, SNMP_CALLBACK_LOGGING, capture, this, 1);
    }
    CapturedLog(const CapturedLog &) = delete;
    CapturedLog &operator=(const CapturedLog &) = delete;

    std::vector<std::string> lines;

  private:
    static int capture(int /*major*/, int /*minor*/, void *message, void *log) {
        static_cast<CapturedLog *>(log)->lines.emplace_back(static_cast<snmp_log_message *>(message)->msg);
        return 0;
    }
};

}  // namespace tarn::host::test

#endif
