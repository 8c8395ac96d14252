"""The program under test on a virtual desktop, and what its tests share."""

import argparse
import contextlib
import os
import random
import re
import signal
import subprocess
import sys
import time
import unittest
import urllib.parse
import wave

import accessible
from desktop import Desktop, read_line
from robustness import Failed, check, wait_until

HERE = os.path.dirname(os.path.abspath(__file__))
TITLE = "Torvo Quastle Bank Generator"
OUTPUT_PANEL = "Choose an export destination folder"
SOURCE_PANEL = "Choose a source sample folder"
EXPORT_PANEL = "Export bank mapping JSON"
IMPORT_PANEL = "Import bank mapping JSON"
CREATED = "Random banks created"
# Not written by the program: Qt 6.8 reports every query of an accessible object that no longer exists, fontconfig
# 2.15 a home folder that is not writable.
LIBRARY_MESSAGES = re.compile(r"^(qt\.accessibility\.atspi: Could not find accessible on path: .*"
                              r"|Fontconfig error: No writable cache directories)\n", re.MULTILINE)
PANEL_ROLES = {"alert", "dialog", "file-chooser"}
MAX_TAB_STOPS = 60


def sanitizer_options():
    """libxkbcommon calls string functions on text without a terminating null byte. They never read past its
    length, but strict_string_checks reports them."""
    return os.environ.get("ASAN_OPTIONS", "") + ":strict_string_checks=0"


class Program:
    """A running program and its window."""

    def __init__(self, desktop, path, wrapper=(), environment=None):
        self.desktop = desktop
        self._errors = open(os.path.join(desktop.folder, "errors.txt"), "w+b")
        self.process = desktop.spawn(
            [*wrapper, path],
            environment=desktop.environment
            | {"QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1", "ASAN_OPTIONS": sanitizer_options()}
            | (environment or {}),
            stdout=subprocess.DEVNULL, stderr=self._errors)
        self.application = wait_until(self._on_the_bus, "the program on the accessibility bus")
        self.window = self.application.wait_for("frame", TITLE)
        wait_until(lambda: "active" in self.window.states, "the window to become active")

    def _on_the_bus(self):
        check(self.is_running(), f"exit code {self.process.returncode}\n{self.errors()}")
        return accessible.application(self.process.pid)

    def errors(self):
        self._errors.seek(0)
        return LIBRARY_MESSAGES.sub("", self._errors.read().decode(errors="replace"))

    def is_running(self):
        return self.process.poll() is None

    def stop(self):
        if self.is_running():
            self.process.kill()
            self.process.wait()
        self._errors.close()

    def close_window(self):
        """Closes the window as a window manager does. Returns the seconds until the process has ended."""
        start = time.monotonic()
        self.desktop.ask_to_close(self.window_id())
        self.wait_ended()
        return time.monotonic() - start

    def window_id(self):
        """The X11 window of the main window."""
        found = self.desktop.xdotool("search", "--sync", "--all", "--onlyvisible", "--pid",
                                     self.process.pid, "--name", f"^{TITLE}$")
        return int(found.split()[-1])

    def wait_ended(self):
        wait_until(lambda: not self.is_running(),
                   lambda: f"the program to end; {self.desktop.focus()}; its windows:\n"
                           + "\n".join(str(shown) for shown in self.application.children)
                           + f"\n{self.window.outline()}")

    @contextlib.contextmanager
    def paused(self):
        """Stops the program inside; its input is queued."""
        self.process.send_signal(signal.SIGSTOP)
        os.waitid(os.P_PID, self.process.pid, os.WSTOPPED)
        try:
            yield
        finally:
            self.process.send_signal(signal.SIGCONT)

    def quit(self):
        """Closes the window; the program exits with 0 and writes nothing to standard error."""
        self.close_window()
        check(self.process.returncode == 0, f"exit code {self.process.returncode}\n{self.errors()}")
        check(not self.errors(), f"the program wrote to standard error:\n{self.errors()}")

    def button(self, name, card):
        """The button of a card; two cards have one called "CHOOSE FOLDER"."""
        return self.window.wait_for(name=card).wait_for("push-button", name)

    def panel(self, title):
        return self.application.wait_for(PANEL_ROLES, title)

    def wait_closed(self, title):
        wait_until(lambda: not self.application.find(PANEL_ROLES, title),
                   f"the panel {title!r} to close")

    def answer_panel(self, title, path, button):
        """Enters the path in the panel's file name field and presses the button."""
        panel = self.panel(title)
        field = panel.wait_for("text")
        field.set_text(path)
        wait_until(lambda: field.text == path, f"{path!r} in the panel")
        accept = panel.wait_for("push-button", button)
        wait_until(accept.is_enabled, lambda: f"{accept} to be enabled")
        accept.press()
        self.wait_closed(title)

    def cancel_panel(self, title):
        self.panel(title).wait_for("push-button", "Cancel").press()
        self.wait_closed(title)

    def choose_output(self, folder):
        self.button("CHOOSE FOLDER", "OUTPUT").press()
        self.answer_panel(OUTPUT_PANEL, folder, "Choose")

    def choose_source(self, folder):
        self.button("CHOOSE FOLDER", "SOURCE").press()
        self.answer_panel(SOURCE_PANEL, folder, "Choose")

    def choose_menu(self, menu, item):
        self.window.wait_for("menu-item", menu).do("ShowMenu")
        entry = self.application.wait_for("menu-item", item)
        wait_until(entry.is_enabled, lambda: f"{entry} to be enabled")
        entry.press()

    def wait_scanned(self):
        self.window.wait_for(name=re.compile("^IGNORED FILES [0-9]+$"))

    def press_enabled(self, name):
        """Presses a button that is enabled once the folders have been inspected."""
        button = self.window.wait_for("push-button", name)
        wait_until(button.is_enabled, lambda: f"{button} to be enabled\n{self.window.outline()}")
        button.press()

    def generate(self):
        self.press_enabled("GENERATE")
        self.window.wait_for_text(CREATED, 300)

    def focused(self):
        """The innermost object with the keyboard focus, or None."""
        try:
            return next((node for window in self.application.children
                         for node in reversed(list(window.showing())) if "focused" in node.states), None)
        except accessible.GONE:
            return None

    def tab_to(self, name, role="push-button", fits=lambda node: True):
        """Presses Tab until an object with this name and role that fits has the focus."""
        passed = []
        for _ in range(MAX_TAB_STOPS):
            node = self.focused()
            if node and node.name == name and node.role == role and fits(node):
                return node
            passed.append(str(node))
            self.desktop.key("Tab")
            wait_until(lambda: self.focused() != node, f"Tab to leave {node}")
        raise Failed(f"Tab never reaches {role} {name!r}, only\n" + "\n".join(passed))

    def drop(self, *paths):
        """Drags files from a window of another process onto the drop zone. Returns whether the drop was
        accepted, as that process sees it."""
        desktop = self.desktop
        uris = ["file://" + urllib.parse.quote(path) for path in paths]
        source = desktop.spawn([sys.executable, os.path.join(HERE, "drag_source.py"), *uris],
                               stdout=subprocess.PIPE, bufsize=0)
        seen = []

        def expect(*words):
            while not seen or seen[-1] not in words:
                seen.append(read_line(source.stdout, lambda: f"{words} after {seen} from the drag"))

        try:
            expect("shown")
            x, y = window_position(desktop, source.pid)
            desktop.xdotool("mousemove", x + 100, y + 100, "mousedown", 1)
            # Further than the drag threshold.
            for step in range(1, 6):
                desktop.xdotool("mousemove", x + 100 - 8 * step, y + 100)
            expect("begin")
            to_x, to_y = self.window.wait_for("push-button", "DROP SOURCE FOLDER").center
            for step in range(1, 11):
                desktop.xdotool("mousemove", int(x + 60 + (to_x - x - 60) * step / 10),
                                int(y + 100 + (to_y - y - 100) * step / 10))
            expect("accepted")
            desktop.xdotool("mouseup", 1)
            expect("taken", "not taken")
            return seen[-1] == "taken"
        finally:
            desktop.xdotool("mouseup", 1)
            source.kill()
            source.wait()


def window_position(desktop, pid):
    found = desktop.xdotool("search", "--sync", "--onlyvisible", "--pid", pid).split()
    lines = desktop.xdotool("getwindowgeometry", "--shell", found[0]).splitlines()
    values = dict(line.split("=") for line in lines)
    return int(values["X"]), int(values["Y"])


class WindowTest(unittest.TestCase):
    """Each test starts its own programs; all tests of a file share one desktop."""

    desktop = None
    program_path = None
    pictures = None
    maxDiff = None

    def start(self, **options):
        program = Program(self.desktop, self.program_path, **options)
        self.addCleanup(program.stop)
        return program

    def folder(self, *names):
        """A new folder below the one of this test."""
        path = os.path.join(self.desktop.folder, self.id().rpartition(".")[2], *names)
        os.makedirs(path)
        return path

    def slow_library(self, name):
        """A library whose samples all need converting, with enough of them that banks share few."""
        library = self.folder(name)
        first = os.path.join(library, "Kicks", "kick.wav")
        os.mkdir(os.path.dirname(first))
        with wave.open(first, "wb") as file:
            file.setnchannels(2)
            file.setsampwidth(3)
            file.setframerate(48000)
            file.writeframes(random.Random(1).randbytes(5 * 48000 * 2 * 3))
        for role in ("Kicks/kick", "Snares/snare", "Claps/clap", "Hats/closed hat", "Hats/open hat",
                     "Toms/tom"):
            os.makedirs(os.path.join(library, os.path.dirname(role)), exist_ok=True)
            for index in range(60):
                os.link(first, os.path.join(library, f"{role} {index}.wav"))
        return library


class ResultWithPictures(unittest.TextTestResult):
    """Keeps a picture of the screen for each test that fails."""

    def addFailure(self, test, err):
        self._keep_picture(test)
        super().addFailure(test, err)

    def addError(self, test, err):
        self._keep_picture(test)
        super().addError(test, err)

    def _keep_picture(self, test):
        os.makedirs(WindowTest.pictures, exist_ok=True)
        path = os.path.join(WindowTest.pictures, f"{test.id().partition('.')[2]}.png")
        try:
            WindowTest.desktop.picture(path)
            self.stream.writeln(f"the screen at that moment: {path}")
        except (OSError, subprocess.SubprocessError) as error:
            self.stream.writeln(f"no picture of the screen: {error}")


def list_tests(wanted):
    """Prints the tests of the script, or those of the classes and tests that are named."""
    def flattened(suite):
        for test in suite:
            if isinstance(test, unittest.TestSuite):
                yield from flattened(test)
            else:
                yield test

    script, loader = sys.modules["__main__"], unittest.defaultTestLoader
    suite = loader.loadTestsFromNames(wanted, script) if wanted else loader.loadTestsFromModule(script)
    for test in flattened(suite):
        print(test.id())


def main():
    """--program PATH [--pictures DIR] [--list] [unittest's own arguments]"""
    parser = argparse.ArgumentParser()
    parser.add_argument("--program", required=True)
    parser.add_argument("--pictures", default=os.path.join(HERE, "../../build/window-failures"))
    parser.add_argument("--list", action="store_true", help="name the tests and run none")
    options, rest = parser.parse_known_args()
    if options.list:
        list_tests(rest)
        return
    WindowTest.program_path = os.path.abspath(options.program)
    WindowTest.pictures = os.path.abspath(options.pictures)
    check(os.access(WindowTest.program_path, os.X_OK), f"{options.program} is not executable")
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(1))
    desktop = Desktop()
    try:
        WindowTest.desktop = desktop
        os.environ.clear()
        os.environ.update(desktop.environment)
        accessible.connect()
        test = unittest.main(argv=[sys.argv[0], *rest], exit=False, verbosity=2,
                             testRunner=unittest.TextTestRunner(resultclass=ResultWithPictures,
                                                                verbosity=2))
        succeeded = test.result.wasSuccessful() and test.result.testsRun > 0
    finally:
        desktop.stop()
    sys.exit(0 if succeeded else 1)
