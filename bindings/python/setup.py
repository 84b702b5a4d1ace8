"""Builds the wheel: the library by CMake, then what is made from its header and its description.

KELADJUST_BUILD names the folder of a CMake build that has the library, which is otherwise built in
build/python. KELADJUST_WINDOWS_DLL names a DLL to carry instead, which makes a wheel for Windows."""

import os
import pathlib
import shutil
import subprocess
import sys

from setuptools import setup
from setuptools.command.build_py import build_py
from setuptools.dist import Distribution
from wheel.bdist_wheel import bdist_wheel

HERE = pathlib.Path(__file__).resolve().parent
ROOT = HERE.parent.parent
sys.path.insert(0, str(HERE))

from making import header, interface, platform_tag, stubs  # noqa: E402 - after the path is known

HEADER = (ROOT / "include/keladjust/keladjust.h").read_text()
BUILD = pathlib.Path(os.environ.get("KELADJUST_BUILD", ROOT / "build/python")).resolve()
DLL = os.environ.get("KELADJUST_WINDOWS_DLL")


def build_library():
    """The library for this machine, without the engine."""
    if "KELADJUST_BUILD" not in os.environ:
        subprocess.run(["cmake", "-S", ROOT, "-B", BUILD, "-G", "Ninja", "-DCMAKE_BUILD_TYPE=Release",
                        "-DKELADJUST_ENGINE=OFF", "-DKELADJUST_BUILD_HOST=OFF",
                        "-DKELADJUST_BUILD_TESTS=OFF"], check=True, stdout=subprocess.DEVNULL)
        subprocess.run(["cmake", "--build", BUILD, "--target", "keladjust"], check=True)
    return BUILD / "Source/libkeladjust.so"


LIBRARY = build_library()
WORK = BUILD / ("wheel-windows" if DLL else "wheel-linux")
shutil.rmtree(WORK, ignore_errors=True)  # what an older version had is not packed again
WORK.mkdir()


class BuildPackage(build_py):
    def run(self):
        super().run()
        package = pathlib.Path(self.build_lib) / "keladjust"
        package.joinpath("_interface.py").write_text(interface.text(HEADER))
        for name, text in stubs.texts(HEADER, LIBRARY).items():
            package.joinpath(name).write_text(text)
        if DLL:
            shutil.copy(DLL, package / "keladjust.dll")
        else:
            shutil.copy(LIBRARY, package / "libkeladjust.so")
            subprocess.run(["strip", "--strip-unneeded", package / "libkeladjust.so"], check=True)


class Wheel(bdist_wheel):
    """One wheel for every Python 3: the library is loaded while the package runs."""

    def get_tag(self):
        return "py3", "none", "win_amd64" if DLL else platform_tag.linux(LIBRARY)

    def egg2dist(self, egginfo_path, distinfo_path):
        super().egg2dist(egginfo_path, distinfo_path)
        shutil.copy(ROOT / "LICENSE", distinfo_path)  # which setuptools looks for beside setup.py only


class WithLibrary(Distribution):
    def has_ext_modules(self):
        return True  # so that the package goes where a system keeps what is its own


setup(
    version=header.version(HEADER),
    distclass=WithLibrary,
    cmdclass={"build_py": BuildPackage, "bdist_wheel": Wheel},
    # Nothing is written beside the sources.
    options={"build": {"build_base": str(WORK / "build")}, "egg_info": {"egg_base": str(WORK)},
             "bdist_wheel": {"bdist_dir": str(WORK / "bdist")}},
)
