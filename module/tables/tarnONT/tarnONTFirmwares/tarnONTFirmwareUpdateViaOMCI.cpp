// Updates one ONT over OMCI: slot, serial and file name are written first, then the action.
#include <algorithm>
#include <cstring>

#include "module/common/serial.h"
#include "module/operations/firmware_update.h"
#include "module/tables/frame/scalar.h"
#include "module/tables/scalars.h"
#include "wire/records/ont.h"

using namespace tarn;

namespace {

constexpr int longest_file_name = 127;
constexpr int board_busy = 5;

std::int32_t omci_slot = 1;  // counted from 1
Serial omci_serial{};
char omci_filename[longest_file_name + 1];
std::size_t omci_filename_length = 0;

int get_slot(const Reply &reply) {
    return reply.number(omci_slot & 0xFF);
}

int set_slot(const Binding &value) {
    omci_slot = static_cast<std::int32_t>(*value.val.integer);
    return SNMP_ERR_NOERROR;
}

int get_serial(const Reply &reply) {
    return reply.octets(omci_serial.data(), omci_serial.size());
}

int set_serial(const Binding &value) {
    omci_serial = serial_at(value.val.string);
    return SNMP_ERR_NOERROR;
}

int get_file_name(const Reply &reply) {
    return reply.text(omci_filename);
}

int set_file_name(const Binding &value) {
    omci_filename_length = std::min<std::size_t>(value.val_len, longest_file_name);
    std::memset(omci_filename, 0, sizeof omci_filename);
    std::memcpy(omci_filename, value.val.string, omci_filename_length);
    return SNMP_ERR_NOERROR;
}

int get_zero(const Reply &reply) {
    return reply.number(0);
}

int start_update(const Binding &value) {
    if (*value.val.integer != 1) {
        return SNMP_ERR_NOERROR;
    }
    const int slot = omci_slot - 1;
    if (check_slot_link(slot) == 0) {
        return SNMP_ERR_RESOURCEUNAVAILABLE;
    }
    get_table_handlers(slot);
    // A name with a NUL inside is no file's: it must not stand for the part in front of it.
    const bool whole = std::strlen(omci_filename) == omci_filename_length;
    const int result = update_ont_firmware_via_OMCI(slot, omci_serial.data(), whole ? omci_filename : "..");
    if (result == board_busy) {
        return SNMP_ERR_RESOURCEUNAVAILABLE;
    }
    return result == 0 ? SNMP_ERR_NOERROR : SNMP_ERR_GENERR;
}

// A number outside the slots is a wrong value even where its type is wrong too.
int check_slot(const Binding *value) {
    const int error = netsnmp_check_vb_uint(value);
    if (!holds_integer(value)) {
        return error;
    }
    const long number = *value->val.integer;
    return number < 1 || number > 16 ? SNMP_ERR_WRONGVALUE : error;
}

constexpr Scalar slot{"tarnONTFirmwareUpdateViaOMCISlot", unsigned32, get_slot, checked_by(check_slot),
                      set_slot};
constexpr Scalar serial{"tarnONTFirmwareUpdateViaOMCISerial", octet_string, get_serial,
                        octets_of(serial_size), set_serial};
constexpr Scalar file_name{"tarnONTFirmwareUpdateViaOMCIFilename", octet_string, get_file_name,
                           octets_up_to(longest_file_name), set_file_name};
constexpr Scalar action{"tarnONTFirmwareUpdateViaOMCIAction", unsigned32, get_zero, any_unsigned32,
                        start_update};

void reset_request() {
    omci_slot = 1;
    omci_serial = {};
    omci_filename[0] = '\0';
    omci_filename_length = 0;
}

}  // namespace

MODULE_SCALAR(tarnONTFirmwareUpdateViaOMCISlot, slot)
MODULE_SCALAR(tarnONTFirmwareUpdateViaOMCISerial, serial)
MODULE_SCALAR(tarnONTFirmwareUpdateViaOMCIFilename, file_name)
MODULE_SCALAR(tarnONTFirmwareUpdateViaOMCIAction, action)
MODULE_SCALARS(tarnONTFirmwareUpdateViaOMCI, reset_request, tarnONTFirmwareUpdateViaOMCISlot_entry,
               tarnONTFirmwareUpdateViaOMCISerial_entry, tarnONTFirmwareUpdateViaOMCIFilename_entry,
               tarnONTFirmwareUpdateViaOMCIAction_entry)
