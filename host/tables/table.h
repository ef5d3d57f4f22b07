// One table of the module as the agent serves it: its rows, and the calls of its handlers.
#ifndef TARN_HOST_TABLES_TABLE_H
#define TARN_HOST_TABLES_TABLE_H

#include <array>
#include <cstdint>
#include <map>
#include <memory>
#include <span>
#include <vector>

#include "host/board/slots.h"
#include "host/services/cache_clock.h"
#include "host/tables/index_codec.h"
#include "host/tables/row_cache.h"
#include "host/tables/row_source.h"
#include "host/tables/table_callbacks.h"
#include "host/tables/table_schema.h"

namespace tarn::host {

// What a request is about: a column of a row of a slot.
struct Instance {
    int slot = 0;
    oid column = 0;
    std::vector<oid> suffix;  // the row's index
    void *row = nullptr;      // the module's data of the row; null when there is none
};

// What an OID names: a row, less than a row of a slot, or nothing that can be there.
enum class NameForm { row, part_of_a_row, nothing };

class Table {
  public:
    // The cache and the slots are kept by reference and must outlive the table.
    Table(TableSchema schema, const TableCallbacks &callbacks, RowCache &cache, const Slots &slots);
    Table(const Table &) = delete;
    Table &operator=(const Table &) = delete;

    // Answers the requests of one call of net-snmp: of any mode, all in this table.
    void serve(netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests);

    [[nodiscard]] const TableSchema &schema() const { return schema_; }
    [[nodiscard]] bool is_iterator() const { return callbacks_.is_iterator(); }

    // The slots that the table is walked over, ascending: those that are up, or the chassis.
    [[nodiscard]] const std::vector<int> &slots() const;
    // The sorted rows of a slot; `fresh`: enumerated in this transaction.
    std::shared_ptr<const RowIndex> rows(int slot, long transaction, bool fresh = false);

    // Takes an OID below the table apart; a slot that is not up has no rows.
    NameForm parse(std::span<const oid> name, Instance &instance);
    // The column of an OID below the table; null when the MIB has none there that can be read.
    [[nodiscard]] const Column *column_of(std::span<const oid> name) const;

    // Of what the module holds of the slot, while this table was served; slot 16 is the chassis.
    [[nodiscard]] const CacheUse &cache_use(int slot) const {
        return cache_use_[static_cast<std::size_t>(slot)];
    }

    // Has the module serve one request in one mode: `request` alone, its variable named as the instance.
    // Returns the error that the module set, or else the handler's result.
    int call(int mode, netsnmp_agent_request_info *reqinfo, netsnmp_request_info *request,
             const Instance &instance);

    // So many rows are enumerated at a time before others are served: some ten milliseconds. A slot of 1024
    // ONTs has up to 688 thousand rows in one table.
    static constexpr std::size_t rows_of_a_turn = 8192;

  private:
    // An enumeration that goes on when its manager's request is served again.
    struct Unfinished {
        Enumeration enumeration{};
        bool met_failure = false;
        long transaction = 0;
        std::uint64_t changes = 0;
        std::int64_t begun_at = 0;
    };

    RowIndex enumerate(int slot, long transaction);
    Unfinished &unfinished(int slot, long transaction);
    void get(netsnmp_agent_request_info *reqinfo, netsnmp_request_info *request);

    TableSchema schema_;
    TableCallbacks callbacks_;
    RowCache &cache_;
    const Slots &slots_;
    RowSource source_;
    std::map<int, Unfinished> unfinished_;  // by slot
    std::array<CacheUse, chassis_slot::line_cards + 1> cache_use_{};
    // What a handler is told of the row that is being served.
    struct CallInfo {
        explicit CallInfo(const TableSchema &schema);
        CallInfo(const CallInfo &) = delete;
        CallInfo &operator=(const CallInfo &) = delete;
        IndexValues index_values;
        netsnmp_table_registration_info registration{};
        netsnmp_table_request_info table_info{};
    };
    CallInfo call_info_;
};

}  // namespace tarn::host

#endif
