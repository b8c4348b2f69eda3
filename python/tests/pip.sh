#!/bin/sh
# pip.sh: whether pip installs the package, offline, by Debian's Python, from a checkout and from a
# source distribution of it.
set -eu
cd "$(dirname "$0")/../.."
rm -rf build/pip
mkdir -p build/pip/checkout
tar --exclude=./build --exclude=./.git -cf - . | tar -xf - -C build/pip/checkout
cd build/pip
(
    cd checkout
    /usr/bin/python3 -c 'from setuptools import build_meta; build_meta.build_sdist("..")'
) >sdist.log 2>&1
for source in ./checkout ./animationmodel-*.tar.gz; do
    rm -rf venv
    /usr/bin/python3 -m venv --system-site-packages venv
    venv/bin/pip --quiet install --no-index --no-build-isolation "$source"
    venv/bin/python -I checkout/python/quickstart.py | grep -q '^85 frames: '
    venv/bin/python -I -c '
import importlib.metadata, sys, animationmodel
assert animationmodel.__file__.startswith(sys.prefix)
assert animationmodel.__version__ == importlib.metadata.version("animationmodel")'
done
