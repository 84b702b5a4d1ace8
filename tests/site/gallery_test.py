"""What the site says of settings is complete: gallery_test.py LIBRARY"""

import os
import sys
import tempfile
import tomllib
import unittest

SITE = os.path.join(os.path.dirname(os.path.abspath(__file__)), "../../site")
sys.path.insert(0, SITE)

from gallery import Gallery  # noqa: E402  from the folder above
from record import Library  # noqa: E402

SETTINGS = Library(sys.argv[1]).settings()
TEXT = open(os.path.join(SITE, "gallery.toml"), encoding="utf-8").read()


def gallery_of(text):
    with tempfile.NamedTemporaryFile("w", encoding="utf-8") as file:
        file.write(text)
        file.flush()
        return Gallery(file.name, SETTINGS)


class Entries(unittest.TestCase):
    def test_every_setting_has_its_sentence_and_its_formula(self):
        gallery = gallery_of(TEXT)
        self.assertEqual(len(SETTINGS), 65)
        for setting in SETTINGS:
            entry, _ = gallery.entry(setting.name)
            self.assertRegex(entry["what"], r"^[A-Z].*\.$|^The hue at which", setting.name)
            self.assertEqual(entry["what"].count(". "), 0, f"{setting.name}: one sentence")
            self.assertRegex(entry["formula"], r"\.$", setting.name)

    def test_a_setting_without_an_entry_stops_the_site(self):
        for name in ("[sharpen]", "[range.hue]"):
            with self.assertRaisesRegex(SystemExit, name.strip("[]").split(".")[-1]):
                gallery_of(TEXT.replace(name, name.replace("sharpen", "stage.other")
                                        .replace("range.hue", "stage.other")))

    def test_an_entry_without_a_setting_stops_the_site(self):
        with self.assertRaisesRegex(SystemExit, "no setting is called .*sharpness"):
            gallery_of(TEXT.replace("[sharpen]", "[sharpness]"))

    def test_an_unknown_word_in_an_entry_stops_the_site(self):
        with self.assertRaisesRegex(SystemExit, "pixles"):
            gallery_of(TEXT.replace("pixels = true", "pixles = true"))

    def test_five_values_are_shown_the_identity_among_them(self):
        gallery = gallery_of(TEXT)
        for setting in SETTINGS:
            entry, kind = gallery.entry(setting.name)
            values = gallery.values(entry, setting, kind)
            self.assertEqual(len(set(values)), 5, setting.name)
            self.assertIn(setting.identity, values, setting.name)
            self.assertTrue(all(setting.lowest <= value <= setting.highest for value in values))
        for stage in tomllib.loads(TEXT)["stage"].values():
            self.assertEqual(len(set(stage["values"])), 5)
            self.assertIn(0, stage["values"])


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1] + sys.argv[2:])
