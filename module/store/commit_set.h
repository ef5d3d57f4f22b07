// Which items of a store a SET has edited and not yet sent.
#ifndef TARN_MODULE_STORE_COMMIT_SET_H
#define TARN_MODULE_STORE_COMMIT_SET_H

#include <array>
#include <cstddef>

namespace tarn {

// Plain flags, all clear in cleared memory. An index outside 0 to Count - 1 is never in the set.
template <std::size_t Count>
struct CommitSet {
    std::array<bool, Count> flags;

    void reset() { flags.fill(false); }
    void add(int index) { put(index, true); }
    void remove(int index) { put(index, false); }
    [[nodiscard]] bool contains(int index) const {
        return static_cast<std::size_t>(index) < Count && flags[static_cast<std::size_t>(index)];
    }
    [[nodiscard]] bool empty() const {
        for (const bool flag : flags) {
            if (flag) {
                return false;
            }
        }
        return true;
    }

    // Sends one item if it is in the set, which it leaves in any case. 0, or -1 when send fails.
    template <class Send>
    int commit_one(int index, Send send) {
        if (!contains(index)) {
            return 0;
        }
        remove(index);
        return send(index) == 0 ? 0 : -1;
    }

    // Sends the set in ascending order. The first failure ends it with -1 and leaves the later items in.
    template <class Send>
    int commit(Send send) {
        for (int index = 0; index < static_cast<int>(Count); ++index) {
            if (commit_one(index, send) != 0) {
                return -1;
            }
        }
        return 0;
    }

  private:
    void put(int index, bool flag) {
        if (static_cast<std::size_t>(index) < Count) {
            flags[static_cast<std::size_t>(index)] = flag;
        }
    }
};

}  // namespace tarn

#endif
