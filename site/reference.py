"""The interface as its headers describe it: Doxygen reads them, this reads Doxygen's XML."""

import html
import os
import re
import subprocess
import xml.etree.ElementTree as ElementTree
from dataclasses import dataclass, field

PREFIX_OF_TABLE_FORMS = "lut3d_"

DOXYFILE = """
PROJECT_NAME = keladjust
INPUT = {headers}
OUTPUT_DIRECTORY = {output}
GENERATE_HTML = NO
GENERATE_LATEX = NO
GENERATE_XML = YES
XML_PROGRAMLISTING = NO
MACRO_EXPANSION = YES
EXPAND_ONLY_PREDEF = YES
PREDEFINED = KELADJUST_API=
QUIET = YES
# Completeness is looked after where pages are made from this.
WARN_IF_UNDOCUMENTED = NO
WARN_IF_INCOMPLETE_DOC = NO
WARN_AS_ERROR = YES
"""


@dataclass
class Parameter:
    type: str
    name: str
    text: str = ""
    range: str = ""    # "−100 to 100; 0 leaves the picture alone"
    gallery: str = ""  # page and anchor


@dataclass
class Entry:
    kind: str  # function, enum, struct, define, member
    name: str
    anchor: str
    declaration: str = ""
    text: str = ""
    returns: str = ""
    parameters: list = field(default_factory=list)
    values: list = field(default_factory=list)  # of an enum or a struct: (name, type, text)


@dataclass
class Section:
    slug: str
    title: str
    text: str
    entries: list


class Reference:
    def __init__(self, tree, scratch):
        doxyfile = DOXYFILE.format(headers=os.path.join(tree, "include/keladjust"), output=scratch)
        subprocess.run(["doxygen", "-"], input=doxyfile, text=True, check=True)
        self._folder = os.path.join(scratch, "xml")
        self._places = {}  # Doxygen's name of a thing: page and anchor
        header = self._read("keladjust_8h")
        self._structs = [self._read(inner.get("refid")) for inner in header.findall("innerclass")
                         if inner.text != "CxImage"]
        self._picture = self._read("classCxImage")
        groups = [part for part in header.findall("sectiondef") if part.get("kind") == "user-defined"]
        groups.sort(key=lambda group: min(int(member.find("location").get("line"))
                                          for member in group.findall("memberdef")))
        for group in groups:
            self._place(group.findall("memberdef"), slug_of(group.findtext("header")))
        loose = [member for part in header.findall("sectiondef")
                 if part.get("kind") in ("define", "enum") for member in part.findall("memberdef")
                 if member.findtext("name") != "KELADJUST_API"]
        loose.sort(key=lambda member: int(member.find("location").get("line")))
        self._place(loose, "types")
        for struct in self._structs:
            anchor = struct.findtext("compoundname")
            self._places[struct.get("id")] = ("types", anchor)
            for member in struct.iter("memberdef"):
                self._places[member.get("id")] = ("types", anchor)
        self._places[self._picture.get("id")] = ("cximage", "")
        # A typedef is the record or the enumeration of its name.
        named = {struct.findtext("compoundname"): struct for struct in self._structs}
        named.update({member.findtext("name"): member for member in header.iter("memberdef")
                      if member.get("kind") == "enum"})
        for member in header.iter("memberdef"):
            if member.get("kind") == "typedef":
                meant = named.get(member.findtext("name"), self._picture)
                self._places[member.get("id")] = self._places[meant.get("id")]
        members = list(self._picture.iter("memberdef"))
        self._place(members, "cximage")

        self.overview = self._text(header.find("detaileddescription"), "index")
        self.sections = [Section(slug_of(group.findtext("header")), group.findtext("header"),
                                 self._text(group.find("description"), ""),
                                 [self._entry(member) for member in group.findall("memberdef")
                                  if member.get("kind") != "typedef"])
                         for group in groups]
        self.sections.append(Section(
            "types", "Records, formats and versions", "",
            [self._struct(struct) for struct in self._structs] +
            [self._entry(member) for member in loose]))
        fields = [member for member in members if member.get("kind") == "variable"]
        picture = Section("cximage", "The class CxImage",
                          self._text(self._picture.find("detaileddescription"), "cximage"),
                          [self._entry(member) for member in members
                           if member.get("kind") == "function"])
        picture.entries.append(Entry("struct", "Members", "members", values=[
            (member.findtext("name"), plain(member.find("type")), self._both(member, "cximage"))
            for member in fields]))
        self.sections.append(picture)
        self._complete()

    def functions(self):
        return {entry.name: (section, entry) for section in self.sections
                for entry in section.entries if entry.kind == "function"}

    def _complete(self):
        """Every function says what it does; those on tables as their pictures' twins."""
        functions = self.functions()
        for name, (section, entry) in functions.items():
            if entry.text or section.slug == "cximage":
                continue
            twin = functions.get(name.removeprefix(PREFIX_OF_TABLE_FORMS))
            if twin is None or twin[1] is entry:
                raise SystemExit(f"reference: {name} is not documented")
            entry.text = (f'<p>The form of <a href="{twin[0].slug}.html#{twin[1].anchor}">'
                          f"<code>{twin[1].name}()</code></a> for colour tables.</p>")

    def _read(self, name):
        return ElementTree.parse(os.path.join(self._folder, name + ".xml")).getroot()[0]

    def _place(self, members, page):
        taken = {}
        for member in members:
            if member.get("kind") == "typedef":
                continue
            name = member.findtext("name")
            if name.startswith("@"):
                name = member.find("enumvalue").findtext("name")
            name = re.sub(r"\W+", "-", name).strip("-") or "op"
            taken[name] = taken.get(name, 0) + 1
            anchor = name if taken[name] == 1 else f"{name}-{taken[name]}"
            self._places[member.get("id")] = (page, anchor)
            for value in member.findall("enumvalue"):
                self._places[value.get("id")] = (page, anchor)

    def _entry(self, member):
        page, anchor = self._places[member.get("id")]
        kind, name = member.get("kind"), member.findtext("name")
        entry = Entry(kind, name, anchor, text=self._both(member, page))
        entry.returns = "".join(self._text(part, page) for part in member.iter("simplesect")
                                if part.get("kind") == "return")
        if kind == "function":
            entry.declaration = declaration_of(member)
            described = {}
            for item in member.iter("parameteritem"):
                for name_of in item.iter("parametername"):
                    described[name_of.text] = self._text(item.find("parameterdescription"), page)
            entry.parameters = [Parameter(plain(parameter.find("type")),
                                          parameter.findtext("declname") or "",
                                          described.get(parameter.findtext("declname"), ""))
                                for parameter in member.findall("param")]
        elif kind == "enum":
            if name.startswith("@"):
                values = [value.findtext("name") for value in member.findall("enumvalue")]
                entry.name = os.path.commonprefix(values) + ("…" if len(values) > 1 else "")
            entry.values = [(value.findtext("name"), (value.findtext("initializer") or "").strip("= "),
                             self._both(value, page)) for value in member.findall("enumvalue")]
        elif kind == "define":
            entry.declaration = f"#define {name} {member.findtext('initializer') or ''}".strip()
        return entry

    def _struct(self, struct):
        page, anchor = self._places[struct.get("id")]
        entry = Entry("struct", struct.findtext("compoundname"), anchor,
                      text=self._both(struct, page))
        for member in struct.iter("memberdef"):
            kind = plain(member.find("type"))
            arguments = member.findtext("argsstring") or ""
            entry.values.append((member.findtext("name"), kind + arguments, self._both(member, page)))
        return entry

    def _both(self, element, page):
        return (self._text(element.find("briefdescription"), page) +
                self._text(element.find("detaileddescription"), page))

    def _text(self, element, page):
        """Doxygen's description as HTML, without what has a place of its own."""
        if element is None:
            return ""
        paragraphs = "".join(self._paragraph(part, page) for part in element.findall("para"))
        if not paragraphs and (element.text or "").strip():
            paragraphs = f"<p>{html.escape(element.text.strip())}</p>"
        return paragraphs

    def _paragraph(self, para, page):
        blocks = []
        inline = html.escape(para.text or "")
        for child in para:
            if child.tag == "table":
                blocks.append(self._table(child, page))
            elif child.tag == "itemizedlist":
                items = "".join(f"<li>{self._text(item, page)}</li>" for item in child)
                blocks.append(f"<ul>{items}</ul>")
            elif child.tag not in ("parameterlist", "simplesect"):
                inline += self._inline(child, page)
            inline += html.escape(child.tail or "")
        inline = inline.strip()
        return (f"<p>{inline}</p>" if inline else "") + "".join(blocks)

    def _inline(self, element, page):
        inner = html.escape(element.text or "") + "".join(
            self._inline(child, page) + html.escape(child.tail or "") for child in element)
        if element.tag == "computeroutput":
            return f"<code>{inner}</code>"
        if element.tag == "ref" and element.get("refid") in self._places:
            target, anchor = self._places[element.get("refid")]
            address = ("" if target == page else target + ".html") + ("#" + anchor if anchor else "")
            return f'<a href="{address or target + ".html"}"><code>{inner}</code></a>'
        if element.tag == "sp":
            return " "
        return {"ndash": "–", "mdash": "—"}.get(element.tag, inner)

    def _table(self, table, page):
        rows = ""
        for row in table.findall("row"):
            cells = ""
            for cell in row.findall("entry"):
                tag = "th" if cell.get("thead") == "yes" else "td"
                text = re.sub(r"^<p>|</p>$", "", self._text(cell, page))
                cells += f"<{tag}>{text}</{tag}>"
            rows += f"<tr>{cells}</tr>"
        return f'<div class="scroll" tabindex="0"><table>{rows}</table></div>'


def slug_of(title):
    return re.sub(r"\W+", "-", title.lower()).strip("-")


def plain(element):
    return " ".join("".join(element.itertext()).split()) if element is not None else ""


def declaration_of(member):
    """On one line if that is short, otherwise a parameter a line."""
    kind = plain(member.find("type")).replace("KELADJUST_API", "").strip()
    name = member.findtext("name")
    head = f"{kind}{'' if not kind or kind.endswith('*') else ' '}{name}".replace(" *", "* ")
    head = head.replace("* *", "** ").replace("*  ", "* ")
    arguments = [f"{plain(p.find('type'))} {p.findtext('declname') or ''}".strip()
                 .replace(" **", "** ").replace(" *", "* ").replace("*  ", "* ").replace("&  ", "& ")
                 for p in member.findall("param")]
    rest = (member.findtext("argsstring") or "").rpartition(")")[2].strip()
    rest = re.sub(r"^\s*=", " =", rest)
    rest = f" {rest}" if rest and not rest.startswith(" ") else rest
    if member.get("static") == "yes":
        head = "static " + head
    if member.get("virt") == "virtual":
        head = "virtual " + head
    one_line = f"{head}({', '.join(arguments) or ('void' if kind and not name.startswith('~') else '')}){rest};"
    if member.get("prot") and "classCxImage" in member.get("id") and not arguments:
        one_line = f"{head}(){rest};"
    if len(one_line) <= 72:
        return one_line
    return head + "(\n    " + ",\n    ".join(arguments) + f"){rest};"
