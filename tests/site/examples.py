"""Runs the examples of pages: examples.py PREFIX PAGE..., where PREFIX is an installed keladjust.

A page's blocks of code with a file name behind the language are written to a folder of its own, in
which "sh (run)" blocks are run one after the other in one shell, with the prefix as ~/.local and photographs there.
What they print is what the "text (output)" block after them says."""

import os
import re
import shutil
import subprocess
import sys
import tempfile

PHOTO = "/usr/share/backgrounds/mate/nature/FreshFlower.jpg"
END_OF_BLOCK = "-- end of the block --"
FENCE = re.compile(r"^```(\w*)[ \t]*([^\n]*)\n(.*?)^```[ \t]*$", re.M | re.S)


def run_page(page, home):
    """How many of its blocks were run and how many outputs compared."""
    with open(page, encoding="utf-8") as file:
        blocks = FENCE.findall(file.read())
    folder = tempfile.mkdtemp(dir=home)
    for name in ("photo.jpg", "another.jpg"):
        shutil.copyfile(PHOTO, os.path.join(folder, name))
    script, expected = [], {}
    for _, name, text in blocks:
        if name == "(run)":
            script.append(text)
        elif name == "(output)":
            expected[len(script) - 1] = text
        elif name:
            with open(os.path.join(folder, name), "w", encoding="utf-8") as file:
                file.write(text)
    # One shell, as a reader has; what each block prints ends with a line that none of them prints.
    done = subprocess.run(["bash", "-euo", "pipefail", "-c",
                           "".join(f"{text}\necho '{END_OF_BLOCK}'\n" for text in script)],
                          cwd=folder, text=True, env=dict(os.environ, HOME=home),
                          stdin=subprocess.DEVNULL, capture_output=True)
    printed = done.stdout.split(END_OF_BLOCK + "\n")
    if done.returncode != 0:
        raise SystemExit(f"{page}: this failed:\n{script[len(printed) - 1]}\n"
                         f"{printed[-1]}{done.stderr}")
    for block, text in expected.items():
        if printed[block] != text:
            raise SystemExit(f"{page}: printed\n{printed[block]}instead of\n{text}")
    return len(script), len(expected)


def main():
    prefix, *pages = sys.argv[1:]
    with tempfile.TemporaryDirectory() as home:
        os.symlink(os.path.abspath(prefix), os.path.join(home, ".local"))
        counts = [run_page(page, home) for page in pages]
    ran, compared = (sum(column) for column in zip(*counts))
    if ran < 10 or compared < 5:
        raise SystemExit(f"examples: only {ran} were found, {compared} with what they print")
    print(f"examples: {ran} run, {compared} outputs as the pages say")


main()
