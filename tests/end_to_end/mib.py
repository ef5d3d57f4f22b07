"""What TARN-MIB states, as net-snmp's own parser reads it."""

import re
import subprocess
from dataclasses import dataclass, field

from snmp import ENVIRONMENT, ROOT

# The parser's names of base types, and the types that they have in a message.
MESSAGE_TYPES = {
    "INTEGER": "INTEGER", "Integer32": "INTEGER", "EnumVal": "INTEGER",
    "Unsigned": "Gauge32", "Gauge": "Gauge32", "Counter": "Counter32",
    "String": "OCTET STRING",
}
ACCESS = {"-R--": "read-only", "-RW-": "read-write", "----": "not-accessible"}


@dataclass
class Column:
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
        return [column for column in self.columns if column.access != "not-accessible"]

    def instance(self, column, *index):
        number = next(c.number for c in self.columns if column in (c.name, c.number))
        return ".".join([self.oid, "1", str(number), *map(str, index)])


def parse_ranges(text):
    ranges = []
    for part in text.split("|"):
        low, _, high = part.strip().partition("..")
        ranges.append((int(low), int(high or low)))
    return ranges


def read_tables(mib_directory):
    """The tables of TARN-MIB by name, from snmptranslate's picture of the tree."""
    picture = subprocess.run(
        ["snmptranslate", "-M", f"{mib_directory}/base:{mib_directory}", "-m", "TARN-MIB", "-Tp", "-OS", ROOT],
        env=ENVIRONMENT, capture_output=True, text=True, check=True)
    assert not picture.stderr, picture.stderr
    tables, path, table, column = {}, [], None, None
    for line in picture.stdout.splitlines():
        if node := re.search(r"\+--(\w[\w-]*)\((\d+)\)$", line):
            depth = node.start() // 3
            path[depth:] = [int(node.group(2))]
            if node.group(1).endswith("Table"):
                table = Table(node.group(1), ROOT + "." + ".".join(map(str, path[1:])), [])
                tables[table.name] = table
        elif index := re.search(r"\|  Index: (.*)$", line):
            table.index = index.group(1).split(", ")
        elif leaf := re.search(r"\+-- (\S{4}) (\w+)\s+(\w+)\((\d+)\)$", line):
            column = Column(leaf.group(3), int(leaf.group(4)), MESSAGE_TYPES[leaf.group(2)],
                            ACCESS[leaf.group(1)])
            table.columns.append(column)
        elif ranges := re.search(r"(?:Range|Size): (.*)$", line):
            column.ranges = parse_ranges(ranges.group(1))
        elif values := re.search(r"Values: (.*)$", line):
            column.values = {int(number) for number in re.findall(r"\((-?\d+)\)", values.group(1))}
    return tables
