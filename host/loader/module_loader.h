// The shared library with the managed objects: loaded, checked, asked for its callbacks by name.
#ifndef TARN_HOST_LOADER_MODULE_LOADER_H
#define TARN_HOST_LOADER_MODULE_LOADER_H

#include <memory>
#include <string>
#include <vector>

#include "tarn/module_api.h"

namespace tarn::host {

class Module {
  public:
    // Loads the library and asks who it is. Null, and the reason in `error`, for a library that is not ours.
    static std::unique_ptr<Module> load(const std::string &path, std::string &error);
    ~Module();
    Module(const Module &) = delete;
    Module &operator=(const Module &) = delete;

    [[nodiscard]] const ModuleDescriptor &descriptor() const { return descriptor_; }

    // The exported function of this name, null where there is none.
    template <class Function>
    Function *function(const std::string &name) const {
        return reinterpret_cast<Function *>(symbol(name));
    }

    // The tables whose init_TABLE_handlers the library exports, by name.
    [[nodiscard]] std::vector<std::string> table_names() const;

    slot_function *slot_initializer = nullptr;
    slot_function *slot_deinitializer = nullptr;
    cleanup_lib_function *cleanup_lib = nullptr;
    init_handlers_function *init_config_buffer = nullptr;

  private:
    explicit Module(void *handle) : handle_(handle) {}
    [[nodiscard]] void *symbol(const std::string &name) const;

    void *handle_;
    ModuleDescriptor descriptor_{};
};

}  // namespace tarn::host

#endif
