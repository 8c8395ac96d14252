"""A private virtual desktop: screen, session bus, window manager, keyboard, pointer.

Stopping it kills every process started on it, including those that the session bus started.
"""

import ctypes
import os
import re
import select
import shutil
import signal
import subprocess
import time

from robustness import check, require_tool, describe, wait_until, work_folder

TOOLS = ["Xvfb", "openbox", "dbus-daemon", "xdotool", "xprop", "import", "pgrep"]
SCREEN = (1600, 1300)

PR_SET_PDEATHSIG = 1
PR_SET_CHILD_SUBREAPER = 36
LIBC = ctypes.CDLL(None, use_errno=True)


def die_with_parent():
    LIBC.prctl(PR_SET_PDEATHSIG, signal.SIGKILL)


def child_processes():
    """The children of this process, zombies included."""
    found = subprocess.run(["pgrep", "--parent", str(os.getpid())], capture_output=True, text=True,
                           timeout=60, check=False)
    check(not found.stderr, found.stderr)
    return [int(pid) for pid in found.stdout.split()]


def read_line(stream, what, seconds=60.0):
    """One line of an unbuffered binary stream, read with a time limit."""
    line = bytearray()
    deadline = time.monotonic() + seconds
    while not line.endswith(b"\n"):
        ready, _, _ = select.select([stream], [], [], max(0.0, deadline - time.monotonic()))
        check(ready, f"timed out after {seconds:.0f} s: {describe(what)}")
        byte = os.read(stream.fileno(), 1)
        check(byte, f"the process ended: {describe(what)}")
        line += byte
    return line.decode().strip()


class ClientMessage(ctypes.Structure):
    """Xlib's XClientMessageEvent, as long as the longest event."""

    _fields_ = [("type", ctypes.c_int), ("serial", ctypes.c_ulong), ("send_event", ctypes.c_int),
                ("display", ctypes.c_void_p), ("window", ctypes.c_ulong),
                ("message_type", ctypes.c_ulong), ("format", ctypes.c_int), ("data", ctypes.c_long * 5),
                ("rest", ctypes.c_long * 24)]


CLIENT_MESSAGE = 33


def ask_to_close(display_name, window):
    xlib = ctypes.CDLL("libX11.so.6")
    xlib.XOpenDisplay.restype = ctypes.c_void_p
    xlib.XInternAtom.restype = ctypes.c_ulong
    display = ctypes.c_void_p(xlib.XOpenDisplay(display_name.encode()))
    check(display, f"no connection to the display {display_name}")

    def atom(name):
        return xlib.XInternAtom(display, name, False)
    message = ClientMessage(type=CLIENT_MESSAGE, window=window, message_type=atom(b"WM_PROTOCOLS"),
                            format=32)
    message.data[0] = atom(b"WM_DELETE_WINDOW")
    sent = xlib.XSendEvent(display, ctypes.c_ulong(window), False, ctypes.c_long(0),
                           ctypes.byref(message))
    xlib.XSync(display, False)
    xlib.XCloseDisplay(display)
    check(sent, f"window {window} was not asked to close")


def resident_megabytes(pid):
    """What a process has in memory now, and the most that it ever had."""
    with open(f"/proc/{pid}/status", encoding="ascii") as file:
        sizes = {line.split(":")[0]: line.split()[1] for line in file if line.startswith("Vm")}
    return int(sizes["VmRSS"]) / 1024, int(sizes["VmHWM"]) / 1024


class Desktop:
    """`folder` is a temporary folder, removed with the desktop."""

    def __init__(self, window_manager=True):
        for tool in TOOLS:
            require_tool(tool)
        # Orphans that the session bus started become children of this process, which stop() kills.
        LIBC.prctl(PR_SET_CHILD_SUBREAPER, 1)
        self.folder = work_folder()
        self._screen = None
        self.environment = {
            name: value
            for name, value in os.environ.items()
            if not name.startswith(("QT_", "XDG_", "GTK_", "DBUS_", "AT_SPI", "WAYLAND", "LC_"))
        }
        home = os.path.join(self.folder, "home")
        runtime = os.path.join(self.folder, "runtime")
        os.mkdir(home)
        os.mkdir(runtime, 0o700)
        self.environment |= {
            "HOME": home,
            "XDG_RUNTIME_DIR": runtime,
            "LANG": "C.UTF-8",
            "NO_AT_BRIDGE": "1",  # for the helpers; the program under test is asked explicitly
        }
        try:
            self._start_screen()
            self._start_bus()
            if window_manager:
                self._start_window_manager()
        except BaseException:
            self.stop()
            raise

    def _start_screen(self):
        reader, writer = os.pipe()
        self._screen = self.spawn(
            ["Xvfb", "-displayfd", str(writer), "-nolisten", "tcp", "-noreset", "-screen", "0",
             f"{SCREEN[0]}x{SCREEN[1]}x24"], pass_fds=[writer], stderr=subprocess.DEVNULL)
        os.close(writer)
        with os.fdopen(reader, "rb", buffering=0) as stream:
            self.environment["DISPLAY"] = ":" + read_line(stream, "the virtual screen's number")

    def _start_bus(self):
        # By default dbus-daemon makes a folder in the temporary folder and leaves it there.
        address = f"unix:path={self.environment['XDG_RUNTIME_DIR']}/bus"
        bus = self.spawn(["dbus-daemon", "--session", "--nofork", "--nopidfile", "--print-address=1",
                          "--address=" + address],
                         stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, bufsize=0)
        self.environment["DBUS_SESSION_BUS_ADDRESS"] = read_line(bus.stdout, "the bus's address")

    def _start_window_manager(self):
        self.spawn(["openbox", "--sm-disable"], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        wait_until(lambda: "window id" in self._ask(["xprop", "-root", "_NET_SUPPORTING_WM_CHECK"]),
                   "the window manager to start")

    def _ask(self, command):
        return subprocess.run(command, env=self.environment, capture_output=True, text=True,
                              timeout=60, check=False).stdout

    def spawn(self, command, environment=None, **options):
        """Starts a process that is killed when this one ends."""
        return subprocess.Popen(command, env=environment or self.environment,
                                stdin=subprocess.DEVNULL, preexec_fn=die_with_parent, **options)

    def stop(self):
        screen = self._screen.pid if self._screen else None
        while others := [pid for pid in child_processes() if pid != screen]:
            for pid in others:
                os.kill(pid, signal.SIGKILL)
                os.waitpid(pid, 0)
        if self._screen:
            # SIGKILL would leave its lock and socket in /tmp.
            self._screen.terminate()
            try:
                self._screen.wait(10)
            except subprocess.TimeoutExpired:
                self._screen.kill()
                self._screen.wait()
        shutil.rmtree(self.folder, ignore_errors=True)

    def xdotool(self, *arguments):
        command = ["xdotool", *(str(argument) for argument in arguments)]
        result = subprocess.run(command, env=self.environment, capture_output=True, text=True,
                                timeout=60, check=False)
        check(result.returncode == 0, f"{' '.join(command)}: {result.stderr.strip()}")
        return result.stdout

    def key(self, *names):
        self.xdotool("key", "--clearmodifiers", *names)

    def type_text(self, text):
        """Types ASCII text; xdotool loses other characters while it changes the key map."""
        self.xdotool("type", "--clearmodifiers", text)

    def click(self, x, y):
        self.xdotool("mousemove", int(x), int(y), "click", 1)

    def ask_to_close(self, window):
        """Sends WM_DELETE_WINDOW as a window manager's close button does. The server has it when this returns."""
        ask_to_close(self.environment["DISPLAY"], window)

    def active_window(self):
        """The window that the window manager regards as active, 0 for none."""
        active = self._ask(["xprop", "-root", "_NET_ACTIVE_WINDOW"]).rpartition("# ")[2]
        return int(active.split(",")[0], 16)

    def find_windows(self, pid, title):
        """The visible windows of a process that have this title."""
        found = self._ask(["xdotool", "search", "--all", "--onlyvisible", "--pid", str(pid), "--name",
                           f"^{re.escape(title)}$"])
        return [int(line) for line in found.split()]

    def focus(self):
        """The keyboard focus according to the X server and to the window manager."""
        return (f"focus {self._ask(['xdotool', 'getwindowfocus', 'getwindowname']).strip()!r}, "
                f"{self._ask(['xprop', '-root', '_NET_ACTIVE_WINDOW']).strip()}")

    def picture(self, path):
        subprocess.run(["import", "-window", "root", path], env=self.environment, timeout=60,
                       check=True)
