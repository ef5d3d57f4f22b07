"""A chassis and an agent on it, in a directory of their own."""

import chassis
import snmp
from programs import MIBS, MODULE, Program, free_port


class Agent(Program):
    def __init__(self, directory, lines, mibs=MIBS):
        self.port = free_port()
        (directory / "agent.conf").write_text("\n".join([
            f"agentAddress udp:127.0.0.1:{self.port}",
            "rocommunity public 127.0.0.1",
            "rwcommunity private 127.0.0.1",
            *lines, ""]))
        super().__init__("tarn-agentd", ["--foreground", "--config", "agent.conf", "--module", MODULE,
                                         "--mibs", mibs, "--chassis", f"unix:{chassis.Chassis.SOCKET}"],
                         directory)


class System:
    starts = 0

    def __init__(self, directory, scenario=None, agent_lines=(), cache_period=600):
        self.chassis = chassis.Chassis(directory, scenario or chassis.scenario())
        self.agent = Agent(directory, [f"tarnCachePeriod {cache_period}", *agent_lines])
        self._wait_for_agent()
        self.chassis.forget_requests()

    def _wait_for_agent(self):
        self.snmp = snmp.Client(self.agent.port)
        earlier = self.starts
        self.starts += 1
        self.agent.wait_ready(lambda: len(self.agent.log_lines("tarn-agentd ready")) > earlier, "the agent")

    def restart_agent(self, agent_lines, mibs=MIBS):
        self.agent.assert_clean_end()
        self.agent = Agent(self.agent.directory, agent_lines, mibs)
        self._wait_for_agent()

    def assert_clean_end(self):
        try:
            self.agent.assert_clean_end()
            assert not self.agent.log_lines("outstanding"), self.agent.log()
        finally:
            self.chassis.assert_clean_end()
