"""SNMP clients: net-snmp's command line tools, and a Node.js implementation that shares no code with them."""

import json
import os
import re
import subprocess
from dataclasses import dataclass
from pathlib import Path

ROOT = "1.3.6.1.4.1.32473.1.22"
PON_CHANNELS = f"{ROOT}.1"
READ, WRITE = "public", "private"
# A user in a community's place: SNMPv3. The agent's lines for it are below.
USER = ("-v3", "-l", "authPriv", "-u", "walker", "-a", "SHA-256", "-A", "authentication", "-x", "AES",
        "-X", "encryption")
USER_LINES = ["createUser walker SHA-256 authentication AES encryption", "rouser walker authpriv"]
EXCEPTIONS = ("No Such Object", "No Such Instance", "No more variables")

# The tools must not read the machine's own configuration, or load any MIB: values are taken as they come.
ENVIRONMENT = dict(os.environ, MIBS="", SNMPCONFPATH="/nonexistent", HOME="/nonexistent")


@dataclass(frozen=True)
class Value:
    """One variable binding; a string's value is its octets, a number's an int, an exception's its text."""

    type: str
    value: object


def oid_key(oid):
    return tuple(int(part) for part in oid.strip(".").split("."))


def parse_line(line):
    """A line as the tools print it with -Onex: the OID without its leading dot, and the value."""
    name, text = line.split(" = ", 1)
    oid = name.strip().lstrip(".")
    if text.startswith(EXCEPTIONS):
        return oid, Value("exception", text)
    if text == '""':
        return oid, Value("OCTET STRING", b"")
    kind, text = text.split(": ", 1)
    if kind == "Hex-STRING":
        return oid, Value("OCTET STRING", bytes.fromhex(text))
    if kind in ("INTEGER", "Gauge32", "Counter32", "Counter64"):
        return oid, Value(kind, int(text))
    return oid, Value(kind, text)


def parse(output):
    # A long string goes on over several lines.
    joined = re.sub(r"\n(?!\.1)", " ", output.strip())
    return [parse_line(line) for line in joined.split("\n")] if joined else []


class SnmpError(Exception):
    """A tool failed; `reason` is the error status that it names, or what it said."""

    def __init__(self, output):
        reason = re.search(r"Reason: (?:\()?([A-Za-z]+)", output)
        self.reason = reason.group(1) if reason else output.strip()
        super().__init__(output.strip())


class Client:
    def __init__(self, port, timeout=40):
        self.target = f"127.0.0.1:{port}"
        self.timeout = str(timeout)
        self.retries = 0

    def _command(self, tool, *arguments, community=READ):
        access = community if isinstance(community, tuple) else ("-v2c", "-c", community)
        return [tool, *access, "-t", self.timeout, f"-r{self.retries}", "-Onex", *arguments]

    def _run(self, tool, *arguments, community=READ):
        done = subprocess.run(self._command(tool, *arguments, community=community), env=ENVIRONMENT,
                              capture_output=True, text=True, check=False)
        if done.returncode != 0 or "Error" in done.stderr:
            raise SnmpError(done.stdout + done.stderr)
        return parse(done.stdout)

    def get(self, *oids, community=READ):
        return self._run("snmpget", self.target, *oids, community=community)

    def get_next(self, *oids, community=READ):
        return self._run("snmpgetnext", self.target, *oids, community=community)

    def get_bulk(self, repetitions, *oids, community=READ):
        return self._run("snmpbulkget", f"-Cr{repetitions}", self.target, *oids, community=community)

    def get_all(self, oids, community=READ, at_once=60):
        rows = []
        for start in range(0, len(oids), at_once):
            rows += self.get(*oids[start:start + at_once], community=community)
        return rows

    def set(self, *bindings, community=WRITE):
        """Each binding is (oid, type letter of snmpset, value)."""
        flat = [str(part) for binding in bindings for part in binding]
        return self._run("snmpset", self.target, *flat, community=community)

    def walk(self, root=PON_CHANNELS, community=READ):
        """By GETNEXT. The tool itself ends with an error when an OID does not increase."""
        return self._without_end(self._run("snmpwalk", self.target, root, community=community))

    def bulk_walk(self, repetitions, root=PON_CHANNELS, community=READ):
        return self._without_end(
            self._run("snmpbulkwalk", f"-Cr{repetitions}", self.target, root, community=community))

    def start_walk(self, root=PON_CHANNELS):
        """A GETNEXT walk that goes on while the test does something else; finish with `finish_walk`."""
        return subprocess.Popen(self._command("snmpwalk", self.target, root), env=ENVIRONMENT,
                                stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)

    def finish_walk(self, walk):
        output, errors = walk.communicate(timeout=300)
        if walk.returncode != 0:
            raise SnmpError(output + errors)
        return self._without_end(parse(output))

    @staticmethod
    def _without_end(rows):
        # The end of the MIB is one more line, on the last row's OID; an empty subtree is one line on its root.
        if rows and (len(rows) == 1 or rows[-1][0] == rows[-2][0]) and rows[-1][1].type == "exception":
            return rows[:-1]
        return rows


def node_walk(port, node_directory, root=PON_CHANNELS, repetitions=20):
    """The rows as the Node.js client sees them."""
    done = subprocess.run(["node", str(Path(__file__).with_name("walk.js")), str(port), READ, root,
                           str(repetitions)],
                          env=dict(os.environ, NODE_PATH=str(Path(node_directory) / "node_modules")),
                          capture_output=True, text=True, check=False)
    assert done.returncode == 0, done.stderr
    rows = []
    for line in done.stdout.splitlines():
        oid, kind, text = json.loads(line)
        rows.append((oid, Value(kind, bytes.fromhex(text) if kind == "OCTET STRING" else int(text))))
    return rows
