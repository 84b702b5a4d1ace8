"""Where an object's bytes lie: Python's buffer protocol, strides included, without numpy."""

import ctypes
from contextlib import contextmanager

_WRITABLE, _FORMAT, _STRIDES = 0x1, 0x4, 0x18
_SIZE = ctypes.c_ssize_t


class _View(ctypes.Structure):
    """Py_buffer, which is the same in every version of CPython."""

    _fields_ = [
        ("buf", ctypes.c_void_p),
        ("obj", ctypes.py_object),
        ("len", _SIZE),
        ("itemsize", _SIZE),
        ("readonly", ctypes.c_int),
        ("ndim", ctypes.c_int),
        ("format", ctypes.c_char_p),
        ("shape", ctypes.POINTER(_SIZE)),
        ("strides", ctypes.POINTER(_SIZE)),
        ("suboffsets", ctypes.POINTER(_SIZE)),
        ("internal", ctypes.c_void_p),
    ]


_get = ctypes.PYFUNCTYPE(ctypes.c_int, ctypes.py_object, ctypes.POINTER(_View), ctypes.c_int)(
    ("PyObject_GetBuffer", ctypes.pythonapi))
_release = ctypes.PYFUNCTYPE(None, ctypes.POINTER(_View))(("PyBuffer_Release", ctypes.pythonapi))


class Buffer:
    """What an object says of its bytes, which stay where they are while this is open."""

    def __init__(self, array, view):
        self.array = array
        self.address = view.buf
        self.format = (view.format or b"B").decode()
        self.is_bytes = self.format.lstrip("@=<>!") == "B"
        self.shape = tuple(view.shape[:view.ndim])
        self.strides = tuple(view.strides[:view.ndim])


@contextmanager
def opened(array):
    """The buffer of an object, which has to be writable."""
    try:
        memoryview(array).release()
    except TypeError:
        raise TypeError("array must be a buffer of bytes, such as a numpy array, "
                        f"not {type(array).__name__}") from None
    view = _View()
    try:
        _get(array, ctypes.byref(view), _STRIDES | _FORMAT | _WRITABLE)
    except (BufferError, ValueError):
        raise ValueError("array is read-only, and would be adjusted in place; hand over a copy") \
            from None
    try:
        yield Buffer(array, view)
    finally:
        _release(ctypes.byref(view))
