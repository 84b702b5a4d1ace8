"""The stages of the library by themselves, by the names that its C interface has for them.

Each works on an array in place, as adjust() does: `stages.hueAdjustment(array, 30)`.
"""

import ctypes
import inspect

from . import _description, _interface
from ._adjust import raise_if_memory_was_short
from ._library import library
from ._names import suggestion
from ._picture import picture_of
from ._values import number

# Stages that work on bytes as they lie, whatever the format says of them: they want the command-line
# program's order, in which they were made.
_AS_IN_PROGRAM = ("distortFilter", "hueAdjustment")

# As whole numbers are everywhere in the record.
_WHOLE = ctypes.c_long


def _make(name, parameters, text):
    stage = getattr(library, name)
    signature = inspect.Signature(
        [inspect.Parameter("array", inspect.Parameter.POSITIONAL_ONLY)]
        + [inspect.Parameter(parameter, inspect.Parameter.POSITIONAL_OR_KEYWORD)
           for parameter, _ in parameters]
        + [inspect.Parameter("order", inspect.Parameter.KEYWORD_ONLY, default="rgb")])

    def apply(*arguments, **named):
        try:
            bound = signature.bind(*arguments, **named)
        except TypeError as error:
            raise TypeError(f"{name}(): {error}") from None
        bound.apply_defaults()
        values = []
        for parameter, kind in parameters:
            value = number(bound.arguments[parameter], parameter)
            if kind is _WHOLE:
                if value != value or not abs(value) <= _description.LARGEST_INTEGER \
                        or value != int(value):
                    raise ValueError(f"{parameter} needs a whole number")
                value = int(value)
            values.append(value)
        with picture_of(bound.arguments["array"], bound.arguments["order"],
                        as_in_program=name in _AS_IN_PROGRAM) as image:
            if image is not None:
                ctypes.set_errno(0)
                stage(image, *values)
                raise_if_memory_was_short()

    apply.__name__ = apply.__qualname__ = name
    apply.__doc__ = text
    apply.__signature__ = signature
    apply.__module__ = __name__
    return apply


_STAGES = {name: _make(name, *entry) for name, entry in _interface.STAGES.items()}
globals().update(_STAGES)
__all__ = ["names", *_STAGES]


def names():
    """The names of all stages."""
    return list(_STAGES)


def __getattr__(name):
    raise AttributeError(f'there is no stage "{name}"' + suggestion(name, names()))
