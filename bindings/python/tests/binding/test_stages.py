"""Stages by themselves."""

import ctypes
import inspect

import numpy
import pytest
from binding_support import ROOT

import keladjust
from keladjust import stages

VALUES = {
    "minDegree": 300, "maxDegree": 60, "hue": 30, "saturation": 40, "brightness": 50,
    "temperature": 13000, "size": 40, "feather": 60, "highlights": 50, "roundness": 20,
}


def arguments_of(name):
    """Values for the settings of a stage at which it does something."""
    parameters = list(inspect.signature(getattr(stages, name)).parameters)[1:-1]
    return {parameter: VALUES.get(parameter, 25) for parameter in parameters}


def test_every_stage_of_the_header_is_there():
    header = (ROOT / "include/keladjust/keladjust.h").read_text()
    section = header[header.index("@name Stages on a picture"):header.index("createTemperateColor(")]
    assert stages.names() and all(f" {name}(CxImage* image" in section for name in stages.names())
    assert section.count("(CxImage* image") == len(stages.names())


@pytest.mark.parametrize("name", stages.names())
@pytest.mark.parametrize("shape", [(24, 40, 3), (24, 41, 3), (24, 41, 4), (24, 41)], ids=str)
@pytest.mark.parametrize("order", ["rgb", "bgr"])
def test_a_stage_gives_the_bytes_of_the_library(name, shape, order, noise, c_library):
    values = arguments_of(name)

    def call(library, image):
        kinds = [ctypes.c_long if parameter == "temperature" else ctypes.c_float
                 for parameter in values]
        function = getattr(library, name)
        function.restype = ctypes.c_void_p
        function.argtypes = [ctypes.c_void_p, *kinds]
        assert function(image, *values.values()) == image
    array = noise(*shape)
    before = array.copy()
    expected = c_library.as_in_program(array, order, call)
    assert getattr(stages, name)(array, *values.values(), order=order) is None
    assert numpy.array_equal(array, expected)
    if len(shape) == 3:
        assert not numpy.array_equal(array, before)


def test_settings_of_a_stage_have_names(noise):
    one, other = noise(9, 9, 3), None
    other = one.copy()
    stages.addNoiseFilter(one, 30, 20)
    stages.addNoiseFilter(other, size=20, amount=30)
    assert numpy.array_equal(one, other)


def test_a_stage_and_its_setting_are_the_same(noise):
    one = noise(20, 20, 3)
    other = one.copy()
    stages.exposureAdjustment(one, 20)
    keladjust.adjust(other, exposure=20)
    assert numpy.array_equal(one, other)


@pytest.mark.parametrize("call, error, words", [
    (lambda a: stages.hueAdjustment(a), TypeError, r"hueAdjustment\(\): missing .* 'angle'"),
    (lambda a: stages.hueAdjustment(a, 1, 2), TypeError, r"hueAdjustment\(\): too many"),
    (lambda a: stages.hueAdjustment(a, "1"), TypeError, "angle must be a number, not str"),
    (lambda a: stages.temperatureAdjustment(a, 1.5), ValueError, "temperature needs a whole number"),
    (lambda a: stages.temperatureAdjustment(a, float("nan")), ValueError, "temperature needs a whole"),
    (lambda a: stages.hueAdjustment(a, 1, order="abc"), ValueError, "order must be one of"),
    (lambda a: stages.hueAdjustmnt(a, 1), AttributeError, "did you mean hueAdjustment"),
])
def test_wrong_calls_are_told_what_is_wrong(call, error, words, noise):
    array = noise(4, 4, 3)
    before = array.copy()
    with pytest.raises(error, match=words):
        call(array)
    assert numpy.array_equal(array, before)


def test_help_is_that_of_the_header():
    assert stages.hueAdjustment.__doc__.startswith("Rotates colours about the grey axis")


def test_the_most_threads_change_nothing(noise):
    one = noise(300, 400, 3)
    other = one.copy()
    stages.clarity(one, 40)
    keladjust.set_max_threads(1)
    try:
        stages.clarity(other, 40)
    finally:
        keladjust.set_max_threads(0)
    assert numpy.array_equal(one, other)
