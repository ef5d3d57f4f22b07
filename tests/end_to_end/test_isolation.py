"""A card that is slow, silent or closes its connections keeps nobody waiting but those who ask about it."""

import threading
import time

import pytest

import commands
from programs import wait_until
from snmp import ROOT, SnmpError, USER, USER_LINES, oid_key

STATE, ADDRESS = f"{ROOT}.1.1.1", f"{ROOT}.1.3.1"
SLOT, HEALTHY = 2, 5  # as the chassis counts; one more in instance identifiers

# Far less than the failing cards take, and far more than the machine needs.
PROMPT = 1.0
FAULTS = {"slow": {"milliseconds": 2000}, "silent": {}, "dropped": {}}


class InBackground(threading.Thread):
    """A call that goes on while the test does something else."""

    def __init__(self, function, *arguments, **keys):
        super().__init__()
        self.call = lambda: function(*arguments, **keys)
        self.outcome, self.error = None, None
        self.start()

    def run(self):
        try:
            self.outcome = self.call()
        except SnmpError as error:
            self.error = error

    def result(self):
        self.join()
        if self.error:
            raise self.error
        return self.outcome


def slowest_get_while(system, oid, expected, others):
    """The longest that a GET takes, repeated with a value to be asked of the card as long as the others go on."""
    worst, rounds = 0.0, 0
    while rounds == 0 or any(other.is_alive() for other in others):
        begin = time.monotonic()
        assert system.snmp.get(oid) == expected
        worst = max(worst, time.monotonic() - begin)
        rounds += 1
    return worst


@pytest.mark.parametrize("fault", FAULTS)
def test_a_failing_card_keeps_no_other_waiting(shared, start, fault):
    column, healthy = f"{STATE}.6.{SLOT + 1}", f"{STATE}.6.{HEALTHY + 1}.1"
    expected = shared.snmp.get(healthy)
    system = start(cache_period=0, agent_lines=USER_LINES)
    system.chassis.fault(fault, slot=SLOT, **FAULTS[fault])
    walks = [InBackground(system.snmp.walk, column), InBackground(system.snmp.bulk_walk, 10, f"{ADDRESS}.4"),
             InBackground(system.snmp.get, f"{column}.1", community=USER),
             InBackground(system.snmp.get, f"{column}.1", community=("-v1", "-c", "public"))]
    assert slowest_get_while(system, healthy, expected, walks) < PROMPT
    texts = [walk.result() for walk in walks]
    if fault == "slow":
        assert texts[0] == shared.snmp.walk(column)
        assert texts[1] == shared.snmp.bulk_walk(10, f"{ADDRESS}.4")
        assert texts[2] == texts[3] == texts[0][:1]
    else:
        assert [text.value for _, text in texts[0]] == [b""] * 8
        assert texts[1] == [row for row in shared.snmp.bulk_walk(10, f"{ADDRESS}.4")
                            if oid_key(row[0])[13] != SLOT + 1]
