"""A card that is slow, silent or closes its connections keeps nobody waiting but those who ask about it."""

import json
import socket
import threading
import time

import pytest

import commands
import snmp
from programs import free_port, run_to_end, wait_until
from snmp import ROOT, SnmpError, USER, USER_LINES, oid_key

STATE, ADDRESS = f"{ROOT}.1.1.1", f"{ROOT}.1.3.1"
SLOT, HEALTHY = 2, 5  # as the chassis counts; one more in instance identifiers

# Who waits for a failing card waits for 3 s at least; a loaded machine takes its time, too.
PROMPT = 2.5
FAULTS = {"slow": {"milliseconds": 1500}, "silent": {}, "dropped": {}}


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


def tarnctl(system, *arguments):
    status, output = run_to_end("tarnctl", "--socket", "agent-control", *arguments, directory=system.agent.directory)
    assert status == 0, output
    return output


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


def test_a_set_that_waits_for_its_card_keeps_no_read_waiting(shared, start):
    flag, text = f"{STATE}.5", f"{STATE}.6"
    healthy = f"{text}.{HEALTHY + 1}.1"
    system = start()
    expected = system.snmp.get(healthy)
    before = system.snmp.get(f"{flag}.{SLOT + 1}.1")[0][1].value
    system.chassis.fault("slow", slot=SLOT, command=commands.SET_CHANNEL_CONFIG, milliseconds=3000)
    change = InBackground(system.snmp.set, (f"{flag}.{SLOT + 1}.1", "i", 3 - before))
    wait_until(lambda: system.chassis.requests(slot=SLOT, command=commands.SET_CHANNEL_CONFIG), "the SET")
    # A read of the same slot waits for it and sees what it did.
    same_slot = InBackground(system.snmp.get, f"{flag}.{SLOT + 1}.1")
    other_row = InBackground(system.snmp.walk, f"{text}.{HEALTHY + 2}")
    assert slowest_get_while(system, healthy, expected, [change]) < PROMPT
    assert change.result()[0][1].value == 3 - before
    assert same_slot.result()[0][1].value == 3 - before
    assert len(other_row.result()) == 8


@pytest.mark.parametrize("access", [snmp.READ, USER])
def test_a_repeated_request_is_served_once(start, access):
    system = start(cache_period=0, agent_lines=USER_LINES)
    system.chassis.fault("slow", slot=SLOT, milliseconds=2500)
    impatient = snmp.Client(system.agent.port, timeout=1)
    impatient.retries = 3
    begin = time.monotonic()
    assert impatient.get(f"{STATE}.6.{SLOT + 1}.1", community=access)[0][1].value == b"Tarn Optics"
    assert time.monotonic() - begin > 2
    assert len(system.chassis.requests(slot=SLOT, command=commands.GET_CHANNEL_STATE)) == 1
    system.chassis.clear_faults()
    system.chassis.fault("slow", slot=SLOT, command=commands.SET_CHANNEL_CONFIG, milliseconds=2500)
    oid, value = f"{STATE}.5.{SLOT + 1}.1", system.snmp.get(f"{STATE}.5.{SLOT + 1}.1")[0][1].value
    impatient.set((oid, "i", 3 - value))
    assert len(system.chassis.requests(slot=SLOT, command=commands.SET_CHANNEL_CONFIG)) == 1


def test_a_silent_card_refuses_at_once_and_is_back_when_it_answers(start):
    system = start(cache_period=1, agent_lines=["tarnControl agent-control"])
    rows = f"{ADDRESS}.4"
    healthy = system.snmp.walk(rows)
    system.chassis.fault("silent", slot=SLOT)
    # Its rows are served as they were last seen, so that a walk does not end as if they were gone.
    wait_until(lambda: system.agent.log_lines("the card does not answer") or not system.snmp.walk(rows),
               "the card to be left alone")
    for _ in range(3):
        assert [oid for oid, _ in system.snmp.walk(rows)] == [oid for oid, _ in healthy]
        time.sleep(0.5)
    begin = time.monotonic()
    with pytest.raises(SnmpError):
        system.snmp.set((f"{STATE}.20.{SLOT + 1}.1", "u", 1))
    assert time.monotonic() - begin < PROMPT
    assert f"slot {SLOT + 1}: up, silent" in tarnctl(system, "slots")
    stats = json.loads(tarnctl(system, "--json", "stats"))
    addresses = next(row for row in stats["commands"]
                     if row["slot"] == SLOT + 1 and row["command"] == commands.GET_ADDRESS_TABLE)
    assert (addresses["answered"], addresses["timed_out"] > 0) == (1, True)
    assert stats["cards"][SLOT] == {**stats["cards"][SLOT], "card": "silent", "holds": 1}
    cache = {row["table"]: (row["hits"], row["misses"]) for row in stats["cache"]}
    assert min(cache["tarnPONChannelAddressTable"]) > 0
    assert stats["agent"]["longest_turn_us"] > 0
    system.chassis.clear_faults()
    begin = time.monotonic()
    wait_until(lambda: system.agent.log_lines("the card answers again"), "the card to be back")
    assert time.monotonic() - begin < 2 + PROMPT
    system.snmp.set((f"{STATE}.20.{SLOT + 1}.1", "u", 1))


def test_requests_of_one_pdu_travel_together(start):
    system = start()
    system.chassis.fault("slow", slot=SLOT, command=commands.GET_CHANNEL_STATE, milliseconds=600)
    begin = time.monotonic()
    rows = system.snmp.get(*(f"{STATE}.6.{SLOT + 1}.{channel}" for channel in range(1, 9)))
    assert [value.value for _, value in rows] == [b"Tarn Optics"] * 8
    assert time.monotonic() - begin < 8 * 0.6 / 2


def tlv(tag, content):
    length = bytes([len(content)]) if len(content) < 128 else bytes([0x82]) + len(content).to_bytes(2, "big")
    return bytes([tag]) + length + content


def get_message(request_id, slot):
    """A GET, version 2c, of a card's firmware, which may take it 30 s."""
    name = tlv(6, bytes.fromhex("2b0601040181fd59011602010102") + bytes([slot + 1]))
    variables = tlv(0x30, tlv(0x30, name + tlv(5, b"")))
    number = tlv(2, request_id.to_bytes(4, "big"))
    zero = tlv(2, b"\0")
    return tlv(0x30, tlv(2, b"\1") + tlv(4, b"public") + tlv(0xA0, number + zero + zero + variables))


def test_no_more_requests_are_parked_than_the_bound_and_none_without_its_session(start):
    port = free_port()
    system = start(cache_period=0, agent_lines=["tarnControl agent-control", f"agentAddress tcp:127.0.0.1:{port}"])
    system.chassis.fault("slow", command=commands.GET_OLT_STATE, milliseconds=15_000)

    def figures():
        return json.loads(tarnctl(system, "--json", "stats"))["requests"]

    with socket.create_connection(("127.0.0.1", port)) as session:
        session.sendall(get_message(1, SLOT + 1))
        wait_until(lambda: figures()["parked_now"] == 1, "the request to be parked")
    wait_until(lambda: figures()["parked_now"] == 0, "its end")

    with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as manager:
        manager.setsockopt(socket.SOL_SOCKET, socket.SO_RCVBUF, 1 << 20)
        manager.settimeout(60)
        for request_id in range(1, 261):
            manager.sendto(get_message(request_id, SLOT), ("127.0.0.1", system.agent.port))
            if request_id % 130 == 0:
                # One more of them: the session's.
                wait_until(lambda: (lambda seen: seen["parked_in_all"] + seen["turned_away"])(figures()) > request_id,
                           "the agent to take them")
        answers = {manager.recv(65536) for _ in range(256)}
        assert len(answers) == 256
        manager.settimeout(0.5)
        with pytest.raises(TimeoutError):
            manager.recv(65536)
    assert (figures()["parked_at_most"], figures()["turned_away"]) == (256, 4)
    assert len(system.agent.log_lines("further ones are dropped")) == 1
