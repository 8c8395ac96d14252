#!/usr/bin/python3
"""How soon the main thread answers while the program works. Figures are printed, not asserted: only a
window that hangs is a failure."""

import contextlib
import json
import os
import re
import signal
import subprocess

import trustlib
import window
from desktop import read_line, wait_until
from window import CREATED, HERE

HANGING = 2000  # milliseconds
FILES = 100000


def percentile(values, share):
    ordered = sorted(values)
    return ordered[min(len(ordered) - 1, int(share * len(ordered)))]


class Responsiveness(window.WindowTest):
    @contextlib.contextmanager
    def measured(self, program, what):
        """Measures the answer times of what is done inside."""
        asker = self.desktop.spawn([os.path.join(HERE, "answer_times.py"), str(program.process.pid)],
                                   stdout=subprocess.PIPE, bufsize=0)
        try:
            self.assertEqual(read_line(asker.stdout, "the asker"), "ready")
            yield
            asker.send_signal(signal.SIGTERM)
            times = json.loads(read_line(asker.stdout, "the answer times"))
        finally:
            asker.kill()
            asker.wait()
        print(f"{what}: {len(times)} answers, median {percentile(times, 0.5):.2f} ms, "
              f"95th percentile {percentile(times, 0.95):.2f} ms, longest {max(times):.2f} ms",
              flush=True)
        self.assertGreater(len(times), 10)
        self.assertLess(max(times), HANGING)

    def make_wide_library(self):
        """Each tenth file is no sample."""
        library = trustlib.make_library(self.folder("Wide"))
        kinds = {"Kicks": "Kicks/kick 1.wav", "Snares": "Snares/snare.wav", "Toms": "Toms/tom 1.wav",
                 "Claps": "Claps/clap.au", "Notes": "notes.txt"}
        for index in range(FILES):
            role = "Notes" if index % 10 == 0 else list(kinds)[index % 4]
            folder = os.path.join(library, role, str(index // 1000))
            os.makedirs(folder, exist_ok=True)
            extension = ".wav" if role == "Notes" else os.path.splitext(kinds[role])[1]
            os.link(os.path.join(library, kinds[role]), os.path.join(folder, f"{index}{extension}"))
        return library

    def test_scanning_and_opening_the_lists(self):
        library = self.make_wide_library()
        program = self.start()
        with self.measured(program, "idle"):
            program.window.outline()
        program.choose_source(library)
        program.wait_scanned()
        modes = program.window.wait_for(name="Generation mode").children
        card = program.window.wait_for(name="CHANNELS")
        for index, title in ((1, "LOOPS"), (2, "STABS"), (0, "CH1 KICK")):
            with self.measured(program, f"scanning {FILES:,} files for {modes[index].name}"):
                modes[index].press()
                card.wait_for(name=title)
        header = card.wait_for("push-button", re.compile("^IGNORED FILES "))
        self.assertGreaterEqual(int(header.name.split()[-1]), FILES // 10)
        with self.measured(program, f"opening a list of {header.name.split()[-1]} files"):
            header.press()
            card.wait_for("list-item")
        program.quit()

    def test_writing_99_banks(self):
        program = self.start()
        program.choose_source(trustlib.make_library(self.folder("Kit")))
        program.choose_output(self.folder("Out"))
        program.wait_scanned()
        generate = program.window.wait_for("push-button", "GENERATE")
        wait_until(generate.is_enabled, "GENERATE to be enabled")
        with self.measured(program, "writing 99 banks"):
            generate.press()
            # The button is back when the run has ended: a question that costs little.
            wait_until(lambda: not generate.is_enabled(), "the run to begin")
            wait_until(generate.is_enabled, "the run to end", 300)
        program.window.wait_for_text(CREATED)
        program.quit()


if __name__ == "__main__":
    window.main()
