"""Settings: values for the fields of the record."""

import os
import struct
from collections.abc import Mapping

from . import _description, _preset
from ._files import write_whole
from ._values import number


def _put(record, setting, value):
    if setting.is_integer:
        struct.pack_into("=i", record, 4 * setting.slot, int(value))
    else:
        struct.pack_into("=f", record, 4 * setting.slot, value)


def _usual():
    record = bytearray(4 * len(_description.SETTINGS))
    for setting in _description.SETTINGS:
        _put(record, setting, setting.usual)
    return bytes(record)


_USUAL = _usual()


class Settings(Mapping):
    """A mapping with every field of the record.

    Fields that nobody named have the value that the library calls usual: with all of them a picture
    stays as it is. `named` has the others, which is what save() writes and what presets stack by.
    Names may be written with underscores or, as in presets, with dashes.

    >>> settings = Settings("evening.json", exposure=20)
    >>> settings["red_hue"] = 15
    >>> settings.save("later.json")
    """

    __slots__ = ("_named",)

    def __init__(self, *presets, **values):
        """presets: paths of presets, or mappings; each replaces what those before say of the same
        fields, and `values` replace all"""
        self._named = {}
        for preset in presets:
            self.update(preset)
        self.update(values)

    @classmethod
    def load(cls, path):
        """The settings of a preset. Raises PresetError."""
        return cls(os.fspath(path))

    @classmethod
    def loads(cls, text, name="preset"):
        """The settings of a preset's text. Raises PresetError; `name` heads its message."""
        settings = cls()
        settings._named.update(_preset.values(text, name))
        return settings

    def save(self, path):
        """Writes the named fields as a preset: whole, or not at all."""
        write_whole(path, [self.dumps().encode()])

    def dumps(self):
        """The text of a preset with the named fields."""
        return _preset.text(self._named)

    @property
    def named(self):
        """The fields that have been set, with their values."""
        return {setting.key: self[setting.key] for setting in _description.SETTINGS
                if setting.key in self._named}

    def update(self, other=(), **values):
        """Takes over what `other`, a preset's path or a mapping, and `values` name."""
        if isinstance(other, (str, os.PathLike)):
            self._named.update(_preset.read(other))
        elif isinstance(other, Settings):
            self._named.update(other._named)
        else:
            for name, value in dict(other).items():
                self[name] = value
        for name, value in values.items():
            self[name] = value

    def record(self):
        """The bytes of the C interface's record."""
        record = bytearray(_USUAL)
        for key, value in self._named.items():
            _put(record, _description.BY_KEY[key], value)
        return bytes(record)

    def __getitem__(self, name):
        setting = _description.find(name, KeyError, "")
        value = self._named.get(setting.key, setting.usual)
        return int(value) if setting.is_integer else value

    def __setitem__(self, name, value):
        setting = _description.find(name, KeyError, "")
        self._named[setting.key] = _description.checked(
            setting, number(value, setting.key), setting.key)

    def __delitem__(self, name):
        """Puts a field back to its usual value."""
        self._named.pop(_description.find(name, KeyError, "").key, None)

    def __iter__(self):
        return iter(_description.BY_KEY)

    def __len__(self):
        return len(_description.BY_KEY)

    def __repr__(self):
        return f"Settings({', '.join(f'{name}={value!r}' for name, value in self.named.items())})"


def settings_of(given, parameter):
    """What a parameter that takes settings in any form means."""
    if given is None:
        return Settings()
    if isinstance(given, (str, os.PathLike, Mapping)):
        return Settings(given)
    if isinstance(given, (list, tuple)) and all(
            isinstance(one, (str, os.PathLike, Mapping)) for one in given):
        return Settings(*given)
    raise TypeError(f"{parameter} must be a path, a mapping or a list of these, "
                    f"not {type(given).__name__}")
