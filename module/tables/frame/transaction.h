// What a SET is about. The frame begins and ends it; a table's functions only write into its state.
#ifndef TARN_MODULE_TABLES_FRAME_TRANSACTION_H
#define TARN_MODULE_TABLES_FRAME_TRANSACTION_H

#include <type_traits>

#include "tarn/module_api.h"

namespace tarn {

// A SET passes each phase with all of its variables before the next phase, in every table that it is about.
// So a phase that comes before the last one belongs to the next SET, and what the last one left is forgotten.
// Tables that edit the same things share a transaction. A state that lies elsewhere is a reference.
template <class State>
struct Transaction {
    State state{};
    int phase = MODE_SET_RESERVE1;

    void enter(int mode) {
        if (mode < phase) {
            forget();
        }
        phase = mode;
    }
    void forget() {
        if constexpr (requires { state.forget(); }) {
            state.forget();
        } else {
            state = std::remove_reference_t<State>{};
        }
        phase = MODE_SET_RESERVE1;
    }
};

// A transaction as the frame sees it, whatever its state.
struct TransactionOf {
    void (*enter)(int mode) = nullptr;
    void (*forget)() = nullptr;
};
template <auto &Set>
inline constexpr TransactionOf transaction_of{[](int mode) { Set.enter(mode); }, [] { Set.forget(); }};

}  // namespace tarn

#endif
