#include "host/tables/request_identity.h"

#include <algorithm>

namespace tarn::host {
namespace {

void append(std::string &text, const void *data, std::size_t size) {
    text.append(reinterpret_cast<const char *>(&size), sizeof size);
    text.append(static_cast<const char *>(data), size);
}

}  // namespace

// With the port: what is repeated comes from the socket that it first came from, and a manager that numbers
// all its requests alike takes a new socket for the next one.
std::string source_of(const netsnmp_pdu *pdu) {
    std::string source;
    append(source, pdu->transport_data, static_cast<std::size_t>(std::max(pdu->transport_data_length, 0)));
    return source;
}

std::string identity_of(const netsnmp_pdu *pdu) {
    std::string identity;
    for (const long *number : {&pdu->version, &pdu->reqid, &pdu->errstat, &pdu->errindex}) {
        append(identity, number, sizeof *number);
    }
    for (const int *number : {&pdu->command, &pdu->securityModel, &pdu->securityLevel}) {
        append(identity, number, sizeof *number);
    }
    append(identity, pdu->community, pdu->community_len);
    append(identity, pdu->securityName, pdu->securityNameLen);
    append(identity, pdu->contextEngineID, pdu->contextEngineIDLen);
    append(identity, pdu->contextName, pdu->contextNameLen);
    for (const auto *variable = pdu->variables; variable != nullptr; variable = variable->next_variable) {
        append(identity, variable->name, variable->name_length * sizeof(oid));
        append(identity, &variable->type, sizeof variable->type);
        append(identity, variable->val.string, variable->val_len);
    }
    return identity;
}

}  // namespace tarn::host
