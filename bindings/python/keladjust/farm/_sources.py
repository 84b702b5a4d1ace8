"""The pictures that a command line names: folders, patterns and lists of any length."""

import glob
import os
import sys
from typing import NamedTuple

# What the program reads and writes, by the ends of names. In folders anything else is left alone.
SUFFIXES = (".jpg", ".jpeg", ".jpe", ".jfif", ".png", ".tif", ".tiff", ".webp")


class Picture(NamedTuple):
    input: str  # absolute
    place: str  # below the output folder


def _parts_of_pattern(pattern):
    """A pattern's folder, which has no wildcards, and the rest."""
    head, tail = os.path.split(pattern)
    while glob.has_magic(head):
        head, last = os.path.split(head)
        tail = os.path.join(last, tail)
    return head or ".", tail


def _in_folder(folder, skipped):
    """Every picture in a folder and those below it, in no order that would need memory."""
    waiting = [folder]
    while waiting:
        below = waiting.pop()
        if os.path.realpath(below) == skipped:
            continue
        with os.scandir(below) as entries:
            for entry in entries:
                if entry.is_dir(follow_symlinks=False):
                    waiting.append(entry.path)
                elif entry.name.lower().endswith(SUFFIXES) and entry.is_file():
                    yield Picture(os.path.abspath(entry.path), os.path.relpath(entry.path, folder))


def _in_pattern(pattern):
    head, tail = _parts_of_pattern(pattern)
    for name in glob.iglob(tail, root_dir=head, recursive=True):
        path = os.path.join(head, name)
        if os.path.isfile(path):
            yield Picture(os.path.abspath(path), name)


def _in_list(path):
    stream = sys.stdin if path == "-" else open(path, errors="surrogateescape")
    with stream:
        for line in stream:
            name = line.rstrip("\r\n")
            if name:
                yield Picture(os.path.abspath(name), _below(name))


def _below(name):
    """Where a picture lies below the output folder that lies anywhere else."""
    drive_less = os.path.splitdrive(os.path.normpath(name))[1].lstrip(os.sep)
    parts = [part for part in drive_less.split(os.sep) if part != os.pardir]
    return os.path.join(*parts)


def pictures(paths, lists, output):
    """One Picture after the other. Those in the output folder are nobody's inputs."""
    skipped = os.path.realpath(output)
    for path in paths:
        if os.path.isdir(path):
            yield from _in_folder(path, skipped)
        elif glob.has_magic(path) and not os.path.exists(path):
            yield from _in_pattern(path)
        else:
            yield Picture(os.path.abspath(path), os.path.basename(path))
    for path in lists:
        yield from _in_list(path)
