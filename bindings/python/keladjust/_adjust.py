"""The pipeline: every setting, in the library's order."""

import ctypes
import errno
import inspect

from . import _description, _interface
from ._interrupt import Raised, interrupts_kept
from ._library import library
from ._names import suggestion
from ._picture import picture_of
from ._settings import settings_of
from ._values import chosen, whole

PATHS = {
    "auto": _interface.KELADJUST_AUTO,
    "cpu": _interface.KELADJUST_CPU,
    "gpu": _interface.KELADJUST_GPU,
}

# The setting that moves the bytes of a row rather than its pixels, and so does something else where
# pixels have other bytes: the command-line program's results are the measure.
MOVES_BYTES = "distortion"

MOST_THREADS = 1024

Progress = dict(_interface.KeladjustRun._fields_)["progress"]


class Refused(RuntimeError):
    """The library did not adjust the picture, which is as it was; the text says why."""


def raise_if_memory_was_short():
    """Stages that run short of memory leave their picture as it was and say so in errno."""
    if ctypes.get_errno() == errno.ENOMEM:
        raise MemoryError("a stage was short of memory, and left the picture as it found it")


def _named_settings(values):
    """Refuses what is neither a setting nor a parameter."""
    for name in values:
        if name.replace("-", "_") not in _description.BY_KEY:
            *parameters, _values = inspect.signature(adjust).parameters
            known = [*parameters, *_description.BY_KEY]
            raise TypeError(f'adjust() has neither a parameter nor a setting "{name}"'
                            + suggestion(name, known))
    return values


def _run(image, record, path, threads, progress):
    raised = Raised()

    def tell(_user, share):
        try:
            if raised.error is None and progress is not None:
                progress(share)
        except BaseException as error:  # of whatever kind: it is raised again
            raised.keep(error)
        return 0 if raised.error is None else 1

    with interrupts_kept(raised) as can_be_interrupted:
        run = _interface.KeladjustRun(size=ctypes.sizeof(_interface.KeladjustRun), path=path,
                                      maxThreads=threads)
        if progress is not None or can_be_interrupted:
            run.progress = Progress(tell)
        ctypes.set_errno(0)
        result = library.keladjustRun(image, record, len(record), ctypes.addressof(run))
    if raised.error is not None:
        raise raised.error
    if result == _interface.KELADJUST_REFUSED:
        raise Refused(run.reason.decode())
    raise_if_memory_was_short()
    return next(name for name, taken in PATHS.items() if taken == run.pathTaken)


def adjust(array, settings=None, /, *, preset=None, order="rgb", path="cpu", threads=0,
           progress=None, **values):
    if progress is not None and not callable(progress):
        raise TypeError(f"progress must be callable, not {type(progress).__name__}")
    wanted = PATHS[chosen(path, tuple(PATHS), "path")]
    most = whole(threads, "threads", 0, MOST_THREADS)
    all_settings = settings_of(preset, "preset")
    all_settings.update(settings_of(settings, "settings"))
    all_settings.update(_named_settings(values))
    moves_bytes = all_settings[MOVES_BYTES] != 0
    with picture_of(array, order, as_in_program=moves_bytes) as image:
        if image is None:
            return "cpu" if path == "auto" else path
        return _run(image, all_settings.record(), wanted, most, progress)


adjust.__doc__ = f"""Adjusts a picture in place and returns the path it took, "cpu" or "gpu".

    array: unsigned bytes, H x W (grey), H x W x 3 or H x W x 4 (the fourth is alpha): a numpy array
        or any other writable buffer of such a shape. Its own bytes are adjusted if rows follow one
        another without a gap and are of a multiple of four bytes; anything else goes through a copy.
    settings, preset: Settings or another mapping, a preset's path, or a list of these, later ones
        win; `settings` wins over `preset`, settings by name over both
    order: "rgb" or "bgr"
    path: "cpu"; "gpu", or Refused is raised; "auto", on the GPU if that can be
    threads: of this call; 0 for one per core
    progress: called every few milliseconds with the share that is done, 0..1. What it raises, as
        what Ctrl-C raises, cancels and is raised here; the picture is then adjusted in part.

Other Python threads run meanwhile, and may adjust other pictures. Settings:

{chr(10).join(f"    {s.key}: {s.range}; {s.help}" for s in _description.SETTINGS)}
"""
