// A served table: GET, walks, and the phases of SET.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <variant>

#include "host/board/pass.h"
#include "host/board/slots.h"
#include "support/captured_log.h"
#include "support/fake_pdu.h"
#include "support/fake_table.h"

namespace tarn::host::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

int succeed(int /*slot*/) {
    return 0;
}

class TableTest : public testing::Test {
  protected:
    TableTest() {
        fake = {};
        // Slots 3 and 5 are up; in SNMP they count from 1.
        (void)slots.follow([](int slot) { return slot == 3 || slot == 5; });
        fake.rows[3] = {8, 2};
        fake.rows[5] = {1};
        set_successors({{4, 8}, {4, 2}});
    }
    // The exception or, for an INTEGER, its value of a GET.
    long get(Table &table, const std::vector<oid> &name) {
        FakePdu pdu(++transaction);
        pdu.add(name);
        pdu.serve(table, MODE_GET);
        const netsnmp_variable_list *binding = pdu.binding(0);
        EXPECT_EQ(pdu.error(), 0);
        return binding->type == ASN_INTEGER ? *binding->val.integer : -static_cast<long>(binding->type);
    }
    // The OID that follows in the table, empty when none does.
    std::vector<oid> next(Table &table, const std::vector<oid> &name, bool inclusive = false) {
        FakePdu pdu(++transaction);
        pdu.add(name).inclusive = inclusive ? 1 : 0;
        pdu.serve(table, MODE_GETNEXT);
        if (pdu.binding(0)->type == ASN_NULL) {
            EXPECT_EQ(pdu.name(0), name) << "an unanswered request stays as it was";
            return {};
        }
        return pdu.name(0);
    }

    CapturedLog log;
    Slots slots{SlotSet().set(), succeed, succeed, [] {}};
    RowCache cache{1000};
    Table iterator{slot_table_schema(), iterator_callbacks, cache, slots};
    Table nextgen{slot_table_schema(), nextgen_callbacks, cache, slots};
    long transaction = 0;
};

constexpr long no_such_object = -static_cast<long>(SNMP_NOSUCHOBJECT);
constexpr long no_such_instance = -static_cast<long>(SNMP_NOSUCHINSTANCE);

TEST_F(TableTest, GetGivesTheIteratorHandlerItsRow) {
    EXPECT_EQ(get(iterator, instance(3, {4, 2})), 302);
    EXPECT_EQ(get(iterator, instance(5, {6, 1})), 501);
    EXPECT_THAT(fake.calls, ElementsAre("enumerate 3", "get 3.4.2 row", "enumerate 5", "get 5.6.1 row"));
    fake.calls.clear();
    fake.handle = [](int, netsnmp_request_info *) { return SNMP_NOSUCHINSTANCE; };
    EXPECT_EQ(get(iterator, instance(3, {4, 99})), no_such_instance);
    EXPECT_THAT(fake.calls, ElementsAre("get 3.4.99 no row"));
}

TEST_F(TableTest, GetLetsTheNextgenHandlerFindTheRow) {
    EXPECT_EQ(get(nextgen, instance(3, {4, 77})), 377);
    EXPECT_THAT(fake.calls, ElementsAre("get 3.4.77 no row"));
}

TEST_F(TableTest, GetAnswersItselfWhatTheModuleMustNotSee) {
    for (Table *table : {&iterator, &nextgen}) {
        EXPECT_EQ(get(*table, instance(4, {4, 2})), no_such_object) << "a column that the MIB does not have";
        EXPECT_EQ(get(*table, table_root), no_such_object);
        EXPECT_EQ(get(*table, instance(3, {})), no_such_instance);
        EXPECT_EQ(get(*table, instance(3, {4, 2, 0})), no_such_instance);
        EXPECT_EQ(get(*table, instance(3, {4, 4294967296UL})), no_such_instance);
        EXPECT_EQ(get(*table, instance(3, {0, 2})), no_such_instance);
        EXPECT_EQ(get(*table, instance(3, {17, 2})), no_such_instance);
        EXPECT_EQ(get(*table, instance(3, {5, 2})), no_such_instance) << "a slot that is down";
    }
    EXPECT_EQ(get(iterator, instance(3, {4})), no_such_instance) << "less than a row";
    EXPECT_THAT(fake.calls, IsEmpty());
}

TEST_F(TableTest, GetLetsTheNextgenHandlerSayWhatLessThanARowMeans) {
    fake.handle = [](int, netsnmp_request_info *request) {
        return netsnmp_request_set_error(request, SNMP_NOSUCHOBJECT);
    };
    EXPECT_EQ(get(nextgen, instance(3, {4})), no_such_object);
    EXPECT_THAT(fake.calls, ElementsAre("get 3.4 no row"));
    EXPECT_EQ(get(nextgen, instance(3, {5})), no_such_instance) << "of a slot that is down";
}

TEST_F(TableTest, GetTranslatesWhatHandlersAnswer) {
    fake.handle = [](int, netsnmp_request_info *) { return 0; };
    EXPECT_EQ(get(nextgen, instance(3, {4, 2})), no_such_object) << "no value and no error";
    fake.handle = [](int, netsnmp_request_info *) { return SNMP_NOSUCHOBJECT; };
    EXPECT_EQ(get(iterator, instance(3, {4, 2})), no_such_object) << "an exception as the result";
    fake.handle = [](int, netsnmp_request_info *request) {
        return netsnmp_request_set_error(request, SNMP_NOSUCHINSTANCE);
    };
    EXPECT_EQ(get(nextgen, instance(3, {4, 2})), no_such_instance);
    fake.handle = [](int, netsnmp_request_info *) { return SNMP_ERR_RESOURCEUNAVAILABLE; };
    FakePdu pdu(++transaction);
    pdu.add(instance(3, {4, 2}));
    pdu.serve(nextgen, MODE_GET);
    EXPECT_EQ(pdu.error(), SNMP_ERR_RESOURCEUNAVAILABLE);
}

TEST_F(TableTest, GetNextGoesByColumnSlotAndRow) {
    const std::vector<std::vector<oid>> all = {instance(3, {4, 2}), instance(3, {4, 8}), instance(3, {6, 1}),
                                               instance(5, {4, 2}), instance(5, {4, 8}), instance(5, {6, 1})};
    std::vector<oid> name = {1, 3};
    for (const std::vector<oid> &expected : all) {
        name = next(iterator, name);
        EXPECT_EQ(name, expected);
    }
    EXPECT_THAT(next(iterator, name), IsEmpty());
    EXPECT_EQ(std::count_if(fake.calls.begin(), fake.calls.end(),
                            [](const std::string &call) { return call.starts_with("enumerate"); }),
              2)
        << "one enumeration a slot for the whole walk";
}

TEST_F(TableTest, GetNextTakesAnyOid) {
    EXPECT_EQ(next(iterator, {1, 3, 6, 1, 4, 1, 32473, 1, 22, 9}), instance(3, {4, 2}));
    EXPECT_EQ(next(iterator, table_root), instance(3, {4, 2}));
    EXPECT_EQ(next(iterator, instance(0, {})), instance(3, {4, 2}));
    EXPECT_EQ(next(iterator, instance(3, {})), instance(3, {4, 2}));
    EXPECT_EQ(next(iterator, instance(3, {4})), instance(3, {4, 2}));
    EXPECT_EQ(next(iterator, instance(3, {4, 2, 0})), instance(3, {4, 8}));
    EXPECT_EQ(next(iterator, instance(3, {4, 3})), instance(3, {4, 8}));
    EXPECT_EQ(next(iterator, instance(3, {4, 4294967296UL})), instance(3, {6, 1}));
    EXPECT_EQ(next(iterator, instance(3, {5, 1})), instance(3, {6, 1}));
    EXPECT_EQ(next(iterator, instance(3, {99, 1})), instance(5, {4, 2}));
    EXPECT_EQ(next(iterator, instance(4, {1})), instance(5, {4, 2}));
    EXPECT_THAT(next(iterator, instance(6, {1})), IsEmpty());
    std::vector<oid> second_entry = table_root;
    second_entry.push_back(2);
    EXPECT_THAT(next(iterator, second_entry), IsEmpty());
    EXPECT_EQ(next(iterator, instance(3, {4, 2}), true), instance(3, {4, 2})) << "inclusive";
    EXPECT_EQ(next(iterator, instance(3, {4, 3}), true), instance(3, {4, 8}));
}

TEST_F(TableTest, GetNextSkipsInstancesWithoutValue) {
    fake.handle = [](int, netsnmp_request_info *request) {
        netsnmp_variable_list *binding = request->requestvb;
        const std::vector<oid> name(binding->name, binding->name + binding->name_length);
        if (name == instance(3, {4, 2})) {
            return netsnmp_request_set_error(request, SNMP_NOSUCHINSTANCE);
        }
        if (name == instance(3, {4, 8})) {
            return SNMP_ERR_GENERR;
        }
        if (name == instance(3, {6, 1})) {
            return 0;  // left as it is
        }
        return snmp_set_var_typed_integer(binding, ASN_INTEGER, 1);
    };
    EXPECT_EQ(next(iterator, table_root), instance(5, {4, 2}));
}

TEST_F(TableTest, GetBulkAnswersAllRepetitionsAndSeveralVariables) {
    FakePdu pdu(++transaction);
    pdu.add(table_root, 3);
    pdu.add(instance(5, {4, 8}), 3);
    pdu.add(instance(5, {6, 1}), 3);
    pdu.serve(nextgen, MODE_GETBULK);
    EXPECT_EQ(pdu.name(0, 0), instance(3, {4, 2}));
    EXPECT_EQ(pdu.name(0, 1), instance(3, {4, 8}));
    EXPECT_EQ(pdu.name(0, 2), instance(5, {4, 2}));
    EXPECT_EQ(pdu.name(0, 3), instance(5, {4, 8}));
    EXPECT_EQ(*pdu.binding(0, 3)->val.integer, 508);
    EXPECT_EQ(pdu.binding(1)->type, ASN_NULL) << "after the last row: for the next table";
    EXPECT_EQ(pdu.name(1), instance(5, {4, 8}));
    EXPECT_EQ(pdu.binding(2)->type, ASN_NULL);
    EXPECT_EQ(std::count(fake.calls.begin(), fake.calls.end(), "get 5.4.8 row"), 1);
}

TEST_F(TableTest, GetBulkEndsWithWhatTheMessageTakes) {
    fake.rows[3] = {};
    for (int row = 1; row <= 30; ++row) {
        fake.rows[3].push_back(row);
    }
    fake.handle = [](int, netsnmp_request_info *request) {
        const std::string text(1000, 'x');
        return snmp_set_var_typed_value(request->requestvb, ASN_OCTET_STR, text.data(), text.size());
    };
    // Room for 200 octets of the message's header; a variable takes 12 beside the 17 of its name and its
    // value.
    const auto answered = [this](std::size_t variables, long limit) {
        FakePdu pdu(++transaction);
        pdu.pdu().msgMaxSize = limit;
        for (std::size_t i = 0; i < variables; ++i) {
            pdu.add(instance(3, {4}), 9);
        }
        pdu.serve(iterator, MODE_GETBULK);
        EXPECT_EQ(pdu.error(), limit < 1300 ? SNMP_ERR_TOOBIG : 0);
        return pdu.sent();
    };
    EXPECT_EQ(answered(1, 65000), 10);
    EXPECT_EQ(answered(1, 200 + 1029 * 4), 4);
    EXPECT_EQ(answered(1, 199 + 1029 * 4), 3);
    EXPECT_EQ(answered(3, 200 + 1029 * 4), 4) << "the repetitions of three variables are interleaved";
    EXPECT_EQ(answered(1, 484), 0);
}

TEST_F(TableTest, ASetReachesTheModuleInAllPhasesWithItsRow) {
    FakePdu pdu(++transaction);
    pdu.add(instance(5, {4, 8}));
    pdu.add(instance(5, {4, 9}));
    for (const int mode : {MODE_SET_RESERVE1, MODE_SET_RESERVE2, MODE_SET_ACTION, MODE_SET_COMMIT}) {
        pdu.serve(iterator, mode);
    }
    EXPECT_EQ(pdu.error(), 0);
    EXPECT_THAT(fake.calls, ElementsAre("enumerate 3", "reserve1 5.4.8 row", "reserve1 5.4.9 no row",
                                        "reserve2 5.4.8 row", "reserve2 5.4.9 no row", "action 5.4.8 row",
                                        "action 5.4.9 no row", "commit 5.4.8 row", "commit 5.4.9 no row"));
    fake.calls.clear();
    EXPECT_EQ(get(iterator, instance(5, {4, 8})), 508);
    EXPECT_THAT(fake.calls, ElementsAre("enumerate 3", "get 5.4.8 row")) << "a SET outdates the rows";
}

TEST_F(TableTest, ASetOfWhatTheMibExcludesIsRefused) {
    TableSchema schema = slot_table_schema();
    schema.columns = {{3, ASN_INTEGER, false},
                      {5, ASN_INTEGER, true, false, {{-1, -1}, {1, 4}}},
                      {6, ASN_OCTET_STR, true, false, {{0, 0}, {2, 3}}}};
    Table table(schema, nextgen_callbacks, cache, slots);
    schema.columns = {{3, ASN_INTEGER, false}};
    Table read_only(schema, nextgen_callbacks, cache, slots);
    const auto error = [&](Table &where, oid column, const std::variant<int, std::string> &value) {
        FakePdu pdu(++transaction);
        netsnmp_variable_list *binding = pdu.add(instance(column, {4, 8})).requestvb;
        if (const auto *text = std::get_if<std::string>(&value)) {
            (void)snmp_set_var_typed_value(binding, ASN_OCTET_STR, text->data(), text->size());
        } else {
            (void)snmp_set_var_typed_integer(binding, ASN_INTEGER, std::get<int>(value));
        }
        pdu.serve(where, MODE_SET_RESERVE1);
        return pdu.error();
    };
    EXPECT_EQ(error(table, 3, 1), SNMP_ERR_NOTWRITABLE);
    EXPECT_EQ(error(table, 4, 1), SNMP_ERR_NOTWRITABLE) << "not the MIB's, whatever the module accepts";
    EXPECT_EQ(error(read_only, 4, 1), SNMP_ERR_NOTWRITABLE);
    for (const int value : {-1, 1, 4}) {
        EXPECT_EQ(error(table, 5, value), 0);
    }
    for (const int value : {-2, 0, 5}) {
        EXPECT_EQ(error(table, 5, value), SNMP_ERR_WRONGVALUE);
    }
    EXPECT_EQ(error(table, 5, "1"), SNMP_ERR_WRONGTYPE);
    EXPECT_EQ(error(table, 6, 1), SNMP_ERR_WRONGTYPE);
    EXPECT_EQ(error(table, 6, "abc"), 0);
    EXPECT_EQ(error(table, 6, "a"), SNMP_ERR_WRONGLENGTH);
    fake.handle = [](int, netsnmp_request_info *) { return SNMP_ERR_BADVALUE; };
    EXPECT_EQ(error(table, 5, 5), SNMP_ERR_BADVALUE) << "the module's own rule comes first";
}

TEST_F(TableTest, ASetEnumeratesAnewEvenWhenRowsAreKnown) {
    EXPECT_EQ(get(iterator, instance(5, {4, 8})), 508);
    fake.calls.clear();
    FakePdu pdu(++transaction);
    pdu.add(instance(5, {4, 8}));
    pdu.serve(iterator, MODE_SET_RESERVE1);
    EXPECT_THAT(fake.calls, ElementsAre("enumerate 3", "reserve1 5.4.8 row"));
}

TEST_F(TableTest, ASetThatCreatesARowTellsTheModuleFirst) {
    TableSchema schema = slot_table_schema();
    schema.columns[1].row_status = true;
    Table table(schema, nextgen_callbacks, cache, slots);
    FakePdu pdu(++transaction);
    pdu.add(instance(3, {4, 8}));
    pdu.add(instance(3, {4, 9}));
    pdu.add_integer(instance(5, {4, 9}), 4);
    pdu.add_integer(instance(5, {4, 8}), 6);
    pdu.serve(table, MODE_SET_RESERVE1);
    fake.handle = [](int, netsnmp_request_info *request) {
        return request->requestvb->name[12] == 5 ? SNMP_ERR_GENERR : 0;
    };
    pdu.serve(table, MODE_SET_ACTION);
    EXPECT_THAT(fake.calls,
                ElementsAre("reserve1 3.4.8 no row", "reserve1 5.4.9 no row", "reserve1 3.4.9 no row",
                            "reserve1 5.4.8 no row", "action 5.4.9 no row"))
        << "in each phase, and none of the others once that failed";
    EXPECT_EQ(pdu.failed(), 3) << "the manager's count";
}

TEST_F(TableTest, ASetThatChangesAHiddenRowIsLogged) {
    TableSchema schema = slot_table_schema();
    schema.columns[1].row_status = true;
    Table table(schema, nextgen_callbacks, cache, slots);
    // Carries out a SET of column 3, and of column 5 when it is not 0, of a row whose column 5 has no value.
    const auto set = [&](int row_status, bool appears) {
        bool committed = false;
        fake.handle = [&](int mode, netsnmp_request_info *request) {
            committed |= mode == MODE_SET_COMMIT;
            return mode == MODE_GET && !(committed && appears)
                       ? netsnmp_request_set_error(request, SNMP_NOSUCHINSTANCE)
                       : snmp_set_var_typed_integer(request->requestvb, ASN_INTEGER, 1);
        };
        FakePdu pdu(++transaction);
        pdu.add_integer(instance(3, {4, 8}), 1);
        if (row_status != 0) {
            pdu.add_integer(instance(5, {4, 8}), row_status);
        }
        for (const int mode : {MODE_SET_RESERVE1, MODE_SET_RESERVE2, MODE_SET_ACTION, MODE_SET_COMMIT}) {
            pdu.serve(table, mode);
        }
        EXPECT_EQ(pdu.error(), 0);
    };
    log.lines.clear();
    set(6, false);
    set(0, true);
    EXPECT_THAT(log.lines, IsEmpty());
    set(0, false);
    EXPECT_THAT(log.lines,
                ElementsAre("tarnTestTable: a SET changed the row 4.8, which does not exist for managers\n"));
}

TEST_F(TableTest, ASetOfAnImpossibleInstanceNeverReachesTheModule) {
    for (const std::vector<oid> &suffix :
         std::vector<std::vector<oid>>{{4}, {4, 2, 1}, {0, 2}, {17, 2}, {5, 2}, {4, 4294967296UL}, {}}) {
        FakePdu pdu(++transaction);
        pdu.add(instance(5, suffix));
        pdu.serve(nextgen, MODE_SET_RESERVE1);
        EXPECT_EQ(pdu.error(), SNMP_ERR_NOCREATION);
        pdu.serve(nextgen, MODE_SET_FREE);
    }
    EXPECT_THAT(fake.calls, IsEmpty());
}

// The error-status of a SET whose handler answers `code` in the phase, as result or through the request.
int set_error(Table &table, long transaction, int failing_mode, int code, bool through_request) {
    fake.handle = [=](int mode, netsnmp_request_info *request) {
        if (mode != failing_mode) {
            return 0;
        }
        return through_request ? netsnmp_request_set_error(request, code) : code;
    };
    FakePdu pdu(transaction);
    pdu.add(instance(5, {4, 8}));
    for (const int mode : {MODE_SET_RESERVE1, MODE_SET_RESERVE2, MODE_SET_ACTION, MODE_SET_COMMIT}) {
        pdu.serve(table, mode);
        if (pdu.error() != 0) {
            break;
        }
    }
    return pdu.error();
}

TEST_F(TableTest, SetErrorsAreTranslatedForTheManager) {
    for (const bool through_request : {false, true}) {
        for (const int mode : {MODE_SET_RESERVE1, MODE_SET_RESERVE2, MODE_SET_ACTION}) {
            const auto error = [&](int code) {
                return set_error(nextgen, ++transaction, mode, code, through_request);
            };
            EXPECT_EQ(error(SNMP_NOSUCHOBJECT), SNMP_ERR_NOCREATION);
            EXPECT_EQ(error(SNMP_NOSUCHINSTANCE), SNMP_ERR_NOCREATION);
            EXPECT_EQ(error(SNMP_ERR_WRONGTYPE), SNMP_ERR_WRONGTYPE);
            EXPECT_EQ(error(SNMP_ERR_BADVALUE), SNMP_ERR_BADVALUE);
            EXPECT_EQ(error(-1), SNMP_ERR_GENERR);
        }
        EXPECT_EQ(set_error(iterator, ++transaction, MODE_SET_COMMIT, SNMP_ERR_GENERR, through_request),
                  SNMP_ERR_COMMITFAILED);
    }
}

TEST_F(TableTest, FreeReachesAllWhoSawReserve1) {
    fake.handle = [](int mode, netsnmp_request_info *request) {
        return mode == MODE_SET_RESERVE1 && request->requestvb->name[14] == 2 ? SNMP_ERR_WRONGVALUE : 0;
    };
    FakePdu pdu(++transaction);
    pdu.add(instance(5, {4, 8}));
    pdu.add(instance(5, {4, 2}));
    pdu.add(instance(5, {17, 1}));
    pdu.serve(nextgen, MODE_SET_RESERVE1);
    EXPECT_EQ(pdu.error(), SNMP_ERR_WRONGVALUE);
    pdu.serve(nextgen, MODE_SET_FREE);
    EXPECT_EQ(pdu.error(), SNMP_ERR_WRONGVALUE);
    EXPECT_THAT(fake.calls, ElementsAre("reserve1 5.4.8 no row", "reserve1 5.4.2 no row", "free 5.4.8 no row",
                                        "free 5.4.2 no row"));
}

TEST_F(TableTest, NoActionStartsBehindAFailedOneAndUndoReachesAll) {
    fake.handle = [](int mode, netsnmp_request_info *request) {
        if (mode == MODE_SET_UNDO) {
            return SNMP_ERR_UNDOFAILED;
        }
        return mode == MODE_SET_ACTION && request->requestvb->name[14] == 2 ? SNMP_ERR_GENERR : 0;
    };
    FakePdu pdu(++transaction);
    pdu.add(instance(5, {4, 8}));
    pdu.add(instance(5, {4, 2}));
    pdu.add(instance(5, {6, 1}));
    pdu.serve(nextgen, MODE_SET_RESERVE1);
    pdu.serve(nextgen, MODE_SET_RESERVE2);
    fake.calls.clear();
    pdu.serve(nextgen, MODE_SET_ACTION);
    pdu.serve(nextgen, MODE_SET_UNDO);
    EXPECT_EQ(pdu.error(), SNMP_ERR_GENERR) << "what UNDO answers hides nothing";
    EXPECT_THAT(fake.calls, ElementsAre("action 5.4.8 no row", "action 5.4.2 no row", "undo 5.4.8 no row",
                                        "undo 5.4.2 no row", "undo 5.6.1 no row"));
}

// Nobody waits while the rows of a large table are enumerated.
TEST_F(TableTest, ALargeTableIsEnumeratedOverSeveralTurns) {
    std::vector<std::vector<oid>> rows;
    for (oid row = 1; row <= 20'000; ++row) {
        rows.push_back({4, row});
    }
    set_successors(rows);
    IpcClient client(*parse_chassis_address("unix:/nonexistent/socket"), std::chrono::seconds(1));
    SharedRequests shared(client);
    AnswerMemory memory;
    const auto serve = [&](const std::vector<oid> &name) {
        const Pass pass(shared, memory, {});
        FakePdu pdu(transaction);
        pdu.add(name);
        pdu.serve(nextgen, MODE_GETNEXT);
        return pass.omissions() > 0 ? std::vector<oid>() : pdu.name(0);
    };
    EXPECT_THAT(serve(instance(3, {4, 19'999})), IsEmpty());
    EXPECT_THAT(serve(instance(3, {4, 19'999})), IsEmpty());
    EXPECT_EQ(serve(instance(3, {4, 19'999})), instance(3, {4, 20'000})) << "8192 rows a turn";
    EXPECT_EQ(serve(instance(3, {4, 1})), instance(3, {4, 2}));
    EXPECT_EQ(std::ranges::count(fake.calls, "enumerate 3"), 1);

    cache.expire();
    ++transaction;
    EXPECT_THAT(serve(instance(3, {4, 1})), IsEmpty());
    cache.expire();
    EXPECT_THAT(serve(instance(3, {4, 1})), IsEmpty());
    EXPECT_THAT(serve(instance(3, {4, 1})), IsEmpty()) << "begun again after a change";
    EXPECT_EQ(serve(instance(3, {4, 1})), instance(3, {4, 2}));
}

TEST_F(TableTest, AChassisWideTableIsWalkedOnce) {
    TableSchema schema = slot_table_schema();
    schema.index.front().is_slot = false;
    Table chassis(schema, iterator_callbacks, cache, slots);
    fake.rows[16] = {5};  // its index is 17, 5
    EXPECT_EQ(next(chassis, table_root), instance(3, {17, 5}));
    EXPECT_EQ(next(chassis, instance(3, {17, 5})), instance(5, {17, 5}));
    EXPECT_EQ(get(chassis, instance(3, {17, 5})), 305);
    EXPECT_THAT(fake.calls, testing::Contains("enumerate 16").Times(1));
}

}  // namespace
}  // namespace tarn::host::test
