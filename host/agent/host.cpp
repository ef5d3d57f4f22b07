#include "host/agent/host.h"

#include <net-snmp/library/fd_event_manager.h>

#include <algorithm>
#include <utility>

#include "host/agent/figures.h"
#include "host/services/agent_thread.h"
#include "host/services/cache_clock.h"
#include "host/services/logger.h"
#include "host/tables/mib_reader.h"
#include "host/tables/table_binding.h"
#include "host/tables/table_registration.h"

namespace tarn::host {
namespace {

constexpr const char *mib_module = "TARN-MIB";
constexpr unsigned link_check_seconds = 1;
// What the rules of automatic updates are written through.
constexpr std::string_view rules_table = "tarnONTAutoUpdateTable";
constexpr std::string_view rules_switch = "tarnONTAutoUpdateEnabled";
constexpr int rules_slot = 0;  // whose card reads the rules for all
constexpr std::chrono::seconds rules_patience{30};
// How long the agent waits at its start for the chassis to say which slots have cards.
constexpr std::chrono::seconds start_patience{2};

using read_rules_function = int();

}  // namespace

std::unique_ptr<Host> Host::start(const HostConfig &config, std::string &error) {
    std::unique_ptr<Host> host(new Host(config));
    std::vector<TableSchema> schemas = read_mib_tables(config.mib_directories, mib_module, error);
    if (schemas.empty()) {
        return nullptr;
    }
    set_cache_period(config.cache_period);
    set_configured_slots(config.configured);
    set_ipc_client(&host->ipc_);
    set_firmware_directories(config.firmware);
    become_agent_thread();
    host->module_ = Module::load(config.module_path, error);
    if (host->module_ == nullptr) {
        return nullptr;
    }
    const ModuleDescriptor &descriptor = host->module_->descriptor();
    log_add(log_level::information, "module %s, %s, release %u.%u.%u.%u\n", descriptor.family,
            descriptor.variant, descriptor.version[1], descriptor.version[2], descriptor.version[3],
            descriptor.version[4]);
    host->slots_ =
        std::make_unique<Slots>(config.served_slots, host->module_->slot_initializer,
                                host->module_->slot_deinitializer, host->module_->init_config_buffer);
    host->guard_.watch(true);
    host->guard_.tell([self = host.get()](std::string_view name) {
        self->rules_changed_ = self->rules_changed_ || name == rules_table || name == rules_switch;
    });
    if (!host->slots_->start_chassis()) {
        error = config.module_path + ": the module cannot start its chassis-wide stores";
        return nullptr;
    }
    host->ipc_.refresh_links();
    host->ipc_.wait_for_links(std::chrono::steady_clock::now() + start_patience);
    host->follow_links();
    for (BoundTable &bound : bind_tables(std::move(schemas), *host->module_)) {
        Table &table =
            host->tables_.emplace_back(std::move(bound.schema), bound.callbacks, host->cache_, *host->slots_);
        netsnmp_handler_registration *registration = register_table(table);
        if (registration == nullptr) {
            error = table.schema().name + ": net-snmp refuses to register it";
            return nullptr;
        }
        host->registrations_.push_back(registration);
    }
    host->guard_.watch(false);
    if (!config.control.empty() && !host->open_control(config, error)) {
        return nullptr;
    }
    if (register_readfd(host->ipc_.descriptor(), board_ready, host.get()) != FD_REGISTERED_OK) {
        error = "net-snmp takes no more descriptors";
        return nullptr;
    }
    host->watch_cards();
    if (!host->mib_.register_objects(host->ipc_, [self = host.get()] { return self->figures(); })) {
        error = "net-snmp refuses to register the agent's own objects";
        return nullptr;
    }
    set_manager_requests(&host->requests_);
    host->alarm_ = snmp_alarm_register(link_check_seconds, SA_REPEAT, link_alarm, host.get());
    return host;
}

bool Host::open_control(const HostConfig &config, std::string &error) {
    commands_ =
        std::make_unique<ControlCommands>(*module_, *slots_, config.confirm_time, [this] { forget_cards(); });
    commands_->observe(ipc_, [this] { return figures(); });
    control_ = ControlSocket::open(
        config.control, [this](const std::string &line) { return commands_->answer(line); }, error,
        [this](const std::string &lines, std::function<void()> work) {
            if (ControlCommands::is_question(lines)) {
                work();
            } else {
                requests_.change({}, std::move(work));
            }
        });
    if (control_ != nullptr) {
        control_->take_over = [this](const std::string &line, int connection) {
            return trace_.take_over(line, connection);
        };
    }
    return control_ != nullptr;
}

AgentFigures Host::figures() const {
    AgentFigures figures = gather_figures(requests_, tables_);
    figures.notifications_sent = notifications_.sent();
    figures.notifications_held_back = notifications_.held_back();
    return figures;
}

// Nothing is sent from inside a request: what there is to tell is left for the agent's next turn.
void Host::watch_cards() {
    // What finishes while a request is served raises no event of its own.
    ipc_.on_finished([this](const Exchange &exchange) {
        trace_.finished(exchange);
        for (const OntChange &change : onts_.take(exchange.slot, exchange.request, exchange.answer)) {
            leave_for_agent([this, slot = exchange.slot, change] {
                notifications_.notify({.what = change.lost ? Notification::ont_lost : Notification::ont_back,
                                       .slot = slot,
                                       .ont = change});
            });
        }
        ipc_.wake();
    });
    ipc_.on_sent([this](const Exchange &exchange) { trace_.sent(exchange); });
    ipc_.on_hold([this](int slot, bool held) {
        leave_for_agent([this, slot, held, reason = ipc_.reason(slot)] {
            if (held) {
                notifications_.notify({.what = Notification::card_silent, .slot = slot, .reason = reason});
            } else {
                notifications_.notify({.what = Notification::card_answering, .slot = slot});
            }
        });
        ipc_.wake();
    });
    slots_->on_change = [this](int slot, bool up) {
        onts_.forget(slot);
        if (up) {
            notifications_.notify({.what = Notification::card_up, .slot = slot});
        } else {
            notifications_.notify(
                {.what = Notification::card_down, .slot = slot, .reason = ipc_.reason(slot)});
        }
    };
}

void Host::tell_of_commits() {
    for (const auto &[slot, left] : commands_->take_expiring()) {
        notifications_.notify({.what = Notification::commit_expiring, .slot = slot, .left = left});
    }
}

// The slot that an OID is about: what is in no table of line cards is about the chassis.
int Host::slot_of(std::span<const oid> name) {
    for (const Table &table : tables_) {
        const TableSchema &schema = table.schema();
        const std::size_t prefix = schema.prefix_length();
        if (schema.per_slot() && name.size() > prefix && name[prefix] > 0 &&
            name[prefix] <= chassis_slot::line_cards &&
            std::equal(schema.root.begin(), schema.root.end(), name.begin())) {
            return static_cast<int>(name[prefix]) - 1;
        }
    }
    return profiles_slot;
}

// What was read of the cards and of the chassis is read again.
void Host::forget_cards() {
    cache_.clear();
    expire_cached_data();
    requests_.forget_answers();
}

// Whether the chassis' own services are there again after one of them was not: what they knew may be another
// than what was read of them. One that starts anew at once is only seen to end its connections.
bool Host::chassis_came_back() {
    std::uint64_t endings = 0;
    bool linked = true;
    for (int service = profiles_slot; service < IpcClient::slots; ++service) {
        endings += ipc_.endings(service);
        linked = linked && ipc_.link(service);
    }
    chassis_left_ = chassis_left_ || !linked || endings != chassis_endings_;
    chassis_endings_ = endings;
    // One that comes and goes all the time must not keep what is known of the cards from being used.
    const auto now = std::chrono::steady_clock::now();
    if (!linked || !chassis_left_ || now < chassis_due_) {
        return false;
    }
    chassis_left_ = false;
    chassis_due_ = now + std::chrono::seconds(10);
    return true;
}

void Host::follow_links() {
    // What a change holds of its slot must stay until it is done.
    if (requests_.is_changing()) {
        return;
    }
    if (chassis_came_back()) {
        forget_cards();
    }
    if (slots_->follow([this](int slot) { return ipc_.link(slot); })) {
        cache_.clear();
    }
}

// After the SETs are answered: a card may take its time to read the rules.
// A card that is away or does not answer is told once it is there, or half a minute later.
void Host::pass_rules_on() {
    const auto now = std::chrono::steady_clock::now();
    auto *read_rules = module_->function<read_rules_function>("parse_ont_autoupdate_file");
    if (!rules_changed_ || read_rules == nullptr || !slots_->is_up(rules_slot) || now < rules_due_) {
        return;
    }
    rules_changed_ = read_rules() != 0;
    rules_due_ = rules_changed_ ? now + rules_patience : decltype(now){};
}

void Host::board_ready(int /*descriptor*/, void *host) {
    static_cast<Host *>(host)->serve_board();
}

void Host::serve_board() {
    ipc_.process_for_all();
    run_left_work();
    if (requests_.serve_ready()) {
        ipc_.wake();
    }
    follow_links();
}

void Host::link_alarm(unsigned /*alarm*/, void *host) {
    run_left_work();
    write_due_repeats(std::chrono::steady_clock::now());
    auto &self = *static_cast<Host *>(host);
    self.trace_.tidy();
    self.notifications_.tell_held_back();
    self.ipc_.refresh_links();
    self.follow_links();
    if (self.rules_changed_ && !self.requests_.is_changing()) {
        self.requests_.change(touched_slots(profiles_slot), [&self] { self.pass_rules_on(); });
    }
    if (self.commands_ != nullptr) {
        self.tell_of_commits();
    }
    if (self.commands_ != nullptr && !self.requests_.is_changing()) {
        self.commands_->follow_commits();
    }
}

void Host::stop() {
    set_manager_requests(nullptr);
    ipc_.on_hold({});
    requests_.stop();
    control_.reset();
    mib_.unregister_objects();
    (void)unregister_readfd(ipc_.descriptor());
    if (alarm_ != 0) {
        snmp_alarm_unregister(alarm_);
        alarm_ = 0;
    }
    for (netsnmp_handler_registration *registration : registrations_) {
        unregister_table(registration);
    }
    registrations_.clear();
    cache_.clear();
    if (slots_ != nullptr) {
        (void)module_->cleanup_lib();
        slots_.reset();
    }
    run_left_work();
    flush_log();
}

Host::~Host() {
    stop();
    set_ipc_client(nullptr);
}

}  // namespace tarn::host
