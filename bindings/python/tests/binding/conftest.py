"""What the tests of the binding are given."""

import subprocess

import numpy
import pytest
from binding_support import CLibrary, named

import keladjust


@pytest.fixture(scope="session")
def program():
    """Runs the command-line program; its result."""
    path = named("KELADJUST_PROGRAM")

    def run(*arguments):
        return subprocess.run([path, *map(str, arguments)], stdout=subprocess.PIPE,
                              stderr=subprocess.PIPE, text=True, errors="replace",
                              check=False)
    return run


@pytest.fixture(scope="session")
def c_library():
    return CLibrary(named("KELADJUST_LIBRARY"))


@pytest.fixture
def noise():
    """Pictures of random bytes: every one another, the same in every run."""
    generator = numpy.random.default_rng(20)

    def make(*shape):
        return generator.integers(0, 256, shape, dtype=numpy.uint8)
    return make


@pytest.fixture(scope="session")
def lively():
    """Settings of every kind: a table, colours, a colour range, the vignette, neighbours."""
    return keladjust.Settings({"exposure": 12, "contrast": 20, "vibrance": 30, "blue-hue": 25,
                               "vignette-amount": -40, "clarity": 25, "sharpen": 60, "dehaze": 15})
