"""The manual pages: pages.py PROGRAM PREFIX, where PREFIX is what the component "manual" was
installed to."""

import os
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

PROGRAM, PREFIX = sys.argv[1:3]
COMMANDS = {"keladjust": [], "keladjust-lut": ["lut"], "keladjust-bench": ["bench"]}


def path_of(page):
    return os.path.join(PREFIX, "share/man/man1", page + ".1")


def text_of(page):
    shown = subprocess.run(["mandoc", "-T", "utf8", "-O", "width=200", path_of(page)], check=True,
                           text=True, capture_output=True).stdout
    return re.sub(r".\x08", "", shown)


class ManualPages(unittest.TestCase):
    def test_mandoc_has_nothing_to_say(self):
        with tempfile.TemporaryDirectory() as folder:
            # Pages that refer to one another are looked for in a database.
            shutil.copytree(os.path.join(PREFIX, "share/man/man1"), os.path.join(folder, "man1"))
            subprocess.run(["makewhatis", folder], check=True)
            for page in COMMANDS:
                said = subprocess.run(["mandoc", "-T", "lint", "-W", "style", path_of(page)],
                                      text=True, capture_output=True,
                                      env=dict(os.environ, MANPATH=folder))
                self.assertEqual(said.stdout + said.stderr, "")
                self.assertEqual(said.returncode, 0)

    def test_every_option_of_the_help_has_its_entry(self):
        for page, command in COMMANDS.items():
            help_text = subprocess.run([PROGRAM, *command, "--help"], check=True, text=True,
                                       capture_output=True).stdout
            options = re.findall(r"^  (-[-a-z,]+)", help_text, re.M)
            entries = re.findall(r"^ {5}(-.*)", text_of(page), re.M)
            named = {name for entry in entries for name in re.findall(r"(?<![\w-])--?[a-z][a-z-]*", entry)}
            self.assertGreater(len(options), 65)
            for option in options:
                self.assertLessEqual(set(option.split(",")), named, page)

    def test_a_setting_has_its_range(self):
        self.assertRegex(text_of("keladjust"), r"--sharpen N\n +0\.\.255, identity 0; ")

    def test_a_dash_is_one_that_can_be_typed(self):
        self.assertIn("keladjust lut --preset warm.json -o warm.cube", text_of("keladjust-lut"))

    def test_exit_codes_are_listed(self):
        for code in ("0", "1", "2", "130"):
            self.assertRegex(text_of("keladjust"), rf"(?m)^ {{5}}{code} +\w")


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1] + sys.argv[3:])
