// The agent's configuration: the command line's options over a file of net-snmp's and the agent's directives.
#ifndef TARN_HOST_AGENT_CONFIGURATION_H
#define TARN_HOST_AGENT_CONFIGURATION_H

#include <string>
#include <utility>

#include "host/agent/directives.h"

namespace tarn::host {

struct Options {
    std::string config;
    std::string module;
    std::string mibs;
    std::string chassis;
    std::string control;
    std::string log;
    std::string state;
    bool foreground = false;
    bool directives = false;  // list them and end
};

class Configuration {
  public:
    explicit Configuration(Options options) : options_(std::move(options)) {}

    // Starts net-snmp with the file and opens the log. False, with the reasons in the log, when the agent
    // must not start with this configuration.
    bool read(const char *application);
    // Opens the log and reads the file anew, and applies what can change while the agent runs: who may ask,
    // who is told, levels, periods, limits and directories, not where things are. What is wrong is left as it
    // was.
    void read_again();

    [[nodiscard]] const Options &options() const { return options_; }
    [[nodiscard]] const Settings &settings() const { return settings_; }
    // As net-snmp takes them, separated by commas.
    [[nodiscard]] const std::string &addresses() const { return addresses_; }

  private:
    void override_settings(Settings &settings) const;

    Options options_;
    Settings settings_;
    std::string addresses_;
};

}  // namespace tarn::host

#endif
