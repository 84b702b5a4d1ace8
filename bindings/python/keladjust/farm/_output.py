"""Where outputs go: below one folder, which holds no inputs."""

import functools
import os
import time

from ._manifest import FOLDER


class Misplaced(Exception):
    """A picture that may not be written where it would be."""


class OutputFolder:
    def __init__(self, path, extension=None):
        """extension: that of the format which all outputs have, if they have one"""
        os.makedirs(path, exist_ok=True)
        self.path = os.path.realpath(path)
        self._extension = extension

    def place(self, picture):
        """Where below the folder a picture goes."""
        if self._extension is None:
            return picture.place
        return os.path.splitext(picture.place)[0] + self._extension

    def target(self, picture, place):
        """The file to write. Raises Misplaced where an input would be written over."""
        target = os.path.join(self.path, place)
        if self._holds(os.path.realpath(picture.input)):
            raise Misplaced("it lies in the output folder; nothing is adjusted in place")
        if not self._holds(_real_folder(os.path.dirname(target))):
            raise Misplaced(f"{target} leads out of the output folder")
        if os.path.exists(target) and os.path.samefile(target, picture.input):
            raise Misplaced(f"{target} is the picture itself; nothing is adjusted in place")
        return target

    def _holds(self, path):
        return path == self.path or path.startswith(os.path.join(self.path, ""))

    def sweep(self, age):
        """Removes temporary files of programs that were killed: those that nobody has written to for
        `age` seconds, which is longer than a program lives. Returns how many there were."""
        swept = 0
        before = time.time() - age
        for folder, folders, names in os.walk(self.path):
            if FOLDER in folders:
                folders.remove(FOLDER)
            for name in names:
                if name.startswith(".keladjust-") and name.endswith(".tmp"):
                    swept += _remove_older(os.path.join(folder, name), before)
        return swept


@functools.lru_cache(maxsize=4096)
def _real_folder(folder):
    return os.path.realpath(folder)


def _remove_older(path, before):
    try:
        if os.stat(path).st_mtime >= before:
            return 0
        os.remove(path)
        return 1
    except FileNotFoundError:
        return 0  # it was somebody's, after all
