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

bool find_image(Row &row) {
    AcsFirmwareCache *cache = get_acs_firmware_cache();
    if (cache == nullptr || row.number[0] >= cache->files_count) {
        return false;
    }
    row.record = reinterpret_cast<std::uint8_t *>(&cache->files[row.number[0]]);
    return true;
}

bool next_image(std::int64_t &cursor, Row &row) {
    if (cursor == 0) {
        get_files_list();
    }
    row.number[0] = cursor++;
    return find_image(row);
}

constexpr Table table{
    .name = "tarnONTFirmwaresFilesTable",
    .index = row_index,
    .columns = columns,
    .rows = {.find = find_image, .next = next_image},
    .answers = row_when_acting,
};

}  // namespace

MODULE_ITERATOR_TABLE(tarnONTFirmwaresFilesTable, table)
