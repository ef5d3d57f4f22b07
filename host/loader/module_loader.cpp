#include "host/loader/module_loader.h"

#include <dlfcn.h>

#include <string_view>

#include "host/loader/elf_symbols.h"

namespace tarn::host {
namespace {

constexpr std::string_view family = "mod_snmp_agent";

}  // namespace

std::unique_ptr<Module> Module::load(const std::string &path, std::string &error) {
    // Lazy: services that no loaded table calls need not exist.
    void *handle = dlopen(path.c_str(), RTLD_LAZY | RTLD_LOCAL);
    if (handle == nullptr) {
        error = dlerror();
        return nullptr;
    }
    std::unique_ptr<Module> module(new Module(handle));
    auto *get_info = module->function<mod_get_info_function>("mod_get_info");
    module->slot_initializer = module->function<slot_function>("slot_initializer");
    module->slot_deinitializer = module->function<slot_function>("slot_deinitializer");
    module->cleanup_lib = module->function<cleanup_lib_function>("cleanup_lib");
    module->init_config_buffer = module->function<init_handlers_function>("init_config_buffer");
    if (get_info == nullptr || module->slot_initializer == nullptr || module->slot_deinitializer == nullptr ||
        module->cleanup_lib == nullptr || module->init_config_buffer == nullptr) {
        error = path +
                ": not an agent module: mod_get_info, slot_initializer, slot_deinitializer, cleanup_lib or "
                "init_config_buffer is missing";
        return nullptr;
    }
    const int result = get_info(&module->descriptor_);
    module->descriptor_.family[sizeof module->descriptor_.family - 1] = '\0';
    module->descriptor_.variant[sizeof module->descriptor_.variant - 1] = '\0';
    if (result != 0 || module->descriptor_.family != family) {
        error = path + ": a module of another family";
        return nullptr;
    }
    if (auto *init_common = module->function<init_handlers_function>("init_common"); init_common != nullptr) {
        init_common();
    }
    return module;
}

Module::~Module() {
    (void)dlclose(handle_);
}

void *Module::symbol(const std::string &name) const {
    return dlsym(handle_, name.c_str());
}

std::vector<std::string> Module::table_names() const {
    constexpr std::string_view prefix = "init_";
    constexpr std::string_view suffix = "_handlers";
    constexpr std::string_view table_suffix = "Table";
    std::vector<std::string> names;
    for (std::string_view name : defined_symbols(handle_)) {
        if (!name.starts_with(prefix) || !name.ends_with(suffix)) {
            continue;
        }
        name = name.substr(prefix.size(), name.size() - prefix.size() - suffix.size());
        if (name.ends_with(table_suffix)) {
            names.emplace_back(name);
        }
    }
    return names;
}

}  // namespace tarn::host
