"""Writes keladjust/_interface.py: the library's C interface as ctypes sees it."""

from . import header as headers

STRUCTURES = ("KeladjustSetting", "KeladjustRun")

# What Python has no use for: it has colour tables as a whole, and stages rather than their parts.
LEFT_OUT = ("Stages on a colour table", "Building blocks of the spatial stages")


def _takes_record(function):
    """Whether it takes a record of one size only: each of these has a younger sister."""
    return any(parameter.type == "_AdjustParam" for parameter in function.parameters)


def text(header):
    functions = [function for function in headers.functions(header)
                 if function.heading not in LEFT_OUT and not _takes_record(function)]
    stages = {function.name for function in headers.stages(header)}
    lines = ['"""The library\'s C interface. Made from keladjust.h."""', "",
             "from ctypes import *  # noqa: F403 - what the types below are called", ""]
    lines += [f"VERSION = {headers.version(header)!r}", ""]
    lines += [f"{name} = {value}" for name, value in headers.enumerations(header).items()]
    for name in STRUCTURES:
        lines += ["", "", f"class {name}(Structure):", "    _fields_ = ["]
        lines += [f"        ({member!r}, {kind})," for kind, member in
                  headers.structure(header, name).members]
        lines += ["    ]"]
    lines += ["", "", "# Name to the type of the result and those of the parameters.",
              "FUNCTIONS = {"]
    for function in functions:
        types = "".join(f"{headers.ctype(p.type)}, " for p in function.parameters)
        lines += [f"    {function.name!r}: ({headers.ctype(function.result)}, ({types})),"]
    lines += ["}", "", "# Stages on a picture: name to the settings that they take, and what they do.",
              "STAGES = {"]
    for function in functions:
        if function.name in stages:
            settings = "".join(f"({p.name!r}, {headers.ctype(p.type)}), "
                               for p in function.parameters[1:])
            lines += [f"    {function.name!r}: (({settings}), {function.text!r}),"]
    return "\n".join(lines + ["}", ""])
