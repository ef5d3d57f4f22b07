"""Runs inside a root of its own: installs the packages, uses them, removes them, and prints what was seen as JSON.

    installed.py DIRECTORY-OF-PACKAGES
"""

import json
import os
import re
import shlex
import signal
import socket
import subprocess
import sys
import time
from pathlib import Path

PATIENCE = 60
CONFIGURATION = Path("/etc/tarn/tarn-agentd.conf")
NOTIFY = "/run/notify"
RESET = "TARN-MIB::tarnPONChannelStateResetCounters.1.1"
SETTING = "TARN-MIB::tarnPONChannelActModeAuth.1.1"
ENVIRONMENT = dict(os.environ, MIBS="", SNMPCONFPATH="/nonexistent", DEBIAN_FRONTEND="noninteractive")
NAMES = ["-M", "/usr/share/tarn/mibs/base:/usr/share/tarn/mibs", "-m", "TARN-MIB:TARN-AGENT-MIB:SNMPv2-MIB", "-Oqv"]
V2C = ["-v2c", "-c", "public"]


def run(*command):
    done = subprocess.run(command, env=ENVIRONMENT, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
                          check=False)
    return done.returncode, done.stdout.strip()


def must(*command):
    status, output = run(*command)
    if status != 0:
        sys.exit(f"{command}: {status}\n{output}")
    return output


def user(name):
    return ["-v3", "-l", "authPriv", "-u", name, "-a", "SHA-256", "-A", f"passphrase of {name}", "-x", "AES", "-X",
            f"another of {name}"]


def ask(tool, access, *arguments):
    """The value, or the reason of the refusal."""
    status, output = run(tool, *access, *NAMES, "-t", "20", "-r", "0", "127.0.0.1", *arguments)
    reason = re.search(r"Reason: (\w+)", output)
    return reason.group(1) if reason else output


def files():
    return set(must("find", "/etc", "/lib/systemd/", "/usr", "/var/lib", "-name", "*tarn*", "-not", "-path", "/var/lib/dpkg/*").splitlines())


class Service:
    """The command of a unit, as the unit's user and with no more rights than the unit has."""

    def __init__(self, unit, **environment):
        command = re.search(r"^ExecStart=(.*)$", Path(f"/lib/systemd/system/{unit}.service").read_text(), re.M)
        ports = "+net_bind_service"
        self.process = subprocess.Popen(
            ["setpriv", "--reuid=tarn", "--regid=tarn", "--clear-groups", f"--inh-caps=-all,{ports}",
             f"--ambient-caps=-all,{ports}", f"--bounding-set=-all,{ports}", "--no-new-privs",
             *shlex.split(command.group(1))],
            env=dict(ENVIRONMENT, TARN_ROOT="/var/lib/tarn", **environment), cwd="/", stdout=sys.stderr)

    def wait_for(self, condition):
        deadline = time.monotonic() + PATIENCE
        while not condition():
            if self.process.poll() is not None or time.monotonic() > deadline:
                sys.exit(f"{self.process.args} is not ready")
            time.sleep(0.02)

    def stop(self):
        self.process.send_signal(signal.SIGTERM)
        return self.process.wait(PATIENCE)


def start_agent(manager):
    agent = Service("tarn-agentd", NOTIFY_SOCKET=NOTIFY, WATCHDOG_USEC="2000000")
    heard = set()

    def ready():
        try:
            heard.add(manager.recv(100).decode())
        except TimeoutError:
            pass
        return {"READY=1", "WATCHDOG=1"} <= heard
    agent.wait_for(ready)
    return agent


def stop_agent(agent, manager):
    status = agent.stop()
    while (message := manager.recv(100).decode()) != "STOPPING=1":
        assert message == "WATCHDOG=1", message
    return status


def main(directory):
    packages = sorted(map(str, Path(directory).glob("*.deb")))
    names = [must("dpkg-deb", "-f", package, "Package") for package in packages]
    before = files()
    # Else each step has all manual pages of the machine indexed.
    Path("/var/lib/man-db/auto-update").unlink(missing_ok=True)
    seen = {"install": run("dpkg", "--force-unsafe-io", "-i", *packages)}
    seen["version"] = {name: must("dpkg-query", "-W", "-f=${Version}", name) for name in names}
    status = CONFIGURATION.stat()
    seen["configuration"] = [oct(status.st_mode & 0o777), CONFIGURATION.owner(), CONFIGURATION.group()]

    manager = socket.socket(socket.AF_UNIX, socket.SOCK_DGRAM)
    manager.bind(NOTIFY)
    manager.settimeout(1)
    os.chmod(NOTIFY, 0o777)
    chassis = Service("tarn-chassisd")
    chassis.wait_for(Path("/run/tarn/chassis.socket").exists)
    agent = start_agent(manager)
    seen["listening"] = must("ss", "-Hnltu").split("\n")
    seen["get"] = [ask("snmpget", V2C, name) for name in ("SNMPv2-MIB::sysDescr.0", SETTING,
                                                  "TARN-AGENT-MIB::tarnAgentSlotState.1")]
    seen["set"] = ask("snmpset", V2C, SETTING, "i", "2")
    seen["slots"] = must("tarnctl", "slots").count(" up")
    seen["end"] = [stop_agent(agent, manager)]

    # An upgrade; then the users that the configuration suggests.
    seen["upgrade"] = run("dpkg", "--force-unsafe-io", "-i", *packages)
    CONFIGURATION.write_text(re.sub(r"^#(createUser|group|access) ", r"\1 ", CONFIGURATION.read_text(), flags=re.M))
    agent = start_agent(manager)
    seen["boots"] = ask("snmpget", V2C, ".1.3.6.1.6.3.10.2.1.2.0")
    seen["users"] = {name: [ask("snmpget", user(name), SETTING), ask("snmpset", user(name), SETTING, "i", "2"),
                            ask("snmpset", user(name), RESET, "u", "1")]
                     for name in ("watcher", "operator", "engineer")}
    seen["end"] += [stop_agent(agent, manager), chassis.stop()]

    seen["purge"] = run("dpkg", "--purge", *names)
    seen["left"] = sorted(files() - before)
    print(json.dumps(seen))


main(sys.argv[1])
