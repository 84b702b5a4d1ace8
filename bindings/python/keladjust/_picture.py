"""Arrays as pictures of the library's."""

import ctypes
from contextlib import contextmanager

from . import _buffer, _interface
from ._copy import copied_in, copied_out
from ._library import library
from ._values import chosen

ORDERS = ("rgb", "bgr")

# The library counts a picture's bytes, and the bits of a row, in 32 bits.
LARGEST_SIZE = 2**32 - 1
LARGEST_WIDTH = (LARGEST_SIZE - 31) // 32

FORMATS = {
    (1, "rgb"): _interface.IMAGE_FORMAT_GRAY,
    (1, "bgr"): _interface.IMAGE_FORMAT_GRAY,
    (3, "rgb"): _interface.IMAGE_FORMAT_RGB,
    (3, "bgr"): _interface.IMAGE_FORMAT_BGR,
    (4, "rgb"): _interface.IMAGE_FORMAT_RGBA,
    (4, "bgr"): _interface.IMAGE_FORMAT_BGRA,
}


class Layout:
    """Where the pixels of an array lie: sizes, and the bytes from one row, pixel and channel to the
    next."""

    def __init__(self, buffer, order, as_in_program):
        if not buffer.is_bytes:
            raise TypeError(f"array must hold unsigned bytes, not items of format '{buffer.format}'")
        shape, strides = buffer.shape, buffer.strides
        if len(shape) == 2:
            shape, strides = shape + (1,), strides + (1,)
        if len(shape) != 3 or shape[2] not in (1, 3, 4):
            raise ValueError("array must have the shape H x W, H x W x 3 or H x W x 4, "
                             f"not {' x '.join(map(str, buffer.shape))}")
        self.array = buffer.array
        self.address = buffer.address
        self.height, self.width, self.channels = shape
        self.row, self.pixel, self.channel = strides
        self.row_bytes = self.width * self.channels
        self.order = order
        self.as_in_program = as_in_program and self.channels > 1
        self.in_quads = self.channels == 3 and (self.as_in_program or self.row_bytes % 4 != 0)

    def check(self):
        if self.width > LARGEST_WIDTH or self.copied_row * self.height > LARGEST_SIZE:
            raise ValueError(f"array is too large: {self.height} x {self.width} pixels, "
                             "which must fit in 4 GiB")
        if (self.height > 1 and self.row == 0) or (self.width > 1 and self.pixel == 0):
            raise ValueError("array has pixels that are one and the same in memory; "
                             "hand over a copy")

    @property
    def copied_pixel(self):
        """Bytes of a pixel in a copy.

        Where rows of three bytes a pixel would have to be padded, three channels become four, since
        stages that work along the raw buffer change padding like pixels. The command-line program
        has every colour picture in four, and its results are the measure."""
        return 4 if self.in_quads else self.channels

    @property
    def copied_row(self):
        """Bytes of a row in a copy, padded to a multiple of four."""
        return (self.width * self.copied_pixel + 3) // 4 * 4

    @property
    def copied_order(self):
        return "bgr" if self.as_in_program else self.order

    @property
    def copied_channels(self):
        """Where in a copy's pixel each channel goes."""
        return (0, 1, 2, 3) if self.copied_order == self.order else (2, 1, 0, 3)

    @property
    def is_turned(self):
        """Whether it is a view such as bgr[..., ::-1], which has the other order in memory."""
        return self.channels == 3 and self.channel == -1

    def has_side_by_side(self, step):
        """Whether the pixels of a row lie side by side, and their channels `step` bytes apart."""
        return (self.channels == 1 or self.channel == step) and \
            (self.width == 1 or self.pixel == self.channels)

    def is_packed(self):
        """Whether rows are as the library has them."""
        return self.has_side_by_side(-1 if self.is_turned else 1) and self.row_bytes % 4 == 0 and \
            (self.height == 1 or self.row == self.row_bytes)

    def can_stay(self):
        """Whether the library can work on the array's own bytes."""
        return self.is_packed() and not self.in_quads and self.copied_order == self.order


@contextmanager
def _image(address, layout, pixel_bytes, order):
    bits = ctypes.c_void_p(address)  # which the library finds through this place
    image = library.createCxImage(ctypes.addressof(bits), layout.width, layout.height,
                                  8 * pixel_bytes, FORMATS[pixel_bytes, order])
    if not image:
        raise MemoryError
    try:
        yield image
    finally:
        library.releaseCxImage(image)


@contextmanager
def picture_of(array, order, as_in_program=False):
    """The library's picture of an array: of its own bytes wherever that can be, else of a copy that
    goes back at the end, after exceptions, too. None for an array without pixels.

    as_in_program: whether colours have to lie as the command-line program has them, blue, green, red
    and alpha; only what moves the bytes of a row rather than its pixels makes a difference"""
    chosen(order, ORDERS, "order")
    with _buffer.opened(array) as buffer:
        layout = Layout(buffer, order, as_in_program)
        if 0 in (layout.width, layout.height):
            yield None
            return
        layout.check()
        if layout.can_stay():
            first = layout.address
            if layout.is_turned:
                first, order = first - 2, ORDERS[1 - ORDERS.index(order)]
            with _image(first, layout, layout.channels, order) as image:
                yield image
            return
        copy = copied_in(layout)
        try:
            address = ctypes.addressof(ctypes.c_char.from_buffer(copy))
            with _image(address, layout, layout.copied_pixel, layout.copied_order) as image:
                yield image
        finally:
            copied_out(copy, layout)
