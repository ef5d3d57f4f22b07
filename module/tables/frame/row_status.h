// Values of a RowStatus that a SET may carry.
#ifndef TARN_MODULE_TABLES_FRAME_ROW_STATUS_H
#define TARN_MODULE_TABLES_FRAME_ROW_STATUS_H

namespace tarn {

inline constexpr long create_and_go = 4;
inline constexpr long destroy = 6;

}  // namespace tarn

#endif
