#!/usr/bin/python3
"""Ends: closing the window while work is in progress, and starting where there is no display."""

import os
import re
import shutil
import subprocess

import trustlib
import window
from desktop import wait_until


def run_without_window(path, environment):
    return subprocess.run([path], env=environment, stdin=subprocess.DEVNULL, capture_output=True,
                          text=True, timeout=60, check=False)


class Closing(window.WindowTest):
    def close_while(self, program, what):
        seconds = program.close_window()
        print(f"closed while {what}: ended after {seconds:.3f} s", flush=True)
        self.assertEqual(program.process.returncode, 0, program.errors())
        self.assertEqual(program.errors(), "")

    def test_closed_while_banks_are_written(self):
        library, output = self.slow_library("Slow"), self.folder("Out")
        program = self.start()
        program.choose_source(library)
        program.choose_output(output)
        program.wait_scanned()
        generate = program.window.wait_for("push-button", "GENERATE")
        wait_until(generate.is_enabled, "GENERATE to be enabled")
        generate.press()
        program.window.wait_for("progress-bar", re.compile("^WRITING Slow"))
        self.close_while(program, "99 banks were written")
        # It did not wait for the run: nothing stands under the final name.
        self.assertFalse(os.path.exists(os.path.join(output, "Slow", "QZT508", "Bank 99")))

        # What was left behind does not stand in the way.
        shutil.rmtree(library)
        trustlib.make_library(library)
        program = self.start()
        program.choose_source(library)
        program.choose_output(output)
        program.generate()
        self.assertEqual(os.listdir(output), ["Slow"])
        self.assertEqual(os.listdir(os.path.join(output, "Slow")), ["QZT508"])
        program.quit()

    def test_closed_while_a_library_is_scanned(self):
        library = trustlib.make_library(self.folder("Wide"))
        sample = os.path.join(library, "Toms", "tom 1.wav")
        for index in range(50000):
            os.link(sample, os.path.join(library, "Toms", f"{index}.wav"))
        program = self.start()
        program.choose_source(library)
        program.window.wait_for("progress-bar", "SCANNING FILES…")
        self.close_while(program, "50,000 files were scanned")

    def test_closed_from_the_menu(self):
        program = self.start()
        program.choose_menu("File", "Quit")
        self.assertEqual(program.process.wait(60), 0)
        self.assertEqual(program.errors(), "")


class WithoutDisplay(window.WindowTest):
    def assert_one_plain_sentence(self, environment):
        result = run_without_window(self.program_path, environment)
        self.assertEqual(result.returncode, 1, result.stderr)
        self.assertEqual(result.stdout, "")
        self.assertRegex(result.stderr, r"\A[A-Z][^\n]* display[^\n]*\.\n\Z")

    def test_no_display_is_named(self):
        environment = dict(self.desktop.environment)
        del environment["DISPLAY"]
        self.assert_one_plain_sentence(environment)
        self.assert_one_plain_sentence(environment | {"DISPLAY": ""})

    def test_the_display_named_does_not_answer(self):
        self.assert_one_plain_sentence(self.desktop.environment | {"DISPLAY": ":65000"})


if __name__ == "__main__":
    window.main()
