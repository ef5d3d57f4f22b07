// The ports of a card's switch with their names, the same in every slot.
#include <iterator>

#include "module/switch/switch_ports.h"
#include "module/tables/frame/table.h"

using namespace tarn;

namespace {

constexpr IndexPart row_index[] = {ordinal_part(any_unsigned)};

// Ports 5 and 6 lead nowhere; the port channels 13 and 14 are not listed.
constexpr int listed_ports[] = {0, 1, 2, 3, 4, 7, 8, 9, 10, 11, 12, 20};

int answer_name(Row &row, const Reply &reply) {
    const std::string_view name = get_port_name(static_cast<int>(row.number[0]));
    return reply.text(name);
}

constexpr Column columns[] = {
    {1, unsigned32, index_number(0, 1)},
    {2, octet_string, answered_by(answer_name)},
};

bool next_port(std::int64_t &cursor, Row &row) {
    if (cursor >= std::ssize(listed_ports)) {
        return false;
    }
    row.number[0] = listed_ports[cursor++];
    return true;
}

constexpr Table table{
    .index = row_index,
    .columns = columns,
    .rows = {.next = next_port},
    .answers = deaf_to_sets,
};

}  // namespace

MODULE_ITERATOR_TABLE(tarnSwitchPortsTable, table)
