#include <algorithm>
#include <array>

#include "host/board/ipc_result.h"
#include "tarn/host_services.h"
#include "wire/protocol.h"

namespace {

struct ErrorText {
    int code;
    const char *text;
};

using namespace tarn::host;
namespace status = tarn::board_status;

constexpr std::array error_texts = {
    ErrorText{ipc_result::timed_out, "no answer within the time-out"},
    ErrorText{ipc_result::no_connection, "no connection to the chassis"},
    ErrorText{ipc_result::connection_lost, "connection lost"},
    ErrorText{ipc_result::protocol_error, "answer that belongs to no request"},
    ErrorText{ipc_result::on_hold, "card on hold after time-outs"},
    ErrorText{ipc_result::bad_request, "request with an impossible slot or length"},
    ErrorText{ipc_result::no_memory, "no memory for the answer"},
    ErrorText{ipc_result::no_card, "no card in the slot"},
    ErrorText{ipc_result::not_yet, "answer still under way"},
    ErrorText{status::success, "success"},
    ErrorText{status::not_available, "not available"},
    ErrorText{status::malformed, "malformed request"},
    ErrorText{status::unknown_command, "unknown command"},
    ErrorText{status::wrong_destination, "wrong destination"},
    ErrorText{status::busy, "card busy"},
    ErrorText{status::no_such_item, "no such item"},
    ErrorText{status::wrong_slot, "wrong slot"},
};

}  // namespace

const char *ipcGetError(int code) {
    const auto *found = std::find_if(error_texts.begin(), error_texts.end(),
                                     [code](const ErrorText &entry) { return entry.code == code; });
    if (found != error_texts.end()) {
        return found->text;
    }
    return code < 0 ? "transport failure" : "refused by the card";
}
