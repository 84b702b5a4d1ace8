"""Presets: the files of settings that the command-line program reads and writes, too."""

import json

from . import _description

# Some hundred times as much as all settings take.
LARGEST = 1 << 20


class PresetError(ValueError):
    """A preset that cannot be read, or that says what no preset says."""


class _Object(list):
    """The entries of a JSON object in the order of the file, those of one name included."""


def _kind(value):
    for kind, types in (("object", _Object), ("array", list), ("boolean", bool), ("string", str)):
        if isinstance(value, types):
            return kind
    return "null"


def _refuse_constant(text):
    raise ValueError(f"'{text}' is no number in JSON")


def _parse(data, name):
    try:
        text = data.decode("utf-8-sig") if isinstance(data, bytes) else data
        # Numbers of any size are floats, since only their values count.
        return json.loads(text, object_pairs_hook=_Object, parse_int=float,
                          parse_constant=_refuse_constant)
    except (ValueError, RecursionError) as error:
        raise PresetError(f"{name}: not valid JSON: {error}") from None


def values(data, name):
    """What a preset's text sets: name with underscores to number.

    name: stands at the head of messages"""
    if len(data) > LARGEST:
        raise PresetError(f"{name}: is larger than {LARGEST} bytes, which is more than it can need")
    parsed = _parse(data, name)
    if not isinstance(parsed, _Object):
        kind = "number" if isinstance(parsed, float) else _kind(parsed)
        raise PresetError(f'{name}: a preset is one JSON object, such as {{"exposure": 20}}, not {kind}')
    found = {}
    for key, value in parsed:
        setting = _description.find(key, PresetError, f"{name}: ")
        entry = f'{name}: "{setting.name}"'
        if setting.name != key:
            # Files have one spelling, which the program knows.
            raise PresetError(f'{name}: unknown setting "{key}"; did you mean {setting.name}?')
        if not isinstance(value, float):
            raise PresetError(f"{entry} must be a number, not {_kind(value)}")
        try:
            found[setting.key] = _description.checked(setting, value, entry)
        except ValueError as error:
            raise PresetError(str(error)) from None
    return found


def read(path):
    try:
        with open(path, "rb") as file:
            data = file.read(LARGEST + 1)
    except OSError as error:
        raise PresetError(f"{path}: cannot be opened: {error.strerror}; check that you may read it") \
            from error
    return values(data, str(path))


def text(values):
    """The text of a preset that holds these values, in the record's order."""
    entries = [f'\n    "{setting.name}": {_number(values[setting.key])}'
               for setting in _description.SETTINGS if setting.key in values]
    return "{" + ",".join(entries) + "\n}\n" if entries else "{}\n"


def _number(value):
    """Whole numbers without a decimal point, as people write them."""
    return str(int(value)) if value == int(value) and abs(value) < 2**53 else repr(value)
