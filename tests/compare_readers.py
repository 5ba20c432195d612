#!/usr/bin/python3
"""Reads every sample picture with the program and with another reader, and compares the pixels.

    tests/compare_readers.py PATH-OF-TESSARA FOLDER-OF-SAMPLES

Ends with 77 (skipped) where there is no other reader or no sample.
"""

import os
import subprocess
import sys
import tempfile

try:
    import numpy
    from PIL import Image
except ImportError:
    sys.exit(77)

# Largest difference of a channel that is a matter of rounding (JPEG's inverse transform, colour conversion) and not of
# reading. Files that are not listed must be equal.
TOLERANCE = {
    "jpg": 4,
    "jpeg": 4,
    "tif/ycbcr_jpeg_8bit.tif": 4,
}
# Where readers rightly differ, and why.
EXCEPTIONS = {
    "jpg/cymk.jpg": "inks without a profile",
    "psd/cmyk.psd": "inks without a profile",
    "jpeg/bpp8-grayscale.comment.iccp.jpeg": "the other reader ignores the profile",
    "gif/dispose_bgnd_transparency.gif": "background of a picture with transparency",
    "psd/hidden-layer.psd": "colours under full transparency",
    "png/basn6a16.png": "the other reader cuts 16 bits instead of rounding",
    "png/bpp16-grayscale-alpha.png": "the other reader cuts 16 bits instead of rounding",
    "pgm/16_bit_binary.pgm": "the other reader cuts 16 bits instead of rounding",
    "tiff/rgb-3c-16b.tiff": "the other reader cuts 16 bits instead of rounding",
    "tiff/palette-1c-8b.tiff": "the other reader cuts 16 bits instead of rounding",
    "sgi/norle-16.sgi": "the other reader cuts 16 bits instead of rounding",
    "icb/FLAG_B32.icb": "the other reader takes an empty fourth byte for transparency",
    "jpg/portrait_2.jpg": "the other reader ignores the profile",
    "png/pil123p.png": "the other reader ignores the gamma of 1",
    "psd/circles.psd": "the other reader keeps the white that transparent colours are blended with",
    "psd/psd_bitmap.psd": "the other reader inverts black and white",
    "rle/blauesglas_4.rle": "the other reader loses its way at a delta",
}


def other_reading(path):
    """None where the other reader does not know the file."""
    try:
        with Image.open(path) as image:
            if image.mode in ("I", "F") or image.mode.startswith("I;"):
                return None
            if getattr(image, "ico", None):
                image.size = max(image.ico.sizes())
            image.load()
            from PIL import ImageOps

            return numpy.asarray(ImageOps.exif_transpose(image).convert("RGBA")).astype(int)
    except Exception:
        return None


def on_white(pixels):
    alpha = pixels[:, :, 3:] / 255
    return pixels[:, :, :3] * alpha + 255 * (1 - alpha)


def main():
    tessara, samples = map(os.path.abspath, sys.argv[1:])
    if not os.path.isdir(samples):
        print("the folder of sample pictures is missing:", samples)
        sys.exit(77)
    compared = failed = 0
    with tempfile.TemporaryDirectory() as folder:
        for kind in sorted(os.listdir(samples)):
            if not os.path.isdir(f"{samples}/{kind}") or kind in ("wmf", "emf", "pcd"):
                continue
            for name in sorted(os.listdir(f"{samples}/{kind}")):
                label = f"{kind}/{name}"
                expected = other_reading(f"{samples}/{label}")
                if expected is None or label in EXCEPTIONS:
                    continue
                source = f"{folder}/source.{kind}"
                with open(f"{samples}/{label}", "rb") as original, open(source, "wb") as copy:
                    copy.write(original.read())
                subprocess.run([tessara, "-O", f"{source},{folder}/read.png"], check=True, cwd=folder)
                read = numpy.asarray(Image.open(f"{folder}/read.png").convert("RGBA")).astype(int)
                compared += 1
                if read.shape != expected.shape:
                    print(f"{label}: size {read.shape} instead of {expected.shape}")
                    failed += 1
                    continue
                difference = numpy.abs(on_white(read) - on_white(expected)).max()
                if difference > TOLERANCE.get(label, TOLERANCE.get(kind, 0)) + 1e-9:
                    print(f"{label}: differs by up to {difference:.1f}")
                    failed += 1
    print(f"{compared} samples compared, {failed} differ")
    sys.exit(1 if failed or compared < 50 else 0)


if __name__ == "__main__":
    main()
