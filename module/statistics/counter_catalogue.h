// The counters that cards and ONTs report, row by row as the lookups of GStatisticsCommon address them.
#ifndef TARN_MODULE_STATISTICS_COUNTER_CATALOGUE_H
#define TARN_MODULE_STATISTICS_COUNTER_CATALOGUE_H

#include <algorithm>
#include <array>
#include <initializer_list>

#include "module/statistics/GStatisticsCommon.h"

namespace tarn::counter_catalogue {

inline constexpr int rows = 22;
inline constexpr int slots_per_row = 128;
using Row = std::array<GStatCommonRecord, slots_per_row>;

constexpr GStatCommonRecord end_of_row{-1, -1, -1, nullptr, nullptr};

// An attribute of ONT performance monitoring.
constexpr GStatCommonRecord attribute(std::int8_t number, const char *short_name,
                                      const char *long_name = "") {
    return {-1, -1, number, short_name, long_name};
}
constexpr GStatCommonRecord finished_intervals =
    attribute(0, "Finished intervals", "Shows the recently finished 15-minute interval");

// The counters in slot order; the slots after them are zero.
constexpr Row unterminated_row(std::initializer_list<GStatCommonRecord> counters) {
    Row row{};
    std::copy(counters.begin(), counters.end(), row.begin());
    return row;
}
constexpr Row row(std::initializer_list<GStatCommonRecord> counters) {
    Row row = unterminated_row(counters);
    row[counters.size()] = end_of_row;
    return row;
}

constexpr Row ethernet_frame_row = row({
    finished_intervals,
    attribute(1, "Drop events"),
    attribute(2, "Octets"),
    attribute(3, "Packets"),
    attribute(4, "Broadcast packets"),
    attribute(5, "Multicast packets"),
    attribute(6, "CRC errored packets"),
    attribute(7, "Undersize packets"),
    attribute(8, "Oversize packets"),
    attribute(9, "Packets 64 octets"),
    attribute(10, "Packets 65 to 127 octets"),
    attribute(11, "Packets 128 to 255 octets"),
    attribute(12, "Packets 256 to 511 octets"),
    attribute(13, "Packets 512 to 1023 octets"),
    attribute(14, "Packets 1024 to 1518 octets"),
});

constexpr std::array<Row, rows> strings{{
    // 0: Ethernet MAC, transmit
    row({
        {4, 0, 27, "TX frames without errors", "Frames transmitted without error (Including Pause Frames)"},
        {4, 0, 28, "TX valid pause frames", "Valid pause frames transmitted"},
        {4, 0, 29, "TX frames with errors",
         "Number of frames transmitted with error: (1) FIFO Overflow Error (2) FIFO Underflow Error (3) User "
         "application defined error"},
        {4, 0, 30, "TX good unicast packets",
         "Total number of good packets transmitted that were directed to a unicast address"},
        {4, 0, 31, "TX good multicast packets",
         "Total number of good packets transmitted that were directed to a multicast address"},
        {4, 0, 32, "TX good broadcast packets",
         "Total number of good packets transmitted that were directed to a broadcast address"},
        {4, 0, 33, "TX octets low",
         "Total number of octets transmitted (excluding framing bits but including FCS octets) (Low 32 "
         "bits)"},
        {4, 0, 34, "TX octets",
         "Total number of octets transmitted (excluding framing bits but including FCS octets)"},
    }),
    // 1: Ethernet MAC, receive
    row({
        {3, 0, 0, "RX Alignment errors",
         "Frames received with alignment error (preamble arrived with no SFD)"},
        {3, 0, 1, "RX Pause frames", "Valid pause frames received"},
        {3, 0, 2, "RX CRC-32 errors",
         "Frames received with CRC-32 Error but the frame is otherwise of correct length"},
        {3, 0, 3, "RX Oversize errors", "Oversized frames with good CRC-32"},
        {3, 0, 4, "RX Bad FCS", ""},
        {3, 0, 5, "RX Too long frames", "Frame received exceeded the maximum length"},
        {3, 0, 6, "RX Undersize errors", "Rx frames that were less then 64 octets"},
        {3, 0, 7, "RX Range errors", ""},
        {3, 0, 8, "RX Ok frames", "Frames received without error (Including Pause Frames)"},
        {3, 0, 9, "RX total frames", "Any (good or bad) Frame Received (with length > 64)"},
        {3, 0, 10, "RX 64 octets frames", "Frames of 64 octets length received"},
        {3, 0, 11, "RX 65-127 octets frames", "Frames with 65 to 127 octets"},
        {3, 0, 12, "RX 128-255 octets frames", "Frames with 128 to 255 octets"},
        {3, 0, 13, "RX 256-511 octets frames", "Frames with 256 to 511 octets"},
        {3, 0, 14, "RX 512-1023 octets frames", "Frames with 512 to 1023 octets"},
        {3, 0, 15, "RX 1024-1518 octets frames", "Frames with 1024 to 1518 octets"},
        {3, 0, 16, "RX 1519-MAX octets frames", "Frames with 1519 octets to the maximum length"},
        {3, 0, 17, "RX Total unicast packets",
         "Total number of good packets received that were directed to a unicast address"},
        {3, 0, 18, "RX Total multicast packets",
         "Total number of good packets received that were directed to a multicast address"},
        {3, 0, 19, "RX Total broadcast packets",
         "Total number of good packets received that were directed to a broadcast address"},
        {3, 0, 20, "RX Total octets low",
         "Total number of octets of data (including those in bad packets) received on the network (Low 32 "
         "bits)"},
        {3, 0, 21, "RX Total octets",
         "Total number of octets of data (including those in bad packets) received on the network"},
        {3, 0, 22, "RX Ok octets low",
         "All octets received except preamble for all good frames and valid pause frames received (Low 32 "
         "bits)"},
        {3, 0, 23, "RX Ok octets",
         "All octets received except preamble for all good frames and valid pause frames received"},
        {3, 0, 24, "RX FIFO overflow errors", "Frames received, but discarded due to FIFO overflow error"},
        {3, 0, 25, "RX Bad FCS and <64 octets",
         "Packets received that were less than 64 octets in length and had a bad FCS"},
        {3, 0, 26, "RX Frame errors", "Number of frames received with an error"},
    }),
    // 2: GPON channel, upstream
    row({
        {6, 0, 0, "TX US octets low", "Total number of US octets of data transmitted (low 32 bits)"},
        {6, 0, 1, "TX US octets", "Total number of US octets of data transmitted"},
        {6, 0, 2, "TX US packets", "Total number of US packets transmitted"},
        {6, 0, 4, "US octets low", "Total number of US octets of data (low 32 bits)"},
        {6, 0, 5, "US octets", "Total number of US octets of data"},
        {6, 0, 7, "US packets", "Total number of US packets"},
        {6, 0, 8, "US unicast packets", "Total number of US unicast packets"},
        {6, 0, 9, "US multicast packets", "Total number of US multicast packets"},
        {6, 0, 10, "US broadcast packets", "Total number of US broadcast packets"},
        {6, 0, 12, "US packed dropped", "Total number of US packets dropped"},
        {6, 0, 13, "Packet dropped (CRC)",
         "Total number of packets dropped due to CRC Errors (Discard Indication from Reassembly) per ONU-ID"},
        {6, 0, 16, "TX US octets reassembly low",
         "Total number of US octets of data transmitted. Counted at reassembly unit (low 32 bits)"},
        {6, 0, 17, "TX US octets reassembly",
         "Total number of US octets of data transmitted. Counted at reassembly unit"},
        {6, 0, 18, "TX US packets reassembly",
         "Total number of US packets transmitted. Counted at reassembly unit"},
    }),
    // 3: GPON channel, downstream
    row({
        {5, 0, 0, "RX DS octets low", "Total number of DS octets of data received (low 32 bits)"},
        {5, 0, 1, "RX DS octets", "Total number of DS octets of data received"},
        {5, 0, 2, "RX DS packets", "Total number of DS packets (all inclusive) received"},
        {5, 0, 3, "RX DS octets for channel low",
         "Total number of DS octets of data received for GPON Channel <n> (low 32 bits)"},
        {5, 0, 4, "RX DS octets for channel",
         "Total number of DS octets of data received for GPON Channel <n>"},
        {5, 0, 5, "RX DS packets for channel",
         "Total number of DS packets (all inclusive) received for GPON Channel <n>"},
        {5, 0, 8, "TX DS octets low", "Total number of DS octets transmitted (low Global 32 bits)"},
        {5, 0, 9, "TX DS octets", "Total number of DS octets transmitted"},
        {5, 0, 10, "TX DS packets", "Total number of DS packets transmitted"},
        {5, 0, 11, "DS octets low", "Total number of DS octets of data (low 32 bits)"},
        {5, 0, 12, "DS octets", "Total number of DS octets of data"},
        {5, 0, 14, "DS packets", "Total number of DS packets"},
        {5, 0, 15, "DS unicast packets", "Total number of DS unicast packets"},
        {5, 0, 16, "DS multicast packets", "Total number of DS multicast packets"},
        {5, 0, 17, "DS broadcast packets", "Total number of DS broadcast packets"},
        {5, 0, 18, "DS packet dropped", "Total number of DS packets dropped"},
    }),
    // 4: Port-ID, upstream
    row({
        {6, 3, 6, "US octets", "Total number of US octets of data per PortID"},
        {6, 3, 11, "US packets", "Total number of US packets per PortID"},
        {6, 3, 15, "US Packed dropped (CPU)",
         "Total number of packet dropped due to CPU policer decision per policer bucket"},
        {2, 3, 14, "GEM fragments", "GEM fragments counter"},
        {2, 3, 17, "Bytes low", "Bytes counter (Low 32 bits)"},
        {2, 3, 16, "Bytes", "Bytes counter"},
    }),
    // 5: Port-ID, downstream
    row({
        {5, 3, 13, "Total octets", "Total number of DS octets of data for PortID"},
        {1, 3, 1, "Data - Low 32 bits", "Data Counter according to the configuration LSB - Low 32 bits"},
        {1, 3, 0, "Data", "Data Counter according to the configuration LSB"},
        {1, 3, 2, "GEM Fragments", "GPON Fragment Counter per Port-ID"},
    }),
    // 6: ONT GEM port, transmitted
    row({
        finished_intervals,
        attribute(1, "Transmitted GEM frames",
                  "Total number of GEM frames transmitted on the monitored GEM port"),
        attribute(5, "Transmitted payload bytes LOW",
                  "Total number of user payload bytes transmitted on the monitored GEM port (low 4 octets)"),
        attribute(6, "Transmitted payload bytes",
                  "Total number of user payload bytes transmitted on the monitored GEM port"),
    }),
    // 7: ONT GEM port, received
    row({
        finished_intervals,
        attribute(2, "Received GEM frames", "Total number of GEM frames received on the monitored GEM port"),
        attribute(3, "Received payload bytes LOW",
                  "Total number of user payload bytes received on the monitored GEM port (low 4 octets)"),
        attribute(4, "Received payload bytes",
                  "Total number of user payload bytes received on the monitored GEM port"),
    }),
    // 8: WAN, transmit
    row({
        attribute(1, "TX drops", "Total number of dropped transmitted packets for this WAN"),
        attribute(3, "TX errors", "Total number of transmitted packets with errors for this WAN"),
        attribute(4, "Transmitted bytes", "Total number of bytes transmitted for this WAN"),
        attribute(6, "Transmitted frames", "Total number of frames transmitted for this WAN"),
    }),
    // 9: WAN, receive
    row({
        attribute(0, "RX drops", "Total number of dropped received packets for this WAN"),
        attribute(2, "RX errors", "Total number of received packets with errors for this WAN"),
        attribute(5, "Received bytes", "Total number of bytes received for this WAN"),
        attribute(7, "Received frames", "Total number of frames received for this WAN"),
    }),
    // 10: ONT Ethernet port, errors
    row({
        finished_intervals,
        attribute(1, "FCS errors"),
        attribute(2, "Excessive collision counter"),
        attribute(3, "Late collision counter"),
        attribute(4, "Frames too long"),
        attribute(5, "Buffer overflows on receive"),
        attribute(6, "Buffer overflows on transmit"),
        attribute(7, "Single collision frame counter"),
        attribute(8, "Multiple collisions frame counter"),
        attribute(9, "SQE counter"),
        attribute(10, "Deferred transmission counter"),
        attribute(11, "Internal MAC transmit error counter"),
        attribute(12, "Carrier sense error counter"),
        attribute(13, "Alignment error counter"),
        attribute(14, "Internal MAC receive error counter"),
    }),
    // 11: ONT Ethernet port, PPPoE filter
    row({
        finished_intervals,
        attribute(1, "PPPoE filtered frame counter"),
    }),
    // 12: ONT Ethernet port, traffic
    row({
        finished_intervals,
        attribute(1, "Drop events"),
        attribute(2, "Octets"),
        attribute(3, "Packets"),
        attribute(4, "Broadcast packets"),
        attribute(5, "Multicast packets"),
        attribute(6, "Undersize packets"),
        attribute(7, "Fragments"),
        attribute(8, "Jabbers"),
        attribute(9, "Packets 64 octets"),
        attribute(10, "Packets 65 to 127 octets"),
        attribute(11, "Packets 128 to 255 octets"),
        attribute(12, "Packets 256 to 511 octets"),
        attribute(13, "Packets 512 to 1023 octets"),
        attribute(14, "Packets 1024 to 1518 octets"),
    }),
    // 13: ONT GEM adaptation layer
    row({
        finished_intervals,
        attribute(1, "Discarded frames"),
    }),
    // 14: ONT forward error correction
    row({
        finished_intervals,
        attribute(1, "Corrected bytes"),
        attribute(2, "Corrected code words"),
        attribute(3, "Uncorrectable code words"),
        attribute(4, "Total code words"),
        attribute(5, "FEC seconds"),
    }),
    ethernet_frame_row,  // 15
    ethernet_frame_row,  // 16
    // 17: Lost, misinserted and impaired packets; without an end mark
    unterminated_row({
        finished_intervals,
        attribute(1, "Lost packets", "Shows the number of lost packets"),
        attribute(2, "Misinserted packets", "Shows the number of misinserted packets"),
        attribute(3, "Received packets (low 16 bits)", "Number of received packets (low 16 bits)"),
        attribute(4, "Received packets", "Number of received packets"),
        attribute(5, "Received blocks (low 16 bits)", "Number of received blocks(low 16 bits)"),
        attribute(6, "Received blocks", "Number of received blocks"),
        attribute(7, "Transmittes blocks (low 16 bits)", "Number of transmitted blocks (low 16 bits)"),
        attribute(8, "Transmitted blocks", "Number of transmitted blocks"),
        attribute(9, "Impaired blocks", "Number of impaired blocks"),
    }),
    // 18: Multicast bandwidth
    row({
        attribute(0, "Current multicast bandwidth"),
        attribute(1, "Join messages counter"),
        attribute(2, "Bandwidth exceeded counter"),
        attribute(3, "Number of active groups"),
    }),
    // 19: Multicast active group
    row({
        attribute(0, "Client IP address"),
        attribute(4, "Destination IP address"),
        attribute(8, "Source IP address"),
        attribute(12, "Recent join time"),
        attribute(13, "Vlan ID"),
        attribute(14, "Actual bandwidth"),
    }),
    ethernet_frame_row,  // 20
    ethernet_frame_row,  // 21
}};

// The row of each module's first direction.
constexpr std::array<std::int32_t, 16> module_descr_offset{0,  2,  4,  6,  8,  10, 11, 12,
                                                           13, 14, 15, 16, 17, 18, 19, 20};
// The number of counters of rows 0 to 20.
constexpr std::array<std::int32_t, 21> module_descr_count{8, 27, 14, 16, 6,  4,  4,  4, 4, 4, 15,
                                                          2, 15, 2,  6,  15, 15, 10, 4, 6, 15};
// What stands in for row 21, which has no entry.
constexpr std::int32_t count_of_last_row = 4;

}  // namespace tarn::counter_catalogue

#endif
