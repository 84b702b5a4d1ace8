#!/usr/bin/env python3
"""Works with the plug-in's window in GIMP as a user does, by keys: gimp_window.py <program>

GIMP finds the plug-in and the operation in the folders of the user that HOME names. What it makes of a
picture is held against what the command-line program makes of it. Needs a display of its own: its keys go
to whatever has the focus there."""

import json
import os
import pathlib
import socket
import struct
import subprocess
import sys
import tempfile
import time
import unittest

PROGRAM = pathlib.Path(sys.argv[1]).resolve()
WIDTH, HEIGHT = 640, 420
SELECTED = range(100, 340), range(50, 250)  # columns and rows

# Longer than anything here takes on a busy machine.
LONG = 300


def output_of(*command, **options):
    return subprocess.run(command, stdout=subprocess.PIPE, check=True, timeout=LONG, **options).stdout


def until(answer, what):
    """Waits for an answer that is one."""
    end = time.monotonic() + LONG
    while True:
        found = answer()
        if found:
            return found
        if time.monotonic() > end:
            raise AssertionError(f"waited in vain for {what}")
        time.sleep(0.2)


class Display:
    """Windows and keys, by xdotool."""

    @staticmethod
    def window(title):
        """The visible window of a title, a regular expression; none is ""."""
        while True:
            found = subprocess.run(["xdotool", "search", "--onlyvisible", "--name", title], text=True,
                                   stdout=subprocess.PIPE, stderr=subprocess.PIPE, timeout=LONG,
                                   check=False)
            if "X Error" not in found.stderr:  # of a window that has gone during the search
                return (found.stdout.split() or [""])[0]

    def press(self, window, *keys):
        """No window manager gives a window the focus here."""
        output_of("xdotool", "windowfocus", window)
        until(lambda: output_of("xdotool", "getwindowfocus").decode().strip() == window, "the focus")
        for key in keys:
            output_of("xdotool", "key", key)
            time.sleep(0.1)


class Gimp:
    """GIMP with its window, which answers Scheme beside."""

    def __init__(self, folder, picture):
        gimp, home = folder / "gimp", pathlib.Path(os.environ["HOME"])
        gimp.mkdir()
        # Of GIMP's own plug-ins these are enough, and asking them all takes long. Those of the user's
        # folder are what GIMP looks for by itself.
        system = output_of("pkg-config", "--variable=gimplibdir", "gimp-2.0", text=True).strip()
        for needed in ("script-fu", "file-png"):
            (gimp / needed).symlink_to(pathlib.Path(system, "plug-ins", needed))
        settings = home / ".config/GIMP/2.10"
        settings.mkdir(parents=True, exist_ok=True)
        (settings / "gimprc").write_text(
            f'(plug-in-path "${{gimp_dir}}/plug-ins:{gimp}")\n(check-updates no)\n')
        (settings / "sessionrc").write_text("(single-window-mode yes)\n(hide-docks yes)\n")
        with socket.socket() as free:
            free.bind(("127.0.0.1", 0))
            self._port = free.getsockname()[1]
        environment = {name: value for name, value in os.environ.items()
                       if not name.startswith("XDG_") and name not in ("GEGL_PATH", "GIMP2_DIRECTORY")}
        self._said = open(folder / "said", "w+", errors="replace")
        self._process = subprocess.Popen(
            ["gimp-2.10", "--new-instance", "--no-splash", picture, "--batch",
             f'(plug-in-script-fu-server RUN-NONINTERACTIVE "127.0.0.1" {self._port} "")'],
            env=environment, stdin=subprocess.DEVNULL, stdout=self._said, stderr=self._said)
        until(self._is_listening, "GIMP")

    def _is_listening(self):
        if self._process.poll() is not None:
            self._said.seek(0)
            raise AssertionError("GIMP has ended:\n" + self._said.read())
        try:
            return self.scheme("#t") == "#t"
        except OSError:
            return False

    def scheme(self, line):
        """The value of an expression, as Scheme writes it."""
        with socket.create_connection(("127.0.0.1", self._port), timeout=LONG) as server:
            server.sendall(b"G" + struct.pack(">H", len(line)) + line.encode())
            answers = server.makefile("rb")
            head = answers.read(4)
            if len(head) < 4:
                raise ConnectionError("GIMP has gone")
            _, failed, length = struct.unpack(">cBH", head)
            answer = answers.read(length).decode()
        if failed:
            raise AssertionError(f"{line}: {answer}")
        return answer

    def close(self):
        try:
            self.scheme("(gimp-quit 1)")
        except OSError:
            pass  # it has gone before it answered
        try:
            self._process.wait(LONG)
        finally:
            self._process.kill()
            self._process.wait()
            self._said.close()


def pixels(path):
    """Rows of bytes R, G, B."""
    data = output_of("convert", path, "-depth", "8", "rgb:-")
    assert len(data) == 3 * WIDTH * HEIGHT, len(data)
    return [data[at:at + 3 * WIDTH] for at in range(0, len(data), 3 * WIDTH)]


class Window(unittest.TestCase):
    def setUp(self):
        self._temporary = tempfile.TemporaryDirectory()
        self.addCleanup(self._temporary.cleanup)
        self._folder = pathlib.Path(self._temporary.name)
        self._picture = self._folder / "in.png"
        output_of("convert", "-size", f"{WIDTH}x{HEIGHT}", "-seed", "7", "plasma:fractal", "-depth", "8",
                  self._picture)
        self._before = pixels(self._picture)
        self._display = Display()
        self._gimp = Gimp(self._folder, self._picture)
        self.addCleanup(self._gimp.close)
        self._image = until(lambda: self._display.window(r"\[in\].*GIMP"), "the picture's window")

    def _layer(self):
        """The pixels of the layer as it is now."""
        path = self._folder / "layer.png"
        self._gimp.scheme(
            "(let* ((image (vector-ref (cadr (gimp-image-list)) 0))"
            "       (layer (car (gimp-image-get-active-layer image))))"
            f' (file-png-save-defaults RUN-NONINTERACTIVE image layer "{path}" "{path}"))')
        return pixels(path)

    def _last_settings(self):
        """What GIMP keeps of the plug-in's last run once that has ended, a preset; nothing is kept of
        none."""
        answer = self._gimp.scheme('(catch "nothing" (gimp-procedural-db-get-data "plug-in-keladjust"))')
        if answer == '"nothing"':
            return {}
        # A count and the bytes: (3 #(123 10 125))
        count, bytes_of_text = answer.strip("()").split(" #(")
        text = bytes(int(number) for number in bytes_of_text.split())
        assert len(text) == int(count), answer
        return json.loads(text)

    def _by_program(self, settings):
        options = [f"--{name}={value}" for name, value in settings.items()]
        output_of(PROGRAM, self._picture, *options, "--quiet", "-o", self._folder / "program.png")
        return pixels(self._folder / "program.png")

    def _open(self):
        """Colours > Keladjust, whose window it returns."""
        self._display.press(self._image, "alt+c", "k")
        return until(lambda: self._display.window("^Keladjust$"), "the plug-in's window")

    def _move_exposure(self, dialog, *keys):
        # From the pages' tab past the sliders and numbers of temperature and tint. GTK's large step to
        # the right is Page Down.
        self._display.press(dialog, *["Tab"] * 6, *keys)

    def _leave(self, dialog, key):
        self._display.press(dialog, key)
        until(lambda: not self._display.window("^Keladjust$"), "the end of the window")

    def test_cancel_ok_undo_and_selection(self):
        # One start of GIMP for all: it takes longer than everything that is tested.
        dialog = self._open()
        self._move_exposure(dialog, "Page_Down")
        self._leave(dialog, "Escape")
        self.assertEqual(self._layer(), self._before)
        self.assertEqual(self._last_settings(), {})

        dialog = self._open()
        self._move_exposure(dialog, "Page_Down", "Page_Down", "Right")
        self._leave(dialog, "Return")
        # Twice the large step and once the small one.
        until(lambda: self._last_settings() == {"exposure": 21}, "the settings of the run")
        adjusted = self._layer()
        self.assertEqual(adjusted, self._by_program({"exposure": 21}))

        self._display.press(self._image, "ctrl+z")
        until(lambda: self._layer() == self._before, "the undone layer")

        self._gimp.scheme(
            "(gimp-image-select-rectangle (vector-ref (cadr (gimp-image-list)) 0) CHANNEL-OP-REPLACE"
            f" {SELECTED[0].start} {SELECTED[1].start} {len(SELECTED[0])} {len(SELECTED[1])})")
        dialog = self._open()
        # It begins with what the last run had.
        self._move_exposure(dialog, "Page_Up")
        self._leave(dialog, "Return")
        until(lambda: self._last_settings() == {"exposure": 11}, "the settings of the run")
        selected = self._layer()
        whole = self._by_program({"exposure": 11})
        left, right = 3 * SELECTED[0].start, 3 * SELECTED[0].stop
        for y, row in enumerate(self._before):
            expected = row
            if y in SELECTED[1]:
                expected = row[:left] + whole[y][left:right] + row[right:]
            self.assertEqual(selected[y], expected, f"row {y}")


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
