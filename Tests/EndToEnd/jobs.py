"""The jobs that the sweeps disturb: a run, a stamp and a saved document, each with its checks."""

import json
import os
import shutil

import robustness
from robustness import check, check_same, snapshot

TEMPORARY = (".torvo-", ".tmp")


def is_temporary(path):
    name = os.path.basename(path)
    return name.startswith(TEMPORARY[0]) and name.endswith(TEMPORARY[1])


def age_temporaries(folder):
    """Backdates the temporary files below a folder by two days: younger ones may be in use and are kept."""
    for parent, _, files in os.walk(folder):
        for path in (os.path.join(parent, name) for name in files if is_temporary(name)):
            time = os.lstat(path).st_mtime - 48 * 3600
            os.utime(path, (time, time))


class Bench:
    """A library, an output folder and the document of an undisturbed run."""

    def __init__(self, program):
        self.program = program
        self.folder = robustness.work_folder()
        try:
            self._run_once()
        except BaseException:
            self.close()
            raise

    def _run_once(self):
        self.source = robustness.make_library(self.folder + "/Kit")
        self.out = self.folder + "/out"
        self.document = self.folder + "/Kit001.json"
        os.mkdir(self.out)
        robustness.run_successfully([self.program, "--source", self.source, "--out", self.out, "--banks",
                           "1", "--seed", "7", "--json", self.document])
        self.device = self.out + "/Kit/QZT508"
        self.source_before = snapshot(self.source)

    def close(self):
        shutil.rmtree(self.folder)

    def check_source(self):
        check_same(self.source_before, snapshot(self.source), "the source changed")


class Run:
    """Writing a document's banks: a disturbed run must not report success, the next one must be complete."""

    name = "run"

    def __init__(self, bench):
        self.bench = bench
        self.command = [bench.program, "--import", bench.document, "--out", bench.out]
        robustness.run_successfully(self.command)
        self.reference = snapshot(bench.device, times=False)

    def reset(self):
        """Nothing: a run replaces the banks of the run before."""

    def check_disturbed(self, result):
        self.bench.check_source()
        if result.returncode == 0:
            check_same(self.reference, snapshot(self.bench.device, times=False), "false success")

    def check_repaired(self):
        robustness.run_successfully(self.command)
        check_same(self.reference, snapshot(self.bench.device, times=False), "after a rerun")


class Stamp:
    """Stamping a folder: every file must be the old one or the new one after any fault."""

    name = "stamp"

    def __init__(self, bench):
        self.bench = bench
        self.kept = bench.folder + "/kept"
        self.command = [bench.program, "--stamp", bench.device, "--bits", "9", "--rate", "22",
                        "--filter", "lp", "--cv", "1,4"]
        robustness.replace_tree(bench.device, self.kept)
        self.old = snapshot(bench.device, times=False)
        robustness.run_successfully(self.command)
        self.new = snapshot(bench.device, times=False)
        check(self.old != self.new, "the stamp changes nothing, so the check would be empty")
        self.reset()

    def reset(self):
        robustness.replace_tree(self.kept, self.bench.device)

    def check_disturbed(self, result):
        self.bench.check_source()
        now = snapshot(self.bench.device, times=False)
        for path, item in now.items():
            if path not in self.old:
                check(is_temporary(path), path + " appeared")
            else:
                check(item in (self.old[path], self.new[path]), path + " is neither old nor new")
        check(all(path in now for path in self.old), "a file is gone")
        # Intended: an unreadable folder counts as empty.
        if result.returncode == 0 and json.loads(result.stdout)["stamped"] == 0:
            check_same(self.old, now, "nothing was counted")
        elif result.returncode == 0:
            check_same(self.new, now, "false success")

    def check_repaired(self):
        age_temporaries(self.bench.device)
        robustness.run_successfully(self.command)
        check_same(self.new, snapshot(self.bench.device, times=False), "after a rerun")


class Save:
    """Saving a document over an older one."""

    name = "save"

    def __init__(self, bench):
        self.bench = bench
        self.folder = bench.folder + "/documents"
        os.makedirs(self.folder, exist_ok=True)
        self.path = self.folder + "/Kit001.json"
        empty = bench.folder + "/empty.json"
        text = open(bench.document).read()
        start, end = text.index('"recipes": ['), text.index('"sourceFolder"')
        with open(empty, "w") as file:
            file.write(text[:start] + '"recipes": [],\n  ' + text[end:])
        self.command = [bench.program, "--import", empty, "--out", bench.folder + "/nothing",
                        "--json", self.path]
        robustness.run_successfully(self.command)
        self.new = open(self.path).read()
        self.reset()

    def reset(self):
        shutil.rmtree(self.folder)
        os.mkdir(self.folder)
        with open(self.path, "w") as file:
            file.write("an older document")

    def check_disturbed(self, result):
        self.bench.check_source()
        text = open(self.path).read()
        check(text in ("an older document", self.new), "the document is neither old nor new")
        if result.returncode == 0:
            check(text == self.new, "false success")
        for name in os.listdir(self.folder):
            check(name == "Kit001.json" or is_temporary(name), name + " appeared")

    def check_repaired(self):
        age_temporaries(self.folder)
        robustness.run_successfully(self.command)
        check(open(self.path).read() == self.new, "the document differs after a rerun")
        check(os.listdir(self.folder) == ["Kit001.json"], "a temporary file was left beside the document")


JOBS = (Run, Stamp, Save)
