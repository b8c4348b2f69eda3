"""Builds the Python package with the library in it; pyproject.toml says the rest."""

import glob
import pathlib
import re
import sysconfig

from pybind11.setup_helpers import ParallelCompile, Pybind11Extension
from setuptools import setup

text = pathlib.Path(__file__).with_name("CMakeLists.txt").read_text()
version = re.search(r"^ *VERSION ([0-9.]+)$", text, re.MULTILINE)[1]

# The values at cuts are the same on all machines: each float operation is rounded by itself.
flags = ["-ffp-contract=off"]
if sysconfig.get_platform().endswith(("-i386", "-i686")):
    flags += ["-msse2", "-mfpmath=sse"]

ParallelCompile().install()  # on all processors
setup(
    version=version,
    packages=["animationmodel"],
    package_dir={"animationmodel": "python/src/animationmodel"},
    package_data={"animationmodel": ["_core.pyi", "py.typed"]},
    ext_modules=[
        Pybind11Extension(
            "animationmodel._core",
            ["python/module.cpp", *sorted(glob.glob("src/*.cpp"))]
            + [f"view/{name}.cpp" for name in ("Colour", "Measures", "Picture", "Text")],
            include_dirs=["include", "view"],
            define_macros=[
                ("ANIMATIONMODEL_STATIC_DEFINE", None),
                ("ANIMATIONMODEL_VERSION", f'"{version}"'),
            ],
            extra_compile_args=flags,
            cxx_std=20,
        )
    ],
)
