"""The pictures of the gallery: cut from photographs, and adjusted by the program."""

import math
import os
import random
import subprocess
import tempfile
from concurrent.futures import ThreadPoolExecutor

from PIL import Image

USUAL_WIDTH = 400
WHEEL = 200


def _with_noise(image, deviation):
    generator = random.Random(1)
    return Image.frombytes("RGB", image.size, bytes(
        min(255, max(0, round(value + generator.gauss(0, deviation)))) for value in image.tobytes()))


def prepared(photos, entry):
    """The part of a photograph that an entry of the gallery names, as it is before."""
    image = Image.open(os.path.join(photos, entry["photo"])).convert("RGB")
    if "crop" in entry:
        left, top, width, height = entry["crop"]
        image = image.crop((left, top, left + width, top + height))
    width = entry.get("width", USUAL_WIDTH)
    if width != "own":
        image = image.resize((width, round(image.height * width / image.width)), Image.LANCZOS)
    if "noise" in entry:
        image = _with_noise(image, entry["noise"])
    return image.convert("L") if entry.get("grey") else image


def wheel():
    """All hues around a circle, red at the top and clockwise, grey in the middle."""
    scale = 3  # for a smooth rim
    size = WHEEL * scale
    image = Image.new("RGBA", (WHEEL, WHEEL))
    hues = Image.new("RGBA", (size, size))
    pixels = hues.load()
    radius = size / 2
    for y in range(size):
        for x in range(size):
            dx, dy = x + 0.5 - radius, y + 0.5 - radius
            distance = math.hypot(dx, dy) / radius
            if distance <= 1:
                hue = math.degrees(math.atan2(dx, -dy)) % 360
                pixels[x, y] = (*_colour(hue, distance), 255)
    image = hues.resize((WHEEL, WHEEL), Image.BOX)
    return image


def _colour(hue, saturation):
    """Red, green and blue of half lightness."""
    sector = hue / 60
    rise = 1 - abs(sector % 2 - 1)
    full = [(1, rise, 0), (rise, 1, 0), (0, 1, rise), (0, rise, 1), (rise, 0, 1),
            (1, 0, rise)][int(sector) % 6]
    return tuple(round(255 * (0.5 + (part - 0.5) * saturation)) for part in full)


def _make(command, path, part):
    subprocess.run(command, check=True)
    if part:
        left, top, width, height = part
        image = Image.open(path)
        image.crop((left, top, left + width, top + height)).save(path)


class Workshop:
    """Makes pictures of a site, several at a time."""

    def __init__(self, program, library, photos, folder):
        self._program = program
        self._library = library
        self._photos = photos
        self._folder = folder  # of the site
        self._scratch = tempfile.TemporaryDirectory()
        self._pool = ThreadPoolExecutor(os.cpu_count())
        self._promised = []

    def before(self, key, entry):
        """The path of an entry's picture as it is before, and its size."""
        image = wheel() if entry is None else prepared(self._photos, entry)
        path = os.path.join(self._scratch.name, key + ".png")
        image.save(path, compress_level=1)
        return path, image.size

    def adjusted(self, before, name, options, exact=False, part=None):
        """Promises a picture, named without extension, by the options of the program: without loss
        where each pixel will be seen, and a part of it alone where one is given: left, top, width
        and height. Gives its name in the site."""
        wheel_picture = Image.open(before).mode == "RGBA"
        if exact or part:
            target, encoding = name + ".png", []
        elif wheel_picture:
            target, encoding = name + ".webp", ["--quality", "90"]
        else:
            target, encoding = name + ".jpg", ["--quality", "86"]
        path = os.path.join(self._folder, target)
        os.makedirs(os.path.dirname(path), exist_ok=True)
        command = [self._program, before, *options, *encoding, "--jobs", "1", "--threads", "1", "-q",
                   "-o", path]
        self._promised.append(self._pool.submit(_make, command, path, part))
        return target

    def staged(self, before, name, function, numbers):
        """The same by a stage of the library that the program has no option for."""
        image = Image.open(before).convert("RGBA")
        # Small ones may be shown enlarged, pixel by pixel.
        target = name + (".png" if image.width <= USUAL_WIDTH else ".jpg")
        path = os.path.join(self._folder, target)
        os.makedirs(os.path.dirname(path), exist_ok=True)
        red, green, blue, alpha = image.split()
        bgra = Image.merge("RGBA", (blue, green, red, alpha)).tobytes()
        after = self._library.stage(function, *image.size, bgra, numbers)
        blue, green, red, _ = Image.frombytes("RGBA", image.size, after).split()
        Image.merge("RGB", (red, green, blue)).save(path, quality=86)
        return target

    def finish(self):
        for promise in self._promised:
            promise.result()
        self._pool.shutdown()
        self._scratch.cleanup()
