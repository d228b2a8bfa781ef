"""An installed viewer for the tests of the package: the options that say where it is, and commands."""

import argparse
import os
import shlex
import shutil
import subprocess
import sys
from pathlib import Path


def add_options(parser: argparse.ArgumentParser) -> None:
    parser.add_argument("--build", type=Path, help="the build folder that is installed")
    parser.add_argument("--prefix", type=Path, help="in its place, where the viewer is installed already")
    parser.add_argument("--libdir", default="lib", help="folder of the libraries below the prefix")
    parser.add_argument("--cxx", default="c++")
    parser.add_argument("--cc", default="cc")
    parser.add_argument("--work", type=Path, required=True, help="a folder for the test, which is emptied")


def install(arguments: argparse.Namespace) -> None:
    """Enters the empty folder of the test; arguments.prefix is an installed viewer then."""
    if arguments.build is not None:
        arguments.build = arguments.build.resolve()
    if arguments.prefix is not None:
        arguments.prefix = arguments.prefix.resolve()
    shutil.rmtree(arguments.work, ignore_errors=True)
    arguments.work.mkdir(parents=True)
    os.chdir(arguments.work)
    if arguments.prefix is None:
        arguments.prefix = Path("prefix").resolve()
        run("cmake", "--install", arguments.build, "--prefix", arguments.prefix)


def run(*command: object, **options: object) -> str:
    """What the command writes; the end of the test when it fails."""
    words = [str(word) for word in command]
    done = subprocess.run(words, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, **options)
    if done.returncode != 0:
        sys.exit(f"{shlex.join(words)}\nended with {done.returncode}:\n{done.stdout}")
    return done.stdout
