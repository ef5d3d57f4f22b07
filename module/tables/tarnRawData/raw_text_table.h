// A long text of a card as a table: one row a chunk of 10240 octets.
#ifndef TARN_MODULE_TABLES_TARNRAWDATA_RAW_TEXT_TABLE_H
#define TARN_MODULE_TABLES_TARNRAWDATA_RAW_TEXT_TABLE_H

#include <algorithm>
#include <string_view>

#include "module/tables/frame/table.h"

namespace tarn {

// `Refresh` is the operation that renders the slot's text, null when there is none yet; `Length` says how
// long the text is.
template <char *(*Refresh)(int slot), class Topic, std::size_t Topic::*Length>
struct RawTextTable {
    static constexpr std::int64_t chunk_size = 10240;

    static std::string_view text_of(int slot) {
        const char *text = Refresh(slot);
        return text != nullptr ? std::string_view(text, slot_sections<Topic>(slot)->*Length)
                               : std::string_view();
    }

    static std::int64_t chunks(std::string_view text) {
        return static_cast<std::int64_t>(text.size()) / chunk_size + 1;
    }

    static bool find_chunk(Row &row) {
        return row.number[0] >= 1 && row.number[0] <= chunks(text_of(row.slot));
    }

    // The walk goes one chunk beyond the text; that row has no instance.
    static bool next_chunk(Row &row) {
        row.number[0] = std::max<std::int64_t>(row.number[0], 0);
        return row.number[0]++ <= chunks(text_of(row.slot));
    }

    static int answer_chunk(Row &row, const Reply &reply) {
        const std::string_view text = text_of(row.slot);
        const auto start = static_cast<std::size_t>((row.number[0] - 1) * chunk_size);
        const std::string_view chunk = text.substr(std::min(start, text.size()), chunk_size);
        return reply.text(chunk);
    }

    static constexpr IndexPart row_index[] = {slot_part, number_part(any_unsigned)};
    static constexpr Column columns[] = {{3, octet_string, answered_by(answer_chunk)}};

    static constexpr Table table(const char *index_builder) {
        return {
            .index = row_index,
            .columns = columns,
            .rows = {.find = find_chunk, .successor = next_chunk, .index_builder = index_builder},
            .answers = row_first.with(reserving, no_row, accepted),
        };
    }
};

}  // namespace tarn

#endif
