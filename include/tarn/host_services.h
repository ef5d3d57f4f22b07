/*
 * The services that the host agent provides and the module uses. They are undefined in the module and
 * resolved from the host executable when it loads the module.
 */
#ifndef TARN_HOST_SERVICES_H
#define TARN_HOST_SERVICES_H

#include <net-snmp/net-snmp-config.h>

#include <net-snmp/net-snmp-includes.h>

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* An object identifier that somebody else owns; length in sub-identifiers. */
struct oid_pair {
    oid *name;
    size_t length;
};

/*
 * Sends a request (32-byte header, its length in the header) to the board in the header's slot and waits up
 * to timeout_ms. Returns 0 or more and stores a balloc'ed answer that the caller frees, or a negative code.
 */
int ipcSendRequest(void *request, void **answer, int timeout_ms);
/* The text of a negative transport result or of a non-zero answer status; never null. */
const char *ipcGetError(int code);

/* The block allocator. `file` and `line` name the caller. balloc returns null when there is no memory. */
void *balloc(const char *file, int line, size_t size);
void bfree(const char *file, int line, void *pointer);

/* Levels as syslog's: 3 error, 6 information. */
void log_add(int level, const char *format, ...) __attribute__((format(printf, 2, 3)));

/* Non-zero when a section with this monotonic stamp must be fetched again. A zero stamp always must. */
int check_cache(long seconds, long nanoseconds);
int check_cache_custom_period(long seconds, long nanoseconds, int period_seconds);

void create_pair(struct oid_pair *pair, const netsnmp_variable_list *binding);
/* The sub-identifier at position 12, counted from 0; 0 when the OID is too short. */
int get_colnum_from_oid(const oid *name, size_t length);
/* The sub-identifier at `position`, counted from 0; 0 when the OID is too short. */
int get_int_from_oid(const oid *name, size_t length, int position);

/* Non-zero when the line card in the slot is reachable. */
int check_slot_link(int slot);
/* Whether the slot is configured in the running configuration, and in the candidate one. */
int slot_isconfigured(int slot);
int slot_isconfigured_candidate(int slot);
/* Non-zero refuses a write of the ONT's configuration. */
int check_firmware_select(int slot, int channel, int ont_id);

/* Reports the end of a firmware download: status 0 success, 1 failure. Callable from any thread. */
void send_acs_firmware_download_trap(int status, const char *text);
/* Removes an image from the firmware directory; 0 on success. */
int hub_remove_cpe_firmware_file(const char *file_name);
void *get_table_handlers(int slot);
/* Directory names for firmware transfer; 0 on success, the text NUL-terminated within `size` bytes. */
int fsa_get_tftpboot_directory(char *buffer, int size, int flags);
int fsa_get_ont_firmware_tftppath(int kind, char *buffer, int size);
/* 32 hexadecimal digits and a NUL; 0 on success. */
int fsa_calc_md5sum(const char *path, char *buffer, int size);
/* The version and description of an image header; 0 on success. The caller frees *description with free. */
int fp_GetHeaderInfo(const char *path, int reserved_1, int reserved_2, uint32_t *packed_version,
                     uint32_t *fourth_number, uint32_t *ignored, char **description);
/* The display name of an enumerated value; never null. */
const char *gpon_enum_find_name_by_type(const char *enumeration, int value);

#ifdef __cplusplus
}
#endif

#endif
