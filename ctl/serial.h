// Serial numbers of ONTs as people write them: four letters of the vendor and four bytes.
#ifndef TARN_CTL_SERIAL_H
#define TARN_CTL_SERIAL_H

#include <string>
#include <string_view>

namespace tarn::ctl {

// ABCD-01:23:45:67, ABCD01234567 or 16 hexadecimal digits as 16 lower-case hexadecimal digits. Throws
// std::invalid_argument.
std::string serial_digits(std::string_view text);
// And back, as SNMP tools show it: ABCD-01:23:45:67. Anything but 16 digits of four printable letters and
// four bytes stays as it is.
std::string serial_text(std::string_view digits);

}  // namespace tarn::ctl

#endif
