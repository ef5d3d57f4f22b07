// What a walk of tarnPONChannelAddressTable costs, against a plain net-snmp handler and when it grows.
#include "bench/growth.h"

int main() {
    return tarn::bench::measure_growth("tarnPONChannelAddressTable", "    onts: 1024\n    addresses: ROWS\n",
                                       2000);
}
