"""Reads the library's public header, from which the binding takes every name, type and text."""

import re
from dataclasses import dataclass

SCALARS = {
    "void": "None",
    "bool": "c_bool",
    "int": "c_int",
    "int32_t": "c_int32",
    "uint32_t": "c_uint32",
    "unsigned int": "c_uint",
    "long": "c_long",
    "unsigned long": "c_ulong",
    "size_t": "c_size_t",
    "float": "c_float",
    "const char*": "c_char_p",
}


@dataclass
class Parameter:
    type: str
    name: str


@dataclass
class Function:
    name: str
    result: str
    parameters: list
    text: str  # of the comment before it
    heading: str  # of the group that it stands in


@dataclass
class Structure:
    name: str
    members: list  # of (ctypes type, name)


def ctype(declared):
    """The ctypes name of a C type. Pointers to what is no text are plain addresses."""
    declared = re.sub(r"\s*\*", "*", declared.strip())
    if declared in SCALARS:
        return SCALARS[declared]
    if declared.endswith("*"):
        return "c_void_p"
    if declared == "_ImagePixelFormat" or declared == "KeladjustResult":
        return "c_int32"  # an enumeration
    raise SystemExit(f"keladjust.h has a type that Python has no name for: {declared}")


def plain(comment):
    """The text of a comment without its stars and Doxygen's commands."""
    lines = [re.sub(r"^\s*\*? ?", "", line) for line in comment.strip().splitlines()]
    text = "\n".join(lines).strip()
    text = re.sub(r"@param\s+(\w+)\s+", r"\1: ", text)
    text = re.sub(r"@return\s+", "Returns: ", text)
    text = re.sub(r"@(name|file)\s+", "", text)
    return re.sub(r"\n{3,}", "\n\n", text)


def parameters_of(text):
    if text.strip() in ("", "void"):
        return []
    parameters = []
    for part in text.split(","):
        declared, name = re.match(r"\s*(.*?[\s*])(\w+)\s*$", part, re.S).groups()
        parameters.append(Parameter(" ".join(declared.split()), name))
    return parameters


def functions(header):
    """Every function that the library exports, in the header's order."""
    found = []
    heading = ""
    comment = ""
    token = re.compile(r"/\*\*(?P<comment>.*?)\*/|KELADJUST_API\s+(?P<result>[^()#;{}]*?)(?P<name>\w+)"
                       r"\((?P<parameters>[^()]*)\);", re.S)
    for match in token.finditer(header):
        if match["comment"] is not None:
            comment = match["comment"]
            if "@name" in comment:
                heading = re.search(r"@name\s+(.*)", comment)[1].strip()
            continue
        found.append(Function(match["name"], " ".join(match["result"].split()),
                              parameters_of(match["parameters"]), plain(comment), heading))
        comment = ""
    return found


def stages(header):
    """The functions that adjust a picture by one stage."""
    return [function for function in functions(header) if function.heading == "Stages on a picture"
            and function.parameters[0].name == "image"]


def enumerations(header):
    """The constants of every enumeration: name to value."""
    constants = {}
    for body in re.findall(r"enum\s*\w*\s*\{(.*?)\}", header, re.S):
        value = -1
        body = re.sub(r"/\*.*?\*/", "", body, flags=re.S)
        for entry in filter(str.strip, body.split(",")):
            name, _, given = (part.strip() for part in entry.partition("="))
            value = int(given) if given else value + 1
            constants[name] = value
    return constants


def structure(header, name):
    """The members of a structure, in their order."""
    body = re.search(r"typedef struct %s \{(.*?)\n\} %s;" % (name, name), header, re.S)[1]
    body = re.sub(r"/\*.*?\*/", "", body, flags=re.S)
    members = []
    for line in filter(None, (" ".join(part.split()) for part in body.split(";"))):
        function = re.fullmatch(r"(.+) \(\*(\w+)\)\((.*)\)", line)
        if function:
            types = [ctype(function[1])] + [ctype(p.type) for p in parameters_of(function[3])]
            members.append((f"CFUNCTYPE({', '.join(types)})", function[2]))
            continue
        declared, member, count = re.fullmatch(r"(.*?[\s*])(\w+)(?:\[(\d+)\])?", line).groups()
        kind = f"c_char * {count}" if declared.strip() == "char" else ctype(declared)
        members.append((kind, member))
    return Structure(name, members)


def version(header):
    return ".".join(re.search(rf"#define KELADJUST_VERSION_{part}\s+(\d+)", header)[1]
                    for part in ("MAJOR", "MINOR", "PATCH"))
