"""What a firmware test needs beside chassis and agent: a TFTP server, a notification receiver, stand-ins."""

import os
import shutil
import socket
import struct
import subprocess
import tempfile
import zlib
from pathlib import Path

import snmp
from programs import BUILD, PATIENCE, free_port, wait_until
from trap_receiver import TrapReceiver

FIRMWARE = f"{snmp.ROOT}.3.30"


def make_image(directory, name, version="3.38.1.36", description="ONT firmware", payload=b"payload" * 1000):
    (directory / "payload").write_bytes(payload)
    subprocess.run([BUILD / "bin/tarn-mkimage", "--version-number", version, "--description", description,
                    directory / "payload", directory / name], check=True)
    (directory / "payload").unlink()
    return (directory / name).read_bytes()


def sum_of(content):
    return struct.pack("<II", len(content), zlib.crc32(content)).hex()


class Site:
    """The directories below TARN_ROOT, short enough for the module's buffers, and programs around the agent."""

    def __init__(self):
        self.root = Path(tempfile.mkdtemp(prefix="tarn-", dir="/tmp"))
        self.images = self.root / "mnt/fs/tools/cpe"
        self.config = self.root / "mnt/ram/config"
        self.served = self.root / "tftp"
        self.bin = self.root / "bin"
        for directory in (self.images, self.config, self.served, self.bin):
            directory.mkdir(parents=True)
        # in.tftpd serves as another user.
        for directory in (self.root, self.served):
            directory.chmod(0o755)
        self.tftp_port = free_port()
        self.trap_port = free_port()
        self.children = []
        self.log = self.root / "commands"
        self.stand_in("sudo", "exit 1")
        self.stand_in("chown", "")
        self.stand_in("tftp", f'exec /bin/busybox tftp "$@" {self.tftp_port}')
        os.environ["TARN_ROOT"] = str(self.root)

    def agent_lines(self):
        return [f"tarnCommandPath {self.bin}:/usr/bin:/bin", f"trap2sink 127.0.0.1:{self.trap_port} public",
                f"tarnTftpDirectory {self.root}/mnt/fs/tools"]

    def stand_in(self, program, script):
        """A shell script in front of the real programs, which also writes down how it was called."""
        path = self.bin / program
        path.write_text(f'#!/bin/sh\necho "{program} $*" >>{self.log}\n{script}\n')
        path.chmod(0o755)

    def commands(self):
        return self.log.read_text().splitlines() if self.log.exists() else []

    def start_tftp_server(self):
        self.children.append(subprocess.Popen(
            ["/usr/sbin/in.tftpd", "-L", "--ipv4", "--address", f"127.0.0.1:{self.tftp_port}", "--user", "nobody",
             "--secure", str(self.served)], stdin=subprocess.DEVNULL))

        def answers():
            with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as probe:
                probe.settimeout(0.2)
                try:
                    probe.sendto(b"\0\1nothing\0octet\0", ("127.0.0.1", self.tftp_port))
                    return bool(probe.recv(600))
                except OSError:
                    return False
        wait_until(answers, "the TFTP server")

    def start_trap_receiver(self):
        self.receiver = TrapReceiver(self.root, self.trap_port, [snmp.USER_LINES[0]])
        self.children.append(self.receiver.process)

    def notifications(self):
        """The kind of each notification of a download's end, its status and text."""
        lines = [line for line in self.receiver.lines() if "tarnONTFirmwareDownloadEnd" in line]
        return [(line.split("\t")[0], line.split("DownloadStatus.0 ")[1].split("\t")[0],
                 line.split("DownloadText.0 ")[1].strip()) for line in lines]

    def traps(self):
        return [notification[1:] for notification in self.notifications()]

    def wait_for_traps(self, count):
        wait_until(lambda: len(self.traps()) >= count, f"{count} notifications")
        return self.traps()

    def close(self):
        del os.environ["TARN_ROOT"]
        for child in self.children:
            child.terminate()
            child.wait(PATIENCE)
        shutil.rmtree(self.root)
