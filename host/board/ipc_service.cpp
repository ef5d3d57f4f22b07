// The IPC library that the module uses.
#include "host/board/ipc_client.h"
#include "host/board/ipc_result.h"
#include "host/board/pass.h"
#include "host/board/writer.h"
#include "host/services/agent_thread.h"
#include "tarn/host_services.h"

namespace tarn::host {
namespace {

IpcClient *the_client = nullptr;

int send_from_agent(const std::uint8_t *bytes, std::uint8_t **answer, int timeout_ms) {
    Pass *pass = Pass::current();
    const auto length = static_cast<std::size_t>(load_integer(bytes, board_header::length));
    const bool possible = length >= board_header::size && length <= max_message_size;
    Writer *writer = Writer::running();
    int result = 0;
    if (pass != nullptr && possible) {
        result = pass->request({bytes, length}, answer, timeout_ms);
    } else if (writer != nullptr && possible) {
        result = writer->request({bytes, length}, answer, timeout_ms);
    } else {
        result = the_client->send_request(bytes, answer, timeout_ms);
    }
    if (result < 0) {
        note_failed_request();
    }
    return result;
}

}  // namespace

void set_ipc_client(IpcClient *client) {
    the_client = client;
}

}  // namespace tarn::host

using namespace tarn;
using namespace tarn::host;

int ipcSendRequest(void *request, void **answer, int timeout_ms) {
    if (the_client == nullptr) {
        return ipc_result::no_connection;
    }
    const auto *bytes = static_cast<std::uint8_t *>(request);
    std::uint8_t *block = nullptr;
    int result = 0;
    if (is_agent_thread()) {
        result = send_from_agent(bytes, &block, timeout_ms);
    } else {
        // The agent's connections belong to its thread.
        result = IpcClient(the_client->address(), {}).send_request(bytes, &block, timeout_ms);
    }
    if (result >= 0) {
        *answer = block;
    }
    return result;
}

int check_slot_link(int slot) {
    return the_client != nullptr && the_client->link(slot) ? 1 : 0;
}
