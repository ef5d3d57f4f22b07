// What a walk of tarnONTStateTable costs, against a plain net-snmp handler and when it grows.
#include "bench/growth.h"

int main() {
    return tarn::bench::measure_growth("tarnONTStateTable", "    onts: ROWS\n", 1024);
}
