// The core of the agent: the module, its tables and its slots inside a net-snmp agent that somebody else
// runs.
#ifndef TARN_HOST_AGENT_HOST_H
#define TARN_HOST_AGENT_HOST_H

#include <chrono>
#include <list>
#include <memory>
#include <string>
#include <vector>

#include "host/agent/agent_mib.h"
#include "host/agent/manager_requests.h"
#include "host/agent/notifications.h"
#include "host/board/chassis_address.h"
#include "host/board/ipc_client.h"
#include "host/board/ont_watch.h"
#include "host/board/slots.h"
#include "host/control/card_trace.h"
#include "host/control/control_commands.h"
#include "host/control/control_socket.h"
#include "host/loader/module_loader.h"
#include "host/services/firmware_files.h"
#include "host/tables/row_cache.h"
#include "host/tables/set_guard.h"
#include "host/tables/table.h"

namespace tarn::host {

struct HostConfig {
    std::string module_path;
    std::vector<std::string> mib_directories;
    ChassisAddress chassis;
    SlotSet served_slots = SlotSet().set();
    ConfiguredSlots configured{SlotSet().set(), SlotSet().set(), {}};
    int cache_period = 20;                   // seconds; 0: always stale
    std::chrono::seconds hold{1};            // for which a silent card is left alone between two probes
    std::chrono::seconds confirm_time{600};  // after which a card takes back a commit; 0: never
    FirmwareDirectories firmware = default_firmware_directories();
    int most_notifications = 60;  // of TARN-AGENT-MIB, a minute
    std::size_t row_budget = 2'000'000;
    std::string control;  // path of the control socket; empty: none
};

class Host {
  public:
    // Loads the module, starts its slots and registers its tables, between net-snmp's init_snmp and the first
    // request. Null, and the reason in `error`, when that cannot be.
    static std::unique_ptr<Host> start(const HostConfig &config, std::string &error);
    // Stops the slots and takes the tables out of net-snmp. net-snmp may still hold scalars of the module:
    // shut it down before the Host goes, since then the module is unloaded.
    void stop();
    ~Host();
    Host(const Host &) = delete;
    Host &operator=(const Host &) = delete;

    [[nodiscard]] const Slots &slots() const { return *slots_; }
    [[nodiscard]] std::size_t tables() const { return tables_.size(); }
    [[nodiscard]] const IpcClient &cards() const { return ipc_; }

  private:
    explicit Host(const HostConfig &config)
        : ipc_(config.chassis, config.hold),
          requests_(ipc_, [this](std::span<const oid> name) { return slot_of(name); }),
          notifications_(config.most_notifications, send_v2trap),
          cache_(config.row_budget) {}
    bool open_control(const HostConfig &config, std::string &error);
    void follow_links();
    bool chassis_came_back();
    void forget_cards();
    void pass_rules_on();
    void watch_cards();
    void tell_of_commits();
    [[nodiscard]] AgentFigures figures() const;
    void serve_board();
    int slot_of(std::span<const oid> name);
    static void board_ready(int descriptor, void *host);
    static void link_alarm(unsigned alarm, void *host);

    std::unique_ptr<Module> module_;
    IpcClient ipc_;
    ManagerRequests requests_;
    Notifications notifications_;
    OntWatch onts_;
    CardTrace trace_;
    AgentMib mib_;
    RowCache cache_;
    SetGuard guard_;
    std::unique_ptr<Slots> slots_;
    std::list<Table> tables_;
    std::vector<netsnmp_handler_registration *> registrations_;
    std::unique_ptr<ControlCommands> commands_;
    std::unique_ptr<ControlSocket> control_;
    unsigned alarm_ = 0;
    bool chassis_left_ = false;                            // since its services were all there
    std::uint64_t chassis_endings_ = 0;                    // of connections to its services
    std::chrono::steady_clock::time_point chassis_due_{};  // its return is not acted on before this
    bool rules_changed_ = false;                           // of automatic updates, and no card was told
    std::chrono::steady_clock::time_point rules_due_{};    // not before this after a failure
};

}  // namespace tarn::host

#endif
