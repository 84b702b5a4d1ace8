"""Follows every link of the site: links.py SITE. Pages, pictures and anchors that are named are there,
every page can be reached, ids are unique, nothing is asked of another site."""

import os
import sys
import urllib.parse
from html.parser import HTMLParser

SITE = os.path.abspath(sys.argv[1])
ASKING = {"img": "src", "script": "src", "link": "href", "image": "href", "source": "srcset"}


class Page(HTMLParser):
    def __init__(self, path):
        super().__init__()
        self.links, self.asked, self.ids, self.problems = [], [], set(), []
        self.title = self.language = False
        self._title_open = False
        with open(path, encoding="utf-8") as file:
            self.feed(file.read())

    def handle_starttag(self, tag, attributes):
        attributes = dict(attributes)
        if "id" in attributes:
            if attributes["id"] in self.ids:
                self.problems.append(f"id {attributes['id']} twice")
            self.ids.add(attributes["id"])
        if tag == "a" and "href" in attributes:
            self.links.append(attributes["href"])
        if tag in ASKING and ASKING[tag] in attributes:
            self.asked.append(attributes[ASKING[tag]])
        if tag == "html":
            self.language = bool(attributes.get("lang"))
        self._title_open = tag == "title"

    def handle_data(self, data):
        if self._title_open and data.strip():
            self.title = True


def pages_below(folder):
    for root, _, names in os.walk(folder):
        for name in names:
            path = os.path.join(root, name)
            # The live page is a site of its own, with its own tests.
            if name.endswith(".html") and not os.path.relpath(path, folder).startswith("app" + os.sep):
                yield path


def main():
    pages = {path: Page(path) for path in pages_below(SITE)}
    problems = []
    reached = {os.path.join(SITE, "index.html")}
    used = set()
    followed = 0
    for path, page in pages.items():
        name = os.path.relpath(path, SITE)
        problems += [f"{name}: {problem}" for problem in page.problems]
        if not page.title or not page.language:
            problems.append(f"{name}: no title or no language")
        for address in page.links + page.asked:
            parts = urllib.parse.urlsplit(address)
            if parts.scheme or parts.netloc:
                if address in page.asked:
                    problems.append(f"{name}: asks for {address}")
                continue
            followed += 1
            target = path
            if parts.path:
                target = os.path.normpath(os.path.join(os.path.dirname(path),
                                                       urllib.parse.unquote(parts.path)))
            used.add(target)
            if not os.path.isfile(target):
                problems.append(f"{name}: there is no {address}")
            elif parts.fragment and parts.fragment not in pages[target].ids:
                problems.append(f"{name}: {address}: no such place")
            elif address in page.links and target != path:
                reached.add(target)
    problems += [f"nothing leads to {os.path.relpath(path, SITE)}" for path in set(pages) - reached]
    for root, _, names in os.walk(os.path.join(SITE, "images")):
        problems += [f"no page shows {os.path.join(root, file)}" for file in names
                     if os.path.join(root, file) not in used]
    for problem in problems:
        print(problem, file=sys.stderr)
    if problems or len(pages) < 30 or followed < 1000:
        raise SystemExit(f"links: {len(problems)} problems in {len(pages)} pages, {followed} links")
    print(f"links: {followed} links of {len(pages)} pages lead somewhere")


main()
