"""Writes the type stubs: every setting and every stage, as the library and its header have them."""

import ast
import ctypes
import pathlib

from . import header as headers
from . import interface

PREAMBLE = '''"""keladjust: the image adjustments of a photo editor, on arrays, in place."""

import os
from typing import Any, Callable, Iterator, List, Literal, Mapping, NamedTuple, Optional
from typing import Protocol, Tuple, Union

import numpy
import numpy.typing

from . import stages as stages

__version__: str

class Pixels(Protocol):
    """A writable buffer of unsigned bytes: H x W, H x W x 3 or H x W x 4."""

    def __len__(self) -> int: ...
    def __setitem__(self, __key: Any, __value: Any) -> None: ...

Path = Union[str, "os.PathLike[str]"]
Preset = Union[Path, Mapping[str, float]]
Presets = Union[Preset, List[Preset], Tuple[Preset, ...]]

class PresetError(ValueError): ...
class Refused(RuntimeError): ...

{setting}

SETTINGS: Tuple[Setting, ...]
'''

SETTINGS = '''
class Settings(Mapping[str, float]):
    def __init__(
        self,
        *presets: Preset,
{values}
    ) -> None: ...
    @classmethod
    def load(cls, path: Path) -> Settings: ...
    @classmethod
    def loads(cls, text: Union[str, bytes], name: str = ...) -> Settings: ...
    def save(self, path: Path) -> None: ...
    def dumps(self) -> str: ...
    @property
    def named(self) -> Mapping[str, float]: ...
    def update(
        self,
        other: Preset = ...,
        *,
{values}
    ) -> None: ...
    def record(self) -> bytes: ...
    def __getitem__(self, name: str) -> float: ...
    def __setitem__(self, name: str, value: float) -> None: ...
    def __delitem__(self, name: str) -> None: ...
    def __iter__(self) -> Iterator[str]: ...
    def __len__(self) -> int: ...
'''

FUNCTIONS = '''
def adjust(
    __array: Pixels,
    __settings: Optional[Presets] = None,
    *,
    preset: Optional[Presets] = None,
    order: Literal["rgb", "bgr"] = "rgb",
    path: Literal["auto", "cpu", "gpu"] = "cpu",
    threads: int = 0,
    progress: Optional[Callable[[float], object]] = None,
{values}
) -> Literal["cpu", "gpu"]: ...
def lut(
    settings: Optional[Presets] = None, size: int = 33
) -> numpy.typing.NDArray[numpy.float32]: ...
def write_cube(
    path: Path,
    settings: Optional[Presets] = None,
    size: int = 33,
    order: Literal["red-fastest", "blue-fastest"] = "red-fastest",
) -> None: ...
def set_max_threads(count: int) -> None: ...
'''


def described(header, library):
    """What the library says of its settings."""
    names = {}
    exec(interface.text(header), names)  # the text that was made from the header a moment ago
    loaded = ctypes.CDLL(str(library))
    loaded.keladjustSettings.restype = ctypes.c_void_p
    count = ctypes.c_int()
    address = loaded.keladjustSettings(ctypes.byref(count))
    return list((names["KeladjustSetting"] * count.value).from_address(address))


def _setting():
    """The class Setting as the package has it, without what its properties do."""
    path = pathlib.Path(__file__).parent.parent / "keladjust/_description.py"
    setting = next(node for node in ast.parse(path.read_text()).body
                   if isinstance(node, ast.ClassDef) and node.name == "Setting")
    for member in setting.body:
        if isinstance(member, ast.FunctionDef):
            member.body = [ast.Expr(ast.Constant(...))]
    return ast.unparse(setting)


def _values(settings):
    lines = []
    for row in settings:
        kind = "int" if row.isInteger else "float"
        lines.append(f"        {row.name.decode().replace('-', '_')}: {kind} = ...,"
                     f"  # {row.lowest:g}..{row.highest:g}: {row.help.decode()}")
    return "\n".join(lines)


def _stages(header):
    text = '"""The stages of the library by themselves."""\n\n' \
        "from typing import List, Literal\n\nfrom . import Pixels\n\ndef names() -> List[str]: ...\n"
    for stage in headers.stages(header):
        kinds = {"long": "int", "float": "float"}
        settings = "".join(f", {p.name}: {kinds[p.type]}" for p in stage.parameters[1:])
        text += f"def {stage.name}(\n    __array: Pixels{settings},\n" \
                f'    *, order: Literal["rgb", "bgr"] = "rgb",\n) -> None: ...\n'
    return text


def texts(header, library):
    """The stubs by their files' names."""
    values = _values(described(header, library))
    flat = values.replace("        ", "    ")
    package = (PREAMBLE.format(setting=_setting()) + SETTINGS.format(values=values)
               + FUNCTIONS.format(values=flat))
    return {"__init__.pyi": package, "stages.pyi": _stages(header)}
