// What the agent starts from: the MIB, the module's library, the configuration file.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "host/agent/directives.h"
#include "host/loader/module_loader.h"
#include "host/tables/mib_reader.h"
#include "host/tables/table_binding.h"
#include "support/captured_log.h"

// net-snmp forgets its table of textual conventions each time that it starts again in one process.
extern "C" const char *__lsan_default_suppressions() {
    return "leak:netsnmp_init_mib_internals\n";
}

namespace tarn::host::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

class SetUpFiles : public testing::Test {
  protected:
    SetUpFiles() {
        std::string name = (std::filesystem::temp_directory_path() / "tarn-test-XXXXXX").string();
        directory = mkdtemp(name.data());
        (void)setenv("MIBS", "", 1);
        (void)setenv("MIBDIRS", "", 1);
        (void)setenv("SNMPCONFPATH", "/nonexistent", 1);
    }
    ~SetUpFiles() override { std::filesystem::remove_all(directory); }
    std::string write(const std::string &name, const std::string &text) const {
        std::ofstream(directory + "/" + name) << text;
        return directory + "/" + name;
    }
    std::string directory;
    std::string error;
};

// net-snmp has one tree of all MIBs that were read.
class MibFiles : public SetUpFiles {
  protected:
    MibFiles() { netsnmp_init_mib(); }
    ~MibFiles() override { shutdown_mib(); }
};

TEST_F(MibFiles, DescribeTheTables) {
    const auto tables = read_mib_tables({TARN_MIBS "/base", TARN_MIBS}, "TARN-MIB", error);
    const auto found = std::find_if(tables.begin(), tables.end(), [](const TableSchema &schema) {
        return schema.name == "tarnPONChannelStateTable";
    });
    ASSERT_NE(found, tables.end()) << error;
    EXPECT_THAT(found->root, ElementsAre(1, 3, 6, 1, 4, 1, 32473, 1, 22, 1, 1));
    EXPECT_TRUE(found->per_slot());
    ASSERT_EQ(found->index.size(), 2U);
    EXPECT_EQ(found->index[1].type, ASN_UNSIGNED);
    ASSERT_EQ(found->columns.size(), 14U);
    EXPECT_EQ(found->columns[4].number, 5U);
    EXPECT_EQ(found->columns[4].type, ASN_INTEGER);
    EXPECT_TRUE(found->columns[4].writable);
    EXPECT_EQ(found->columns[5].type, ASN_OCTET_STR);
    EXPECT_FALSE(found->columns[5].writable);
    EXPECT_EQ(found->columns[13].number, 21U);
    EXPECT_THAT(found->columns[0].admitted, ElementsAre(std::pair(0, 15)));
    EXPECT_THAT(found->columns[3].admitted, IsEmpty());
    const auto modes = std::next(found);
    EXPECT_THAT(modes->columns[0].admitted, UnorderedElementsAre(std::pair(1, 1), std::pair(2, 2)));
}

TEST_F(MibFiles, OfAnotherModuleAreTold) {
    TableSchema schema;
    schema.columns = {{1, ASN_UNSIGNED, false}, {3, ASN_INTEGER, true}};
    using Columns = std::vector<column_description>;
    const auto difference = [&schema](const Columns &columns) { return column_difference(schema, columns); };
    EXPECT_EQ(difference({{1, ASN_UNSIGNED, 0}, {3, ASN_INTEGER, 1}}), "");
    EXPECT_EQ(difference({{1, ASN_UNSIGNED, 1}, {3, ASN_INTEGER, 1}}), "");  // more than it promises
    EXPECT_EQ(difference({{1, ASN_UNSIGNED, 0}, {3, ASN_OCTET_STR, 1}}), "column 3 has another type");
    EXPECT_EQ(difference({{1, ASN_UNSIGNED, 0}, {3, ASN_INTEGER, 0}}), "column 3 cannot be written");
    EXPECT_EQ(difference({{3, ASN_INTEGER, 1}}), "column 1 is not the module's");
    EXPECT_EQ(difference({{1, ASN_UNSIGNED, 0}, {2, ASN_INTEGER, 0}, {3, ASN_INTEGER, 1}}),
              "column 2 is not in the MIB");
    EXPECT_EQ(difference({{1, ASN_UNSIGNED, 0}, {3, ASN_INTEGER, 1}, {4, ASN_INTEGER, 0}}),
              "column 4 is not in the MIB");
}

constexpr const char *mib_head =
    "TEST-MIB DEFINITIONS ::= BEGIN\n"
    "IMPORTS MODULE-IDENTITY, OBJECT-TYPE, Unsigned32, enterprises FROM SNMPv2-SMI;\n"
    "test OBJECT IDENTIFIER ::= { enterprises 32473 9 }\n"
    "aTable OBJECT-TYPE SYNTAX SEQUENCE OF AEntry MAX-ACCESS not-accessible STATUS current DESCRIPTION \"\"\n"
    "::= { test 1 }\n"
    "aEntry OBJECT-TYPE SYNTAX AEntry MAX-ACCESS not-accessible STATUS current DESCRIPTION \"\"\n";

constexpr const char *mib_serial =
    "aSerial OBJECT-TYPE SYNTAX OCTET STRING (SIZE (0 | 8)) MAX-ACCESS not-accessible STATUS current\n"
    "DESCRIPTION \"\" ::= { aEntry 1 }\n"
    "aMac OBJECT-TYPE SYNTAX OCTET STRING (SIZE (6)) MAX-ACCESS not-accessible STATUS current\n"
    "DESCRIPTION \"\" ::= { aEntry 2 }\n"
    "aName OBJECT-TYPE SYNTAX OCTET STRING (SIZE (0..31)) MAX-ACCESS not-accessible STATUS current\n"
    "DESCRIPTION \"\" ::= { aEntry 3 }\n";

TEST_F(MibFiles, IndexObjectsSayWhetherTheirLengthIsEncoded) {
    write("TEST-MIB.txt", std::string(mib_head) + "INDEX { aSerial, aMac, aName } ::= { aTable 1 }\n" +
                              mib_serial +
                              "aValue OBJECT-TYPE SYNTAX Unsigned32 MAX-ACCESS read-only STATUS current\n"
                              "DESCRIPTION \"\" ::= { aEntry 4 }\nEND\n");
    const auto tables = read_mib_tables({TARN_MIBS "/base", directory}, "TEST-MIB", error);
    ASSERT_EQ(tables.size(), 1U) << error;
    EXPECT_FALSE(tables[0].per_slot());
    ASSERT_EQ(tables[0].index.size(), 3U);
    const IndexPart &serial = tables[0].index[0];
    EXPECT_TRUE(serial.length_prefixed && serial.minimum_length == 8 && serial.maximum_length == 8);
    const IndexPart &mac = tables[0].index[1];
    EXPECT_TRUE(!mac.length_prefixed && mac.minimum_length == 6 && mac.maximum_length == 6);
    const IndexPart &name = tables[0].index[2];
    EXPECT_TRUE(name.length_prefixed && name.minimum_length == 0 && name.maximum_length == 31);
    EXPECT_EQ(tables[0].columns.size(), 1U) << "what cannot be read is no column";
}

TEST_F(MibFiles, AMibThatIsNotWholeIsAnError) {
    const CapturedLog log;
    EXPECT_THAT(read_mib_tables({TARN_MIBS "/base"}, "NO-SUCH-MIB", error), IsEmpty());
    EXPECT_EQ(error, "the MIB NO-SUCH-MIB is in none of the MIB directories");
    EXPECT_THAT(read_mib_tables({"/nonexistent"}, "TEST-MIB", error), IsEmpty());
    EXPECT_EQ(error, "/nonexistent: not a directory of MIB files");
    write("TEST-MIB.txt",
          std::string(mib_head) + "INDEX { aSerial, aNumber } ::= { aTable 1 }\n" + mib_serial + "END\n");
    EXPECT_THAT(read_mib_tables({directory}, "TEST-MIB", error), IsEmpty());
    EXPECT_EQ(error, "aTable: the index object aNumber is not defined or has no type");
}

TEST_F(SetUpFiles, OnlyOurModulesAreLoaded) {
    EXPECT_EQ(Module::load(directory + "/none.so", error), nullptr);
    EXPECT_THAT(error, HasSubstr("none.so"));
    EXPECT_EQ(Module::load("libz.so.1", error), nullptr);
    EXPECT_EQ(error,
              "libz.so.1: not an agent module: mod_get_info, slot_initializer, slot_deinitializer, "
              "cleanup_lib or init_config_buffer is missing");
}

class Configuration : public SetUpFiles {
  protected:
    // Reads a file as the agent does; returns the number of problems.
    int read(const std::string &text) {
        path = write("agent.conf", text);
        register_directives("tarn-test");
        (void)netsnmp_ds_set_boolean(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_DONT_PERSIST_STATE, 1);
        (void)netsnmp_ds_set_string(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_OPTIONALCONFIG, path.c_str());
        return read_directives(settings, [] { init_snmp("tarn-test"); });
    }
    // net-snmp reads its files once, until it is shut down: after the log, which it would free.
    struct NetSnmp {
        ~NetSnmp() { snmp_shutdown("tarn-test"); }
    } net_snmp;
    Settings settings;
    std::string path;
    CapturedLog log{false};
    HostConfig config;
};

TEST_F(Configuration, TakesAllDirectives) {
    ASSERT_EQ(read("tarnModule /lib/module.so\n"
                   "tarnMibs /a:/b\n"
                   "tarnChassis unix:/run/chassis\n"
                   "tarnSlots 1-3,16\n"
                   "tarnCandidateSlots 2\n"
                   "tarnLockedONT 1 8 63\n"
                   "tarnCachePeriod 0\n"
                   "tarnSilentHold 7\n"
                   "tarnConfirmTime 30\n"
                   "tarnMaxBulk 500\n"
                   "tarnRowBudget 1000\n"
                   "tarnLog file /var/log/tarn\n"
                   "tarnLogLevel debug\n"),
              0)
        << testing::PrintToString(log.lines);
    ASSERT_TRUE(host_config(settings, config, error)) << error;
    EXPECT_EQ(config.module_path, "/lib/module.so");
    EXPECT_THAT(config.mib_directories, ElementsAre("/a", "/b"));
    EXPECT_EQ(config.chassis.socket_address.ss_family, AF_UNIX);
    EXPECT_EQ(config.served_slots, SlotSet(0b1000000000000111));
    EXPECT_EQ(config.configured.running, config.served_slots) << "unless it is given";
    EXPECT_EQ(config.configured.candidate, SlotSet(0b10));
    EXPECT_EQ(config.configured.locked_onts.count({0, 7, 63}), 1U);
    EXPECT_EQ(config.cache_period, 0);
    EXPECT_EQ(config.hold.count(), 7);
    EXPECT_EQ(config.confirm_time.count(), 30);
    EXPECT_EQ(config.row_budget, 1000U);
    EXPECT_EQ(settings.largest_bulk, 500);
    EXPECT_EQ(settings.log, "file /var/log/tarn");
    EXPECT_EQ(settings.log_level, 7);
}

TEST_F(Configuration, NamesFileAndLineOfEachMistake) {
    EXPECT_EQ(read("# a comment\n"
                   "tarnSlots 0-3\n"
                   "tarnSlots 4-2,\n"
                   "tarnSlots 1,,17\n"
                   "tarnChassis nowhere\n"
                   "tarnCachePeriod -1\n"
                   "tarnLockedONT 1 9 0\n"
                   "tarnLogLevel loud\n"
                   "tarnLog printer\n"
                   "tarnSlot 1\n"),
              9);
    EXPECT_THAT(
        log.lines,
        ElementsAre(
            path + ": line 2: Error: tarnSlots: expected slots from 1 to 16 such as 1-8,12, not \"0-3\"\n",
            path + ": line 3: Error: tarnSlots: expected slots from 1 to 16 such as 1-8,12, not \"4-2,\"\n",
            path + ": line 4: Error: tarnSlots: expected slots from 1 to 16 such as 1-8,12, not \"1,,17\"\n",
            path + ": line 5: Error: tarnChassis: expected unix:PATH or tcp:ADDRESS:PORT, not \"nowhere\"\n",
            path + ": line 6: Error: tarnCachePeriod: expected a number from 0 to 86400, not \"-1\"\n",
            path + ": line 7: Error: tarnLockedONT: expected SLOT CHANNEL ID, not \"1 9 0\"\n",
            path + ": line 8: Error: tarnLogLevel: expected error, warning, information or debug, not "
                   "\"loud\"\n",
            path + ": line 9: Error: tarnLog: expected stderr, syslog or file PATH, not \"printer\"\n",
            path + ": line 10: Warning: Unknown token: tarnSlot.\n"));
}

TEST_F(Configuration, NeedsAChassisAModuleAndTheMib) {
    EXPECT_FALSE(host_config(settings, config, error));
    EXPECT_EQ(error, "no chassis is given (tarnChassis)");
    settings.chassis = "unix:/run/chassis";
    EXPECT_FALSE(host_config(settings, config, error));
    EXPECT_EQ(error, "no module is given (tarnModule)");
    settings.module_path = "module.so";
    EXPECT_FALSE(host_config(settings, config, error));
    EXPECT_EQ(error, "no MIB directory is given (tarnMibs)");
}

}  // namespace
}  // namespace tarn::host::test
