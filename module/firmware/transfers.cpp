#include "module/firmware/transfers.h"

#include <spawn.h>
#include <sys/wait.h>

#include <cerrno>
#include <condition_variable>
#include <csignal>
#include <mutex>
#include <set>

extern char **environ;

namespace tarn {

namespace {

struct Transfers {
    std::mutex lock;
    std::condition_variable changed;
    int under_way = 0;
    std::set<pid_t> commands;  // leaders of their process groups
    bool ending = false;
};

// Never destroyed: a thread of the module may leave it while the process ends.
Transfers &transfers() {
    static auto *all = new Transfers;
    return *all;
}

// The new process, or -1.
pid_t start(const std::string &command) {
    posix_spawnattr_t attributes;
    if (posix_spawnattr_init(&attributes) != 0) {
        return -1;
    }
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP);
    posix_spawnattr_setpgroup(&attributes, 0);
    std::string shell = "sh";
    std::string option = "-c";
    std::string text = command;
    char *arguments[] = {shell.data(), option.data(), text.data(), nullptr};
    pid_t process = -1;
    const int error = posix_spawn(&process, "/bin/sh", nullptr, &attributes, arguments, environ);
    posix_spawnattr_destroy(&attributes);
    return error == 0 ? process : -1;
}

}  // namespace

Transfer::Transfer() {
    const std::lock_guard hold(transfers().lock);
    ++transfers().under_way;
}

Transfer::~Transfer() {
    const std::lock_guard hold(transfers().lock);
    --transfers().under_way;
    transfers().changed.notify_all();
}

int run_transfer_command(const std::string &command) {
    Transfers &all = transfers();
    pid_t process = -1;
    {
        const std::lock_guard hold(all.lock);
        process = all.ending ? -1 : start(command);
        if (process < 0) {
            return -1;
        }
        all.commands.insert(process);
    }
    // Not reaped before it is out of the list: until then nobody else can have its number.
    siginfo_t ended{};
    while (waitid(P_PID, static_cast<id_t>(process), &ended, WEXITED | WNOWAIT) != 0 && errno == EINTR) {
    }
    {
        const std::lock_guard hold(all.lock);
        all.commands.erase(process);
    }
    int status = -1;
    while (waitpid(process, &status, 0) < 0 && errno == EINTR) {
    }
    return status;
}

void end_transfers() {
    Transfers &all = transfers();
    std::unique_lock hold(all.lock);
    all.ending = true;
    for (const pid_t process : all.commands) {
        kill(-process, SIGTERM);
    }
    all.changed.wait(hold, [&all] { return all.under_way == 0; });
    all.ending = false;
}

}  // namespace tarn
