"""Arrays of any layout: views, other libraries' buffers, and what is refused."""

import array as arrays
import mmap
import subprocess
import sys

import numpy
import pytest
from PIL import Image

import keladjust
from keladjust import _copy, _picture

VIEWS = {
    "rows upside down": lambda a: a[::-1],
    "every second row": lambda a: a[::2],
    "pixels from right to left": lambda a: a[:, ::-1],
    "every third pixel": lambda a: a[:, ::3],
    "a window": lambda a: a[5:30, 7:44],
    "a window of a width that is none of four bytes": lambda a: a[5:30, 7:44][:, :-1],
    "everything turned": lambda a: a[::-2, ::-3],
    "on its side": lambda a: a.swapaxes(0, 1),
    "one row": lambda a: a[3:4],
    "one column": lambda a: a[:, 3:4],
    "one pixel": lambda a: a[3:4, 3:4],
}


@pytest.mark.parametrize("channels", [(), (3,), (4,)], ids=["grey", "three", "four"])
@pytest.mark.parametrize("view", VIEWS)
def test_a_view_is_adjusted_and_what_is_around_it_stays(view, channels, noise, lively, c_library):
    whole = noise(48, 60, *channels)
    before = whole.copy()
    expected = before.copy()
    VIEWS[view](expected)[...] = c_library.adjusted(
        numpy.ascontiguousarray(VIEWS[view](before)), lively.record())
    keladjust.adjust(VIEWS[view](whole), lively)
    assert numpy.array_equal(whole, expected)


@pytest.mark.parametrize("width", [40, 41])
def test_channels_in_the_other_order_are_the_other_order(width, noise, lively):
    bgr = noise(30, width, 3)
    rgb = bgr[..., ::-1].copy()
    keladjust.adjust(bgr[..., ::-1], lively)
    keladjust.adjust(rgb, lively)
    assert numpy.array_equal(bgr[..., ::-1], rgb)


def test_planes_are_put_together_and_taken_apart(noise, lively):
    planes = noise(3, 30, 41)
    pixels = planes.transpose(1, 2, 0).copy()
    keladjust.adjust(planes.transpose(1, 2, 0), lively)
    keladjust.adjust(pixels, lively)
    assert numpy.array_equal(planes.transpose(1, 2, 0), pixels)


def test_a_picture_in_its_own_memory_is_not_copied(noise, monkeypatch):
    def copied(_layout):
        raise AssertionError("there was a copy")
    monkeypatch.setattr(_picture, "copied_in", copied)
    for array in (noise(9, 40, 3), noise(9, 41, 4), noise(9, 40), noise(9, 40, 3)[..., ::-1],
                  noise(9, 40, 3)[2:5], noise(1, 60, 3)[:, :40]):
        keladjust.adjust(array, exposure=20)
    with pytest.raises(AssertionError, match="there was a copy"):
        keladjust.adjust(noise(9, 40, 3)[::-1], exposure=20)


@pytest.mark.parametrize("view", VIEWS)
@pytest.mark.parametrize("channels", [1, 3, 4])
def test_copies_without_numpy_are_those_with_it(view, channels, noise, monkeypatch, lively):
    whole = noise(48, 60, channels)
    other = whole.copy()
    keladjust.adjust(VIEWS[view](whole), lively)
    monkeypatch.setattr(_copy, "_move", _copy.move_without_numpy)
    keladjust.adjust(VIEWS[view](other), lively)
    assert numpy.array_equal(whole, other)


def test_buffers_of_other_kinds(noise):
    expected = noise(20, 40, 3)
    data = expected.tobytes()
    keladjust.adjust(expected, exposure=30)
    shared = mmap.mmap(-1, len(data))
    shared[:] = data
    for buffer in (bytearray(data), arrays.array("B", data), shared):
        view = memoryview(buffer).cast("B", (20, 40, 3))
        keladjust.adjust(view, exposure=30)
        assert bytes(view) == expected.tobytes()
        view.release()


def test_pictures_of_pillow_through_numpy(noise, lively):
    pixels = noise(21, 33, 3)
    array = numpy.array(Image.fromarray(pixels))
    keladjust.adjust(array, lively)
    keladjust.adjust(pixels, lively)
    assert numpy.array_equal(numpy.asarray(Image.fromarray(array)), pixels)


def test_a_bytearray_cannot_shrink_while_it_is_adjusted(noise):
    data = bytearray(noise(200, 200, 4).tobytes())
    refused = []

    def shrink(_share):
        with pytest.raises(BufferError):
            data.clear()
        refused.append(True)
    keladjust.adjust(memoryview(data).cast("B", (200, 200, 4)), exposure=20, progress=shrink)
    assert refused


@pytest.mark.parametrize("shape", [(0, 5, 3), (5, 0, 3), (0, 0)])
def test_an_empty_array_is_no_fault(shape):
    assert keladjust.adjust(numpy.zeros(shape, numpy.uint8), exposure=20) == "cpu"


REFUSED = {
    "a list": (lambda: [[1, 2, 3]], TypeError, "array must be a buffer of bytes.* not list"),
    "none": (lambda: None, TypeError, "array must be a buffer.* not NoneType"),
    "floats": (lambda: numpy.zeros((4, 4, 3)), TypeError, "array must hold unsigned bytes.* 'd'"),
    "signed bytes": (lambda: numpy.zeros((4, 4, 3), numpy.int8), TypeError, "array must hold"),
    "words": (lambda: numpy.zeros((4, 4), numpy.uint16), TypeError, "array must hold"),
    "truths": (lambda: numpy.zeros((4, 4), bool), TypeError, "array must hold"),
    "two channels": (lambda: numpy.zeros((4, 4, 2), numpy.uint8), ValueError,
                     "array must have the shape .* not 4 x 4 x 2"),
    "five channels": (lambda: numpy.zeros((4, 4, 5), numpy.uint8), ValueError, "array must have"),
    "one dimension": (lambda: bytearray(12), ValueError, "array must have the shape .* not 12"),
    "no dimension": (lambda: numpy.zeros((), numpy.uint8), ValueError, "array must have the shape"),
    "many pictures": (lambda: numpy.zeros((2, 4, 4, 3), numpy.uint8), ValueError, "array must have"),
    "bytes": (lambda: memoryview(bytes(48)).cast("B", (4, 4, 3)), ValueError, "array is read-only"),
    "pixels of one memory": (lambda: numpy.lib.stride_tricks.as_strided(
        numpy.zeros(12, numpy.uint8), (4, 4, 3), (0, 3, 1)), ValueError, "one and the same in memory"),
    "more than 4 GiB": (lambda: numpy.lib.stride_tricks.as_strided(
        numpy.zeros(12, numpy.uint8), (40000, 30000, 4), (120000, 4, 1)), ValueError, "too large"),
}


@pytest.mark.parametrize("kind", REFUSED)
def test_what_is_no_picture_is_refused_by_name(kind):
    make, error, words = REFUSED[kind]
    with pytest.raises(error, match=words):
        keladjust.adjust(make(), exposure=20)


def test_a_read_only_array_stays(noise):
    array = noise(5, 8, 3)
    before = array.copy()
    array.setflags(write=False)
    with pytest.raises(ValueError, match="array is read-only"):
        keladjust.adjust(array, exposure=20)
    assert numpy.array_equal(array, before)


def test_numpy_is_not_needed(noise, tmp_path):
    """In an interpreter that refuses to import it: the same bytes, with copies and without."""
    pictures = {width: noise(17, width, 3) for width in (40, 41)}
    for width, picture in pictures.items():
        (tmp_path / f"{width}.raw").write_bytes(picture.tobytes())
        keladjust.adjust(picture, exposure=20, clarity=30)
    code = f"""if True:
        import sys
        sys.modules["numpy"] = None
        import keladjust
        for width in (40, 41):
            path = {str(tmp_path)!r} + "/%d.raw" % width
            data = bytearray(open(path, "rb").read())
            keladjust.adjust(memoryview(data).cast("B", (17, width, 3)), exposure=20, clarity=30)
            open(path, "wb").write(data)
        table = keladjust.lut(size=2)
        print(type(table).__name__, table[1, 0, 1, 0], table[1, 0, 1, 1])"""
    said = subprocess.run([sys.executable, "-c", code], check=True, stdout=subprocess.PIPE, text=True)
    assert said.stdout == "memoryview 1.0 0.0\n"
    for width, picture in pictures.items():
        assert (tmp_path / f"{width}.raw").read_bytes() == picture.tobytes()
