"""What TARN-MIB states, as net-snmp's own parser reads it."""

import re
import subprocess
from dataclasses import dataclass, field

from snmp import ENVIRONMENT, ROOT

# The parser's names of base types, and the types that they have in a message.
MESSAGE_TYPES = {
    "INTEGER": "INTEGER", "Integer32": "INTEGER", "EnumVal": "INTEGER",
    "Unsigned": "Gauge32", "Gauge": "Gauge32", "Counter": "Counter32", "Counter64": "Counter64",
    "String": "OCTET STRING", "IpAddr": "IpAddress",
}
ACCESS = {"-R--": "read-only", "-RW-": "read-write", "CR--": "read-create", "----": "not-accessible",
          "---N": "accessible-for-notify"}
READABLE = {"read-only", "read-write", "read-create"}


@dataclass
class Object:
    """A column of a table, or a scalar."""

    name: str
    number: int
    type: str
    access: str
    ranges: list = field(default_factory=list)  # of the number, or of the string's size
    values: set = field(default_factory=set)    # of an enumeration

    def admits(self, value):
        measured = len(value) if isinstance(value, bytes) else value
        if self.values and measured not in self.values:
            return False
        return not self.ranges or any(low <= measured <= high for low, high in self.ranges)


@dataclass
class Table:
    name: str
    oid: str
    index: list
    columns: list = field(default_factory=list)

    def served(self):
        return [column for column in self.columns if column.access in READABLE]

    def instance(self, column, *index):
        number = next(c.number for c in self.columns if column in (c.name, c.number))
        return ".".join([self.oid, "1", str(number), *map(str, index)])


@dataclass
class Mib:
    tables: dict = field(default_factory=dict)   # by name
    objects: dict = field(default_factory=dict)  # columns and scalars by OID, as a string


def parse_ranges(text):
    ranges = []
    for part in text.split("|"):
        low, _, high = part.strip().partition("..")
        ranges.append((int(low), int(high or low)))
    return ranges


def read(mib_directory):
    """TARN-MIB, from snmptranslate's picture of the tree."""
    picture = subprocess.run(
        ["snmptranslate", "-M", f"{mib_directory}/base:{mib_directory}", "-m", "TARN-MIB", "-Tp", "-OS", ROOT],
        env=ENVIRONMENT, capture_output=True, text=True, check=True)
    assert not picture.stderr, picture.stderr
    mib, path, table, last = Mib(), [], None, None

    def oid_at(match, number):
        path[match.start() // 3:] = [number]
        return ".".join([ROOT, *map(str, path[1:])])

    for line in picture.stdout.splitlines():
        if node := re.search(r"\+--(\w[\w-]*)\((\d+)\)$", line):
            oid = oid_at(node, int(node.group(2)))
            if node.group(1).endswith("Table"):
                table = mib.tables[node.group(1)] = Table(node.group(1), oid, [])
        elif index := re.search(r"\|  Index: (.*)$", line):
            table.index = index.group(1).split(", ")
        elif leaf := re.search(r"\+-- (\S{4}) (\w+)\s+(\w+)\((\d+)\)$", line):
            last = Object(leaf.group(3), int(leaf.group(4)), MESSAGE_TYPES[leaf.group(2)], ACCESS[leaf.group(1)])
            oid = oid_at(leaf, last.number)
            mib.objects[oid] = last
            if table and oid.startswith(table.oid + ".1."):
                table.columns.append(last)
        elif ranges := re.search(r"(?:Range|Size): (.*)$", line):
            last.ranges = parse_ranges(ranges.group(1))
        elif values := re.search(r"Values: (.*)$", line):
            last.values = {int(number) for number in re.findall(r"\((-?\d+)\)", values.group(1))}
    return mib
