#!/usr/bin/env python3
"""Compares every include of the sources with the arrows that are allowed between rooms.

A room is a folder; it may include itself and what stands after its arrow here. The rooms of a program come in order,
each one using earlier ones only, so that no room includes itself by a detour. Headers do not include each other in a
circle either. Prints what is wrong, a line each.
"""
import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent

ARROWS = {
    "include": "",
    "wire": "",
    # the module
    "module/tables": "module/operations module/config module/switch module/firmware module/statistics module/store "
                     "module/common include wire",
    "module/abi": "module/tables module/operations module/switch module/store module/common wire",
    "module/start": "module/tables module/config module/firmware module/store module/common include wire",
    # the host
    "host/services": "include wire",
    "host/loader": "include",
    "host/board": "host/services include wire",
    "host/tables": "host/board host/loader host/services include wire",
    "host/control": "host/board host/loader host/services include wire",
    "host/agent": "host/control host/tables host/board host/loader host/services include wire",
    # the chassis
    "chassis/state": "wire",
    "chassis/scenarios": "chassis/state wire",
    "chassis/requests": "chassis/state wire",
    "chassis/control": "chassis/requests chassis/state wire",
    "chassis/net": "chassis/control chassis/requests chassis/state wire",
    "chassis": "chassis/net chassis/control chassis/requests chassis/scenarios chassis/state wire",
    # by themselves
    "ctl": "wire",
    "tools": "host/services module/common",
}


# The rooms that are targets of their own say in CMake what they use.
ARROWS.update(re.findall(r"^tarn_room\((\S+) USES ([^)]*)\)", (ROOT / "module/CMakeLists.txt").read_text(), re.MULTILINE))


def room_of(path):
    folder = path.parent.as_posix()
    while folder not in ARROWS and "/" in folder:
        folder = folder.rpartition("/")[0]
    return folder


def includes_of(file):
    for name in re.findall(r'^#include "([^"]+)"', file.read_text(), re.MULTILINE):
        yield pathlib.PurePosixPath("include" if name.startswith("tarn/") else ".") / name


def circle(start, graph):
    """A way from a header back to itself; none when it is empty."""
    ways = [[start]]
    seen = set()
    while ways:
        way = ways.pop()
        for header in graph.get(way[-1], []):
            if header == start:
                return way
            if header not in seen:
                seen.add(header)
                ways.append([*way, header])
    return []


def main():
    faults = []
    graph = {}
    for top in ("include", "wire", "module", "host", "chassis", "ctl", "tools"):
        for file in sorted((ROOT / top).rglob("*.[hc]*")):
            path = file.relative_to(ROOT)
            if file.suffix not in (".h", ".cpp"):
                continue
            room = room_of(path)
            if room not in ARROWS:
                faults.append(f"{path}: stands in no room")
                continue
            for target in includes_of(file):
                other = room_of(target)
                allowed = [room, *ARROWS[room].split()]
                if other not in allowed:
                    faults.append(f"{path}: {room} must not include {other}: {target}")
                if file.suffix == ".h":
                    graph.setdefault(path.as_posix(), []).append(target.as_posix())
    faults += [f"{header}: includes itself by way of {' '.join(way[1:])}"
               for header in graph if (way := circle(header, graph))]
    rooms = {room: ARROWS[room].split() for room in ARROWS}
    faults += [f"{room}: allowed to include itself by way of {' '.join(way[1:])}"
               for room in rooms if (way := circle(room, rooms))]
    print("\n".join(faults) or f"{len(ARROWS)} rooms, {sum(map(len, rooms.values()))} arrows, no cycle")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
