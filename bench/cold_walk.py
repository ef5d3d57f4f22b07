#!/usr/bin/env python3
"""How much of the cards' answering times a walk with nothing cached waits for.

16 cards of 1024 ONTs that take 2 ms an answer; one column of the ONTs' states, which asks every card about every ONT.
Prints the walk's time, the sum of the times that its requests took (as the chassis delays them), and the ratio.
"""

import argparse
import json
import os
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
from programs import run_to_end  # noqa: E402
from system import System  # noqa: E402

COLUMN = f"{snmp.ROOT}.3.1.1.6"  # of tarnONTStateTable
DELAY_MS = 2


def answers(system):
    status, output = run_to_end("tarnctl", "--socket", "agent-control", "--json", "stats",
                                directory=system.agent.directory)
    assert status == 0, output
    return sum(command["answered"] for command in json.loads(output)["commands"])


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--onts", type=int, default=128, help="on each of the 8 channels of 16 cards")
    parser.add_argument("--repetitions", type=int, default=50, help="of each GETBULK")
    options = parser.parse_args()
    with tempfile.TemporaryDirectory() as directory:
        system = System(Path(directory), chassis.scenario(onts_per_channel=options.onts),
                        ["tarnControl agent-control"])
        system.chassis.fault("slow", milliseconds=DELAY_MS)
        before, begin = answers(system), time.monotonic()
        walk = subprocess.run(["snmpbulkwalk", "-v2c", "-c", "public", "-t", "60", "-r0", f"-Cr{options.repetitions}",
                               "-Onex", system.snmp.target, COLUMN], env=snmp.ENVIRONMENT, capture_output=True,
                              text=True, check=True)
        seconds = time.monotonic() - begin
        requests = answers(system) - before
        rows = len(walk.stdout.splitlines())
        assert rows == 16 * 8 * options.onts, rows
        system.assert_clean_end()
    added_up = requests * DELAY_MS / 1000
    print(f"{rows} ONTs, {requests} requests of {DELAY_MS} ms: {added_up:.1f} s added up, {seconds:.1f} s waited; "
          f"ratio {seconds / added_up:.3f}")


if __name__ == "__main__":
    main()
