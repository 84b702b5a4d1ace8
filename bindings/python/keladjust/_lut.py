"""Colour tables."""

import array
import ctypes
import math

from ._files import write_whole
from ._library import library
from ._settings import settings_of
from ._values import chosen, whole

CUBE_ORDERS = ("red-fastest", "blue-fastest")


def _bake(settings, size, red_fastest):
    edge = whole(size, "size", 2, 256)
    record = settings_of(settings, "settings").record()
    points = (ctypes.c_float * (3 * edge**3))()
    if not library.keladjustBake(record, len(record), edge, red_fastest, ctypes.addressof(points)):
        raise MemoryError  # nothing else can be wrong
    return points, edge


def lut(settings=None, size=33):
    """What becomes of every colour, as an array of size x size x size x 3 floats in 0..1: the colour
    that comes out of red i / (size - 1), green j / (size - 1), blue k / (size - 1) is lut[i, j, k].

    settings: as in adjust()
    size: 2..256

    Clarity, sharpening, the vignette and all after it have no part in a colour table. The array is
    numpy's, or a memoryview of that shape where there is no numpy."""
    points, edge = _bake(settings, size, False)
    table = memoryview(points).cast("B").cast("f", (edge, edge, edge, 3))
    try:
        import numpy
    except ImportError:
        return table
    return numpy.asarray(table)


def write_cube(path, settings=None, size=33, order="red-fastest"):
    """Writes a colour table as a cube file, to the byte as the command-line program does.

    settings: as in adjust()
    size: 2..256 colours along each axis
    order: "red-fastest", which most programs read, or "blue-fastest", the library's own"""
    red_fastest = chosen(order, CUBE_ORDERS, "order") == "red-fastest"
    points, edge = _bake(settings, size, red_fastest)
    write_whole(path, _cube_text(array.array("f", points), edge, red_fastest))


def _cube_text(points, edge, red_fastest):
    domain = "DOMAIN_MIN 0.0 0.0 0.0\nDOMAIN_MAX 1.0 1.0 1.0\n"
    if red_fastest:
        yield f"LUT_3D_SIZE {edge}\n{domain}".encode()
    else:
        yield f"#LUT size\nLUT_3D_SIZE {edge}\n\n#data domain\n{domain}\n#LUT data points\n".encode()
        # The library's own files hold what is left of a value that was kept on a scale of 255. Both
        # steps in double and rounded to float are the steps in float.
        points = array.array("f", (value * 255.0 for value in points))
        points = array.array("f", (value / 255.0 for value in points))
    for start in range(0, len(points), 3 * edge):
        row = points[start:start + 3 * edge]
        if any(map(math.isnan, row)):
            row = [abs(value) for value in row]  # never with a sign
        yield ("%.8f %.8f %.8f\n" * edge % tuple(row)).encode()
