// The images of the firmware directory. A row's number is its place in the last listing.
#include <cstddef>
#include <string>

#include "module/firmware/acs_firmware_operations.h"
#include "module/tables/frame/table.h"

using namespace tarn;

namespace {

constexpr IndexPart row_index[] = {ordinal_part(TARN_FIRMWARE_IMAGES, ASN_INTEGER)};

constexpr Field file_name = text_at(offsetof(AcsFirmwareFile, file_name), sizeof(AcsFirmwareFile::file_name));
constexpr Field version = text_at(offsetof(AcsFirmwareFile, version), sizeof(AcsFirmwareFile::version));
constexpr Field description =
    text_at(offsetof(AcsFirmwareFile, description), sizeof(AcsFirmwareFile::description));

// The parameter file goes too: a later image of this name is another one.
bool remove_with_specifics(const AcsFirmwareFile &file) {
    const std::string name(listed_name(file));
    if (may_be_cut(file) || hub_remove_cpe_firmware_file(name.c_str()) != 0) {
        return false;
    }
    return !specific_text(name).has_value() || delete_specific_file(name.c_str()) == 0;
}

int remove_image(Row &row, const Binding &value) {
    const auto &file = *reinterpret_cast<const AcsFirmwareFile *>(row.record);
    const bool failed = *value.val.integer == 1 && !remove_with_specifics(file);
    expire_files_list();
    return failed ? SNMP_ERR_GENERR : SNMP_ERR_NOERROR;
}

constexpr Column columns[] = {
    {1, integer, index_number(0, 1)},
    {2, octet_string, field(file_name)},
    {3, octet_string, field(version)},
    {4, octet_string, field(description)},
    {10, unsigned32, reads_zero, any_unsigned32, remove_image},
};

struct Images {
    static void begin() { get_files_list(); }
    static AcsFirmwareCache *read(const Row & /*row*/) { return get_acs_firmware_cache(); }
    static std::int64_t count(const AcsFirmwareCache *cache) { return cache->files_count; }
    static std::int64_t position(const AcsFirmwareCache * /*cache*/, const Row &row) { return row.number[0]; }
    static bool enter(AcsFirmwareCache *cache, Row &row, std::int64_t position) {
        row.number[0] = position;
        row.record = reinterpret_cast<std::uint8_t *>(&cache->files[position]);
        return true;
    }
};

constexpr Table table{
    .index = row_index,
    .columns = columns,
    .rows = rows_of<Images>,
    .answers = row_when_acting,
};

}  // namespace

MODULE_ITERATOR_TABLE(tarnONTFirmwaresFilesTable, table)
