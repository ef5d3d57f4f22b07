// What tells one manager's request from another.
#ifndef TARN_HOST_TABLES_REQUEST_IDENTITY_H
#define TARN_HOST_TABLES_REQUEST_IDENTITY_H

#include <string>

#include "tarn/module_api.h"

namespace tarn::host {

// Where the request came from.
std::string source_of(const netsnmp_pdu *pdu);
// All else that tells it from others. SNMPv3's message id is left out: it is new for each repetition.
std::string identity_of(const netsnmp_pdu *pdu);

}  // namespace tarn::host

#endif
