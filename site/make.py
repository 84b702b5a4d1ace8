"""Makes the site: make.py PROGRAM LIBRARY PHOTOGRAPHS CREDITS FOLDER [LIVE-PAGE]

PROGRAM is the command-line host, LIBRARY the shared library, CREDITS says whose the photographs are,
FOLDER is what becomes the site. The live page, a folder, becomes its /app/."""

import functools
import math
import os
import shutil
import sys
import tempfile

import jinja2

from gallery import Gallery
from guides import Guide, code
from pictures import Workshop
from record import Library, number
from reference import PREFIX_OF_TABLE_FORMS, Reference

HERE = os.path.dirname(os.path.abspath(__file__))
TREE = os.path.dirname(HERE)

# The guides in the order in which one would read them, under the headings of their index. Pages of docs/
# that stand in none of these are about hosts in other languages and other programs.
USING = ["embedding", "pictures-and-settings", "threads", "colour-tables", "gpu", "exactness",
         "reliability", "performance", "versions"]
PROGRAM = ["host"]
WORKING = ["working-on-it", "adding-a-stage", "windows", "msvc", "fuzzing"]


class Site:
    def __init__(self, folder, version, live):
        self._folder = folder
        self._templates = jinja2.Environment(loader=jinja2.FileSystemLoader(HERE + "/templates"),
                                             undefined=jinja2.StrictUndefined, trim_blocks=True,
                                             lstrip_blocks=True)
        self._templates.globals.update(version=version, live=live, number=number, code=code)

    def page(self, path, template, **values):
        target = os.path.join(self._folder, path)
        os.makedirs(os.path.dirname(target), exist_ok=True)
        root = "../" * path.count("/")
        text = self._templates.get_template(template).render(root=root, path=path, **values)
        with open(target, "w", encoding="utf-8") as file:
            file.write(text)

    def file(self, source, path):
        target = os.path.join(self._folder, path)
        os.makedirs(os.path.dirname(target), exist_ok=True)
        shutil.copyfile(source, target)


def guides_of_docs():
    """Every page of docs/, and headings with the guides below each."""
    there = sorted(name.removesuffix(".md") for name in os.listdir(TREE + "/docs")
                   if name.endswith(".md"))
    guides = {name: Guide(TREE, f"docs/{name}.md") for name in there}
    others = [name for name in there if name not in USING + PROGRAM + WORKING + ["start"]]
    headings = {"Using the library": USING, "The program": PROGRAM,
                "Other languages and programs": others, "Working on it": WORKING}
    return guides, [(heading, [guides[name] for name in names])
                    for heading, names in headings.items() if names]


def address_of(path, page):
    """The address of a file of the tree as a page of the site has it, or None."""
    name = os.path.basename(path).removesuffix(".md")
    if path.startswith("docs/images/"):
        target = path.removeprefix("docs/")
    elif path.startswith("docs/") and path.endswith(".md"):
        target = "start.html" if name == "start" else f"guides/{name}.html"
    elif path == "include/keladjust/keladjust.h":
        target = "reference/index.html"
    elif path == "include/keladjust/CxImage.h":
        target = "reference/cximage.html"
    else:
        return None
    return os.path.relpath(target, os.path.dirname(page) or ".")


def make_guides(site):
    guides, nav = guides_of_docs()

    def address_from(page, file):
        if file.startswith("docs/images/"):
            site.file(f"{TREE}/{file}", file.removeprefix("docs/"))
        return address_of(file, page)

    for name, guide in guides.items():
        path = "start.html" if name == "start" else f"guides/{name}.html"
        text, headings = guide.render(TREE, functools.partial(address_from, path))
        site.page(path, "start.html" if name == "start" else "guide.html", title=guide.title,
                  text=text, headings=headings, nav=nav, here=guide)
    site.page("guides/index.html", "guides.html", title="Guides", nav=nav)


def make_reference(site, gallery, scratch):
    reference = Reference(TREE, scratch)
    functions = reference.functions()
    places = gallery.places()
    for name, (_, entry) in functions.items():
        for parameter in entry.parameters:
            place = places.get((name.removeprefix(PREFIX_OF_TABLE_FORMS), parameter.name))
            if place is not None:
                page, setting, shape = place
                parameter.range = f"{setting.range_text}; {number(setting.usual)} " + (
                    "is usual" if shape else "leaves the picture alone")
                parameter.gallery = f"../gallery/{page}"
    for section in reference.sections:
        site.page(f"reference/{section.slug}.html", "reference-section.html", title=section.title,
                  section=section, reference=reference)
    site.page("reference/index.html", "reference.html", title="Reference", reference=reference)
    return {name: f"reference/{section.slug}.html#{entry.anchor}"
            for name, (section, entry) in functions.items()}


def arc(low, high, radius, width):
    """A band of hues as a piece of a ring, red at the top and clockwise: an SVG path."""
    sweep = (high - low) % 360
    corners = []
    for angle, r in ((low, radius), (low + sweep, radius), (low + sweep, radius - width),
                     (low, radius - width)):
        turn = math.radians(angle)
        corners.append(f"{r * math.sin(turn):.2f} {-r * math.cos(turn):.2f}")
    large = int(sweep > 180)
    return (f"M{corners[0]} A{radius} {radius} 0 {large} 1 {corners[1]} L{corners[2]} "
            f"A{radius - width} {radius - width} 0 {large} 0 {corners[3]} Z")


def make_gallery(site, gallery, workshop, addresses):
    pages = gallery.make(workshop, TREE)
    for page in pages:
        site.page(f"gallery/{page.slug}.html", "gallery-page.html", title=page.title, page=page,
                  pages=pages, addresses=addresses, arc=arc)
    site.page("gallery/index.html", "gallery.html", title="Gallery", pages=pages)


def main():
    program, library_path, photos, credits_path, folder, *live = sys.argv[1:]
    library = Library(library_path)
    if os.path.isdir(folder):
        shutil.rmtree(folder)
    os.makedirs(folder)
    site = Site(folder, library.version, bool(live))
    gallery = Gallery(HERE + "/gallery.toml", library.settings())
    workshop = Workshop(program, library, photos, folder)
    with tempfile.TemporaryDirectory() as scratch:
        addresses = make_reference(site, gallery, scratch)
    make_guides(site)
    make_gallery(site, gallery, workshop, addresses)
    comparison = gallery.comparison(workshop, TREE, "home")
    site.page("index.html", "home.html", title="", comparison=comparison,
              count=len(library.settings()))
    for name in ("style.css", "compare.js", "icon.svg"):
        site.file(os.path.join(HERE, name), name)
    site.file(credits_path, "photographs.txt")
    if live:
        shutil.copytree(live[0], os.path.join(folder, "app"))
    workshop.finish()


if __name__ == "__main__":
    main()
