"""Every setting, as the library describes it."""

import ctypes
import math
import struct
from typing import NamedTuple

from ._interface import KeladjustSetting
from ._library import library
from ._names import suggestion


class Setting(NamedTuple):
    """One slot of the record, as the C interface's structure has it, field by field. `name` is what
    presets and the command line call it; in Python it is written with underscores."""

    name: str
    label: str
    group: str
    help: str
    slot: int
    is_integer: bool
    identity: float
    lowest: float
    highest: float
    usual: float

    @property
    def key(self) -> str:
        return self.name.replace("-", "_")

    @property
    def range(self) -> str:
        """What messages and help say of its values."""
        lowest, highest, identity = (f"{value:g}" for value in
                                     (self.lowest, self.highest, self.identity))
        return f"{lowest}..{highest}, identity {identity}"


def _read():
    count = ctypes.c_int()
    address = library.keladjustSettings(ctypes.addressof(count))
    rows = (KeladjustSetting * count.value).from_address(address)
    fields = [(name, bytes.decode if kind is str else kind) for (name, _), kind in
              zip(KeladjustSetting._fields_, Setting.__annotations__.values())]
    return tuple(Setting(*(python(getattr(row, name)) for name, python in fields)) for row in rows)


SETTINGS = _read()
BY_KEY = {setting.key: setting for setting in SETTINGS}

LARGEST_FLOAT = struct.unpack("<f", b"\xff\xff\x7f\x7f")[0]
LARGEST_INTEGER = 2**31 - 1


def find(name, error, what):
    """The setting of that name, with dashes or underscores. The error begins with `what`."""
    if not isinstance(name, str):
        raise TypeError(f"names of settings are strings, not {type(name).__name__}")
    found = BY_KEY.get(name.replace("-", "_"))
    if found is None:
        raise error(f'{what}unknown setting "{name}"'
                    + suggestion(name.replace("_", "-"), [setting.name for setting in SETTINGS]))
    return found


def checked(setting, value, what):
    """`value` if the record can hold it; else a ValueError that begins with `what`."""
    useful = f"; useful values are {setting.range}"
    if not math.isfinite(value):
        raise ValueError(f"{what} needs a finite number{useful}")
    if setting.is_integer and value != int(value):
        raise ValueError(f"{what} needs a whole number{useful}")
    if abs(value) > (LARGEST_INTEGER if setting.is_integer else LARGEST_FLOAT):
        raise ValueError(f"{what} is out of all bounds{useful}")
    return value
