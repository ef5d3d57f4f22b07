// The module's files in a directory of the test process, and stand-ins for the programs that it runs.
#ifndef TARN_TESTS_UNIT_MODULE_SUPPORT_FILE_TREE_H
#define TARN_TESTS_UNIT_MODULE_SUPPORT_FILE_TREE_H

#include <sys/resource.h>

#include <csignal>
#include <optional>
#include <string>
#include <vector>

#include "support/scripted_board.h"

// For as long as it lives no file takes a byte, as on a full disk.
class FullDisk {
  public:
    FullDisk() {
        static_cast<void>(std::signal(SIGXFSZ, SIG_IGN));
        getrlimit(RLIMIT_FSIZE, &before_);
        const rlimit none{0, before_.rlim_max};
        setrlimit(RLIMIT_FSIZE, &none);
    }
    FullDisk(const FullDisk &) = delete;
    FullDisk &operator=(const FullDisk &) = delete;
    ~FullDisk() { setrlimit(RLIMIT_FSIZE, &before_); }

  private:
    rlimit before_{};
};

// Starts every test with an empty tree in which the module's directories exist, and with no stand-ins.
class FileTest : public ModuleTest {
  protected:
    void SetUp() override;

    // A path of the module inside the tree.
    static std::string at(const std::string &path);
    static void write(const std::string &path, const std::string &content);
    // Nothing where there is no such file.
    static std::optional<std::string> read(const std::string &path);

    // Puts a shell script of this name first in the search path. Each run leaves its name and arguments as a
    // line of commands().
    static void stand_in(const std::string &program, const std::string &script);
    static std::vector<std::string> commands();
};

#endif
