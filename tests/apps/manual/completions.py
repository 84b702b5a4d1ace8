"""Completions in the shells themselves: completions.py PROGRAM PREFIX, where PREFIX is what the
component "manual" was installed to. Words are typed, the key is pressed, and what then stands on the
terminal is read."""

import os
import re
import subprocess
import sys
import tempfile
import unittest

import pexpect

PROGRAM, PREFIX = sys.argv[1:3]
PROMPT = "READY>"


def help_of(*command):
    return subprocess.run([PROGRAM, *command, "--help"], check=True, text=True,
                          capture_output=True).stdout


def options_of(*command):
    return set(re.findall(r"(?<![\w-])--[a-z][a-z-]*", re.sub(r"(?s)Examples:.*", "",
                                                             help_of(*command))))


def settings():
    """Names of the settings: the options that the help gives a range and an identity."""
    return set(re.findall(r"--([a-z-]+) N\s+\S+\.\.\S+ identity", help_of()))


def plain(text):
    """Words alone: what moves the cursor stands between words, colours and titles within them."""
    text = re.sub(r"\x1b\][^\x07\x1b]*(\x07|\x1b\\)|\x1b\[[0-9;]*m|\x1b[=>]|\x07", "", text)
    return re.sub(r"\x1b\[[?0-9;]*[ -/]*[@-~]|[\r\b]", " ", text)


class Terminal:
    """A shell on a wide and tall terminal, in a folder of its own."""

    def __init__(self, command, arguments, setup, folder):
        environment = dict(os.environ, TERM="xterm", LC_ALL="C.UTF-8", HOME=folder,
                           PATH=os.path.dirname(PROGRAM) + ":" + os.environ["PATH"])
        self.child = pexpect.spawn(command, arguments, cwd=folder, env=environment, encoding="utf-8",
                                   dimensions=(200, 160), timeout=60)
        # Typed, the marker is in two parts, so that its echo is not taken for the answer.
        for line in setup:
            self.child.sendline(line)
        self.child.sendline("echo SET''UP")
        self.child.expect("SETUP\r?\n")
        self.child.expect(re.escape(PROMPT))

    def after_key(self, line):
        """All words that stand on the terminal after the line was typed and the key pressed twice."""
        self.child.send(line + "\t\t")
        self.child.send("\x01: \x05 END''OF")  # the line becomes one that does nothing
        self.child.sendline("; echo DO''NE")
        self.child.expect("DONE\r?\n")
        shown = plain(self.child.before)
        self.child.expect(re.escape(PROMPT))
        return set(re.split(r"[\s=]+", shown.replace("\\ ", "_")))

    def close(self):
        self.child.close(force=True)


class Bash(Terminal):
    def __init__(self, folder):
        super().__init__("bash", ["--norc", "-i"], [
            "PS1='READ''Y>'", "bind 'set page-completions off'",
            "bind 'set completion-query-items 0'", "bind 'set enable-bracketed-paste off'",
            ". /usr/share/bash-completion/bash_completion",
            f". {PREFIX}/share/bash-completion/completions/keladjust"], folder)


class Zsh(Terminal):
    def __init__(self, folder):
        super().__init__("zsh", ["-f", "-i"], [
            "unsetopt zle_bracketed_paste", "PS1='READ''Y>'", "LISTMAX=1000", "bindkey -e",
            f"fpath=({PREFIX}/share/zsh/site-functions $fpath)",
            "autoload -Uz compinit", "compinit -D -u"], folder)


class Fish:
    """Its own way to ask it."""

    def __init__(self, folder):
        self.folder = folder

    def after_key(self, line):
        script = (f"source {PREFIX}/share/fish/vendor_completions.d/keladjust.fish; "
                  "complete -C $argv[1]")
        answer = subprocess.run(["fish", "--no-config", "-c", script, line], check=True, text=True,
                                cwd=self.folder, capture_output=True,
                                env=dict(os.environ, HOME=self.folder, LC_ALL="C.UTF-8"))
        return {offer.split("\t")[0].replace(" ", "_") for offer in answer.stdout.splitlines()}

    def close(self):
        pass


class Completions:
    """What holds in every shell."""

    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)
        for name in ("photo.JPG", "second_photo.png", "scan.tiff", "warm.json", "notes.txt"):
            open(os.path.join(self.folder.name, name), "w").close()
        os.mkdir(os.path.join(self.folder.name, "holiday"))
        self.shell = self.shell_type(self.folder.name)
        self.addCleanup(self.shell.close)

    def expect_offers(self, line, offered, not_offered=()):
        words = {word.rstrip("/") for word in self.shell.after_key(line)}
        self.assertLessEqual(set(offered), words, line)
        self.assertFalse(words & set(not_offered), line)

    def test_every_option_of_each_command_is_offered(self):
        for command in ([], ["lut"], ["bench"]):
            with self.subTest(command=command):
                self.assertGreater(len(options_of(*command)), 65)
                self.expect_offers(" ".join(["keladjust", *command, "--"]), options_of(*command))

    def test_a_command_offers_the_options_of_no_other(self):
        self.expect_offers("keladjust lut --", ["--order"], ["--in-place", "--runs"])
        self.expect_offers("keladjust bench --", ["--runs"], ["--in-place", "--order"])
        self.expect_offers("keladjust photo.JPG --", ["--in-place"], ["--runs", "--order"])

    def test_a_sheet_is_of_any_setting(self):
        self.assertEqual(len(settings()), 65)
        self.expect_offers("keladjust --sheet ", settings())

    def test_presets_are_files_of_their_kind_and_folders(self):
        for option in ("--preset", "--save-preset"):
            self.expect_offers(f"keladjust {option} ", ["warm.json", "holiday"],
                               ["notes.txt", "photo.JPG"])

    def test_pictures_are_offered_whatever_the_case_of_their_names(self):
        pictures = ["photo.JPG", "second_photo.png", "scan.tiff", "holiday"]
        for line in ("keladjust ", "keladjust bench ", "keladjust photo.JPG --exposure 20 "):
            self.expect_offers(line, pictures, ["notes.txt", "warm.json"])

    def test_commands_are_offered_as_the_first_word_alone(self):
        self.expect_offers("keladjust ", ["lut", "bench"])
        self.expect_offers("keladjust photo.JPG ", ["scan.tiff"], ["lut", "bench"])
        self.expect_offers("keladjust bench ", ["scan.tiff"], ["lut"])

    def test_an_output_is_any_file(self):
        for line in ("keladjust photo.JPG -o ", "keladjust lut --output ", "keladjust bench -o "):
            self.expect_offers(line, ["notes.txt", "warm.json", "holiday", "scan.tiff"])

    def test_words_are_those_that_the_option_takes(self):
        self.expect_offers("keladjust --format ", ["jpeg", "png", "tiff", "webp"], ["scan.tiff"])
        self.expect_offers("keladjust lut --order ", ["blue-fastest", "red-fastest"])

    def test_a_number_is_left_to_the_reader(self):
        for line in ("keladjust --exposure ", "keladjust --jobs "):
            self.expect_offers(line, [], ["photo.JPG", "notes.txt", "lut"])


class InBash(Completions, unittest.TestCase):
    shell_type = Bash


class InZsh(Completions, unittest.TestCase):
    shell_type = Zsh


class InFish(Completions, unittest.TestCase):
    shell_type = Fish


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1] + sys.argv[3:])
