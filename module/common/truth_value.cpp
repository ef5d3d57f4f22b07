#include "module/common/truth_value.h"

int set_truth_value(int snmp_value) {
    return snmp_value == 1 ? 1 : 0;
}

int get_truth_value(int internal_value) {
    return (internal_value & 0xFFFF) == 1 ? 1 : 2;
}
