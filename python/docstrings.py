"""Writes the comments of the public headers as docstrings: docstrings.py DOCSTRINGS.H HEADER ...

Each first overload gives a constant, doc_Animation_insert, doc_Animation for the class itself. The
words are those of C++ where Python has the same ones, and Python's where it has others.
"""

import re
import sys

WORDS = {
    "std::invalid_argument": "ValueError",
    "std::bad_alloc": "MemoryError",
    "AnimationKeyCommand": "Key",
    "AnimationKey": "Key",
    "`reset()`": "`reset`",
    ".at(name)": "[name]",
    "std::vector": "list",
    "::": ".",
}
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
    for word, other in WORDS.items():
        text = text.replace(word, other)
    return re.sub(r"\b[a-z]+[A-Z]\w*", lambda found: snake(found[0]), text)


def snake(name):
    return re.sub(r"(?<=[a-z])(?=[A-Z])|(?<=[A-Z])(?=[A-Z][a-z])", "_", name).lower()


output, *headers = sys.argv[1:]
with open(output, "w", encoding="utf-8") as out:
    for path in headers:
        with open(path, encoding="utf-8") as header:
            for name, text in comments(header).items():
                doc = f'R"doc({in_python(text).strip()})doc"'
                print(f"[[maybe_unused]] constexpr const char* doc_{name} = {doc};", file=out)
