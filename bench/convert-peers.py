#!/usr/bin/python3
"""Measures whole conversions beside other programs, in one run, and prints ratios.

    bench/convert-peers.py [--tessara PATH] [--folder FOLDER] [--runs N] [jobs|start|many|batch|window|memory ...]

Installs the peers (GraphicsMagick, ImageMagick, libvips, OpenCV, Pillow) where they are missing. CPU seconds are
user + system of the whole process and its threads; of OpenCV and Pillow only reading and writing count, not the
start of the interpreter. Each figure is the best of the runs, taken in turn so that a busy machine hits all alike; in
each turn a program runs twice, since a virtual machine pays for memory again that the program before gave back.
"""

import argparse
import math
import os
import shutil
import struct
import subprocess
import sys
import tempfile
import time

SCREEN_PACKAGES = ["xvfb", "openbox", "xdotool"]
PACKAGES = ["imagemagick", "graphicsmagick", "libvips-tools", "python3-opencv", "python3-pil", "python3-numpy"]
ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
QUALITY = "80"  # what a conversion from the command line uses
JOBS = ["jpg png", "bmp png", "jpg bmp", "png jpg", "tif jpg", "png gif", "jpg gif", "png tif"]
ENVIRONMENT = dict(os.environ, MAGICK_THREAD_LIMIT="1", OMP_NUM_THREADS="1", VIPS_CONCURRENCY="1")


def install(packages):
    missing = [p for p in packages if subprocess.run(["dpkg", "-s", p], capture_output=True).returncode]
    if missing:
        sudo = [] if os.geteuid() == 0 else ["sudo"]
        subprocess.run(sudo + ["apt-get", "install", "-y", "-q", "--no-install-recommends"] + missing, check=True)


def photo_like(width, height, seed):
    """Gradients, objects with soft and hard edges, texture and film grain: compresses like a photograph."""
    import numpy
    from PIL import Image

    random = numpy.random.default_rng(seed)

    def cloud(cells, scale):
        rough = random.random((cells * height // width + 2, cells)).astype(numpy.float32)
        return numpy.asarray(Image.fromarray(rough).resize((width, height), Image.BICUBIC)) * scale

    light = sum(cloud(cells, 110 / octave) for octave, cells in enumerate([5, 17, 60, 211, 740, 2600, 5200], start=1)) - 60
    picture = numpy.empty((height, width, 3), numpy.uint8)
    for channel in range(3):
        tint = cloud(9, 80) + cloud(97, 14)
        grain = random.normal(0, 5.0, (height, width)).astype(numpy.float32)
        picture[:, :, channel] = numpy.clip(light + tint + grain, 0, 255)
    rows, columns = numpy.mgrid[0:height, 0:width]
    for _ in range(60):
        x, y, radius = random.integers(width), random.integers(height), random.integers(20, width // 12)
        inside = (columns - x) ** 2 + (rows - y) ** 2 < radius**2
        picture[inside] = picture[inside] // 2 + random.integers(0, 128, 3, dtype=numpy.uint8)
    return Image.fromarray(picture)


def make_sources(folder):
    if os.path.exists(f"{folder}/photo.tif"):
        return
    many = f"{folder}/many"
    os.makedirs(many, exist_ok=True)
    for number in range(200):
        if number < 4:
            photo_like(1632, 1224, 10 + number).save(f"{many}/{number}.jpg", quality=90)
        else:
            shutil.copy(f"{many}/{number % 4}.jpg", f"{many}/{number}.jpg")
    from PIL import Image

    Image.new("RGB", (16, 16), (200, 100, 50)).save(f"{folder}/tiny.png")
    photo_like(6000, 4000, 1).save(f"{folder}/photo.jpg", quality=90)
    decoded = Image.open(f"{folder}/photo.jpg")
    decoded.save(f"{folder}/photo.png", compress_level=6)
    decoded.save(f"{folder}/photo.bmp")
    decoded.save(f"{folder}/photo.tif")


def cpu_seconds(command):
    """Of one process and what it started."""
    process = subprocess.Popen(command, env=ENVIRONMENT, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
    output = process.stdout.read()
    _, status, usage = os.wait4(process.pid, 0)
    process.returncode = status
    if status:
        sys.exit(f"{command[0]} failed")
    reported = float(output) if output.strip() else usage.ru_utime + usage.ru_stime
    return reported, usage.ru_maxrss / 1024


PYTHON_PEERS = {
    "OpenCV": "import cv2; cv2.setNumThreads(1)\n"
    "def job(a, b): cv2.imwrite(b, cv2.imread(a), [cv2.IMWRITE_JPEG_QUALITY, %s])" % QUALITY,
    "Pillow": "from PIL import Image\n"
    "def job(a, b): Image.open(a).save(b, **({'quality': %s} if b.endswith('jpg') else {}))" % QUALITY,
}


def commands(tessara, source, target):
    """The same job for each program; a program that cannot do it is left out."""
    jpeg = target.endswith(".jpg")
    found = {
        "tessara": [tessara, "-O", f"{source},{target}"],
        "GraphicsMagick": ["gm", "convert", source] + (["-quality", QUALITY] if jpeg else []) + [target],
        "ImageMagick": [magick(), source] + (["-quality", QUALITY] if jpeg else []) + [target],
    }
    if not target.endswith(".bmp"):
        found["libvips"] = ["vips", "copy", source, target + (f"[Q={QUALITY}]" if jpeg else "")]
    for name, code in PYTHON_PEERS.items():
        if name == "OpenCV" and target.endswith(".gif"):
            continue
        timed = f"{code}\nimport time\nt = time.process_time()\njob({source!r}, {target!r})\nprint(time.process_time() - t)"
        found[name] = [sys.executable, "-c", timed]
    return found


def magick():
    return shutil.which("convert-im6.q16") or shutil.which("convert") or "convert"


def compare_jobs(tessara, folder, runs):
    print(f"{'job':8} {'program':15} {'CPU s':>7} {'MB':>7} {'peak MB':>8}")
    ratios = []
    for job in JOBS:
        source, target = job.split()
        best = {}
        output = f"{folder}/out.{target}"
        for _ in range(runs):
            for name, command in commands(tessara, f"{folder}/photo.{source}", output).items():
                seconds, peak = min(cpu_seconds(command) for _ in range(2))
                if name not in best or seconds < best[name][0]:
                    best[name] = (seconds, os.path.getsize(output) / 1e6, peak)
        for name, (seconds, size, peak) in best.items():
            print(f"{job:8} {name:15} {seconds:7.3f} {size:7.1f} {peak:8.0f}")
        peers = {name: values[0] for name, values in best.items() if name != "tessara" and values[0] > 0}
        fastest = min(peers, key=peers.get)
        ratios.append(best["tessara"][0] / peers[fastest])
        print(f"{job:8} {'ratio':15} {ratios[-1]:7.2f} of {fastest}\n", flush=True)
    print(f"geometric mean {math.exp(sum(map(math.log, ratios)) / len(ratios)):.2f}, worst {max(ratios):.2f}\n")


def compare_start(tessara, folder):
    times = {}
    target = f"{folder}/tiny.bmp"
    for _ in range(40):
        for name, command in commands(tessara, f"{folder}/tiny.png", target).items():
            if name in ("tessara", "GraphicsMagick", "ImageMagick"):
                if os.path.exists(target):
                    os.remove(target)
                start = time.perf_counter()
                subprocess.run(command, env=ENVIRONMENT, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, check=True)
                times.setdefault(name, []).append(time.perf_counter() - start)
    print("start and 16x16 PNG to BMP, wall ms (median of 40)")
    for name, values in times.items():
        print(f"  {name:15} {sorted(values)[len(values) // 2] * 1000:6.1f}")
    print()


def compare_many(tessara, folder):
    many = f"{folder}/many"
    loops = {
        "tessara": f"{tessara} -O {{}}.jpg,{{}}.png",
        "GraphicsMagick": "gm convert {}.jpg {}.png",
        "ImageMagick": magick() + " {}.jpg {}.png",
        "libvips": "vips copy {}.jpg {}.png",
    }
    print("200 files of 2 megapixels, JPG to PNG, xargs -P2, wall seconds")
    for name, command in loops.items():
        start = time.perf_counter()
        subprocess.run(f"seq 0 199 | xargs -P2 -I{{}} {command}", shell=True, cwd=many, env=ENVIRONMENT, check=True)
        print(f"  {name:15} {time.perf_counter() - start:6.2f}", flush=True)
    print()


def make_batch_sources(folder, files, width, height):
    if os.path.exists(folder):
        return
    os.makedirs(folder)
    for number in range(files):
        if number < 4:
            photo_like(width, height, 20 + number).save(f"{folder}/{number}.jpg", quality=90)
        else:
            shutil.copy(f"{folder}/{number % 4}.jpg", f"{folder}/{number}.jpg")


def batch_peers(targets):
    """Two processes of each, one for each format."""
    each = "for f in *.jpg; do vips copy $f {}; done"
    return {
        "GraphicsMagick": [
            f"gm mogrify -output-directory {targets} -quality 60 -format jpg *.jpg",
            f"gm mogrify -output-directory {targets} -format png *.jpg",
        ],
        "ImageMagick": [
            f"mogrify-im6.q16 -path {targets} -quality 60 -format jpg *.jpg",
            f"mogrify-im6.q16 -path {targets} -format png *.jpg",
        ],
        "libvips": [each.format(f"{targets}/$f[Q=60]"), each.format(f"{targets}/$f.png")],
    }


def time_side_by_side(name, commands, folder):
    start = time.perf_counter()
    running = [subprocess.Popen(c, shell=True, cwd=folder, env=ENVIRONMENT, stdout=subprocess.DEVNULL) for c in commands]
    if any([process.wait() for process in running]):
        sys.exit(f"{name} failed")
    print(f"  {name:15} {time.perf_counter() - start:6.2f}", flush=True)


def compare_batch(program, folder, files):
    """One batch job to JPG and PNG beside the peers."""
    sources, targets = f"{folder}/batch", f"{folder}/batch-targets"
    make_batch_sources(sources, files, 2448, 1632)
    os.makedirs(targets, exist_ok=True)
    print(f"{files} files of 4 megapixels, JPG to JPG and PNG, wall seconds")
    for name, commands in {"tessara": [f"{program} {sources} {targets}"], **batch_peers(targets)}.items():
        time_side_by_side(name, commands, sources)
    print()


def settings_of_job(sources, targets):
    """The settings file of a window that converts all graphics to JPG and PNG and replaces what is there."""
    flags = lambda values: b"".join(struct.pack("<h", -value) for value in values)
    path = lambda text: f"{text}///".encode().ljust(300)
    all_graphics, replace = 2, 1
    record = flags([False] + [True] * 25) + bytes([all_graphics]) + flags(i in (2, 3) for i in range(10))
    record += path(targets) + path(sources) + bytes([replace]) + flags([False])
    return record.ljust(799, b"\0") + bytes([1, 0, 0, 1]) + struct.pack("<ib", 2000, 0)


class Screen:
    """A display of its own with a window manager, and a hand at its keyboard."""

    def __enter__(self):
        read, write = os.pipe()
        command = ["Xvfb", "-screen", "0", "1280x900x24", "-displayfd", str(write)]
        self.processes = [subprocess.Popen(command, pass_fds=[write], stderr=subprocess.DEVNULL)]
        number = os.read(read, 16).decode().strip()
        self.environment = dict(os.environ, DISPLAY=f":{number}", QT_QPA_PLATFORM="xcb")
        self.start(["openbox"])
        return self

    def __exit__(self, *_):
        for process in reversed(self.processes):
            process.kill()
            process.wait()

    def start(self, command):
        quiet = {"stdout": subprocess.DEVNULL, "stderr": subprocess.DEVNULL}
        self.processes.append(subprocess.Popen(command, env=self.environment, **quiet))
        return self.processes[-1]

    def do(self, *arguments):
        subprocess.run(["xdotool", *arguments], env=self.environment, stdout=subprocess.DEVNULL, check=True)

    def shows(self, title):
        command = ["xdotool", "search", "--onlyvisible", "--name", title]
        return subprocess.run(command, env=self.environment, capture_output=True).returncode == 0


def resident_megabytes(process):
    with open(f"/proc/{process.pid}/status") as status:
        return next(int(line.split()[1]) for line in status if line.startswith("VmRSS")) / 1024


def run_window_job(tessara, sources, targets, files):
    """Seconds from the key that starts the job to the last target, and samples (targets written, megabytes)."""
    shutil.rmtree(targets, ignore_errors=True)
    os.makedirs(targets)
    with tempfile.TemporaryDirectory() as program, Screen() as screen:
        for name in ("tessara", "libtessara_desktop.so"):
            shutil.copy(os.path.join(os.path.dirname(tessara), name), program)
        with open(f"{program}/ts40.cfg", "wb") as settings:
            settings.write(settings_of_job(sources, targets))
        process = screen.start([f"{program}/tessara"])
        screen.do("search", "--sync", "--onlyvisible", "--name", f"{sources}$")
        while not screen.shows("^Options$"):
            screen.do("mousemove", "300", "94", "click", "1", "sleep", "1")  # the first file of the list
            screen.do("key", "F4", "sleep", "1")
        start = time.time()
        screen.do("key", "Return")
        samples = [(0, 0.0)]
        while samples[-1][0] < 2 * files and time.time() < start + 600:
            time.sleep(0.02)
            samples.append((len(os.listdir(targets)), resident_megabytes(process)))
        return max(entry.stat().st_mtime for entry in os.scandir(targets)) - start, samples


def compare_window(tessara, folder, files):
    """The job in the real window, driven by mouse and keyboard, beside the peers."""
    install(SCREEN_PACKAGES)
    sources, targets = f"{folder}/window", f"{folder}/window-targets"
    make_batch_sources(sources, files, 1632, 1224)
    print(f"{files} files of 2 megapixels, JPG to JPG and PNG, wall seconds")
    seconds, samples = run_window_job(tessara, sources, targets, files)
    print(f"  {'window':15} {seconds:6.2f}", flush=True)
    for name, commands in batch_peers(targets).items():
        time_side_by_side(name, commands, sources)
    mean = lambda values: sum(values) / len(values)
    first = mean([size for count, size in samples if 0 < count <= 40])
    last = mean([size for count, size in samples if 2 * files - 40 <= count < 2 * files])
    print(f"  resident: {first:.1f} MB over the first 20 files, {last:.1f} MB over the last 20\n")


def measure_memory(tessara, folder):
    _, peak = cpu_seconds([tessara, "-O", f"{folder}/photo.jpg,{folder}/memory.png"])
    print(f"memory of a 24-megapixel JPG to PNG: {peak:.0f} MB\n")


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--tessara", default=f"{ROOT}/build/release/bin/tessara")
    parser.add_argument("--folder", default=os.path.join(tempfile.gettempdir(), "tessara-bench"))
    parser.add_argument("--batch", default=f"{ROOT}/build/bench/bin/tessara_bench_batch", help="the batch job's program")
    parser.add_argument("--files", type=int, default=200, help="of the batch job")
    parser.add_argument("--runs", type=int, default=3)
    parser.add_argument("parts", nargs="*", default=["jobs", "start", "many", "memory"])
    arguments = parser.parse_args()
    arguments.tessara = os.path.abspath(arguments.tessara)
    install(PACKAGES)
    os.makedirs(arguments.folder, exist_ok=True)
    # In a process of its own: what a program takes at most would otherwise begin with what this one took.
    if arguments.parts != ["sources"]:
        subprocess.run([sys.executable, __file__, "--folder", arguments.folder, "sources"], check=True)
    parts = {
        "sources": lambda: make_sources(arguments.folder),
        "jobs": lambda: compare_jobs(arguments.tessara, arguments.folder, arguments.runs),
        "start": lambda: compare_start(arguments.tessara, arguments.folder),
        "many": lambda: compare_many(arguments.tessara, arguments.folder),
        "batch": lambda: compare_batch(arguments.batch, arguments.folder, arguments.files),
        "window": lambda: compare_window(arguments.tessara, arguments.folder, arguments.files),
        "memory": lambda: measure_memory(arguments.tessara, arguments.folder),
    }
    for part in arguments.parts:
        parts[part]()


if __name__ == "__main__":
    main()
