/*
 * The entry points of the module as the host finds them: by symbol name, with these signatures.
 */
#ifndef TARN_MODULE_API_H
#define TARN_MODULE_API_H

#include <net-snmp/net-snmp-config.h>

#include <net-snmp/net-snmp-includes.h>

#include <net-snmp/agent/net-snmp-agent-includes.h>

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* What mod_get_info fills in: 84 bytes, native byte order. */
struct ModuleDescriptor {
    char family[32];
    char variant[32];
    uint32_t version[5];
};

/* A row that a nextgen table's finder returns. `name` is balloc'ed and the host's to bfree; null: no row. */
struct table_entry {
    oid *name;
    size_t length; /* sub-identifiers */
    void *row;
};

typedef int mod_get_info_function(void *descriptor);
typedef int slot_function(int slot); /* slot_initializer, slot_deinitializer, slot_lib_* commands */
typedef int cleanup_lib_function(void);
typedef void init_handlers_function(void);

typedef netsnmp_variable_list *next_index_function(void **loop_context, void **data_context,
                                                   netsnmp_variable_list *indexes, int slot);
typedef int module_handler_function(netsnmp_request_info *request, netsnmp_agent_request_info *reqinfo,
                                    void *row, netsnmp_table_request_info *table_info);

typedef void get_next_entry_function(struct table_entry *result, int slot, const oid *name, size_t length,
                                     int column);
typedef int table_handler_nextgen_function(int mode, netsnmp_request_info *request, int slot, void *row);

/* A column as the module serves it. */
struct column_description {
    uint32_t number;
    uint8_t type; /* net-snmp's ASN type */
    uint8_t writable;
};

/* mod_describe_table, optional: writes the first `room` of the table's columns that can be read, ascending,
 * and returns how many there are; 0: the module has no such table. */
typedef size_t describe_table_function(const char *table, struct column_description *columns, size_t room);

#ifdef __cplusplus
}
static_assert(sizeof(ModuleDescriptor) == 84);
#endif

#endif
