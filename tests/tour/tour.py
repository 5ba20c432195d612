#!/usr/bin/python3
"""Drives the program on a real screen from its first start to a finished job, as a new user would:

    tests/tour/tour.py PATH-OF-TESSARA [--shots FOLDER] [--pictures FOLDER]

It makes its own pictures unless it is given three or more. Ends with 77 (skipped) where something of what it needs
is missing: Debian's xvfb, openbox, xdotool, dbus, at-spi2-core and python3-gi.
"""

import argparse
import os
import shutil
import struct
import subprocess
import sys
import tempfile
from pathlib import Path

sys.dont_write_bytecode = True
try:
    from screen import ACTIVE, CHECKED, LIMIT, Screen, missing, wait
except ImportError as error:
    print(error)
    sys.exit(77)

TITLE = "Tessara Pro v4.0 -> "
QUESTION = "Tessara Pro"
COLUMNS = 5  # of the list
UNSAVED = "The Export Image has been changed and not saved. Continue anyway?"
SETTINGS_SIZE = 808


def landscape(width, height, seed):
    """A hill and the sun before a sky, as a PPM file."""
    pixels = bytearray()
    for y in range(height):
        for x in range(width):
            hill = height * (0.4 + 0.1 * seed * (x / width - 0.5) ** 2)
            sun = (x - width * 0.2 * seed) ** 2 + (y - height * 0.2) ** 2 < (height * 0.1) ** 2
            pixels += bytes((255, 220, 120) if sun else
                            (90, 140 + 60 * y // height, 200 + 50 * y // height) if y < hill else
                            (60 + 30 * seed, 150 - 80 * y // height, 50))
    return b"P6 %d %d 255\n" % (width, height) + pixels


class Tour:
    """What a user does, one method each, in the order of their lines. Each waits until its work is done."""

    def __init__(self, program, folder, shots, pictures):
        self.folder, self.shots = folder, shots
        self.home = folder / "home"
        self.holiday = self.home / "Documents" / "Holiday"
        self.target = self.home / "Converted"
        for path in (self.holiday, self.target, folder / "bin", folder / "screen"):
            path.mkdir(parents=True)
        self.program = self._install(program)
        self._provide(pictures)
        self.sources = sorted(file.name for file in self.holiday.iterdir())
        self.shots_taken = 0
        self.screen = Screen(folder / "screen", 1366, 768)

    def _install(self, program):
        """A copy beside which nobody has left settings. What is installed for all keeps them in the home."""
        if program.is_relative_to("/usr"):
            self.private, self.installed = self.home / ".local/share/tessara", set()
            return program
        self.private = self.folder / "program"
        self.private.mkdir()
        for file in [program, *program.parent.glob("libtessara_*.so")]:
            shutil.copy(file, self.private)
        (self.private / "help").symlink_to((program.parent / "help").resolve())
        self.installed = {file.name for file in self.private.iterdir()}
        return self.private / "tessara"

    def _provide(self, pictures):
        if pictures is not None:
            for file in sorted(pictures.iterdir()):
                shutil.copy(file, self.holiday)
            return
        for seed, name in enumerate(("Beach.jpg", "Harbour.png", "mountains.tif", "village.bmp"), 1):
            (self.folder / "painted.ppm").write_bytes(landscape(240 + 40 * seed, 180, seed))
            self.convert(self.folder / "painted.ppm", self.holiday / name)

    def convert(self, source, target):
        subprocess.run([self.program, "-O", f"{source},{target}"], check=True)

    def size(self, picture):
        """As the program reads it, or None."""
        bitmap = self.folder / "read.bmp"
        bitmap.unlink(missing_ok=True)
        self.convert(picture, bitmap)
        return struct.unpack("<ii", bitmap.read_bytes()[18:26]) if bitmap.exists() else None

    def shoot(self, what):
        self.shots_taken += 1
        if self.shots is not None:
            self.screen.save(self.folder / "shot.bmp")
            self.convert(self.folder / "shot.bmp", self.shots / f"{self.shots_taken:02}-{what}.png")

    # What is done again and again.

    def press(self, window, button):
        self.screen.click(window.find("push button", button))

    def choose(self, *entries):
        """Goes through the menus with the pointer."""
        for entry in entries:
            self.screen.click(self.main.find("menu item", entry))

    def line(self, window, part):
        """Waits for a label with this in it."""
        wait(part, lambda: any(part in label.name for label in window.all("label")))

    def pane(self, name):
        """What it shows, but for its rim, over which its neighbours reach."""
        left, top, width, height = self.main.find(None, name).box
        rim = 10
        return self.screen.pixels((left + rim, top + rim, width - 2 * rim, height - 2 * rim))

    def shows_import(self, seen):
        """By the mean colour: the layout may make one pane a row taller than the other."""
        def mean(pixels, channel):
            return sum(pixels[channel::4]) / len(pixels) * 4
        shown = self.pane("Import image")
        return all(abs(mean(seen, channel) - mean(shown, channel)) < 2 for channel in range(3))

    def wait_for_pane(self, condition):
        """Of the export picture; what it looks like then."""
        def look():
            seen = self.pane("Export image")
            is_painted = seen == self.pane("Export image")
            return is_painted and condition(seen) and seen
        return wait("export picture", look)

    def wait_for_main_window(self):
        wait("main window", lambda: self.main.has(ACTIVE) and len(self.screen.windows()) == 1)

    def enter(self, field, text):
        self.screen.click(field)
        self.screen.key("ctrl+a")
        self.screen.type(text)
        wait(f"typed {text}", lambda: field.text == text)

    def tick(self, controls, wanted):
        """Turns on what is wanted of these and everything else off."""
        for control in controls:
            if control.has(CHECKED) != (control.name in wanted):
                self.screen.click(control)
                wait(control.name, lambda: control.has(CHECKED) == (control.name in wanted))

    def rows(self):
        """The first cells of the rows in sight."""
        cells = [cell for cell in self.main.find(None, "Files").all() if cell.role != "column header"]
        return cells[::COLUMNS]

    def go_to(self, folder):
        self.enter(self.main.find("text"), str(folder))
        self.screen.key("Return")

    def answer(self, text, button, shot):
        question = self.screen.window(QUESTION)
        self.line(question, text)
        self.shoot(shot)
        self.press(question, button)

    def options(self, scope, formats, rule):
        options = self.screen.window("Options")
        self.screen.click(options.find("radio button", scope))
        self.tick(options.find("panel", "Export to").all("check box"), formats)
        self.enter(options.find("text", "Target Folder"), str(self.target))
        self.screen.click(options.find("radio button", rule))
        return options

    def leave_job(self, counts, shot):
        job = self.screen.window("Convert")
        for count in counts:
            self.line(job, count)
        done = job.find("push button", "Done")
        self.shoot(shot)
        self.screen.click(done)
        self.wait_for_main_window()

    def targets(self):
        return {file.name for file in self.target.iterdir()}

    # The tour.

    def start(self, shot="first-start"):
        """On a desktop whose file manager only notes what it is asked to open."""
        opener = self.folder / "bin" / "xdg-open"
        opener.write_text(f'#!/bin/sh\necho "$1" >>{self.folder}/opened\n')
        opener.chmod(0o755)
        environment = {**self.screen.environment, "HOME": str(self.home), "QT_QPA_PLATFORM": "xcb",
                       "QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1", "PATH": f"{opener.parent}:{os.environ['PATH']}"}
        self.process = subprocess.Popen([self.program], env=environment)
        self.main = self.screen.window(TITLE + "...")
        self.wait_for_pane(any)
        self.shoot(shot)
        assert (self.private / "ts40.cfg").stat().st_size == SETTINGS_SIZE

    def choose_a_folder(self):
        self.press(self.main, "Collapse")
        wait("collapsed tree", lambda: len(self.main.find("tree", "Folders").all("tree item")) == 3)
        self.screen.click(self.main.find("tree item", "My Documents"), times=2)
        self.screen.click(self.main.find("tree item", "Holiday"))
        self.screen.window(TITLE + "My Documents/Holiday")
        self.line(self.main, f"Total {len(self.sources)} Files (")
        self.shoot("folder-from-the-tree")
        self.go_to(self.target)
        self.line(self.main, "No image file found")
        self.shoot("folder-from-the-path-box")
        self.go_to(self.holiday)
        self.line(self.main, f"Total {len(self.sources)} Files (")
        self.names = [row.name for row in self.rows()]
        assert self.names and set(self.names) <= set(self.sources), self.names

    def check_files(self):
        for row in self.rows()[:2]:
            self.screen.click(row, at=10)
        self.line(self.main, " 2 Files Selected (")
        empty = self.pane("Export image")
        self.screen.click(self.rows()[0], at=60)
        self.line(self.main, "Current File = " + self.names[0])
        self.wait_for_pane(lambda seen: seen != empty and self.shows_import(seen))
        self.shoot("files-checked")

    def change_the_picture(self):
        start = self.pane("Export image")
        self.choose("Filters", "Stylize", "Negative")
        negative = self.wait_for_pane(lambda seen: seen != start)
        self.shoot("negative")
        self.choose("Filters", "Color", "Contrast / Brightness")
        effect = self.screen.window("Filters - Color - Contrast / Brightness")
        self.enter(effect.find("text", "Brightness"), "40")
        self.press(effect, "Apply")
        bright = self.wait_for_pane(lambda seen: seen != negative)
        self.shoot("effect-dialog")
        self.press(effect, "Quit")
        self.wait_for_main_window()
        for expected in (negative, start):
            self.screen.key("ctrl+z")
            self.wait_for_pane(lambda seen: seen == expected)
        for expected in (negative, bright):
            self.press(self.main, "Redo")
            self.wait_for_pane(lambda seen: seen == expected)
        self.shoot("redone")

    def convert_the_picture(self):
        self.screen.key("F2")
        self.shoot("options-at-first")
        options = self.options("Current File Only", {"PNG"}, "Ask")
        self.enter(options.find("text", "File Name"), "Best of all")
        self.shoot("options")
        self.press(options, "Convert Now")
        self.leave_job(["1 file converted!", "1 file created!"], "job")
        assert self.targets() == {"Best of all.png"}, self.targets()
        assert self.size(self.target / "Best of all.png") == self.size(self.holiday / self.names[0])

    def keep_an_existing_file(self):
        self.screen.key("F2")
        options = self.screen.window("Options")
        self.enter(options.find("text", "File Name"), "Best of all")
        self.press(options, "Convert Now")
        self.answer("already exists", "No", "file-exists")
        dialog = self.screen.window("Save As")
        self.enter(dialog.find("text"), "Second best")
        self.shoot("other-name")
        self.screen.key("Return")
        self.leave_job(["1 file converted!", "1 file created!"], "job-with-other-name")
        assert self.targets() == {"Best of all.png", "Second best.png"}, self.targets()

    def convert_checked_files(self):
        self.press(self.main, "Convert")
        options = self.options("Selected Files", {"GIF", "JPG", "ICO"}, "Replace")
        self.screen.click(options.find("page tab", "JPG"))
        options.find("slider", "Image Quality")
        self.shoot("options-jpg")
        self.press(options, "Convert Now")
        self.leave_job(["2 files converted!", "6 files created!"], "job-over-checked-files")
        written = self.targets() - {"Best of all.png", "Second best.png"}
        assert len(written) == 6, written
        assert all(self.size(self.target / name) for name in written), written

    def open_the_target_folder(self):
        self.shoot("open-target-folder")
        self.press(self.main, "Open Target Folder")
        opened = self.folder / "opened"
        wait("file manager", lambda: opened.exists() and opened.read_text())
        assert opened.read_text() == f"file://{self.target}/\n", opened.read_text()

    def keep_the_options(self):
        self.choose("Options")
        options = self.screen.window("Options")
        self.press(options, "Save as Default")
        self.answer("Save as Default successfully!", "OK", "saved-as-default")
        self.press(options, "OK")
        self.wait_for_main_window()
        self.line(self.main, "Convert Selected Files to GIF, JPG, ICO images.")

    def look_at_pictures(self):
        def title(number):
            return f"{self.holiday / self.names[number - 1]}   [{number}/{len(self.sources)}]"
        self.screen.click(self.rows()[0], at=60)
        self.screen.key("F6")
        viewer = self.screen.window(title(1))
        self.shoot("viewer")
        self.press(viewer, "Zoom in")
        wait("zoom", lambda: "Zoom: 100%" not in [label.name for label in viewer.all("label")])
        self.shoot("viewer-zoomed")
        self.press(viewer, "Next")
        self.screen.window(title(2))
        self.press(viewer, "Slide show")
        self.screen.window(title(3))
        self.shoot("slide-show")
        self.press(viewer, "Stop Slide Show")
        viewer.find("push button", "Slide Show")
        self.screen.key("alt+F4")
        self.wait_for_main_window()

    def read_the_help(self):
        self.screen.key("F1")
        help = self.screen.window("Tessara Pro Help")
        self.shoot("help")
        self.screen.click(help.find("tree item", "Converting pictures"))
        wait("page", lambda: help.find("label", "Page").text.startswith("Converting pictures"))
        self.shoot("help-page")
        self.screen.key("Escape")
        self.wait_for_main_window()

    def leave(self):
        # The job has left its last picture in the export pane.
        self.press(self.main, "Reload")
        before = self.wait_for_pane(self.shows_import)
        self.choose("Effects", "Flip Horizontal")
        changed = self.wait_for_pane(lambda seen: seen != before)
        self.screen.key("alt+F4")
        self.answer(UNSAVED, "No", "unsaved")
        self.wait_for_main_window()
        self.wait_for_pane(lambda seen: seen == changed)
        self.screen.key("alt+F4")
        self.answer(UNSAVED, "Yes", "unsaved-again")
        assert self.process.wait(LIMIT) == 0

    def come_back(self):
        """What was saved as default still counts, and what could be undone is gone."""
        self.start("second-start")
        self.line(self.main, "Convert Selected Files to GIF, JPG, ICO images.")
        self.screen.key("alt+F4")
        assert self.process.wait(LIMIT) == 0
        assert not list((self.private / "Undo").iterdir())

    def look_what_is_left(self):
        settings = (self.private / "ts40.cfg").read_bytes()
        assert len(settings) == SETTINGS_SIZE and f"{self.target}///".encode() in settings
        left = {file.name for file in self.private.iterdir()} - self.installed
        assert left == {"ts40.cfg", "Recentlyused.src", "Undo"}, left
        assert sorted(file.name for file in self.holiday.iterdir()) == self.sources
        places = {self.holiday, self.target, self.private}
        left = [file for file in self.home.rglob("*") if file.is_file() and not places & set(file.parents)]
        # Where the toolkit's file dialog keeps how it was used last.
        assert [file.name for file in left] == ["QtProject.conf"], left

    def take(self):
        for step in (self.start, self.choose_a_folder, self.check_files, self.change_the_picture,
                     self.convert_the_picture, self.keep_an_existing_file, self.convert_checked_files,
                     self.open_the_target_folder, self.keep_the_options, self.look_at_pictures,
                     self.read_the_help, self.leave, self.come_back, self.look_what_is_left):
            try:
                step()
            except BaseException:
                self.shoot(f"failed-{step.__name__}")
                raise


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("program", type=Path)
    parser.add_argument("--shots", type=Path)
    parser.add_argument("--pictures", type=Path)
    arguments = parser.parse_args()
    if missing():
        print("not installed:", *missing())
        return 77
    if arguments.shots is not None:
        arguments.shots.mkdir(parents=True, exist_ok=True)
    with tempfile.TemporaryDirectory(prefix="tour-") as folder:
        tour = Tour(arguments.program.resolve(), Path(folder), arguments.shots, arguments.pictures)
        try:
            tour.take()
        finally:
            tour.screen.close()
    return 0


if __name__ == "__main__":
    sys.exit(main())
