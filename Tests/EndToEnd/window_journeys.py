#!/usr/bin/python3
"""Whole journeys through the window, with real panels and real drags, and what they leave on disk."""

import os
import shutil
import subprocess
import sys
import types

import trustlib
import verify_run
import window
from desktop import wait_until
from window import CREATED, EXPORT_PANEL, HERE, IMPORT_PANEL, OUTPUT_PANEL, SOURCE_PANEL

AWKWARD_NAME = "Über Kit #7 – früh 100% 音"


def verify(document, output, *options):
    subprocess.run([sys.executable, os.path.join(HERE, "verify_run.py"), document, output, *options],
                   check=True)


def expected_stamp(data, channel, bits, rate, filter_code, cv_channels):
    """The bytes of a WAV file after stamping, worked out from the layout of the device's chunk."""
    found = verify_run.chunks(data)
    payload_of_data = next(payload for name, _, payload in found if name == b"data")
    cv_channels = cv_channels if channel else set()
    old = [(at, payload) for name, at, payload in found if name == b"busy"]
    if not old:
        options = types.SimpleNamespace(bits=bits, rate=rate, filter=filter_code, cv=cv_channels)
        fresh = verify_run.fresh_payload(len(payload_of_data), channel or 1, options)
        return data + b"busy" + len(fresh).to_bytes(4, "little") + fresh
    at, payload = old[0]
    new = bytearray(payload)
    new[24], new[54], new[55] = bits, rate, rate
    new[50] = new[50] & 0xF0 | filter_code
    if channel in cv_channels:
        for word, bit in ((76, 0x4000), (80, 0x8000), (84, 0x20)):
            value = int.from_bytes(new[word:word + 4], "little") & ~0xC020 | bit
            new[word:word + 4] = value.to_bytes(4, "little")
        for field in (160, 252, 300):
            new[field:field + 4] = b"\x00\x00\x63\x00"
    return data[:at + 8] + bytes(new) + data[at + 8 + len(payload):]


def files_below(folder):
    """Relative path and content of every file."""
    found = {}
    for parent, _, names in os.walk(folder):
        for name in names:
            path = os.path.join(parent, name)
            with open(path, "rb") as file:
                found[os.path.relpath(path, folder)] = file.read()
    return found


class Journeys(window.WindowTest):
    def library(self, name=AWKWARD_NAME):
        return trustlib.make_library(self.folder("Samples & more", name))

    def save_document(self, program, path):
        program.choose_menu("File", "Export JSON…")
        program.answer_panel(EXPORT_PANEL, path, "Save")
        program.window.wait_for_text(path)

    def test_dropped_folder_becomes_banks(self):
        library = self.library()
        before = trustlib.snapshot(library)
        output = self.folder("Out put #2 ä")
        program = self.start()
        self.assertTrue(program.drop(library))
        program.wait_scanned()
        self.assertIn(library, program.window.texts())
        program.choose_output(output)
        program.window.wait_for_text(os.path.join(output, AWKWARD_NAME, "QZT508"))
        program.generate()
        document = os.path.join(self.folder("Documents"), "mapping ö #1.json")
        self.save_document(program, document)
        verify(document, output)
        self.assertEqual(os.listdir(output), [AWKWARD_NAME])
        self.assertEqual(trustlib.differences(before, trustlib.snapshot(library)), [])
        program.quit()

    def test_dropped_file_is_refused_and_a_folder_beside_it_taken(self):
        library = self.library("Kit")
        program = self.start()
        self.assertFalse(program.drop(os.path.join(library, "notes.txt")))
        self.assertIn("Choose or drop a source folder to scan.", program.window.texts())
        self.assertFalse(program.button("CLEAR", "SOURCE").is_enabled())
        self.assertTrue(program.drop(os.path.join(library, "notes.txt"), library))
        program.wait_scanned()
        self.assertIn(library, program.window.texts())
        program.quit()

    def test_saved_document_writes_the_same_tree_in_a_fresh_process(self):
        library = self.library()
        first, second = self.folder("First"), self.folder("Second")
        document = os.path.join(self.folder("Documents"), "kit.json")
        program = self.start()
        program.choose_source(library)
        program.choose_output(first)
        program.generate()
        self.save_document(program, document)
        program.quit()

        program = self.start()
        program.choose_menu("File", "Import JSON…")
        program.answer_panel(IMPORT_PANEL, document, "Open")
        program.answer_panel(OUTPUT_PANEL, second, "Choose")
        program.window.wait_for_text(CREATED, 300)
        self.assertIn(document, program.window.texts())
        self.assertIn("Choose or drop a source folder to scan.", program.window.texts())
        written = files_below(second)
        self.assertGreater(len(written), 99 * 9)
        self.assertEqual(sorted(files_below(first)), sorted(written))
        self.assertTrue(files_below(first) == written, "the two trees differ in their bytes")

        # With an output folder set there is no second panel.
        shutil.rmtree(second)
        os.mkdir(second)
        program.choose_menu("File", "Import JSON…")
        program.answer_panel(IMPORT_PANEL, document, "Open")
        wait_until(lambda: len(files_below(second)) == len(written), "the banks", 300)
        program.window.wait_for_text(CREATED, 300)
        self.assertTrue(files_below(second) == written, "the third tree differs")
        program.quit()

    def test_metadata_is_applied_to_a_device_folder(self):
        device = self.device_folder()
        before = files_below(device)
        program = self.start()
        self.assertTrue(program.drop(device))
        program.window.wait_for_text("Existing QZT508 folder selected.")
        self.assertIn(device, program.window.texts())
        output = program.window.wait_for(name="OUTPUT")
        self.assertIsNone(output.find("push-button", "CHOOSE FOLDER"))

        for name, wanted in (("BITS", "7"), ("RATE", "22"), ("FILTER", "NT")):
            self.choose_in_combo(program, name, wanted)
        enable = program.window.wait_for("check-box", "ENABLE CV ASSIGNMENTS")
        self.assertFalse(program.window.wait_for(name="3").is_enabled())
        enable.do("Toggle")
        for channel in ("1", "3", "8"):
            button = program.window.wait_for(name=channel)
            wait_until(button.is_enabled, f"channel {channel} to be enabled")
            button.press()
            wait_until(button.is_checked, f"channel {channel} to be selected")

        program.window.wait_for("push-button", "APPLY").press()
        program.window.wait_for_text("Metadata applied to 6 WAVs")
        channels = {"Bank 1/1/kick.wav": 1, "Bank 1/3/hat.wav": 3, "Bank 1/5/SNARE.WAV": 5,
                    "Bank 2/8/old.wav": 8, "Pool/Bank 01/kick.wav": None, "09/nine.wav": None}
        expected = before | {
            path: expected_stamp(before[path], channel, 7, 1, 3, {1, 3, 8})
            for path, channel in channels.items()}
        after = files_below(device)
        self.assertEqual(sorted(after), sorted(expected))
        self.assertEqual([path for path in after if after[path] != expected[path]], [])
        self.assertEqual(sorted(path for path in after if after[path] != before[path]),
                         sorted(channels))
        program.quit()

    def device_folder(self):
        device = self.folder("Karte ü #1", "qzt508")
        for path in ("Bank 1/1/kick.wav", "Bank 1/3/hat.wav", "Bank 1/5/SNARE.WAV",
                     "Bank 2/8/old.wav", "Pool/Bank 01/kick.wav", "09/nine.wav",
                     "Bank 1/1/.hidden.wav", ".hidden/2/secret.wav"):
            trustlib.write_wav(os.path.join(device, path), 44100, 1, 2, 100 + len(path))
        with open(os.path.join(device, "Bank 1", "info.txt"), "w", encoding="ascii") as file:
            file.write("Kit001")
        # Stamped before, with a routing and a high filter nibble that have to survive.
        payload = bytearray(range(256)) * 7 + bytearray(144)
        payload[0:4] = (0x12345677).to_bytes(4, "little")
        with open(os.path.join(device, "Bank 2/8/old.wav"), "ab") as file:
            file.write(b"busy" + len(payload).to_bytes(4, "little") + payload)
        return device

    def choose_in_combo(self, program, name, wanted):
        """By keyboard, as one does: focus, down or up to the entry, Enter."""
        combo = program.window.combo(name)
        program.tab_to(combo.name, "combo-box", lambda node: name in node.labels)
        program.desktop.key("Home")
        while combo.name != wanted:
            shown = combo.name
            program.desktop.key("Down")
            wait_until(lambda: combo.name != shown, f"{name} to leave {shown}")

    def test_unwritable_output_is_named_and_can_be_mended(self):
        library = self.library("Kit")
        output = self.folder("Locked out")
        os.chmod(output, 0o555)
        self.addCleanup(os.chmod, output, 0o755)
        # The superuser writes everywhere; without these two powers the permissions count.
        wrapper = ["setpriv", "--bounding-set=-dac_override,-dac_read_search"]
        program = self.start(wrapper=wrapper if os.geteuid() == 0 else [])
        program.choose_source(library)
        program.choose_output(output)
        program.wait_scanned()
        program.window.wait_for("push-button", "GENERATE").press()
        program.window.wait_for("image", "Failed")
        message = next(text for text in program.window.texts() if "Permission denied" in text)
        self.assertIn(output, message)
        self.assertEqual(os.listdir(output), [])
        self.assertEqual(program.window.unnamed(), [])
        self.assertNotIn(CREATED, program.window.texts())

        os.chmod(output, 0o755)
        program.generate()
        self.assertEqual(os.listdir(output), ["Kit"])
        program.quit()

    def test_cancelled_panels(self):
        library = self.library("Kit")
        output = self.folder("Out")
        program = self.start()
        program.choose_source(library)
        program.wait_scanned()
        program.choose_output(output)
        target = os.path.join(output, "Kit", "QZT508")
        program.window.wait_for_text(target)
        generate = program.window.wait_for("push-button", "GENERATE")
        wait_until(generate.is_enabled, "GENERATE to be enabled")

        program.button("CHOOSE FOLDER", "SOURCE").press()
        program.cancel_panel(SOURCE_PANEL)
        self.assertIn(library, program.window.texts())
        self.assertIn(target, program.window.texts())
        self.assertTrue(generate.is_enabled())

        # Intended: unlike the source's, a cancelled output panel forgets the folder chosen before.
        program.button("CHOOSE FOLDER", "OUTPUT").press()
        program.cancel_panel(OUTPUT_PANEL)
        program.window.wait_for_text("Choose output folder.")
        self.assertFalse(generate.is_enabled())
        self.assertNotIn(target, program.window.texts())
        program.quit()


if __name__ == "__main__":
    window.main()
