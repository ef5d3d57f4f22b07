// The negative results of ipcSendRequest.
#ifndef TARN_HOST_BOARD_IPC_RESULT_H
#define TARN_HOST_BOARD_IPC_RESULT_H

namespace tarn::host::ipc_result {

inline constexpr int timed_out = -1;
inline constexpr int no_connection = -2;    // the chassis does not listen
inline constexpr int connection_lost = -3;  // the connection ended before the answer was complete
inline constexpr int protocol_error =
    -4;                                 // the answer belongs to another request, or its length is impossible
inline constexpr int on_hold = -5;      // the card let requests time out and is left alone for a while
inline constexpr int bad_request = -6;  // the request's slot or length is impossible; nothing was sent
inline constexpr int no_memory = -7;
inline constexpr int no_card = -8;  // the chassis has no card in the slot
inline constexpr int not_yet = -9;  // no failure: what was served so far is thrown away and served again

}  // namespace tarn::host::ipc_result

#endif
