#!/usr/bin/python3
"""What becomes of files when the command line's conversions are disturbed.

    tests/faults.py PATH-OF-TESSARA [--times N] [signals|full|memory|sources ...]

Whatever happens, a target holds the whole old or the whole new picture and nothing lies beside it. --times tries each
disturbance N times at moments spread over the conversion. Ends with 77 (skipped) for a sanitized program, and where
mount namespaces are not to be had: full disks and file systems without unnamed files are made in one.
"""

import argparse
import collections
import os
import pathlib
import random
import resource
import signal
import struct
import subprocess
import sys
import tempfile
import time

FORMATS = ["bmp", "gif", "jpg", "png", "wbmp", "emf", "tga", "tif", "wmf", "ico"]
OLD = b"the old file"
PRIVATE = ["unshare", "--mount", "--map-root-user"]
# Without /proc a file cannot get its name at the end: as on file systems where files always have names.
WITHOUT_UNNAMED = [*PRIVATE, "sh", "-c", 'mount -t tmpfs none /proc && exec "$@"', "sh"]


def write_bitmap(path, side):
    """Noise in 24 bits."""
    row = (3 * side + 3) // 4 * 4
    header = struct.pack("<2sIHHI", b"BM", 54 + row * side, 0, 0, 54)
    header += struct.pack("<IiiHHIIiiII", 40, side, side, 1, 24, 0, row * side, 0, 0, 0, 0)
    path.write_bytes(header + random.Random(1).randbytes(row * side))


class Conversions:
    """Conversions of one source into every format, each in a folder of its own making."""

    def __init__(self, program, folder, side):
        self.program, self.folder = program, folder
        self.targets = folder / "targets"
        self.targets.mkdir()
        self.source = folder / "source.bmp"
        write_bitmap(self.source, side)
        self.outcomes = collections.Counter()
        self.new, self.seconds = {}, {}
        for suffix in FORMATS:
            start = time.monotonic()
            subprocess.run(self.command(suffix), check=True)
            self.seconds[suffix] = time.monotonic() - start
            self.new[suffix] = self.target(suffix).read_bytes()

    def target(self, suffix):
        return self.targets / f"target.{suffix}"

    def command(self, suffix):
        """From its folder, where reports go."""
        return ["env", "-C", self.folder, self.program, "-O", f"{self.source},{self.target(suffix)}"]

    def prepare(self, suffix, exists):
        for path in self.targets.iterdir():
            path.unlink()
        if exists:
            self.target(suffix).write_bytes(OLD)

    def check(self, suffix, exists, fault):
        names = [path.name for path in self.targets.iterdir()]
        if extra := [name for name in names if name != self.target(suffix).name]:
            sys.exit(f"{fault}, {suffix}: left {extra}")
        held = self.target(suffix).read_bytes() if names else None
        if held not in (OLD if exists else None, self.new[suffix]):
            sys.exit(f"{fault}, {suffix}: the target is neither old nor new")
        self.outcomes[f"{fault}: {'new' if held == self.new[suffix] else 'old'} target"] += 1


def disturb_by_signals(conversions, times):
    kinds = [signal.SIGTERM, signal.SIGINT, signal.SIGHUP, signal.SIGKILL]
    for before, name in [([], ""), (WITHOUT_UNNAMED, " without unnamed files")]:
        # A killed process cannot remove what has a name.
        for kind in kinds if not before else kinds[:-1]:
            for turn in range(times * 2 * len(FORMATS)):
                suffix, exists = FORMATS[turn % len(FORMATS)], turn // len(FORMATS) % 2 == 1
                conversions.prepare(suffix, exists)
                process = subprocess.Popen(before + conversions.command(suffix))
                time.sleep(conversions.seconds[suffix] * random.uniform(0.1, 1.2))
                process.send_signal(kind)
                process.wait()
                conversions.check(suffix, exists, kind.name + name)


def disturb_by_memory(conversions, times):
    needed = 4 * len(conversions.new["bmp"]) // 3
    for turn in range(8 * times * len(FORMATS)):
        suffix, exists = FORMATS[turn % len(FORMATS)], turn // len(FORMATS) % 2 == 1
        conversions.prepare(suffix, exists)
        limit = (14 << 20) + needed * (turn // len(FORMATS)) // (2 * times)
        limits = lambda: resource.setrlimit(resource.RLIMIT_AS, (limit, limit))
        # 127: not even the loader has memory.
        code = subprocess.run(conversions.command(suffix), preexec_fn=limits, stderr=subprocess.DEVNULL).returncode
        if code not in (0, 127):
            sys.exit(f"{limit} bytes of memory, {suffix}: ended with {code}")
        conversions.check(suffix, exists, "no memory")


def disturb_by_full_disk(conversions, _):
    """In a namespace of its own: the targets' folder is a disk of 64 KiB."""
    subprocess.run(["mount", "-t", "tmpfs", "-o", "size=64k", "none", conversions.targets], check=True)
    for filler in (False, True):
        for suffix in FORMATS:
            for exists in (False, True):
                conversions.prepare(suffix, exists)
                if filler:
                    subprocess.run(["dd", "if=/dev/zero", f"of={conversions.targets}/filler"], capture_output=True)
                subprocess.run(conversions.command(suffix), env={"TMPDIR": str(conversions.targets)}, check=True)
                if filler:
                    (conversions.targets / "filler").unlink()
                conversions.check(suffix, exists, "full disk")


def disturb_by_sources(conversions, times):
    """The source is cut, made longer, replaced or removed while it is read."""
    whole = conversions.source.read_bytes()
    other = conversions.folder / "other.bmp"
    changes = {
        "cut": lambda source: os.truncate(source, 100),
        "longer": lambda source: os.truncate(source, 2 * len(whole)),
        "replaced": lambda source: (other.write_bytes(OLD), other.replace(source)),
        "removed": lambda source: source.unlink(),
    }
    for name, change in changes.items():
        for _ in range(5 * times):
            conversions.prepare("bmp", False)
            process = subprocess.Popen(conversions.command("bmp"))
            time.sleep(conversions.seconds["bmp"] * random.uniform(0, 0.7))
            change(conversions.source)
            if process.wait() != 0:
                sys.exit(f"source {name}: ended with {process.returncode}")
            conversions.outcomes[f"source {name}: done"] += 1
            conversions.source.write_bytes(whole)


FAULTS = {"signals": disturb_by_signals, "full": disturb_by_full_disk, "memory": disturb_by_memory,
          "sources": disturb_by_sources}


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("program", type=os.path.abspath)
    parser.add_argument("--times", type=int, default=1)
    parser.add_argument("--side", type=int, default=700, help="of the source, in pixels")
    parser.add_argument("faults", nargs="*", default=list(FAULTS))
    arguments = parser.parse_intermixed_args()
    if b"__asan_init" in pathlib.Path(arguments.program).read_bytes():
        print("the sanitizers want all of the memory, and /proc")
        sys.exit(77)
    if os.environ.get("TESSARA_PRIVATE_MOUNTS") != "1":
        if subprocess.run([*PRIVATE, "mount", "-t", "tmpfs", "none", "/mnt"], capture_output=True).returncode:
            print("there are no mount namespaces")
            sys.exit(77)
        os.environ["TESSARA_PRIVATE_MOUNTS"] = "1"
        os.execvp(PRIVATE[0], [*PRIVATE, sys.executable, *sys.argv])
    for fault in arguments.faults:
        with tempfile.TemporaryDirectory() as folder:
            conversions = Conversions(arguments.program, pathlib.Path(folder), arguments.side)
            FAULTS[fault](conversions, arguments.times)
            for outcome, count in sorted(conversions.outcomes.items()):
                print(f"{count:5} x {outcome}")
            subprocess.run(["umount", "-q", conversions.targets], check=False)


if __name__ == "__main__":
    main()
