#!/usr/bin/env python3
"""Measures the pane's operations beside GraphicsMagick, ImageMagick, libvips and OpenCV in one run.

    effects-peers.py TESSARA_BENCH_EFFECTS

Prints CPU milliseconds per megapixel on one thread and 24 megapixels, the ratio to the better Magick and to the
fastest peer, and the geometric mean of the latter. A program that is missing is left out. The Magicks are asked for
an operation once and three times, so that reading the picture does not count; libvips runs against a plain copy.
"""
import json
import math
import os
import resource
import shutil
import subprocess
import sys
import tempfile
import time

WIDTH, HEIGHT = 6000, 4000
MEGAPIXELS = WIDTH * HEIGHT / 1e6

# operation, GraphicsMagick and ImageMagick options, vips operation, OpenCV
OPERATIONS = [
    ("FxNegative", "-negate", "-negate", ["invert"], lambda cv, np, a: cv.bitwise_not(a)),
    ("FxContrast", None, "-brightness-contrast 0x40", ["linear", "2", "-128", "--uchar"],
     lambda cv, np, a: cv.convertScaleAbs(a, alpha=2, beta=-128)),
    ("FxBrightness", None, "-brightness-contrast 30x0", ["linear", "1", "64", "--uchar"],
     lambda cv, np, a: cv.add(a, (64, 64, 64, 0))),
    ("FxGamma", "-gamma 1.5", "-gamma 1.5", ["gamma", "--exponent", "1.5"],
     lambda cv, np, a: cv.LUT(a, (255 * (np.arange(256) / 255.0) ** (1 / 1.5)).astype(np.uint8))),
    ("FxGrayScale", "-colorspace GRAY", "-colorspace Gray", ["colourspace", "b-w"],
     lambda cv, np, a: cv.cvtColor(a, cv.COLOR_BGRA2GRAY)),
    ("FxPosterize", None, "+dither -posterize 4", None,
     lambda cv, np, a: cv.LUT(a, (np.arange(256) // 64 * 85).astype(np.uint8))),
    ("FxSolarize", "-solarize 100", "-solarize 40%", None,
     lambda cv, np, a: cv.LUT(a, np.array([v if v <= 100 else 255 - v for v in range(256)], np.uint8))),
    ("FxColorize", "-modulate 110,120,130", "-modulate 110,120,130", None, None),
    ("FxBlur", "-convolve 1,1,1,1,1,1,1,1,1", "-morphology Convolve 3x3:1,1,1,1,1,1,1,1,1", "box",
     lambda cv, np, a: cv.blur(a, (3, 3))),
    ("FxSharpen", "-convolve -1,-2,-1,-2,28,-2,-1,-2,-1", "-morphology Convolve 3x3:-1,-2,-1,-2,28,-2,-1,-2,-1",
     "sharpen", lambda cv, np, a: cv.filter2D(a, -1, np.array([[-1, -2, -1], [-2, 28, -2], [-1, -2, -1]]) / 16.0)),
    ("FxEmboss", "-emboss 1", "-emboss 1", None,
     lambda cv, np, a: cv.filter2D(a, -1, np.array([[-2, -1, 0], [-1, 0, 1], [0, 1, 2]]) / 2.0, delta=128)),
    ("FxFindEdges", "-edge 1", "-edge 1", ["sobel"],
     lambda cv, np, a: cv.convertScaleAbs(cv.Sobel(a, cv.CV_16S, 1, 0)) + cv.convertScaleAbs(
         cv.Sobel(a, cv.CV_16S, 0, 1))),
    ("FxAddNoise", "+noise Uniform", "+noise Uniform", None, None),
    ("FxDiffuse", "-spread 5", "-spread 5", None, None),
    ("FxMosaic", None, None, None,
     lambda cv, np, a: cv.resize(cv.resize(a, (WIDTH // 16, HEIGHT // 16), interpolation=cv.INTER_AREA),
                                 (WIDTH, HEIGHT), interpolation=cv.INTER_NEAREST)),
    ("FxSwirl", "-swirl 225", "-swirl 225", None, None),
    ("FxRotate", "-rotate -30", "-rotate -30", ["rotate", "-30"], lambda cv, np, a: cv.warpAffine(
        a, np.float32([[.866, .5, 0], [-.5, .866, 3000]]), (7197, 6465), flags=cv.INTER_LINEAR)),
    ("FxRotate90", "-rotate -90", "-rotate -90", ["rot", "d270"],
     lambda cv, np, a: cv.rotate(a, cv.ROTATE_90_COUNTERCLOCKWISE)),
    ("FxFlipHorizontal", "-flop", "-flop", ["flip", "horizontal"], lambda cv, np, a: cv.flip(a, 1)),
    ("FxFlipVertical", "-flip", "-flip", ["flip", "vertical"], lambda cv, np, a: cv.flip(a, 0)),
    ("ResampleShrink", "-filter Box -resize 1897x1265!", "-filter Box -resize 1897x1265!",
     ["resize", "0.3162", "--kernel", "linear"],
     lambda cv, np, a: cv.resize(a, (1897, 1265), interpolation=cv.INTER_AREA)),
]


def cpu_of(command):
    """CPU milliseconds of a command on one thread, of a short one the best of several; None where it fails."""
    environment = dict(os.environ, OMP_NUM_THREADS="1", MAGICK_THREAD_LIMIT="1", VIPS_CONCURRENCY="1")
    best = None
    for _ in range(4):
        before = resource.getrusage(resource.RUSAGE_CHILDREN)
        if subprocess.run(command, env=environment, capture_output=True).returncode != 0:
            return None
        after = resource.getrusage(resource.RUSAGE_CHILDREN)
        spent = 1000 * (after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime)
        best = spent if best is None else min(best, spent)
        if best > 600:
            break
    return best


def magick(program, path, options):
    part = options.split()
    # A second turn or resize meets another picture, and what is grey already is not made grey again.
    if any(word in options for word in ("-rotate", "-resize", "-colorspace")):
        plain, full = cpu_of(program + [path, "null:"]), cpu_of(program + [path] + part + ["null:"])
        return None if plain is None or full is None else (full - plain) / MEGAPIXELS
    one, three = (cpu_of(program + [path] + part * count + ["null:"]) for count in (1, 3))
    return None if one is None or three is None else max(0.0, three - one) / 2 / MEGAPIXELS


def vips(folder, path, operation):
    if operation in ("box", "sharpen"):
        mask = os.path.join(folder, operation + ".mat")
        with open(mask, "w") as file:
            file.write("3 3 9 0\n1 1 1\n1 1 1\n1 1 1\n" if operation == "box"
                       else "3 3 16 0\n-1 -2 -1\n-2 28 -2\n-1 -2 -1\n")
        arguments = ["conv", path, os.path.join(folder, "out.v"), mask, "--precision", "integer"]
    else:
        arguments = [operation[0], path, os.path.join(folder, "out.v")] + operation[1:]
    plain = cpu_of(["vips", "copy", path, os.path.join(folder, "out.v")])
    full = cpu_of(["vips"] + arguments)
    return None if plain is None or full is None else max(0.0, full - plain) / MEGAPIXELS


def opencv(function, picture):
    import cv2
    import numpy
    cv2.setNumThreads(1)
    best = None
    for _ in range(4):
        start = time.process_time()
        function(cv2, numpy, picture)
        spent = 1000 * (time.process_time() - start) / MEGAPIXELS
        best = spent if best is None else min(best, spent)
    return best


def own(program):
    """The same of ours, and of a plain copy."""
    names = "|".join(row[0] for row in OPERATIONS)
    text = subprocess.run([program, f"--benchmark_filter=^(Copy/|({names})/threads/1)", "--benchmark_format=json",
                           "--benchmark_repetitions=3"], capture_output=True, text=True, check=True).stdout
    best = {}
    for row in json.loads(text)["benchmarks"]:
        if row["run_type"] == "iteration":
            name = row["name"].split("/")[0]
            best[name] = min(row["cpu_time"] / MEGAPIXELS, best.get(name, math.inf))
    return best


def main():
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    mine = own(sys.argv[1])
    try:
        import numpy
        random = numpy.random.default_rng(1)
        small = random.integers(0, 256, (HEIGHT // 8, WIDTH // 8, 4), dtype=numpy.uint8)
        import cv2
        picture = cv2.resize(small, (WIDTH, HEIGHT), interpolation=cv2.INTER_CUBIC)
    except ImportError:
        sys.exit("numpy and cv2 are needed to make the picture")
    image_magick = next((name for name in ("convert-im6.q16", "magick") if shutil.which(name)), None)
    with tempfile.TemporaryDirectory() as folder:
        path = os.path.join(folder, "in.ppm")
        with open(path, "wb") as file:
            file.write(b"P6 %d %d 255\n" % (WIDTH, HEIGHT) + picture[:, :, 2::-1].tobytes())
        native = os.path.join(folder, "in.v")
        if shutil.which("vips"):
            subprocess.run(["vips", "copy", path, native], check=True)
        print(f"{'ms/MP':18}{'own':>8}{'GM':>9}{'IM':>9}{'vips':>9}{'OpenCV':>9}{'/Magick':>9}{'/fastest':>9}")
        print(f"{'a plain copy':18}{mine['Copy']:8.2f}")
        logarithms = []
        for name, gm_options, im_options, vips_operation, cv_function in OPERATIONS:
            peers = [
                magick(["gm", "convert"], path, gm_options) if gm_options and shutil.which("gm") else None,
                magick([image_magick], path, im_options) if im_options and image_magick else None,
                vips(folder, native, vips_operation) if vips_operation and os.path.exists(native) else None,
                opencv(cv_function, picture) if cv_function else None,
            ]
            # Below this a difference of two runs is noise.
            peers = [value if value is not None and value > 0.05 else None for value in peers]
            magicks = [value for value in peers[:2] if value]
            known = [value for value in peers if value]
            text = f"{name:18}{mine[name]:8.2f}" + "".join(f"{v:9.2f}" if v else f"{'-':>9}" for v in peers)
            text += f"{mine[name] / min(magicks):9.2f}" if magicks else f"{'-':>9}"
            if known:
                text += f"{mine[name] / min(known):9.2f}"
                logarithms.append(math.log(mine[name] / min(known)))
            print(text, flush=True)
        print(f"geometric mean to the fastest peer: {math.exp(sum(logarithms) / len(logarithms)):.2f}")


if __name__ == "__main__":
    main()
