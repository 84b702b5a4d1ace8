"""The shared library that lies in this folder, loaded."""

import ctypes
import os
import sys

from . import _interface

FILE = {"win32": "keladjust.dll", "darwin": "libkeladjust.dylib"}.get(sys.platform, "libkeladjust.so")


def _load():
    # Not PyDLL: each call lets other Python threads run meanwhile.
    loaded = ctypes.CDLL(os.path.join(os.path.dirname(os.path.abspath(__file__)), FILE),
                         use_errno=True)
    for name, (result, parameters) in _interface.FUNCTIONS.items():
        function = getattr(loaded, name)
        function.restype = result
        function.argtypes = parameters
    return loaded


library = _load()

version = library.keladjustVersion().decode()
if version != _interface.VERSION:
    raise ImportError(f"keladjust {_interface.VERSION} has the library of version {version} beside it")
