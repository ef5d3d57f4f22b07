// Truth values of SNMP and of records.
#ifndef TARN_MODULE_COMMON_TRUTH_VALUE_H
#define TARN_MODULE_COMMON_TRUTH_VALUE_H

#include "module/common/exports.h"

// SNMP TruthValue to internal boolean: 1 for exactly 1, otherwise 0.
TARN_EXPORT int set_truth_value(int snmp_value);
// Internal boolean to SNMP TruthValue: 1 where the low 16 bits are exactly 1, otherwise 2.
TARN_EXPORT int get_truth_value(int internal_value);

#endif
