#!/usr/bin/python3
"""What a screen reader finds: every showing control named, values and states told as they change."""

import re

import trustlib
import window
from desktop import wait_until
from window import CREATED, OUTPUT_PANEL, SOURCE_PANEL


class ScreenReader(window.WindowTest):
    def assert_all_named(self, node, state):
        self.assertEqual(node.unnamed(), [], f"{state}: controls without a name")

    def test_every_control_is_named_in_every_state(self):
        program = self.start()
        shown = program.window
        self.assert_all_named(shown, "empty")
        for title, card in ((SOURCE_PANEL, "SOURCE"), (OUTPUT_PANEL, "OUTPUT")):
            program.button("CHOOSE FOLDER", card).press()
            program.panel(title)
            program.cancel_panel(title)
        program.choose_source(trustlib.make_library(self.folder("Kit")))
        program.wait_scanned()
        self.assert_all_named(shown, "drums")
        for header in (re.compile("^IGNORED FOLDERS"), re.compile("^IGNORED FILES")):
            shown.wait_for("push-button", header).press()
        shown.wait_for("list-item")
        shown.wait_for_text("NONE")
        self.assert_all_named(shown, "lists open")
        for mode in shown.wait_for(name="Generation mode").children[1:]:
            mode.press()
            wait_until(mode.is_checked, f"{mode} to be chosen")
            program.wait_scanned()
            self.assert_all_named(shown, mode.name)
        shown.wait_for(name="Generation mode").children[0].press()
        shown.wait_for_text("CH1 KICK")
        program.choose_output(self.folder("Out"))
        shown.wait_for("check-box", "ENABLE CV ASSIGNMENTS").do("Toggle")
        self.assert_all_named(shown, "ready")
        program.generate()
        self.assert_all_named(shown, "finished")
        program.choose_menu("Help", "About Torvo Quastle Bank Generator")
        about = program.panel(re.compile("About"))
        self.assert_all_named(about, "About")
        about.wait_for("push-button", "OK").press()
        program.wait_closed(re.compile("About"))
        program.choose_source(self.folder("QZT508"))
        shown.wait_for_text("Existing QZT508 folder selected.")
        self.assert_all_named(shown, "existing folder")
        shown.wait_for("push-button", "APPLY").press()
        shown.wait_for_text("Metadata applied to 0 WAVs")
        self.assert_all_named(shown, "applied")
        program.quit()

    def test_progress_is_told_as_value_and_text(self):
        program = self.start()
        program.choose_source(self.slow_library("Kit"))
        program.choose_output(self.folder("Out"))
        program.wait_scanned()
        generate = program.window.wait_for("push-button", "GENERATE")
        wait_until(generate.is_enabled, "GENERATE to be enabled")
        generate.press()
        writing = re.compile(r"^WRITING Kit[0-9]{3}  ([0-9]+)/99$")

        def told():
            bar = program.window.find("progress-bar", writing)
            try:
                return bar and (bar.name, bar.value, bar.states, program.window.texts())
            except window.accessible.GONE:
                return None  # the run has ended in between; the next look says so
        name, (current, smallest, largest), states, texts = wait_until(told, "progress")
        self.assertEqual((smallest, largest), (0, 99))
        # The bar may have moved on between the two questions, never back.
        self.assertGreaterEqual(current, int(writing.match(name)[1]))
        self.assertLessEqual(current, 99)
        self.assertIn("showing", states)
        self.assertFalse(generate.is_enabled() and CREATED not in program.window.texts())
        program.window.wait_for_text(CREATED, 300)
        program.window.wait_for("image", "Done")
        self.assertIsNone(program.window.find("progress-bar"))
        program.window.wait_for("label", re.compile("^99 banks · "))
        program.quit()

    def test_states_are_told(self):
        program = self.start()
        shown = program.window
        modes = shown.wait_for(name="Generation mode").children
        self.assertEqual([mode.is_checked() for mode in modes], [True, False, False])
        self.assertEqual({mode.role for mode in modes}, {"radio-button"})
        modes[1].press()
        wait_until(lambda: [mode.is_checked() for mode in modes] == [False, True, False],
                   "the second mode to be chosen alone")
        generate = shown.wait_for("push-button", "GENERATE")
        self.assertFalse(generate.is_enabled())
        self.assertFalse(program.button("CLEAR", "SOURCE").is_enabled())
        self.assertFalse(shown.wait_for("check-box", "4").is_enabled())
        zone = shown.wait_for(name="DROP SOURCE FOLDER")
        self.assertTrue(zone.description.startswith("Drag a raw loop library."))
        for label, value in (("BITS", "16"), ("RATE", "44"), ("FILTER", "Off")):
            self.assertEqual(shown.combo(label).name, value)
        self.assertEqual(shown.wait_for(name="Halvorine").role, "link")

        # "Export JSON…" follows the document.
        shown.wait_for("menu-item", "File").do("ShowMenu")
        self.assertFalse(program.application.wait_for("menu-item", "Export JSON…").is_enabled())
        self.assertTrue(program.application.wait_for("menu-item", "Import JSON…").is_enabled())
        program.desktop.key("Escape", "Escape")
        program.quit()


if __name__ == "__main__":
    window.main()
