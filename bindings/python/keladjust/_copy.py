"""Copies of pictures whose rows the library cannot take as they are: padded to four bytes.

numpy makes them where it is installed. Arrays come without it, too, as memoryviews; then rows are
copied as they are if their pixels lie side by side, and channel by channel if not."""

import ctypes


def copied_in(layout):
    """A copy of the array's pixels; a fourth channel that it lacks is opaque."""
    fill = b"\xff" if layout.in_quads else b"\0"
    copy = bytearray(fill) * (layout.height * layout.copied_row)
    _move(layout, copy, into_copy=True)
    return copy


def copied_out(copy, layout):
    """Puts a copy's pixels back where they came from."""
    _move(layout, copy, into_copy=False)


def _has_equal_rows(layout):
    return layout.has_side_by_side(1) and layout.copied_pixel == layout.channels and \
        layout.copied_order == layout.order


def _move(layout, copy, into_copy):
    try:
        import numpy
    except ImportError:
        move_without_numpy(layout, copy, into_copy)
        return
    pixels = numpy.asarray(memoryview(layout.array))
    pixels = pixels if pixels.ndim == 3 else pixels[..., None]
    copied = numpy.ndarray((layout.height, layout.width, layout.copied_pixel), numpy.uint8, copy,
                           strides=(layout.copied_row, layout.copied_pixel, 1))
    if _has_equal_rows(layout):
        _assign(copied, pixels, into_copy)
        return
    # Three times as fast as pixel by pixel, which is numpy's own order.
    for channel, place in zip(range(layout.channels), layout.copied_channels):
        _assign(copied[..., place], pixels[..., channel], into_copy)


def _assign(copied, pixels, into_copy):
    target, source = (copied, pixels) if into_copy else (pixels, copied)
    target[:] = source


def move_without_numpy(layout, copy, into_copy):
    start = ctypes.addressof(ctypes.c_char.from_buffer(copy))
    equal_rows = _has_equal_rows(layout)
    for y in range(layout.height):
        there, here = layout.address + y * layout.row, start + y * layout.copied_row
        if equal_rows:
            ctypes.memmove(*((here, there) if into_copy else (there, here)), layout.row_bytes)
            continue
        for channel, place in zip(range(layout.channels), layout.copied_channels):
            _assign(_channel(here + place, layout.width, layout.copied_pixel),
                    _channel(there + channel * layout.channel, layout.width, layout.pixel), into_copy)


def _channel(first, count, step):
    """The bytes of one channel of a row."""
    span = (count - 1) * abs(step) + 1
    lowest = first if step > 0 else first - (span - 1)
    return memoryview((ctypes.c_ubyte * span).from_address(lowest)).cast("B")[::step]
