#!/usr/bin/python3
"""links.py [SITE]: whether every link of the Markdown pages, and of a built site, leads somewhere:
files, headings, examples and operations of the page; and whether the site has every page of docs/
under its title."""

import html.parser
import pathlib
import re
import sys
import urllib.parse

ROOT = pathlib.Path(__file__).resolve().parent.parent
faults = []


def markdown_of(text):
    """The text without code, in which nothing is a link or a heading."""
    text = re.sub(r"^```.*?^```", "", text, flags=re.M | re.S)
    return re.sub(r"^    .*", "", text, flags=re.M)


def headings_of(text):
    """The names by which links find the headings, as GitHub makes them."""
    seen = {}
    names = set()
    for title in re.findall(r"^#+ +(.*)", markdown_of(text), flags=re.M):
        name = re.sub(r"[^\w -]", "", title.lower()).replace(" ", "-")
        count = seen[name] = seen.get(name, -1) + 1
        names.add(f"{name}-{count}" if count else name)
    return names


def check_markdown():
    pages = [*ROOT.glob("*.md"), *ROOT.glob("docs/*.md")]
    for page in pages:
        text = re.sub(r"`[^`]*`", "", markdown_of(page.read_text(encoding="utf-8")))
        for link in re.findall(r"\]\(([^)\s]+)\)", text):
            address, _, heading = link.partition("#")
            target = page.parent / address if address else page
            if re.match(r"https?:", link):
                continue
            if not target.exists():
                faults.append(f"{page.name}: no {link}")
            elif heading and heading not in headings_of(target.read_text(encoding="utf-8")):
                faults.append(f"{page.name}: no heading {link}")
    return {page.read_text(encoding="utf-8").split("\n", 1)[0].lstrip("# ") for page in pages}


class Page(html.parser.HTMLParser):
    def __init__(self, file):
        super().__init__()
        self.names, self.links = set(), []
        self.title = None
        self.feed(file.read_text(encoding="utf-8"))

    def handle_starttag(self, tag, given):
        attributes = dict(given)
        self.names |= {attributes[name] for name in ("id", "name") if attributes.get(name)}
        self.links += [attributes[name] for name in ("href", "src", "data") if attributes.get(name)]
        if attributes.get("class") == "title":
            self.title = ""

    def handle_data(self, data):
        if self.title == "":
            self.title = data.strip()


def check_site(site, titles):
    pages = {file: Page(file) for file in [*site.rglob("*.html")]}
    script = (site / "page.js").read_text(encoding="utf-8")
    table = re.search(r"^const operations = {.*?^};", script, flags=re.M | re.S)[0]
    call = r"(?:show\.|\b(?=Rotation\b)|\b(?=\w+\(show, ))(\w+)(?:\(| = introFrames)"
    operations = {*re.findall(call, table)}
    tried = set()
    for file, page in pages.items():
        for link in page.links:
            if re.match(r"https?:|data:|javascript:", link):
                continue
            address, _, name = urllib.parse.unquote(link).partition("#")
            target = (file.parent / address).resolve() if address else file
            target = target / "index.html" if target.is_dir() else target
            if not target.is_file() or site not in target.parents:
                faults.append(f"{file.name}: no {link}")
            elif name.startswith("operation="):
                tried.add(name.removeprefix("operation="))
            elif name.startswith("example="):
                example = site / "examples" / (name.removeprefix("example=") + ".json")
                if not example.exists():
                    faults.append(f"{file.name}: no example {link}")
            elif name and name not in pages[target].names:
                faults.append(f"{file.name}: no place {link}")
    faults.extend(f"the page has no operation {name}" for name in sorted(tried - operations))
    faults.extend(f"no link tries {name}" for name in sorted(operations - tried))
    missing = titles - {page.title for page in pages.values()}
    faults.extend(f"no page has the title {title}" for title in sorted(missing))


titles = check_markdown()
if len(sys.argv) > 1:
    check_site(pathlib.Path(sys.argv[1]).resolve(), titles)
print("\n".join(faults) or "every link leads somewhere")
sys.exit(bool(faults))
