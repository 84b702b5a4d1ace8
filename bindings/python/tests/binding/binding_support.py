"""What the tests of the binding share, which run on the installed wheel.

KELADJUST_PROGRAM names the command-line program and KELADJUST_LIBRARY the library of the same
sources, against which results are held."""

import ctypes
import os
import pathlib

import numpy

ROOT = pathlib.Path(__file__).resolve().parents[4]
PHOTOGRAPHS = pathlib.Path("/usr/share/backgrounds/mate/nature")


def named(variable):
    path = pathlib.Path(os.environ[variable])
    assert path.exists(), f"{variable} names {path}, which is not there"
    return path


class CLibrary:
    """The library through its C interface, four bytes a pixel or one, as the program calls it."""

    def __init__(self, path):
        self._library = ctypes.CDLL(str(path))
        self._library.createCxImage.restype = ctypes.c_void_p
        self._library.createCxImage.argtypes = [ctypes.c_void_p, *[ctypes.c_uint] * 4]
        self._library.releaseCxImage.argtypes = [ctypes.c_void_p]
        self._library.keladjustRun.argtypes = [ctypes.c_void_p, ctypes.c_char_p, ctypes.c_size_t,
                                               ctypes.c_void_p]

    def on_image(self, pixels, order, call):
        """`pixels`, H x W x 4 or H x W, after a call that is given the C image."""
        height, width = pixels.shape[:2]
        depth = 1 if pixels.ndim == 2 else 4
        padded = numpy.zeros((height, (width * depth + 3) // 4 * 4), numpy.uint8)
        padded[:, :width * depth] = pixels.reshape(height, width * depth)
        bits = ctypes.c_void_p(padded.ctypes.data)
        image = self._library.createCxImage(ctypes.byref(bits), width, height, 8 * depth,
                                            {"grey": 0, "rgb": 3, "bgr": 4}[order])
        call(self._library, image)
        self._library.releaseCxImage(image)
        return padded[:, :width * depth].reshape(pixels.shape).copy()

    def adjusted(self, array, record, order="rgb"):
        """What an array of any number of channels becomes."""
        def call(library, image):
            assert library.keladjustRun(image, record, len(record), None) == 0
        return self.as_in_program(array, order, call)

    def as_in_program(self, array, order, call):
        """After a call on blue, green, red and alpha, which is opaque where there is none."""
        if array.ndim == 2:
            return self.on_image(array, "grey", call)
        places = [2, 1, 0, 3] if order == "rgb" else [0, 1, 2, 3]
        quads = numpy.full((*array.shape[:2], 4), 255, numpy.uint8)
        quads[..., places[:array.shape[2]]] = array
        return self.on_image(quads, "bgr", call)[..., places[:array.shape[2]]].copy()


def values_of(setting):
    """Values for one setting at which it does something by itself."""
    value = setting.usual + (setting.highest - setting.usual) / 3
    if value == setting.usual:
        value = setting.usual + (setting.lowest - setting.usual) / 3
    values = {setting.key: round(value)}
    family = setting.key.rpartition("_")[0]
    if setting.key.startswith("vignette") and setting.key != "vignette_amount":
        values["vignette_amount"] = -50
    if setting.key.endswith("_degree"):
        values[family.rpartition("_")[0] + "_saturation"] = 40
    return values
