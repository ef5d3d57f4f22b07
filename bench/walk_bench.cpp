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
#include <stdexcept>
#include <thread>
#include <vector>

#include "bench/plain_handler.h"
#include "host/agent/host.h"
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

std::vector<oid> root_of(const std::string &table) {
    std::string error;
    for (const host::TableSchema &schema : host::read_mib_tables({}, "TARN-MIB", error)) {
        if (schema.name == table) {
            return schema.root;
        }
    }
    throw std::runtime_error(table + " is not in the MIB");
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

WalkCost measure(const WalkBench &bench, const WorkDirectory &directory) {
    const std::string address = "udp:127.0.0.1:" TARN_BENCH_PORT;
    WalkClient manager(address, bench.repetitions);
    init_bench_agent(directory, address);
    host::HostConfig config;
    config.module_path = TARN_MODULE;
    config.mib_directories = mib_directories();
    config.chassis = *host::parse_chassis_address("unix:" + directory.file("chassis.socket"));
    std::string error;
    const std::unique_ptr<host::Host> agent = host::Host::start(config, error);
    if (agent == nullptr || init_master_agent() != 0) {
        throw std::runtime_error("the agent cannot be started: " + error);
    }
    (void)register_readfd(manager.descriptor(), note_manager, nullptr);
    const auto serve = [] {
        for (manager_speaks = false; !manager_speaks;) {
            (void)agent_check_and_process(1);
        }
    };
    WalkCost cost;
    const std::vector<oid> root = root_of(bench.table);
    const auto walk_cost = [&](const std::vector<oid> &subtree) {
        const double before = thread_cpu_nanoseconds();
        const std::size_t varbinds = manager.walk(subtree, serve);
        if (varbinds == 0 || (cost.varbinds != 0 && varbinds != cost.varbinds)) {
            throw std::runtime_error("walks differ: " + std::to_string(varbinds) + " varbinds");
        }
        cost.varbinds = varbinds;
        return (thread_cpu_nanoseconds() - before) / static_cast<double>(varbinds);
    };
    cost.first = walk_cost(root);

    std::vector<Varbind> varbinds;
    (void)manager.walk(root, serve, &varbinds);
    std::vector<oid> plain_root = root;
    plain_root.back() += 1'000'000;
    for (Varbind &varbind : varbinds) {
        std::copy(plain_root.begin(), plain_root.end(), varbind.name.begin());
    }
    register_plain_handler(plain_root, varbinds);

    // Whatever else the machine does only adds to a walk's cost.
    cost.table = cost.plain = std::numeric_limits<double>::max();
    for (int round = 0; round < bench.rounds; ++round) {
        cost.table = std::min(cost.table, walk_cost(root));
        cost.plain = std::min(cost.plain, walk_cost(plain_root));
    }
    unregister_readfd(manager.descriptor());
    agent->stop();
    snmp_shutdown("bench");
    shutdown_agent();
    return cost;
}

}  // namespace

WalkCost measure_walk(const WalkBench &bench) {
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
        // Neither the agent nor the manager reads what nobody named.
        (void)setenv("MIBS", "", 1);
        (void)setenv("MIBDIRS", "", 1);
        (void)setenv("SNMPCONFPATH", "/nonexistent", 1);
        try {
            const WalkCost cost = measure(bench, directory);
            if (write(result[1], &cost, sizeof cost) == sizeof cost) {
                status = EXIT_SUCCESS;
            }
        } catch (const std::exception &error) {
            (void)std::fprintf(stderr, "%s\n", error.what());
        }
        std::_Exit(status);
    }
    (void)close(result[1]);
    WalkCost cost;
    const bool whole = read(result[0], &cost, sizeof cost) == sizeof cost;
    (void)close(result[0]);
    (void)waitpid(process, nullptr, 0);
    if (!whole) {
        throw std::runtime_error("the measurement failed");
    }
    return cost;
}

}  // namespace tarn::bench
