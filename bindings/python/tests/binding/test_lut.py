"""Colour tables."""

import numpy
import pytest

import keladjust

SETTINGS = {"exposure": 20, "contrast": 15, "red-hue": 40, "vibrance": 30}


def test_a_table_of_nothing_is_every_colour_itself():
    table = keladjust.lut(size=17)
    levels = numpy.arange(17) / 16
    assert table.shape == (17, 17, 17, 3) and table.dtype == numpy.float32
    expected = numpy.stack(numpy.meshgrid(levels, levels, levels, indexing="ij"), axis=-1)
    # Levels are kept in single precision.
    assert numpy.abs(table - expected).max() < 1e-6


def test_a_table_holds_the_pipeline():
    # A picture loses less than a level in each of the two stages, a table nothing; what the first one
    # loses contrast then enlarges, by less than a half.
    settings = {"exposure": 20, "contrast": 15}
    table = keladjust.lut(settings, size=16)
    colours = (numpy.indices((16, 16, 16)).reshape(3, -1).T * 17).astype(numpy.uint8)
    picture = colours.reshape(64, 64, 3).copy()
    keladjust.adjust(picture, settings)
    assert numpy.abs(picture.reshape(-1, 3) / 255 - table.reshape(-1, 3)).max() < 2.5 / 255


@pytest.mark.parametrize("order", ["red-fastest", "blue-fastest"])
@pytest.mark.parametrize("size", [2, 32, 33])
def test_a_cube_file_is_that_of_the_program(order, size, program, tmp_path):
    options = [f"--{name}={value}" for name, value in SETTINGS.items()]
    result = program("lut", *options, "--size", size, "--order", order, "-o", tmp_path / "theirs.cube")
    assert result.returncode == 0, result.stderr
    keladjust.write_cube(tmp_path / "ours.cube", SETTINGS, size, order)
    assert (tmp_path / "ours.cube").read_bytes() == (tmp_path / "theirs.cube").read_bytes()


@pytest.mark.parametrize("size, error", [(1, ValueError), (257, ValueError), (2.0, TypeError),
                                         ("9", TypeError)])
def test_sizes_that_are_none_are_refused(size, error, tmp_path):
    for call in (lambda: keladjust.lut(size=size),
                 lambda: keladjust.write_cube(tmp_path / "a.cube", size=size)):
        with pytest.raises(error, match="size must be"):
            call()
    assert not list(tmp_path.iterdir())


def test_an_order_that_is_none_is_refused(tmp_path):
    with pytest.raises(ValueError, match="order must be one of red-fastest, blue-fastest"):
        keladjust.write_cube(tmp_path / "a.cube", order="green-fastest")
