"""Writes the comments of the public headers as docstrings: docstrings.py DOCSTRINGS.H HEADER ...

Each first overload gives a constant, doc_Animation_insert, doc_Animation for the class itself. The
words are those of C++ where Python has the same ones, and Python's where it has others. Words that no
header has any more are an error.
"""

import re
import sys

WORDS = {
    "until the next copy fills and checks again": "until a new animation is made of its layers",
    "filled as in any copy": "filled as in a new animation",
    "where the copy constructor does": "where making that does",
    "like a copy": "like a new animation",
    "A count of 1 gives a copy.": "A count of 1 repeats nothing.",
    "; one that is copied in was so before, too": ", and before it",
    "pushBack(other, false, false)": "pushBack(other, False, False)",
    ", which is copied, moved and assigned as one": "",
    "The piece before `frame` and the piece from it on.":
        "The pieces before, between and after `frames`, one frame or an iterable of them.",
    "The same for cuts": "Cuts like `split_at`",
    "std::invalid_argument": "ValueError",
    "std::bad_alloc": "MemoryError",
    "`reset()`": "`reset`",
    ".at(name)": "[name]",
    "std::vector": "list",
    "::": ".",
}
# What is told of memory and of threads is so in C++ alone.
LEFT_OUT = re.compile(r"Memory is not allocated.*moved in\.\s+| Const operations[^.]*\.", re.DOTALL)
SCOPE = re.compile(r"(?:class ANIMATIONMODEL_EXPORT|enum) (\w+)")
MEMBER = re.compile(r"[^(]*?(\w+)(?:\(|;| = \d+,)")


def comments(lines):
    """The comment of each declaration, by its name."""
    docs, text, scope = {}, [], ""
    for line in map(str.strip, lines):
        if line.startswith("///"):
            text.append(line[4:])
            continue
        code, _, after = line.partition(" ///< ")
        opened, found = SCOPE.match(code), MEMBER.match(code)
        if opened:
            scope = opened[1]
            docs[scope] = "\n".join(text)
        elif found and (after or text) and not "".join(text).startswith("\\name"):
            docs.setdefault(f"{scope}_{found[1]}", after or "\n".join(text))
        text = []
    return docs


def in_python(text):
    text = LEFT_OUT.sub("", text)
    for words, other in WORDS.items():
        text, found = re.subn(r"\s+".join(map(re.escape, words.split())), other, text)
        if found:
            unsaid.discard(words)
    return re.sub(r"\b[a-z]+[A-Z]\w*", lambda found: snake(found[0]), text)


def snake(name):
    return re.sub(r"(?<=[a-z])(?=[A-Z])|(?<=[A-Z])(?=[A-Z][a-z])", "_", name).lower()


output, *headers = sys.argv[1:]
unsaid = set(WORDS)
with open(output, "w", encoding="utf-8") as out:
    for path in headers:
        with open(path, encoding="utf-8") as header:
            for name, text in comments(header).items():
                doc = f'R"doc({in_python(text).strip()})doc"'
                print(f"[[maybe_unused]] constexpr const char* doc_{name} = {doc};", file=out)
if unsaid:
    sys.exit(f"docstrings.py: the headers say nothing of {unsaid}")
