#include "bench/walk_bench.h"

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <limits>
#include <map>
#include <stdexcept>
#include <thread>
#include <vector>

#include "bench/plain_handler.h"
#include "host/agent/host.h"
#include "host/services/cache_clock.h"
#include "host/services/logger.h"
#include "host/tables/mib_reader.h"
#include "tarn/module_api.h"

extern char **environ;  // NOLINT(readability-redundant-declaration)

// As in tarn-agentd, so that both sides of the comparison are without the files of TCP wrappers.
extern "C" int hosts_ctl(char * /*daemon*/, char * /*client_name*/, char * /*client_address*/,
                         char * /*user*/) {
    return 1;
}

namespace tarn::bench {
namespace {

namespace fs = std::filesystem;

std::vector<std::string> mib_directories() {
    return {TARN_MIBS "/base", TARN_MIBS};
}

// A directory for sockets and files that goes with its owner.
class WorkDirectory {
  public:
    WorkDirectory() {
        std::string name = (fs::temp_directory_path() / "tarn-bench-XXXXXX").string();
        if (mkdtemp(name.data()) == nullptr) {
            throw std::runtime_error("no temporary directory");
        }
        path_ = name;
    }
    ~WorkDirectory() { fs::remove_all(path_); }
    WorkDirectory(const WorkDirectory &) = delete;
    WorkDirectory &operator=(const WorkDirectory &) = delete;
    [[nodiscard]] std::string file(const char *name) const { return (path_ / name).string(); }

  private:
    fs::path path_;
};

class Chassis {
  public:
    Chassis(const WorkDirectory &directory, const std::string &scenario) {
        const std::string scenario_file = directory.file("scenario.yaml");
        const std::string socket = directory.file("chassis.socket");
        std::ofstream(scenario_file) << scenario;
        std::array<std::string, 7> arguments{TARN_CHASSISD,
                                             "--socket",
                                             socket,
                                             "--scenario",
                                             scenario_file,
                                             "--log",
                                             directory.file("chassis.log")};
        std::vector<char *> argv;
        for (std::string &argument : arguments) {
            argv.push_back(argument.data());
        }
        argv.push_back(nullptr);
        if (posix_spawn(&process_, TARN_CHASSISD, nullptr, nullptr, argv.data(), environ) != 0) {
            throw std::runtime_error("the chassis cannot be started");
        }
        while (!fs::exists(socket)) {
            if (waitpid(process_, nullptr, WNOHANG) != 0) {
                throw std::runtime_error("the chassis ended at once");
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        }
    }
    ~Chassis() {
        (void)kill(process_, SIGTERM);
        (void)waitpid(process_, nullptr, 0);
    }
    Chassis(const Chassis &) = delete;
    Chassis &operator=(const Chassis &) = delete;

  private:
    pid_t process_ = 0;
};

double thread_cpu_nanoseconds() {
    timespec used{};
    (void)clock_gettime(CLOCK_THREAD_CPUTIME_ID, &used);
    return static_cast<double>(used.tv_sec) * 1e9 + static_cast<double>(used.tv_nsec);
}

bool manager_speaks = false;

void note_manager(int /*descriptor*/, void * /*unused*/) {
    manager_speaks = true;
}

// Neither the agent nor the manager reads what nobody named.
void read_only_named_files() {
    (void)setenv("MIBS", "", 1);
    (void)setenv("MIBDIRS", "", 1);
    (void)setenv("SNMPCONFPATH", "/nonexistent", 1);
}

std::vector<host::TableSchema> read_tables() {
    std::string error;
    std::vector<host::TableSchema> tables = host::read_mib_tables(mib_directories(), "TARN-MIB", error);
    if (tables.empty()) {
        throw std::runtime_error("the MIB cannot be read: " + error);
    }
    return tables;
}

void init_bench_agent(const WorkDirectory &directory, const std::string &address) {
    const std::string configuration = directory.file("agent.conf");
    std::ofstream(configuration) << "agentAddress " << address << "\nrocommunity public 127.0.0.1\n";
    (void)host::open_log("file " + directory.file("agent.log"));
    host::set_log_level(host::log_level::error);
    for (const int which : {NETSNMP_DS_LIB_DONT_PERSIST_STATE, NETSNMP_DS_LIB_DISABLE_PERSISTENT_LOAD}) {
        (void)netsnmp_ds_set_boolean(NETSNMP_DS_LIBRARY_ID, which, 1);
    }
    (void)netsnmp_ds_set_boolean(NETSNMP_DS_APPLICATION_ID, NETSNMP_DS_AGENT_DONT_LOG_TCPWRAPPERS_CONNECTS,
                                 1);
    // As the agent itself: an answer that UDP does not carry is cut. The last GETBULK reaches into what
    // follows the table, which may be long texts.
    (void)netsnmp_ds_set_int(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_MSG_SEND_MAX, 65'000);
    (void)netsnmp_ds_set_string(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_OPTIONALCONFIG, configuration.c_str());
    char no_smux[] = "!smux";
    add_to_init_list(no_smux);
    (void)init_agent("bench");
    init_snmp("bench");
}

// Rows are counted in the column that shows most of them.
std::size_t rows_of(const std::vector<Varbind> &varbinds, std::size_t column_at) {
    std::map<oid, std::size_t> rows;
    for (const Varbind &varbind : varbinds) {
        ++rows[varbind.name[column_at]];
    }
    std::size_t most = 0;
    for (const auto &[column, count] : rows) {
        most = std::max(most, count);
    }
    return most;
}

// An agent on the chassis, walked by a manager.
class WalkedAgent {
  public:
    WalkedAgent(const WalkBench &bench, const WorkDirectory &directory)
        : rounds_(bench.rounds), manager_(address, bench.repetitions) {
        init_bench_agent(directory, address);
        host::HostConfig config;
        config.module_path = TARN_MODULE;
        config.mib_directories = mib_directories();
        config.chassis = *host::parse_chassis_address("unix:" + directory.file("chassis.socket"));
        config.cache_period = 3600;
        std::string error;
        host_ = host::Host::start(config, error);
        if (host_ == nullptr || init_master_agent() != 0) {
            throw std::runtime_error("the agent cannot be started: " + error);
        }
        (void)register_readfd(manager_.descriptor(), note_manager, nullptr);
    }
    ~WalkedAgent() {
        unregister_readfd(manager_.descriptor());
        host_->stop();
        snmp_shutdown("bench");
        shutdown_agent();
    }
    WalkedAgent(const WalkedAgent &) = delete;
    WalkedAgent &operator=(const WalkedAgent &) = delete;

    WalkCost measure(const std::vector<oid> &root) {
        WalkCost cost;
        host::expire_cached_data();
        const std::uint64_t requests = card_requests();
        cost.first = walk(root, cost);
        const std::uint64_t requests_of_first = card_requests();
        cost.requests_cold = requests_of_first - requests;
        if (cost.varbinds == 0) {
            return cost;
        }
        std::vector<Varbind> varbinds;
        (void)manager_.walk(root, serve, &varbinds);
        cost.requests_warm = card_requests() - requests_of_first;
        cost.rows = rows_of(varbinds, root.size() + 1);
        std::vector<oid> plain_root = root;
        plain_root.back() += 1'000'000;
        for (Varbind &varbind : varbinds) {
            std::copy(plain_root.begin(), plain_root.end(), varbind.name.begin());
        }
        const PlainHandler plain(plain_root, varbinds);
        // Whatever else the machine does only adds to a walk's cost.
        cost.table = cost.plain = std::numeric_limits<double>::max();
        for (int round = 0; round < rounds_; ++round) {
            cost.table = std::min(cost.table, walk(root, cost));
            cost.plain = std::min(cost.plain, walk(plain_root, cost));
        }
        return cost;
    }

  private:
    static constexpr const char *address = "udp:127.0.0.1:" TARN_BENCH_PORT;

    static void serve() {
        for (manager_speaks = false; !manager_speaks;) {
            (void)agent_check_and_process(1);
        }
    }

    // CPU nanoseconds a varbind; 0 when there is none.
    double walk(const std::vector<oid> &subtree, WalkCost &cost) {
        const double before = thread_cpu_nanoseconds();
        const std::size_t varbinds = manager_.walk(subtree, serve);
        if (cost.varbinds != 0 && varbinds != cost.varbinds) {
            throw std::runtime_error("walks differ: " + std::to_string(varbinds) + " varbinds");
        }
        cost.varbinds = varbinds;
        return varbinds != 0 ? (thread_cpu_nanoseconds() - before) / static_cast<double>(varbinds) : 0;
    }

    [[nodiscard]] std::uint64_t card_requests() const {
        std::uint64_t requests = 0;
        for (int slot = 0; slot < host::IpcClient::slots; ++slot) {
            for (const auto &[command, figures] : host_->cards().figures(slot).commands) {
                requests +=
                    figures.answered + figures.refused + figures.timed_out + figures.lost + figures.other;
            }
        }
        return requests;
    }

    int rounds_;
    WalkClient manager_;
    std::unique_ptr<host::Host> host_;
};

std::vector<WalkCost> measure(const WalkBench &bench, const WorkDirectory &directory) {
    WalkedAgent agent(bench, directory);
    const std::vector<host::TableSchema> schemas = read_tables();
    std::vector<WalkCost> costs;
    for (const std::string &table : bench.tables) {
        const auto schema = std::find_if(schemas.begin(), schemas.end(),
                                         [&](const host::TableSchema &s) { return s.name == table; });
        if (schema == schemas.end()) {
            throw std::runtime_error(table + " is not in the MIB");
        }
        costs.push_back(agent.measure(schema->root));
    }
    return costs;
}

}  // namespace

std::vector<std::string> all_tables() {
    read_only_named_files();
    netsnmp_init_mib();
    std::vector<std::string> names;
    for (const host::TableSchema &schema : read_tables()) {
        names.push_back(schema.name);
    }
    return names;
}

std::vector<WalkCost> measure_walks(const WalkBench &bench) {
    const WorkDirectory directory;
    const Chassis chassis(directory, bench.scenario);
    // net-snmp and the module start only once in a process.
    std::array<int, 2> result{};
    if (pipe(result.data()) != 0) {
        throw std::runtime_error("pipe failed");
    }
    const pid_t process = fork();
    if (process == 0) {
        int status = EXIT_FAILURE;
        read_only_named_files();
        try {
            const std::vector<WalkCost> costs = measure(bench, directory);
            const auto size = static_cast<ssize_t>(costs.size() * sizeof(WalkCost));
            if (write(result[1], costs.data(), static_cast<std::size_t>(size)) == size) {
                status = EXIT_SUCCESS;
            }
        } catch (const std::exception &error) {
            (void)std::fprintf(stderr, "%s\n", error.what());
        }
        std::_Exit(status);
    }
    (void)close(result[1]);
    std::vector<WalkCost> costs(bench.tables.size());
    // One write, and small enough for a pipe to take it whole.
    const auto size = static_cast<ssize_t>(costs.size() * sizeof(WalkCost));
    const bool whole = read(result[0], costs.data(), static_cast<std::size_t>(size)) == size;
    (void)close(result[0]);
    (void)waitpid(process, nullptr, 0);
    if (!whole) {
        throw std::runtime_error("the measurement failed");
    }
    return costs;
}

}  // namespace tarn::bench
