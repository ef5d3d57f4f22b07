"""scripts/run, as a newcomer runs it."""

import re
import signal
import subprocess

from programs import PATIENCE, SOURCE, free_port


def test_demo():
    port = free_port()
    demo = subprocess.run([SOURCE / "scripts/run", "--demo", "--port", str(port)],
                          stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True,
                          check=False)
    assert demo.returncode == 0, demo.stdout + demo.stderr
    assert (SOURCE / f"build/run-{port}/agent.conf").stat().st_mode & 0o777 == 0o600
    ready = [line for line in demo.stdout.splitlines() if line.startswith("ready")]
    assert len(ready) == 1
    for command in ("snmpwalk", "snmptable", "snmpset"):
        assert f"$ {command} " in demo.stdout
    # Names and values: the walk's rows, the table's rows, the answer to the write.
    assert re.search(r"^TARN-MIB::tarnPONChannelAddressMacAddress\.1\.1\.\d+ = STRING: 2:[0-9a-f:]+$", demo.stdout,
                     re.MULTILINE)
    assert re.search(r"^ index Slot Channel .* Reconfigure ResetCounters$", demo.stdout, re.MULTILINE)
    assert len(re.findall(r'^ +\d+\.\d +\d+ +\d .* "Tarn Optics" .*$', demo.stdout, re.MULTILINE)) == 16 * 8
    assert demo.stdout.rstrip().endswith("TARN-MIB::tarnPONChannelActModeAuth.1.1 = INTEGER: false(2)")


def test_runs_until_interrupted():
    run = subprocess.Popen([SOURCE / "scripts/run", "--port", str(free_port())], stdin=subprocess.DEVNULL,
                           stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True, start_new_session=True)
    try:
        while not (line := run.stdout.readline()).startswith("ready"):
            assert line, run.stderr.read()
        run.send_signal(signal.SIGINT)
        _, errors = run.communicate(timeout=PATIENCE)
    finally:
        run.kill()
        run.wait()
    assert run.returncode == 0, errors
    assert "did not end cleanly" not in errors


def test_an_unknown_option():
    wrong = subprocess.run([SOURCE / "scripts/run", "--nonsense"], capture_output=True, text=True, check=False)
    assert wrong.returncode == 1 and "--nonsense" in wrong.stderr
