"""Prints docs/python.md, which is made of the docstrings:

    script/python python/document.py >docs/python.md
"""

import inspect

import animationmodel
from animationmodel import Animation, Effect, Key, Layer, Layers, Playhead, Rotation


def text_of(thing):
    """Its docstring, in which examples become blocks of code, too."""
    paragraphs = inspect.getdoc(thing).split("\n\n")
    fenced = (f"```python\n{text}\n```" if text.startswith(">>>") else text for text in paragraphs)
    return "\n\n".join(fenced)


def call_of(name, function):
    """How it is called, without types: its docstring says them."""
    signature = inspect.signature(function)
    parameters = [
        parameter.replace(annotation=parameter.empty)
        for parameter in signature.parameters.values()
        if parameter.name != "self"
    ]
    return f"{name}{inspect.Signature(parameters)}"


def heading_of(kind, name, member):
    if isinstance(member, staticmethod):
        return call_of(f"{kind.__name__}.{name}", member.__func__)
    return call_of(name, member) if inspect.isfunction(member) else name


def print_class(kind):
    called = kind in (Animation, Key, Playhead, Rotation)
    heading = f"`{call_of(kind.__name__, kind)}`" if called else kind.__name__
    print(f"\n## {heading}\n\n{text_of(kind)}")
    for name, member in vars(kind).items():
        if not name.startswith("_") and kind is not Effect:
            print(f"\n### `{heading_of(kind, name, member)}`\n\n{text_of(member)}")


print(f"# Python\n\n{text_of(animationmodel)}")
for kind in (Animation, Layers, Layer, Key, Effect, Playhead, Rotation):
    print_class(kind)
