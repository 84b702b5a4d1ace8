"""What parameters may be; errors name the parameter."""

import math
import numbers

from ._names import suggestion


def number(value, name):
    """A number, as a float."""
    if isinstance(value, bool) or not isinstance(value, numbers.Real):
        raise TypeError(f"{name} must be a number, not {type(value).__name__}")
    try:
        return float(value)
    except OverflowError:
        return math.inf if value > 0 else -math.inf


def whole(value, name, lowest, highest):
    """A whole number of that range."""
    if isinstance(value, bool) or not hasattr(value, "__index__"):
        raise TypeError(f"{name} must be a whole number, not {type(value).__name__}")
    count = value.__index__()
    if not lowest <= count <= highest:
        raise ValueError(f"{name} must be in {lowest}..{highest}, not {count}")
    return count


def chosen(value, choices, name):
    """One of some words."""
    if not isinstance(value, str):
        raise TypeError(f"{name} must be one of {', '.join(choices)}, not {type(value).__name__}")
    if value not in choices:
        raise ValueError(f'{name} must be one of {", ".join(choices)}, not "{value}"'
                         + suggestion(value, choices))
    return value
