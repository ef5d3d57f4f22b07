#!/usr/bin/env python3
"""How long a healthy card's GETs take beside a bulk walk of everything while other cards fail.

An open-loop poller sends 50 GETs a second of one slot, whether the earlier ones are answered or not. Prints one line
a case and fails when a GET is lost or the slowest one of a hundred takes far longer than without a fault.
"""

import argparse
import os
import select
import socket
import subprocess
import sys
import tempfile
import threading
import time
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "tests" / "end_to_end"))

if "TARN_BUILD_DIR" not in os.environ:
    sys.exit("TARN_BUILD_DIR must name the build")
import chassis  # noqa: E402
import snmp  # noqa: E402
from system import System  # noqa: E402

RATE = 50
HEALTHY = 15  # the slot that is polled, as the chassis counts
STATE = f"{snmp.ROOT}.1.1.1"
PATIENCE = 3.0  # a GET that is not answered by then is lost

# name, cards that fail, fault and its value, seconds after which the fault is switched over, SETs to the first card
CASES = [
    ("no fault", 0, None, {}, None, False),
    ("1 silent", 1, "silent", {}, None, False),
    ("4 silent", 4, "silent", {}, None, False),
    ("15 silent", 15, "silent", {}, None, False),
    ("1 slow by 0.5 s", 1, "slow", {"milliseconds": 500}, None, False),
    ("15 slow by 0.5 s", 15, "slow", {"milliseconds": 500}, None, False),
    ("1 slow by 2 s", 1, "slow", {"milliseconds": 2000}, None, False),
    ("15 slow by 2 s", 15, "slow", {"milliseconds": 2000}, None, False),
    ("4 flapping", 4, "silent", {}, 4, False),
    ("4 closing", 4, "dropped", {}, None, False),
    ("1 silent, SETs to it", 1, "silent", {}, None, True),
    ("1 slow by 2 s, SETs to it", 1, "slow", {"milliseconds": 2000}, None, True),
]
SHORT = {"no fault", "4 silent", "1 slow by 2 s", "4 closing", "1 slow by 2 s, SETs to it"}


def tlv(tag, content):
    assert len(content) < 128
    return bytes([tag, len(content)]) + content


def get_message(request_id, oid):
    numbers = [int(part) for part in oid.split(".")]
    encoded = bytes([numbers[0] * 40 + numbers[1]])
    for number in numbers[2:]:
        octets = [number & 0x7F]
        while number := number >> 7:
            octets.insert(0, number & 0x7F | 0x80)
        encoded += bytes(octets)
    binding = tlv(0x30, tlv(0x30, tlv(0x06, encoded) + b"\x05\x00"))
    pdu = tlv(0xA0, tlv(0x02, request_id.to_bytes(4, "big")) + b"\x02\x01\x00\x02\x01\x00" + binding)
    return tlv(0x30, b"\x02\x01\x01" + tlv(0x04, b"public") + pdu)


def request_id_of(message):
    # Sequence, version, community and the response's own header come first; all lengths but two are short.
    position = message.index(b"\x02\x04", 4)
    return int.from_bytes(message[position + 2:position + 6], "big")


def poll(port, seconds):
    """Answer times in ms by request; what is missing was lost."""
    with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as client:
        client.connect(("127.0.0.1", port))
        sent, times = {}, []
        begin = time.monotonic()
        total = int(RATE * seconds)
        while len(times) < total:
            now = time.monotonic()
            due = begin + len(sent) / RATE
            if len(sent) < total and now >= due:
                number = 0x01000000 + len(sent)
                sent[number] = now
                client.send(get_message(number, f"{STATE}.6.{HEALTHY + 1}.{len(sent) % 8 + 1}"))
                continue
            if now > begin + total / RATE + PATIENCE:
                break
            wait = due - now if len(sent) < total else 0.1
            if select.select([client], [], [], max(wait, 0))[0]:
                answer = client.recv(65536)
                times.append(1000 * (time.monotonic() - sent[request_id_of(answer)]))
        return sorted(times), total - len(times)


class Load(threading.Thread):
    """Walks everything again and again, and sets something of the first failing card every five seconds."""

    def __init__(self, system, sets):
        super().__init__()
        self.system, self.sets, self.over = system, sets, threading.Event()
        self.start()

    def run(self):
        target = self.system.snmp.target
        walk, change, next_set = None, None, time.monotonic()
        while not self.over.wait(0.05):
            if walk is None or walk.poll() is not None:
                walk = subprocess.Popen(["snmpbulkwalk", "-v2c", "-c", "public", "-t", "60", "-r0", "-Cr25", "-Onex",
                                         target, snmp.ROOT], env=snmp.ENVIRONMENT, stdout=subprocess.DEVNULL,
                                        stderr=subprocess.DEVNULL)
            if self.sets and time.monotonic() >= next_set and (change is None or change.poll() is not None):
                next_set += 5
                change = subprocess.Popen(["snmpset", "-v2c", "-c", "private", "-t", "60", "-r0", "-Onex", target,
                                           f"{STATE}.5.1.1", "i", "1"], env=snmp.ENVIRONMENT,
                                          stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        for process in (walk, change):
            if process is not None:
                process.kill()
                process.wait()


def measure(case, seconds, onts):
    name, cards, fault, keys, flap, sets = case
    with tempfile.TemporaryDirectory() as directory:
        system = System(Path(directory), chassis.scenario(onts_per_channel=onts), cache_period=5)
        faults = [system.chassis.fault(fault, slot=slot, **keys) for slot in range(cards)] if fault else []
        load = Load(system, sets)
        flapping = threading.Event()

        def flap_on():
            on = True
            while not flapping.wait(flap):
                if on:
                    system.chassis.clear_faults()
                else:
                    for slot in range(cards):
                        system.chassis.fault(fault, slot=slot, **keys)
                on = not on
        flapper = threading.Thread(target=flap_on)
        if flap and faults:
            flapper.start()
        times, lost = poll(system.agent.port, seconds)
        flapping.set()
        if flap and faults:
            flapper.join()
        load.over.set()
        load.join()
        system.assert_clean_end()
    return times, lost


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--long", action="store_true", help="every case, a minute each, 16 x 128 ONTs")
    parser.add_argument("--seconds", type=float, help="for each case")
    options = parser.parse_args()
    seconds = options.seconds or (60 if options.long else 8)
    print("| Case | p50 ms | p99 ms | worst ms | lost | p99 to no fault |\n|---|---|---|---|---|---|")
    base, failed = None, []
    for case in CASES:
        if not options.long and case[0] not in SHORT:
            continue
        times, lost = measure(case, seconds, 16 if options.long else 4)
        p50, p99, worst = times[len(times) // 2], times[int(len(times) * 0.99) - 1], times[-1]
        base = base or p99
        print(f"| {case[0]} | {p50:.1f} | {p99:.1f} | {worst:.1f} | {lost} | {p99 / base:.1f} |", flush=True)
        # Generous: the machine is shared. A card that keeps others waiting shows in seconds.
        if lost or p99 > max(10 * base, 500):
            failed.append(case[0])
    if failed:
        sys.exit(f"others waited for the failing cards: {', '.join(failed)}")


if __name__ == "__main__":
    main()
