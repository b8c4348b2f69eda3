#!/usr/bin/python3
"""words.py FOLDER: writes FOLDER/words.js, what the search of the documentation looks through: a
row for each section of a page, with its address, the page's title, its own title, and its words."""

import html.parser
import json
import pathlib
import re
import sys


class Sections(html.parser.HTMLParser):
    """The sections of a page: those of its headings and, in the reference, of its members."""

    def __init__(self, address):
        super().__init__()
        self.address = address
        self.rows = [{"at": address, "title": "", "text": ""}]
        self.heading = None  # the tag of the one that is open
        self.inside = []  # the elements that are open from the first one on that is searched
        self.ignored = 0  # how many of them were open where one began that is not
        self.id = ""  # the last one

    def handle_starttag(self, tag, given):
        attributes = dict(given)
        kinds = (attributes.get("class") or "").split()
        self.id = attributes.get("id") or self.id
        if tag in ("div", "script", "span") and (
                self.inside or "title" in kinds or "contents" in kinds):
            unsearched = tag == "script" or {"toc", "permalink", "overload"} & {*kinds}
            if unsearched and not self.ignored:
                self.ignored = len(self.inside) + 1
            self.inside.append(tag)
        if "title" in kinds:
            self.heading = tag
        elif tag in ("h1", "h2") and self.inside and "groupheader" not in kinds:
            self.rows.append({"at": f"{self.address}#{self.id}", "title": "", "text": ""})
            self.heading = tag
        elif self.heading and attributes.get("id"):
            self.rows[-1]["at"] = f"{self.address}#{self.id}"

    def handle_endtag(self, tag):
        if tag == self.heading:
            self.heading = None
        if self.inside and tag == self.inside[-1]:
            self.inside.pop()
            if len(self.inside) < self.ignored:
                self.ignored = 0

    def handle_data(self, data):
        if self.inside and not self.ignored:
            self.rows[-1]["title" if self.heading else "text"] += data


folder = pathlib.Path(sys.argv[1])
sections = []
for file in sorted(folder.glob("*.html")):
    parser = Sections(file.name)
    parser.feed(file.read_text(encoding="utf-8"))
    overloads = {}
    for row in parser.rows:
        title = " ".join(row["title"].split())
        title = re.sub(r"^Kiv::| (Class|Namespace|File) Reference$", "", title)
        if file.name == "index.html" and not overloads:
            title = "Start"
        if title in overloads:
            overloads[title][3] += " " + " ".join(row["text"].split())
        else:
            page = sections[-1][1] if overloads else title
            overloads[title] = [row["at"], page, title, " ".join(row["text"].split())]
            sections.append(overloads[title])
(folder / "words.js").write_text(
    "const sections = " + json.dumps(sections, ensure_ascii=False, separators=(",", ":")) + ";\n",
    encoding="utf-8")
