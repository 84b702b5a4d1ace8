"""Pages from the Markdown of docs/, which is read in the tree as well."""

import os
import re

import markdown
from pygments import highlight
from pygments.formatters import HtmlFormatter
from pygments.lexers import get_lexer_by_name
from pygments.util import ClassNotFound

FENCE = re.compile(r"^```([^\n]*)\n(.*?)^```[ \t]*$", re.M | re.S)


def code(text, language):
    """A block of source text, in colours where the language is known; it can be scrolled by keyboard."""
    names = {"sh": "bash", "console": "console", "cmake": "cmake"}
    try:
        lexer = get_lexer_by_name(names.get(language, language or "text"))
    except ClassNotFound:
        lexer = get_lexer_by_name("text")
    inner = highlight(text, lexer, HtmlFormatter(nowrap=True))
    return f'<pre tabindex="0"><code>{inner}</code></pre>'


class Guide:
    """One file of docs/."""

    def __init__(self, tree, path):
        self.path = path  # in the tree, "docs/gpu.md"
        with open(os.path.join(tree, path), encoding="utf-8") as file:
            text = file.read()
        heading, _, self._text = text.partition("\n")
        if not heading.startswith("# "):
            raise SystemExit(f"{path}: does not begin with a heading")
        self.title = heading[2:].strip()
        self.slug = os.path.splitext(os.path.basename(path))[0]

    @property
    def summary(self):
        """The first sentence below the title, if there is one above the first heading."""
        paragraphs = FENCE.sub("", self._text.partition("\n#")[0]).strip("\n").split("\n\n")
        paragraphs = [text for text in paragraphs if text and not re.match(r"\||- |    ", text)]
        if not paragraphs or paragraphs[0][0].islower():  # which goes on from a line of code
            return ""
        paragraph = paragraphs[0].strip()
        sentence = re.match(r"(?s).*?[.:](?=\s|$)", paragraph)
        text = (sentence.group(0) if sentence else paragraph).rstrip(":.") + "."
        html = markdown.markdown(re.sub(r"\[([^]]*)\]\([^)]*\)", r"\1", text))
        return re.sub(r"^<p>|</p>$", "", html)

    def render(self, tree, link):
        """The text below the title, and its headings [(id, text)]. `link` gives the address of a file
        of the tree that the site has, or None."""
        blocks = []

        def keep(match):
            language, _, name = match.group(1).strip().partition(" ")
            block = code(match.group(2), language)
            if name == "(output)":
                block = f'<div class="file output"><p class="file-name">prints</p>{block}</div>'
            elif name and not name.startswith("("):
                block = f'<div class="file"><p class="file-name">{name}</p>{block}</div>'
            blocks.append(block)
            return f"\n\nkept-block-{len(blocks) - 1}-here\n\n"

        reader = markdown.Markdown(extensions=["tables", "toc", "sane_lists"],
                                   extension_configs={"toc": {"permalink": False}})
        html = reader.convert(FENCE.sub(keep, self._text))
        html = re.sub(r"(?:<p>)?kept-block-(\d+)-here(?:</p>)?",
                      lambda match: blocks[int(match.group(1))], html)
        html = re.sub(r"<pre><code>", '<pre tabindex="0"><code>', html)
        html = re.sub(r"<table>", '<div class="scroll" tabindex="0"><table>', html)
        html = html.replace("</table>", "</table></div>")
        html = re.sub(r"<th></th>|<th>\s*</th>", "<td></td>", html)
        html = re.sub(r'(<a href=|<img [^>]*src=)"([^"]*)"(.*?>)(.*?</a>)?',
                      lambda match: self._linked(match, tree, link), html)
        headings = [(token["id"], token["name"]) for token in reader.toc_tokens]
        return html, headings

    def _linked(self, match, tree, link):
        begin, address, rest, inner = match.groups(default="")
        if re.match(r"[a-z]+:|#", address):
            return match.group(0)
        target, _, anchor = address.partition("#")
        path = os.path.normpath(os.path.join(os.path.dirname(self.path), target))
        if not os.path.exists(os.path.join(tree, path)):
            raise SystemExit(f"{self.path}: there is no {path}")
        page = link(path)
        if page is not None:
            return f'{begin}"{page}{"#" + anchor if anchor else ""}"{rest}{inner}'
        if begin.startswith("<img"):
            raise SystemExit(f"{self.path}: the site has no picture {path}")
        return f"{inner.removesuffix('</a>')} (<code>{path}</code>)"
