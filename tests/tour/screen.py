"""A screen of its own for a program, which is used there as by a person: with pointer and keyboard, and going by what
the accessibility bus tells of the controls and by the pixels on the screen.
"""

import mmap
import os
import shutil
import struct
import subprocess
import time
from pathlib import Path

from gi.repository import Gio, GLib

PROGRAMS = ["Xvfb", "openbox", "xdotool", "dbus-daemon"]
ACCESSIBILITY = Path("/usr/share/dbus-1/services/org.a11y.Bus.service")
LIMIT = 30  # seconds, for anything that is waited for

# States, by their numbers on the accessibility bus.
ACTIVE, CHECKED, SHOWING = 1, 4, 25

# What a helper or the program would take from the desktop of whoever runs this.
FOREIGN = ("DBUS_", "LC_", "QT_", "WAYLAND_", "XDG_")


def wait(what, condition):
    """What the condition gives as soon as it is true. What a window has just taken away counts as false."""
    end = time.monotonic() + LIMIT
    while time.monotonic() < end:
        try:
            if result := condition():
                return result
        except GLib.Error:
            pass
        time.sleep(0.01)
    raise TimeoutError(f"waited in vain: {what}")


def missing():
    """What a screen needs and this computer lacks."""
    lacking = [program for program in PROGRAMS if shutil.which(program) is None]
    return lacking or ([] if ACCESSIBILITY.exists() else [str(ACCESSIBILITY)])


class Node:
    """A window or a control, as a screen reader meets it."""

    def __init__(self, bus, address):
        self._bus, self._address = bus, address

    def call(self, interface, method, signature=None, *arguments):
        variant = GLib.Variant(signature, arguments) if signature else None
        reply = self._bus.call_sync(*self._address, interface, method, variant, None,
                                    Gio.DBusCallFlags.NONE, LIMIT * 1000, None).unpack()
        return reply[0] if reply else None

    def _accessible(self, method):
        return self.call("org.a11y.atspi.Accessible", method)

    @property
    def name(self):
        interface = "org.freedesktop.DBus.Properties"
        return self.call(interface, "Get", "(ss)", "org.a11y.atspi.Accessible", "Name")

    @property
    def role(self):
        return self._accessible("GetRoleName")

    @property
    def text(self):
        return self.call("org.a11y.atspi.Text", "GetText", "(ii)", 0, -1)

    @property
    def children(self):
        return [Node(self._bus, address) for address in self._accessible("GetChildren")]

    @property
    def box(self):
        """Left, top, width and height on the screen."""
        return self.call("org.a11y.atspi.Component", "GetExtents", "(u)", 0)

    def has(self, state):
        return self._accessible("GetState")[state // 32] >> state % 32 & 1 == 1

    def _walk(self, role, name):
        for child in self.children:
            if not child.has(SHOWING):
                continue
            if role in (None, child.role) and name in (None, child.name.strip()):
                yield child
            yield from child._walk(role, name)

    def all(self, role=None, name=None):
        """The controls on screen of this role and name, or of any, below this one in their order."""
        return list(self._walk(role, name))

    def find(self, role, name=None):
        return wait(f"{role} {name}", lambda: next(self._walk(role, name), None))


class Screen:
    def __init__(self, folder, width, height):
        """An X server with a window manager, and a session of its own. `folder` takes the files of these, and
        nothing that the program itself leaves."""
        self.folder = folder
        folder.chmod(0o700)
        self.environment = {name: value for name, value in os.environ.items() if not name.startswith(FOREIGN)}
        self.environment |= {"HOME": str(folder), "XDG_RUNTIME_DIR": str(folder), "LANG": "C.UTF-8"}
        self._processes = []
        try:
            self._serve(width, height)
        except BaseException:
            self.close()
            raise

    def _serve(self, width, height):
        server = self._start("Xvfb", "-displayfd", "1", "-screen", "0", f"{width}x{height}x24", "-dpi", "96",
                             "-nolisten", "tcp", "-nocursor", "-fbdir", str(self.folder))
        self.environment["DISPLAY"] = ":" + server.stdout.readline().strip()
        daemon = self._start("dbus-daemon", "--session", "--nofork", "--print-address=1")
        self.environment["DBUS_SESSION_BUS_ADDRESS"] = daemon.stdout.readline().strip()
        self._manage_windows()
        self._map(width, height)
        self._accessibility = self._connect()

    def close(self):
        for process in reversed(self._processes):
            process.terminate()
            process.wait()

    def _start(self, *command):
        self._processes.append(subprocess.Popen(command, env=self.environment, stdout=subprocess.PIPE,
                                                stderr=subprocess.DEVNULL, text=True))
        return self._processes[-1]

    def _manage_windows(self):
        # What is shown before the window manager runs does not get the focus.
        os.mkfifo(self.folder / "managed")
        self._start("openbox", "--startup", f"sh -c 'echo >{self.folder}/managed'")
        (self.folder / "managed").read_text()

    def _map(self, width, height):
        """The server keeps the screen in a file: a header, a table of colours, and the pixels."""
        with open(self.folder / "Xvfb_screen0", "rb") as file:
            memory = memoryview(mmap.mmap(file.fileno(), 0, access=mmap.ACCESS_READ))
        fields = struct.unpack(">25I", memory[:100])
        header, line, colours = fields[0], fields[12], fields[19]
        assert line == width * 4
        self._width, self._height = width, height
        self._pixels = memory[header + colours * 12:][:line * height]

    def _connect(self):
        def connect(address):
            flags = Gio.DBusConnectionFlags
            return Gio.DBusConnection.new_for_address_sync(
                address, flags.AUTHENTICATION_CLIENT | flags.MESSAGE_BUS_CONNECTION, None, None)
        session = Node(connect(self.environment["DBUS_SESSION_BUS_ADDRESS"]), ("org.a11y.Bus", "/org/a11y/bus"))
        return connect(session.call("org.a11y.Bus", "GetAddress"))

    # What is seen.

    def pixels(self, box):
        left, top, width, height = box
        begins = range((top * self._width + left) * 4, ((top + height) * self._width + left) * 4, self._width * 4)
        return b"".join(self._pixels[begin:begin + width * 4] for begin in begins)

    def save(self, path):
        """The whole screen as a bitmap file, once nothing moves on it."""
        def is_still():
            before = bytes(self._pixels)
            time.sleep(0.1)
            return before == self._pixels
        wait("still screen", is_still)
        head = struct.pack("<2s8xIIiiHH24x", b"BM", 54, 40, self._width, -self._height, 1, 32)
        path.write_bytes(head + self._pixels)

    def windows(self):
        desktop = Node(self._accessibility, ("org.a11y.atspi.Registry", "/org/a11y/atspi/accessible/root"))
        return [window for program in desktop.children for window in program.children if window.has(SHOWING)]

    def window(self, title):
        """The window of this title, once it has the keyboard; "..." at its end stands for anything."""
        def fits(name):
            return name.startswith(title[:-3]) if title.endswith("...") else name == title
        return wait(f"window {title}", lambda: [w for w in self.windows() if fits(w.name) and w.has(ACTIVE)])[0]

    # What is done.

    def _act(self, *arguments):
        subprocess.run(["xdotool", *arguments], env=self.environment, check=True)

    def click(self, node, times=1, at=None):
        """In the middle of a control, or so many pixels from its left end."""
        left, top, width, height = node.box
        x = left + (width // 2 if at is None else at)
        self._act("mousemove", str(x), str(top + height // 2), "click", "--repeat", str(times), "1")

    def key(self, *keys):
        self._act("key", "--clearmodifiers", *keys)

    def type(self, text):
        self._act("type", "--clearmodifiers", "--delay", "1", text)
