"""The wheel itself: what is in it, what it says of itself, and its type stubs."""

import inspect
import os
import pathlib
import re
import subprocess
import sys
import zipfile

import pytest
from binding_support import ROOT

import keladjust
from keladjust import stages

FOLDER = pathlib.Path(keladjust.__file__).parent


def wheel():
    return pathlib.Path(os.environ["KELADJUST_WHEEL"])


def test_the_wheel_is_one_for_every_python_and_says_what_it_needs():
    library = FOLDER / "libkeladjust.so"
    listed = subprocess.run(["objdump", "-p", library], check=True, stdout=subprocess.PIPE,
                            text=True).stdout
    needed = set(re.findall(r"NEEDED\s+(\S+)", listed))
    assert needed <= {"libc.so.6", "libm.so.6", "libstdc++.so.6", "libgcc_s.so.1",
                      "ld-linux-x86-64.so.2"}
    newest = max(int(minor) for minor in re.findall(r"GLIBC_2\.(\d+)", listed))
    name = re.fullmatch(r"keladjust-(\S+?)-py3-none-manylinux_2_(\d+)_x86_64\.whl", wheel().name)
    assert name[1] == keladjust.__version__ and int(name[2]) >= newest


def test_the_wheel_holds_the_package_the_library_and_the_licence():
    with zipfile.ZipFile(wheel()) as archive:
        names = archive.namelist()
    assert {"keladjust/libkeladjust.so", "keladjust/py.typed", "keladjust/__init__.pyi",
            "keladjust/stages.pyi", "keladjust/farm/__main__.py"} <= set(names)
    assert not [name for name in names if "engine" in name or "Ogre" in name]
    assert any(re.fullmatch(r"[^/]*\.dist-info/LICENSE", name) for name in names)


def test_the_version_is_that_of_the_header():
    header = (ROOT / "include/keladjust/keladjust.h").read_text()
    parts = [re.search(rf"#define KELADJUST_VERSION_{part} (\d+)", header)[1]
             for part in ("MAJOR", "MINOR", "PATCH")]
    assert keladjust.__version__ == ".".join(parts)


def mypy(path):
    return subprocess.run(["mypy", "--strict", "--python-executable", sys.executable, path],
                          stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, check=False)


def test_the_stubs_know_every_setting_and_every_stage(tmp_path):
    lines = ["import keladjust", "from keladjust import stages", "import numpy",
             "array = numpy.zeros((4, 4, 3), numpy.uint8)",
             "taken: str = keladjust.adjust(array, preset=['a.json', {'tint': 1}], order='bgr',",
             "    progress=print, " + ", ".join(f"{s.key}={int(s.usual)}" for s in keladjust.SETTINGS) + ")",
             "keladjust.Settings('a.json', exposure=2.5).save('b.json')",
             "value: float = keladjust.Settings()['exposure'] + float(keladjust.lut().sum())",
             "keladjust.adjust(memoryview(bytearray(48)).cast('B', (4, 4, 3)), exposure=1)"]
    for name in stages.names():
        settings = list(inspect.signature(getattr(stages, name)).parameters)[1:-1]
        lines.append(f"stages.{name}(array, {', '.join(f'{s}=1' for s in settings)}, order='rgb')")
    good = tmp_path / "good.py"
    good.write_text("\n".join(lines) + "\n")
    result = mypy(good)
    assert result.returncode == 0, result.stdout


@pytest.mark.parametrize("line", [
    "keladjust.adjust(array, exposre=1)", "keladjust.adjust(array, exposure='1')",
    "keladjust.adjust(array, order='grb')", "keladjust.adjust('text', exposure=1)",
    "keladjust.adjust(array, temperature=1.5)", "keladjust.stages.hueAdjustment(array)",
    "keladjust.lut(size='3')",
])
def test_the_stubs_refuse_what_the_package_refuses(line, tmp_path):
    bad = tmp_path / "bad.py"
    bad.write_text(f"import keladjust\nimport numpy\narray = numpy.zeros((4, 4, 3), numpy.uint8)\n{line}\n")
    result = mypy(bad)
    assert result.returncode == 1 and "bad.py:4: error" in result.stdout, result.stdout


def test_the_help_of_adjust_has_shapes_and_ranges():
    text = keladjust.adjust.__doc__
    assert "H x W x 3" in text
    assert all(f"    {setting.key}: {setting.range}; {setting.help}" in text
               for setting in keladjust.SETTINGS)
