// Every table and scalar that the module describes, for those who ask what there is. The frame's macros enter
// each when the library is loaded.
#ifndef TARN_MODULE_TABLES_FRAME_REGISTRY_H
#define TARN_MODULE_TABLES_FRAME_REGISTRY_H

namespace tarn {

template <class Description>
struct Registered {
    const Description &description;
    const Registered *next;

    explicit Registered(const Description &described) noexcept : description(described), next(first) {
        first = this;
    }

    static inline const Registered *first = nullptr;
};

}  // namespace tarn

#endif
