// Which traffic each of a switch's seven queues takes: a mask a queue, as octets whose most significant bit
// stands for the lowest priority or code point. The queue that was written last keeps its traffic when the
// section is sent; the others lose it.
#ifndef TARN_MODULE_TABLES_TARNSWITCH_QOS_MAPPING_H
#define TARN_MODULE_TABLES_TARNSWITCH_QOS_MAPPING_H

#include "module/tables/tarnSwitch/qos_commit.h"
#include "wire/records/switch.h"

namespace tarn {

// `Mask` says where a queue's mask lies, `Convert` reverses the bits of its octets, and `LastQueue` remembers
// the queue that was written last.
template <Field (*Mask)(int queue), auto Convert, Field LastQueue>
struct QosMapping {
    static inline EditedSlots edited;
    static constexpr std::uint16_t octets = Mask(0).size;

    static int queue_of(const Row &row) { return static_cast<int>(row.number[0]); }

    static int answer(Row &row, const Reply &reply) {
        std::uint8_t list[8];
        store_le64(list, convert(load_integer(row.record, Mask(queue_of(row)))));
        return reply.octets(list, octets);
    }

    static int set(Row &row, const Binding &value) {
        std::uint8_t list[8]{};
        std::memcpy(list, value.val.string, octets);
        const auto mask = static_cast<std::int64_t>(load_le64(list));
        store_integer(row.record, Mask(queue_of(row)), static_cast<std::int64_t>(convert(mask)));
        store_integer(row.record, LastQueue, queue_of(row));
        return SNMP_ERR_NOERROR;
    }

    static constexpr IndexPart row_index[] = {slot_part, number_part(switch_qos::queues)};
    static constexpr Column columns[] = {
        {3, octet_string, answered_by(answer), octets_of(octets), set},
    };

    struct Queues {
        static std::uint8_t *read(Row &row) { return qos_section(row); }
        static std::int64_t count(const std::uint8_t * /*section*/) { return switch_qos::queues; }
        static std::int64_t position(const std::uint8_t * /*section*/, const Row &row) {
            return row.number[0];
        }
        static bool enter(std::uint8_t *section, Row &row, std::int64_t position) {
            row.number[0] = position;
            row.record = section;
            return true;
        }
    };

    static constexpr Table table() {
        return {
            .index = row_index,
            .columns = columns,
            .rows = rows_of<Queues>,
            .writes = edits_qos<edited>,
            .answers = row_when_acting,
        };
    }

  private:
    static std::uint64_t convert(std::int64_t mask) {
        return Convert(static_cast<decltype(Convert({}))>(mask));
    }
};

}  // namespace tarn

#endif
