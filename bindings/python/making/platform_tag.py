"""What a wheel may say of the systems that its library runs on."""

import re
import subprocess

# What PEP 600 lets a library expect of every Linux system; and the one that the loader itself is.
MANYLINUX_LIBRARIES = {"libc.so.6", "libm.so.6", "libgcc_s.so.1", "libstdc++.so.6",
                       "ld-linux-x86-64.so.2"}
# The C++ library that comes with the systems of a C library's time: those of Ubuntu 22.04 and later.
NEWEST_CXX = {"GLIBCXX": (3, 4, 30), "CXXABI": (1, 3, 13)}


def linux(library):
    """manylinux_2_N_x86_64, N being the C library that the file asks for."""
    dynamic = subprocess.run(["readelf", "--dynamic", "--wide", library], check=True,
                             stdout=subprocess.PIPE, text=True).stdout
    needed = set(re.findall(r"\(NEEDED\).*\[(.*)\]", dynamic))
    if needed - MANYLINUX_LIBRARIES:
        raise SystemExit(f"{library} needs {', '.join(sorted(needed - MANYLINUX_LIBRARIES))}, "
                         "which not every system has")
    symbols = subprocess.run(["readelf", "--version-info", "--wide", library], check=True,
                             stdout=subprocess.PIPE, text=True).stdout
    newest = {}
    for name, version in re.findall(r"Name: (GLIBC|GLIBCXX|CXXABI)_([0-9.]+)", symbols):
        numbers = tuple(map(int, version.split(".")))
        newest[name] = max(newest.get(name, ()), numbers)
    for name, bound in NEWEST_CXX.items():
        if newest.get(name, ()) > bound:
            raise SystemExit(f"{library} needs {name} {newest[name]}, newer than {bound}")
    major, minor = max(newest["GLIBC"], (2, 35))[:2]
    return f"manylinux_{major}_{minor}_x86_64"
