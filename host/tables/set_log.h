// The record of what managers write.
#ifndef TARN_HOST_TABLES_SET_LOG_H
#define TARN_HOST_TABLES_SET_LOG_H

#include "tarn/module_api.h"

namespace tarn::host {

// Logs the requests of one handler in the last phase of a SET: who asked and from where, each variable, and
// what became of it. Texts are given by their length only, since they may be secret, and so may be a
// community.
void log_set(const netsnmp_agent_request_info *reqinfo, const netsnmp_request_info *requests);

}  // namespace tarn::host

#endif
