"""net-snmp's receiver of notifications."""

import os
import subprocess

from programs import MIBS, wait_until


class TrapReceiver:
    """Writes a line for each notification: which kind it is and who sent it, then its variables."""

    def __init__(self, directory, port, users):
        config = directory / "snmptrapd.conf"
        config.write_text("\n".join(["disableAuthorization yes", *users, ""]))
        self.file = directory / "traps"
        self.process = subprocess.Popen(
            ["/usr/sbin/snmptrapd", "-f", "-n", "-C", "-c", str(config), "-M", MIBS, "-m", "TARN-AGENT-MIB:SNMPv2-MIB", "-Lf",
             str(self.file), "-F", "%P\t%v\n", "-Oqs", "-p", str(directory / "pid"), f"udp:127.0.0.1:{port}"],
            stdin=subprocess.DEVNULL, env=dict(os.environ, SNMP_PERSISTENT_DIR=str(directory)))
        wait_until(lambda: self.file.exists() and "NET-SNMP" in self.file.read_text(), "snmptrapd")

    def lines(self):
        return self.file.read_text().splitlines()
