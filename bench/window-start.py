#!/usr/bin/python3
"""Measures how long the program takes from its start to a window that answers, beside an empty window.

    bench/window-start.py [--program PATH] [--empty PATH] [--runs N]

Each run is on an X server of its own making, without a window manager. A window has answered when it is gone after
it was asked to close as soon as it was there, so that the end of the program counts as well. Each time is the least
of the runs, taken in turn so that a busy machine hits both alike.
"""

import argparse
import ctypes
import os
import select
import shutil
import subprocess
import tempfile
import time

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
UNMAP_NOTIFY, MAP_NOTIFY, CLIENT_MESSAGE = 18, 19, 33
SUBSTRUCTURE_NOTIFY = 1 << 19
SECONDS = 60  # in which a window must have come

X = ctypes.CDLL("libX11.so.6")
X.XOpenDisplay.restype = ctypes.c_void_p
X.XDefaultRootWindow.restype = X.XInternAtom.restype = ctypes.c_ulong


@ctypes.CFUNCTYPE(ctypes.c_int, ctypes.c_void_p, ctypes.c_void_p)
def ignore_error(_display, _error):
    """A window can be gone before it is asked for its title."""
    return 0


class WindowEvent(ctypes.Structure):
    _fields_ = [("type", ctypes.c_int), ("serial", ctypes.c_ulong), ("send_event", ctypes.c_int),
                ("display", ctypes.c_void_p), ("event", ctypes.c_ulong), ("window", ctypes.c_ulong)]


class ClientMessage(ctypes.Structure):
    _fields_ = [("type", ctypes.c_int), ("serial", ctypes.c_ulong), ("send_event", ctypes.c_int),
                ("display", ctypes.c_void_p), ("window", ctypes.c_ulong), ("message_type", ctypes.c_ulong),
                ("format", ctypes.c_int), ("data", ctypes.c_long * 5)]


class Event(ctypes.Union):
    _fields_ = [("type", ctypes.c_int), ("change", WindowEvent), ("client", ClientMessage), ("size", ctypes.c_long * 24)]


class Display:
    def __init__(self, name):
        X.XSetErrorHandler(ignore_error)
        self.display = ctypes.c_void_p(X.XOpenDisplay(name.encode()))
        self.root = ctypes.c_ulong(X.XDefaultRootWindow(self.display))
        self.protocols = X.XInternAtom(self.display, b"WM_PROTOCOLS", False)
        self.delete_window = X.XInternAtom(self.display, b"WM_DELETE_WINDOW", False)
        X.XSelectInput(self.display, self.root, ctypes.c_long(SUBSTRUCTURE_NOTIFY))
        X.XFlush(self.display)

    def next_event(self):
        event = Event()
        while not X.XPending(self.display):
            if not select.select([X.XConnectionNumber(self.display)], [], [], SECONDS)[0]:
                raise TimeoutError("no window has come")
        X.XNextEvent(self.display, ctypes.byref(event))
        return event

    def title(self, window):
        name = ctypes.c_char_p()
        X.XFetchName(self.display, ctypes.c_ulong(window), ctypes.byref(name))
        return (name.value or b"").decode("latin-1")

    def ask_to_close(self, window):
        event = Event()
        event.client = ClientMessage(CLIENT_MESSAGE, 0, 1, None, window, self.protocols, 32,
                                     (ctypes.c_long * 5)(self.delete_window))
        X.XSendEvent(self.display, ctypes.c_ulong(window), False, ctypes.c_long(0), ctypes.byref(event))
        X.XFlush(self.display)

    def wait_until_answering(self, title):
        """Until the window of that title is on screen and has answered."""
        asked = None
        while True:
            event = self.next_event()
            if event.type == MAP_NOTIFY and title in self.title(event.change.window):
                asked = event.change.window
                self.ask_to_close(asked)
            if event.type == UNMAP_NOTIFY and event.change.window == asked:
                return


def start_time(display, command, title, environment):
    begin = time.perf_counter()
    process = subprocess.Popen(command, env=environment, stderr=subprocess.DEVNULL)
    try:
        display.wait_until_answering(title)
        return time.perf_counter() - begin
    finally:
        process.kill()
        process.wait()


def measure(programs, runs, display, environment):
    least = {}
    for _ in range(runs):
        for name, command, title in programs:
            seconds = start_time(display, command, title, environment)
            least[name] = min(seconds, least.get(name, seconds))
    return least


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--program", default=ROOT + "/build/bench/bin/tessara")
    parser.add_argument("--empty", default=ROOT + "/build/bench/bin/tessara_empty_window")
    parser.add_argument("--runs", type=int, default=15)
    options = parser.parse_args()
    name = ":" + str(100 + os.getpid() % 10000)
    server = subprocess.Popen(["Xvfb", name, "-screen", "0", "1920x1080x24"], stderr=subprocess.DEVNULL)
    home = tempfile.mkdtemp()
    try:
        while not os.path.exists("/tmp/.X11-unix/X" + name[1:]):
            time.sleep(0.05)
        environment = dict(os.environ, DISPLAY=name, HOME=home, XDG_RUNTIME_DIR=home, QT_QPA_PLATFORM="xcb")
        programs = [("empty window", [options.empty], "Empty"), ("main window", [options.program], " -> ")]
        least = measure(programs, options.runs, Display(name), environment)
    finally:
        server.terminate()
        shutil.rmtree(home)
    for what, seconds in least.items():
        print(f"{what:14} {seconds * 1000:7.1f} ms {seconds / least['empty window']:6.2f} times")


main()
