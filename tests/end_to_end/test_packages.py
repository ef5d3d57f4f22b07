"""The Debian packages, the units and the manual pages."""

import json
import os
import re
import subprocess
from pathlib import Path

import pytest

from programs import BUILD, SOURCE, run_to_end

# A copy of this machine's root that is thrown away, with a network of its own, in which port 161 is free.
CLEAN_ROOT = """set -eu
mount -t tmpfs none "$1"
mkdir "$1/upper" "$1/work" "$1/root"
mount -t overlay none -o lowerdir=/,upperdir="$1/upper",workdir="$1/work" "$1/root"
mount -t proc none "$1/root/proc"
mount --rbind /dev "$1/root/dev"
mount -t tmpfs none "$1/root/run"
mkdir "$1/root/packages"
cp "$2"/*.deb "$3" "$1/root/packages"
ip link set lo up
exec chroot "$1/root" /usr/bin/python3 "/packages/$(basename "$3")" /packages
"""
UNITS = ("tarn-agentd", "tarn-chassisd")


@pytest.fixture(scope="module")
def packages():
    subprocess.run([SOURCE / "scripts/package", BUILD], check=True, stdout=subprocess.DEVNULL,
                   env=dict(os.environ, DEB_BUILD_OPTIONS="noautodbgsym"))
    return SOURCE / "build/package"


def test_lintian_finds_nothing(packages):
    found = subprocess.run(["lintian", "--allow-root", "--fail-on", "error,warning", *packages.glob("*.changes")],
                           capture_output=True, text=True, check=False)
    assert (found.returncode, found.stdout) == (0, ""), found.stderr


@pytest.mark.skipif(os.geteuid() != 0, reason="only root has a root to give away")
def test_installed_used_upgraded_and_removed(packages, tmp_path):
    done = subprocess.run(["unshare", "--mount", "--net", "--pid", "--fork", "--kill-child", "sh", "-c", CLEAN_ROOT,
                           "sh", tmp_path, packages, Path(__file__).with_name("installed.py")],
                          capture_output=True, text=True, check=False)
    assert done.returncode == 0, done.stdout + done.stderr
    seen = json.loads(done.stdout)
    _, version = run_to_end("tarn-agentd", "--version", directory="/")
    for step in ("install", "upgrade", "purge"):
        assert seen[step][0] == 0, seen[step][1]
    assert seen["version"] == dict.fromkeys(
        ("tarn-agent", "tarn-chassis", "tarn-doc", "tarn-mib", "tarn-module"), version.split()[1])
    assert seen["configuration"] == ["0o640", "root", "tarn"]
    assert [line.split()[4] for line in seen["listening"]] == ["127.0.0.1:161"]
    assert seen["get"] == [f"Tarn {version.split()[1]}, SNMP agent of a GPON chassis", "true", "ok"]
    assert (seen["set"], seen["slots"]) == ("noAccess", 16)
    assert seen["boots"] == "2"
    assert seen["users"] == {"watcher": ["true", "noAccess", "noAccess"],
                             "operator": ["true", "false", "noAccess"],
                             "engineer": ["false", "false", "1"]}
    assert seen["end"] == [0, 0, 0]
    assert seen["left"] == []


def test_units_are_hardened(tmp_path):
    subprocess.run(["cmake", "--install", BUILD, "--prefix", "/usr"], check=True, stdout=subprocess.DEVNULL,
                   env=dict(os.environ, DESTDIR=str(tmp_path)))
    for unit in UNITS:
        subprocess.run(["systemd-analyze", "security", "--offline=true", "--threshold=30",
                        tmp_path / f"usr/lib/systemd/system/{unit}.service"], check=True, stdout=subprocess.DEVNULL)


def manual_pages():
    listed = subprocess.run(["git", "ls-files", "*.[158]"], cwd=SOURCE, capture_output=True, text=True, check=True)
    return [SOURCE / name for name in listed.stdout.split()]


def test_manual_pages_render():
    pages = manual_pages()
    assert {page.name for page in pages} == {"tarnctl.1", "tarn-mkimage.1", "tarn-agentd.conf.5", "tarn-agentd.8",
                                             "tarn-chassisd.8"}
    for page in pages:
        shown = subprocess.run(["man", "--warnings", "-E", "UTF-8", "-l", "-Tutf8", "-Z", page], capture_output=True,
                               text=True, env=dict(os.environ, LC_ALL="C.UTF-8", MANWIDTH="80"), check=True)
        assert shown.stderr == "", page


@pytest.mark.parametrize("page", ["host/tarn-agentd.8", "chassis/tarn-chassisd.8", "tools/tarn-mkimage.1",
                                  "ctl/tarnctl.1"])
def test_every_option_has_its_entry(page):
    _, usage = run_to_end(Path(page).stem, "--help", directory="/")
    options = re.findall(r"^ +(?:-\w,)?(--[a-z-]+)", usage, re.M)
    text = (SOURCE / page).read_text().replace("\\-", "-")
    assert "--help" in options and [option for option in options if option not in text] == []


def test_every_directive_has_its_entry():
    status, listed = run_to_end("tarn-agentd", "--directives", directory="/")
    assert status == 0
    text = (SOURCE / "host/tarn-agentd.conf.5").read_text()
    assert sorted(re.findall(r"^(\w+) ", listed, re.M)) == sorted(re.findall(r"^\.BI (tarn\w+) ", text, re.M)) != []
