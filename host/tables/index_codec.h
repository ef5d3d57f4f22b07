// A row's index: between the sub-identifiers of an instance and the typed values that the module works with.
#ifndef TARN_HOST_TABLES_INDEX_CODEC_H
#define TARN_HOST_TABLES_INDEX_CODEC_H

#include <cstdint>
#include <span>
#include <vector>

#include "host/tables/table_schema.h"

namespace tarn::host {

// A list of one typed variable for each index part, as net-snmp's table helpers make it.
class IndexValues {
  public:
    explicit IndexValues(std::span<const IndexPart> parts);
    ~IndexValues() { snmp_free_varbind(list_); }
    IndexValues(const IndexValues &) = delete;
    IndexValues &operator=(const IndexValues &) = delete;

    [[nodiscard]] netsnmp_variable_list *list() const { return list_; }

    // Sets the values from the sub-identifiers after the column. False when they are too few, too many, or
    // out of the range of their part; the values are then undefined.
    bool decode(std::span<const oid> suffix);

  private:
    std::vector<IndexPart> parts_;
    netsnmp_variable_list *list_ = nullptr;
};

// Appends the sub-identifiers of the values, which stand in the list in the order of the parts. False when a
// value is missing or does not fit.
bool encode_index(std::span<const IndexPart> parts, const netsnmp_variable_list *values,
                  std::vector<std::uint32_t> &suffix);

}  // namespace tarn::host

#endif
