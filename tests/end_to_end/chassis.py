"""The simulated chassis and its control socket."""

import json
import socket
from dataclasses import dataclass

from programs import Program

# The default of the tests: few ONTs, and counters that stand still so that every walk sees the same.
ADDRESSES = 40


def scenario(onts_per_channel=2, addresses=ADDRESSES):
    return (f"time_factor: 0\n"
            f"cards:\n"
            f"  - slots: [{', '.join(map(str, range(16)))}]\n"
            f"    onts_per_channel: {onts_per_channel}\n"
            f"    addresses: {addresses}\n")


@dataclass(frozen=True)
class Request:
    """One board request as the chassis logged it; slots count from 0, the payload starts after the header."""

    slot: int
    command: int
    payload: bytes
    outcome: str
    status: int

    @property
    def channel(self):
        return self.payload[0]


class Chassis(Program):
    SOCKET, CONTROL = "chassis.socket", "control.socket"

    def __init__(self, directory, scenario_text):
        (directory / "scenario.yaml").write_text(scenario_text)
        super().__init__("tarn-chassisd", ["--socket", self.SOCKET, "--control", self.CONTROL,
                                           "--scenario", "scenario.yaml"], directory)
        self.wait_ready(lambda: "ready" in self.log(), "the chassis")
        self.control = socket.socket(socket.AF_UNIX)
        self.control.connect(str(directory / self.CONTROL))
        self.lines = self.control.makefile("rw")

    def ask(self, action, **keys):
        self.lines.write(json.dumps({"do": action, **keys}) + "\n")
        self.lines.flush()
        answer = json.loads(self.lines.readline())
        assert "error" not in answer, answer
        return answer

    def requests(self, **keys):
        return [Request(entry["slot"], entry["command"], bytes.fromhex(entry["payload"]), entry["outcome"],
                        entry.get("status", -1))
                for entry in self.ask("requests", **keys)["requests"]]

    def forget_requests(self):
        self.ask("requests-reset")

    def fault(self, kind, **keys):
        return self.ask("fault-add", kind=kind, **keys)["id"]

    def clear_faults(self):
        self.ask("fault-clear")

    def channel(self, slot, channel):
        return self.ask("state-get", slot=slot, item="channel", channel=channel)

    def stop(self):
        self.control.close()
        return super().stop()
