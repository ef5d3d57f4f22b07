#!/usr/bin/env python3
"""Whether the agent's memory and descriptors stay flat under four managers, SETs and changing faults.

Two managers walk everything (SNMPv2c and SNMPv3), one polls with GETs, one sets; every few seconds a card is made
silent, slow, closing, lying or well again. Everything is walked once before that: what the agent keeps of a card
and of its rows is touched then. Prints a line every ten seconds, and fails when the resident memory or the
descriptors of the last quarter of the run are above those of the second one, or when a program ends.
"""

import argparse
import os
import random
import statistics
import subprocess
import sys
import tempfile
import time
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "tests" / "end_to_end"))

if "TARN_BUILD_DIR" not in os.environ:
    sys.exit("TARN_BUILD_DIR must name the build")
import chassis  # noqa: E402
import snmp  # noqa: E402
from system import System  # noqa: E402

CONFIG = f"{snmp.ROOT}.3.40.1"  # tarnONTConfigEntry
FAULTS = [("silent", {}), ("slow", {"milliseconds": 300}), ("dropped", {}), ("truncated", {"bytes": 40}),
          ("status", {"status": 9})]


class Manager:
    """One command again and again, whatever becomes of it."""

    def __init__(self, make_command):
        self.make_command, self.process, self.rounds = make_command, None, 0

    def go_on(self):
        if self.process is None or self.process.poll() is not None:
            self.rounds += 1
            self.process = subprocess.Popen(self.make_command(), env=snmp.ENVIRONMENT, stdout=subprocess.DEVNULL,
                                            stderr=subprocess.DEVNULL)

    def end(self):
        self.process.kill()
        self.process.wait()


def managers_of(system, draw):
    target = system.snmp.target
    public = ["-v2c", "-c", "public", "-t", "5", "-r1", "-Onex"]
    private = ["-v2c", "-c", "private", "-t", "5", "-r1", "-Onex"]
    serials = [oid.split(f"{CONFIG}.3.")[1] for oid, _ in system.snmp.bulk_walk(25, f"{CONFIG}.3")]
    return [
        Manager(lambda: ["snmpbulkwalk", *public, "-Cr25", target, snmp.ROOT]),
        Manager(lambda: ["snmpbulkwalk", *snmp.USER, "-t", "5", "-r1", "-Onex", "-Cr40", target, snmp.ROOT]),
        Manager(lambda: ["snmpget", *public, target,
                         *(f"{CONFIG}.{column}.{draw.choice(serials)}" for column in (3, 4, 6, 7, 8))]),
        Manager(lambda: ["snmpset", *private, target, f"{CONFIG}.8.{draw.choice(serials)}", "s",
                         f"line {draw.randrange(1000)}"]),
    ]


def change_fault(system, draw, on):
    slot = draw.randrange(16)
    if slot in on:
        system.chassis.ask("fault-clear", id=on.pop(slot))
    elif len(on) < 6:
        kind, keys = draw.choice(FAULTS)
        on[slot] = system.chassis.fault(kind, slot=slot, **keys)


def figures(pid):
    status = Path(f"/proc/{pid}/status").read_text()
    resident = int(status.split("VmRSS:")[1].split()[0])
    return resident, len(os.listdir(f"/proc/{pid}/fd"))


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--seconds", type=float, default=600)
    parser.add_argument("--onts", type=int, default=16, help="ONTs on each of the 8 channels of 16 cards")
    parser.add_argument("--seed", type=int, default=1)
    options = parser.parse_args()
    draw = random.Random(options.seed)
    with tempfile.TemporaryDirectory() as directory:
        system = System(Path(directory), chassis.scenario(onts_per_channel=options.onts), snmp.USER_LINES, 5)
        system.snmp.bulk_walk(25, snmp.ROOT)
        managers = managers_of(system, draw)
        begin, on, seen = time.monotonic(), {}, []
        next_fault = next_line = begin
        print("|    s | resident KiB | descriptors | rounds of the four managers | faults |\n|---|---|---|---|---|")
        while (now := time.monotonic()) < begin + options.seconds:
            for manager in managers:
                manager.go_on()
            if now >= next_fault:
                next_fault += 3
                change_fault(system, draw, on)
            if now >= next_line:
                next_line += 10
                seen.append(figures(system.agent.process.pid))
                rounds = " ".join(str(manager.rounds) for manager in managers)
                print(f"| {now - begin:4.0f} | {seen[-1][0]} | {seen[-1][1]} | {rounds} | {len(on)} |", flush=True)
            time.sleep(0.02)
        for manager in managers:
            manager.end()
        system.assert_clean_end()
    quarter = len(seen) // 4
    grown = [name for index, name in enumerate(("resident memory", "descriptors"))
             if statistics.median(row[index] for row in seen[-quarter:])
             > 1.05 * statistics.median(row[index] for row in seen[quarter:2 * quarter])]
    if grown:
        sys.exit(f"grown: {', '.join(grown)}")


if __name__ == "__main__":
    main()
