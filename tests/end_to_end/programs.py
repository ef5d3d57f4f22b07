"""The real programs, started in a directory of their own and watched until they end."""

import os
import re
import signal
import socket
import subprocess
import time
from pathlib import Path

BUILD = Path(os.environ["TARN_BUILD_DIR"])
SOURCE = Path(__file__).resolve().parents[2]
MIBS = f"{SOURCE}/mibs/base:{SOURCE}/mibs"
MODULE = BUILD / "lib" / "mod_snmp_agent-blade-8.so"

# A program that hangs fails its test, however slow the machine and the sanitizer.
PATIENCE = 60
SANITIZER_REPORT = re.compile(r"ERROR: \w+Sanitizer|WARNING: ThreadSanitizer|runtime error:|SUMMARY: \w+Sanitizer")


def free_port():
    with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as probe:
        probe.bind(("127.0.0.1", 0))
        return probe.getsockname()[1]


def wait_until(condition, what):
    deadline = time.monotonic() + PATIENCE
    while not condition():
        assert time.monotonic() < deadline, f"waited in vain for {what}"
        time.sleep(0.02)


class Program:
    """One process; its output is in `<name>.log`."""

    def __init__(self, name, arguments, directory):
        self.name = name
        self.directory = Path(directory)
        self.log_file = self.directory / f"{name}.log"
        with self.log_file.open("ab") as log:
            self.process = subprocess.Popen([BUILD / "bin" / name, *map(str, arguments)], cwd=directory,
                                            env={"TARN_ROOT": str(self.directory / "root"), **os.environ},
                                            stdin=subprocess.DEVNULL, stdout=log, stderr=subprocess.STDOUT)

    def log(self):
        return self.log_file.read_text(errors="replace")

    def log_lines(self, part):
        return [line for line in self.log().splitlines() if part in line]

    def wait_ready(self, ready, what):
        def ready_or_ended():
            assert self.process.poll() is None, f"{self.name} has ended:\n{self.log()}"
            return ready()
        wait_until(ready_or_ended, what)

    def stop(self):
        """Ends the program as a service manager does and returns its exit status."""
        if self.process.poll() is None:
            self.process.send_signal(signal.SIGTERM)
        try:
            return self.process.wait(PATIENCE)
        except subprocess.TimeoutExpired:
            self.process.kill()
            self.process.wait()
            return f"killed after {PATIENCE} s"

    def assert_clean_end(self):
        status = self.stop()
        log = self.log()
        assert not SANITIZER_REPORT.search(log), f"{self.name}:\n{log}"
        assert status == 0, f"{self.name} ended with {status}:\n{log}"


def run_to_end(name, *arguments, directory):
    """A program that is expected to end by itself: (exit status, output)."""
    done = subprocess.run([BUILD / "bin" / name, *map(str, arguments)], cwd=directory, stdin=subprocess.DEVNULL,
                          stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, timeout=PATIENCE, check=False)
    assert not SANITIZER_REPORT.search(done.stdout), done.stdout
    return done.returncode, done.stdout
