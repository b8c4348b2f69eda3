import base64
import doctest
import importlib.metadata
import inspect
import pathlib
import re
import subprocess
import sys

import animationmodel
import nbconvert
import nbformat.v4
import pytest
from animationmodel import Animation, Hold, Key, Layer, Layers

ROOT = pathlib.Path(__file__).parents[2]
CLASSES = [getattr(animationmodel, name) for name in animationmodel.__all__ if name[0].isupper()]


def run(*arguments, **options):
    return subprocess.check_output([sys.executable, *arguments], text=True, **options)


def test_examples_in_docstrings():
    finder = doctest.DocTestFinder()
    examples = [test for test in finder.find(animationmodel) if test.examples]
    assert {test.name.split(".")[-1] for test in examples} >= {
        "animationmodel", "Animation", "Effect", "Key", "Layer", "Layers", "Playhead", "Rotation"
    }
    for test in examples:
        assert doctest.DocTestRunner().run(test).failed == 0, test.name


@pytest.mark.parametrize("kind", [
    Animation, Key, Layer, Layers, animationmodel.Playhead, animationmodel.Rotation
])
def test_everything_has_a_docstring_and_a_signature(kind):
    inspect.signature(kind)
    for name, member in inspect.getmembers(kind):
        if not name.startswith("_"):
            assert inspect.getdoc(member), name
            if inspect.isroutine(member):
                inspect.signature(member)


def test_docstrings_use_words_of_python():
    said = "\n".join(inspect.getdoc(member) or "" for kind in (Animation, Key, Layer, Layers)
                     for _, member in inspect.getmembers(kind))
    assert not re.findall(r"std::|\bthrows?\b|\b[a-z]+[A-Z]\w*|nullptr|\bconst\b", said)


def test_the_page_is_made_of_the_docstrings():
    made = run(ROOT / "python/document.py")
    how = "script/python python/document.py >docs/python.md"
    assert made == (ROOT / "docs/python.md").read_text(), how


def test_readme_shows_what_runs(tmp_path):
    program = ROOT / "python/quickstart.py"
    assert f"```python\n{program.read_text()}```" in (ROOT / "README.md").read_text()
    said = run(program, cwd=tmp_path)
    assert said.startswith("85 frames: [[0. ]\n")
    assert Animation.load(tmp_path / "lamp.json").duration_in_frames() == 85


def test_types(tmp_path):
    package = pathlib.Path(animationmodel.__file__).parent
    check = "mypy", "--strict", f"--cache-dir={tmp_path}", package, ROOT / "python/tests/typed.py"
    print(run("-m", *check, env={"MYPYPATH": str(package.parent)}))
    print(run("-m", "mypy.stubtest", "animationmodel._core"))
    run(ROOT / "python/tests/typed.py", cwd=tmp_path)


def test_notebooks_can_be_exported():
    show = Animation({"a": [Key(Hold, [1], 3)]})
    shown = {"text/html": show._repr_html_(), "text/plain": repr(show)}
    output = nbformat.v4.new_output("execute_result", shown, execution_count=1)
    cell = nbformat.v4.new_code_cell("show", outputs=[output])
    page, _ = nbconvert.HTMLExporter().from_notebook_node(nbformat.v4.new_notebook(cells=[cell]))
    image = r'<img alt="([^"]*)" src="data:image/svg\+xml;base64,([^"]*)">'
    alternative, picture = re.search(image, page).groups()
    assert base64.b64decode(picture).decode() == show.svg()
    assert alternative == "An animation of 3 frames"
    assert "A &amp; B" in show.svg("A & B")


def test_great_animations_are_no_pictures():
    assert Animation({"a": [Key(Hold, [1], 3)] * 10_001})._repr_html_() is None


def test_the_version_is_that_of_the_library():
    text = (ROOT / "CMakeLists.txt").read_text()
    version = re.search(r"^    VERSION (.*)$", text, re.MULTILINE)[1]
    assert animationmodel.__version__ == version
    assert importlib.metadata.version("animationmodel") == version


def test_hostile_calls_come_back():
    assert run(ROOT / "python/tests/hostile.py", "5000").startswith("5000 calls from seed 1: ")
