// What a walk of tarnSwitchMacListTable costs, against a plain net-snmp handler and when it grows.
#include "bench/growth.h"

int main() {
    return tarn::bench::measure_growth("tarnSwitchMacListTable", "    onts: 0\n    mac_addresses: ROWS\n",
                                       16384);
}
