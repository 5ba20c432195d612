#!/usr/bin/python3
"""Builds the tests with gcov, runs them and prints which lines of src/ no test reaches.

    tests/coverage.py [--lines] [FOLDER ...]

Without folders: those without a toolkit. --lines lists the lines themselves. The build is build/coverage.
"""

import collections
import json
import os
import pathlib
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
BUILD = ROOT / "build/coverage"
FOLDERS = ["src/core", "src/core/rastx", "src/core/rastx/codecs", "src/core/rastx/effects", "src/edit", "src/metafile",
           "src/settings", "src/tiff"]
OFFSCREEN = dict(os.environ, QT_QPA_PLATFORM="offscreen")
TESTS = ["tessara_core_tests", "tessara_desktop_tests"]


def build_and_run():
    flags = ["-DCMAKE_BUILD_TYPE=Debug", "-DCMAKE_CXX_FLAGS_DEBUG=", "-DCMAKE_CXX_FLAGS=--coverage -O1"]
    subprocess.run(["cmake", "-G", "Ninja", "-S", ROOT, "-B", BUILD, *flags], check=True, stdout=subprocess.DEVNULL)
    subprocess.run(["ninja", "-C", BUILD, "--quiet", *TESTS], check=True)
    for old in BUILD.rglob("*.gcda"):
        old.unlink()
    for test in TESTS:
        command = [BUILD / "bin" / test, "--gtest_brief=1"]
        if subprocess.run(command, cwd=BUILD, stdout=subprocess.DEVNULL, env=OFFSCREEN).returncode:
            print(f"{test} failed; what it reached counts all the same")


def count_lines():
    """Calls of each line of src/, over all objects that hold it, those of tests too: {path: {line: calls}}."""
    counts = collections.defaultdict(collections.Counter)
    for data in BUILD.rglob("*.gcda"):
        report = subprocess.run(["gcov", "--json-format", "--stdout", data], cwd=BUILD, capture_output=True).stdout
        for source in (source for text in report.splitlines() for source in json.loads(text)["files"]):
            path = (BUILD / source["file"]).resolve()
            if path.is_relative_to(ROOT / "src"):
                for line in source["lines"]:
                    counts[str(path.relative_to(ROOT))][line["line_number"]] += line["count"]
    return counts


def main():
    wanted = [argument.rstrip("/") for argument in sys.argv[1:] if argument != "--lines"] or FOLDERS
    build_and_run()
    counts = count_lines()
    for folder in wanted:
        files = {path: lines for path, lines in counts.items() if str(pathlib.Path(path).parent) == folder}
        reached = sum(calls > 0 for lines in files.values() for calls in lines.values())
        total = sum(map(len, files.values()))
        print(f"{folder:24} {reached:6} of {total:6} lines  {100 * reached / max(total, 1):5.1f} %")
        for path, lines in sorted(files.items()) if "--lines" in sys.argv else []:
            text = (ROOT / path).read_text().splitlines()
            for number in sorted(number for number, calls in lines.items() if not calls):
                print(f"  {path}:{number}: {text[number - 1].strip()}")


if __name__ == "__main__":
    main()
