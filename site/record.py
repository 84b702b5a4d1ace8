"""The library as the site needs it: what it says of its record, and its stages by themselves."""

import ctypes
from dataclasses import dataclass

BGRA = 4


class _Setting(ctypes.Structure):
    _fields_ = [("name", ctypes.c_char_p), ("label", ctypes.c_char_p), ("group", ctypes.c_char_p),
                ("help", ctypes.c_char_p), ("slot", ctypes.c_int32), ("isInteger", ctypes.c_int32),
                ("identity", ctypes.c_float), ("lowest", ctypes.c_float),
                ("highest", ctypes.c_float), ("usual", ctypes.c_float)]


@dataclass
class Setting:
    name: str
    label: str
    group: str
    help: str
    slot: int
    identity: float
    lowest: float
    highest: float
    usual: float

    @property
    def range_text(self):
        return f"{number(self.lowest)} to {number(self.highest)}"


def number(value):
    """As people write it: a whole number without a point, a true minus."""
    return f"{value:g}".replace("-", "−")


class Library:
    def __init__(self, path):
        self._library = ctypes.CDLL(path)
        self._library.keladjustVersion.restype = ctypes.c_char_p
        self._library.keladjustSettings.restype = ctypes.POINTER(_Setting)
        self._library.createCxImage.restype = ctypes.c_void_p
        self._library.releaseCxImage.argtypes = [ctypes.c_void_p]
        self._library.releaseCxImage.restype = None

    @property
    def version(self):
        return self._library.keladjustVersion().decode()

    def settings(self):
        count = ctypes.c_int()
        table = self._library.keladjustSettings(ctypes.byref(count))
        return [Setting(row.name.decode(), row.label.decode(), row.group.decode(),
                        row.help.decode(), row.slot, row.identity, row.lowest, row.highest,
                        row.usual) for row in table[:count.value]]

    def stage(self, function, width, height, bgra, numbers):
        """The bytes of a picture after a stage was called on it with these numbers."""
        pixels = ctypes.create_string_buffer(bytes(bgra), len(bgra))
        address = ctypes.c_void_p(ctypes.addressof(pixels))
        image = self._library.createCxImage(ctypes.byref(address), width, height, 32, BGRA)
        stage = getattr(self._library, function)
        stage.restype = ctypes.c_void_p
        stage.argtypes = [ctypes.c_void_p] + [ctypes.c_float] * len(numbers)
        stage(image, *numbers)
        self._library.releaseCxImage(image)
        return pixels.raw
