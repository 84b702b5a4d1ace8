"""The gallery: every setting of the record, at five values."""

import json
import os
import tomllib
from dataclasses import dataclass, field

from record import number
from reference import slug_of

RANGES = "Colour ranges"
ALONE = "By themselves"
KNOWN_KEYS = {"what", "formula", "function", "parameter", "photo", "crop", "width", "pixels", "values",
              "with", "grey", "noise", "label", "others", "part", "shape"}
STEPS_OF_BOUNDS = (-40, -20, 0, 20, 40)


@dataclass
class Shown:
    """A setting with its pictures."""
    name: str
    label: str
    help: str
    range: str
    identity: str
    usual: str
    what: str
    formula: str
    function: str
    notes: list
    shape: bool = False  # only says how other settings act
    pictures: list = field(default_factory=list)  # (file, value, a word about it)
    width: int = 0
    height: int = 0
    pixels: bool = False  # each of them is to be seen


@dataclass
class Band:
    """One of the colour ranges."""
    name: str
    label: str
    lowest: float
    highest: float
    settings: list

    @property
    def middle(self):
        """The hue on which it works most."""
        return 0 if self.lowest > self.highest else (self.lowest + self.highest) / 2


@dataclass
class Comparison:
    before: str
    after: str
    width: int
    height: int
    alt: str
    options: list  # of the program


@dataclass
class Page:
    slug: str
    title: str
    settings: list
    bands: list
    comparison: Comparison = None


class Gallery:
    def __init__(self, path, settings):
        with open(path, "rb") as file:
            self._data = tomllib.load(file)
        self._settings = {setting.name: setting for setting in settings}
        self._check()

    def entry(self, name):
        """What the file says of a setting, and the kind of a colour range's."""
        if name in self._data:
            return self._data[name], None
        for kind, entry in self._data["range"].items():
            if name.endswith("-" + kind) and self._settings[name].group == RANGES:
                return entry, kind
        return None, None

    def _check(self):
        """Every setting of the record has its entry, every entry its setting."""
        lacking = [name for name in self._settings if self.entry(name)[0] is None]
        used = {name for name in self._data if name not in ("range", "stage", "compare")}
        unknown = sorted(used - set(self._settings))
        if lacking or unknown:
            raise SystemExit(f"gallery.toml: nothing of {lacking}, and no setting is called {unknown}")
        for table in [*(self._data[name] for name in used), *self._data["range"].values(),
                      *self._data["stage"].values()]:
            missing = {"what", "formula", "function", "parameter"} - set(table)
            unknown = set(table) - KNOWN_KEYS
            if missing or unknown:
                raise SystemExit(f"gallery.toml: \"{table.get('what')}\" lacks {sorted(missing)}, "
                                 f"and nobody knows {sorted(unknown)}")

    def places(self):
        """Of the function and the parameter of each setting that is not a colour range's: its page
        with the anchor, the setting, and whether it only says how others act."""
        places = {}
        for name, setting in self._settings.items():
            entry, kind = self.entry(name)
            if kind is None:
                places[entry["function"], entry["parameter"]] = (
                    f"{slug_of(setting.group)}.html#{name}", setting, entry.get("shape", False))
        return places

    def make(self, workshop, tree):
        groups = {}
        for setting in self._settings.values():
            groups.setdefault(setting.group, []).append(setting)
        pages = []
        wheel, wheel_size = workshop.before("wheel", None)
        for group, members in groups.items():
            page = Page(slug_of(group), group, [], [])
            if group == RANGES:
                page.bands = self._bands(workshop, members, wheel, wheel_size)
            else:
                page.settings = [self._shown(workshop, setting) for setting in members]
            pages.append(page)
        pages.append(Page(slug_of(ALONE), ALONE,
                          [self._stage(workshop, name, entry)
                           for name, entry in self._data["stage"].items()], []))
        for page in pages:
            page.comparison = self.comparison(workshop, tree, page.slug)
        return pages

    def comparison(self, workshop, tree, key):
        entry = self._data["compare"].get(key)
        if entry is None:
            return None
        scaled = dict(entry)
        scaled.setdefault("width", 1200)
        before, (width, height) = workshop.before("compare-" + key, scaled)
        plain = workshop.adjusted(before, f"images/compare/{key}-before", [])
        name = f"images/compare/{key}-after"
        if "function" in entry:
            after = workshop.staged(before, name, entry["function"], entry["numbers"])
            numbers = ", ".join(map(str, entry["numbers"]))
            options = [f"{entry['function']}(image, {numbers})"]
        else:
            options = [f"--{name} {value}" for name, value in self._asked(tree, entry).items()]
            after = workshop.adjusted(before, name, " ".join(options).split())
        return Comparison(plain, after, width, height, entry["alt"], options)

    def _asked(self, tree, entry):
        if "preset" not in entry:
            return entry["settings"]
        with open(os.path.join(tree, entry["preset"]), encoding="utf-8") as file:
            return json.load(file)

    def values(self, entry, setting, kind):
        """Those that are shown of a setting."""
        if "values" in entry:
            return entry["values"]
        if kind is not None and entry.get("shape"):  # a bound
            return [(setting.usual + step) % 360 for step in STEPS_OF_BOUNDS]
        low, middle, high = setting.lowest, setting.identity, setting.highest
        if low < middle < high:
            return [low, (low + middle) / 2, middle, (middle + high) / 2, high]
        return [low + (high - low) * step / 4 for step in range(5)]

    def _shown(self, workshop, setting):
        entry, _ = self.entry(setting.name)
        before, size = workshop.before(setting.name, entry)
        shown = self._about(setting, entry)
        part = entry.get("part")
        shown.width, shown.height = part[2:] if part else size
        others = [part for name, value in entry.get("with", {}).items()
                  for part in ("--" + name, str(value))]
        for value in self.values(entry, setting, None):
            picture = workshop.adjusted(before, f"images/{setting.name}/{value:g}",
                                        [*others, "--" + setting.name, f"{value:g}"],
                                        shown.pixels, part)
            shown.pictures.append((picture, number(value), self._word(shown, setting, value)))
        return shown

    def _about(self, setting, entry):
        notes = []
        if "with" in entry:
            notes.append("Shown with " + ", ".join(
                f"{self._settings[name].label} {number(value)}"
                for name, value in entry["with"].items()) + ".")
        if "part" in entry or "pixels" in entry:
            notes.append("A small part of the photograph is shown.")
        if "noise" in entry:
            notes.append("Noise was added to the photograph.")
        if entry.get("grey"):
            notes.append("Shown on a grey picture.")
        return Shown(setting.name, setting.label, setting.help, setting.range_text,
                     number(setting.identity), number(setting.usual), entry["what"],
                     entry["formula"], entry["function"], notes, pixels=entry.get("pixels", False),
                     shape=entry.get("shape", False))

    def _word(self, shown, setting, value):
        """What is to be said of a value beside itself."""
        if value != setting.usual:
            return ""
        return "usual" if shown.shape else "as it is"

    def _bands(self, workshop, members, wheel, wheel_size):
        bands = {}
        for setting in members:
            entry, kind = self.entry(setting.name)
            name = setting.name.removesuffix("-" + kind)
            band = bands.setdefault(name, Band(name, name.capitalize(), 0, 0, []))
            shown = self._about(setting, entry)
            shown.width, shown.height = wheel_size
            if shown.shape:
                setattr(band, "lowest" if kind == "min-degree" else "highest", setting.usual)
                shown.notes.append(f"Shown with {band.label} Saturation −100.")
            others = [f"--{name}-saturation", "-100"] if shown.shape else []
            for value in self.values(entry, setting, kind):
                picture = workshop.adjusted(wheel, f"images/{setting.name}/{value:g}",
                                            [*others, "--" + setting.name, f"{value:g}"])
                shown.pictures.append((picture, number(value), self._word(shown, setting, value)))
            band.settings.append(shown)
        return list(bands.values())

    def _stage(self, workshop, name, entry):
        before, size = workshop.before("stage-" + name, entry)
        shown = Shown(name, entry["label"], "", "", "0", "", entry["what"], entry["formula"],
                      entry["function"], [], pixels=entry.get("pixels", False))
        shown.width, shown.height = size
        others = entry.get("others", [])
        if others:
            shown.notes.append("Shown with size " + ", ".join(map(number, others)) + ".")
        if shown.pixels:
            shown.notes.append("A small part of the photograph is shown.")
        for value in entry["values"]:
            picture = workshop.staged(before, f"images/stage-{name}/{value:g}", entry["function"],
                                      [value, *others])
            shown.pictures.append((picture, number(value), "as it is" if value == 0 else ""))
        return shown
