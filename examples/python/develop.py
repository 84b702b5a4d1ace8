#!/usr/bin/env python3
"""Develops a photograph step by step and writes each step: develop.py PHOTOGRAPH FOLDER

A notebook as a plain script: cells begin with # %%, which editors know. Needs numpy and Pillow.
"""

# %% The photograph as an array
import pathlib
import sys

import numpy
from PIL import Image

import keladjust

photograph, folder = sys.argv[1], pathlib.Path(sys.argv[2])
folder.mkdir(parents=True, exist_ok=True)
original = numpy.array(Image.open(photograph).convert("RGB"))


def show(name, array):
    Image.fromarray(array).save(folder / f"{name}.jpg", quality=92)
    print(f"{name}: mean {array.mean():.1f}, contrast {array.std():.1f}")


show("1 original", original)

# %% A few sliders. adjust() works in the array itself, so a copy is what is adjusted.
brighter = original.copy()
keladjust.adjust(brighter, exposure=15, shadows=30, highlights=-30)
show("2 brighter", brighter)

# %% One colour range alone: the sky
bluer = brighter.copy()
keladjust.adjust(bluer, blue_saturation=40, blue_brightness=-20)
show("3 bluer", bluer)

# %% The same in one go, kept as a preset that the command line and other hosts read, too
settings = keladjust.Settings(exposure=15, shadows=30, highlights=-30, blue_saturation=40,
                              blue_brightness=-20)
settings["clarity"] = 20
settings.save(folder / "look.json")
look = original.copy()
keladjust.adjust(look, preset=folder / "look.json")
show("4 look", look)

# %% A window of the picture: views are adjusted where they are
framed = original.copy()
height, width = framed.shape[:2]
keladjust.adjust(framed[height // 4:-height // 4, width // 4:-width // 4], saturation=-100)
show("5 grey inside", framed)

# %% A stage that no setting of the record reaches, and a colour table for other programs
grain = look.copy()
keladjust.stages.addNoiseFilter(grain, amount=20, size=30)
show("6 grain", grain)
keladjust.write_cube(folder / "look.cube", settings, size=33)
print("look.cube:", (folder / "look.cube").stat().st_size, "bytes")
