"""Compiles and runs every fragment of code in README.md and docs/*.md against an installed viewer.

The C++ fragments are put into the programs of snippets/, which the CMake fragment of docs/hosting.md
finds the package for; the program in C is built by the command line that the page gives; README.md's
fragment in Python and its command lines of scenepane are run as they are. The fragments in Python of
docs/python.md and those of docs/automation.md have tests of their own (tests/python).

A fragment that no program has, and a program's line that no fragment fits, is an error.
"""

import argparse
import os
import re
import shlex
import subprocess
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "tests" / "python"))

from installed import add_options, install, run  # noqa: E402
from x11_client import X11Client  # noqa: E402
from x11_server import X11Server, wait_until  # noqa: E402

ELSEWHERE = ("docs/python.md", "docs/automation.md")
PROGRAMS = ("frames.cpp", "top_level.cpp", "with_qt.cpp")


class Fragment:
    """A fenced block of a document: its language, text, and the line of the document it starts at."""

    def __init__(self, document: str, language: str, text: str, line: int) -> None:
        self.document, self.language, self.text, self.line = document, language, text, line

    def __str__(self) -> str:
        return f"{self.document}:{self.line} ({self.language})"


def fragments() -> list:
    found = []
    for path in [ROOT / "README.md", *sorted((ROOT / "docs").glob("*.md"))]:
        document = str(path.relative_to(ROOT))
        text = path.read_text(encoding="utf-8")
        for block in re.finditer(r"^```(\w+)\n(.*?)^```$", text, re.S | re.M):
            line = text.count("\n", 0, block.start(2)) + 1
            found.append(Fragment(document, block[1], block[2], line))
    return found


def take(pending: list, document: str, language: str, part: str) -> Fragment:
    """Removes the one fragment that holds the part."""
    fitting = [
        f for f in pending if (f.document, f.language) == (document, language) and part in f.text
    ]
    if len(fitting) != 1:
        sys.exit(f"{len(fitting)} {language} fragments of {document} hold \"{part}\", not one")
    pending.remove(fitting[0])
    return fitting[0]


def fill(source: Path, pending: list) -> str:
    """The program with the fragments in place of its marked lines, their includes at its top."""
    includes, body = [], []
    for number, line in enumerate(source.read_text(encoding="utf-8").splitlines(), 1):
        mark = re.match(r"\s*//@ (\S+): (.*)", line)
        if mark is None:
            body.append(line)
            continue
        fragment = take(pending, mark[1], "cpp", mark[2])
        lines = fragment.text.splitlines()
        includes += [text for text in lines if text.startswith("#include")]
        body.append(f'#line {fragment.line} "{fragment.document}"')
        body += ["" if text.startswith("#include") else text for text in lines]
        body.append(f'#line {number + 1} "{source.name}"')
    return "\n".join(dict.fromkeys(includes)) + f'\n#line 1 "{source.name}"\n' + "\n".join(body) + "\n"


def make_files(prefix: Path) -> None:
    """The files that the fragments name, in the present folder."""
    simulate = prefix / "bin" / "simulate-scans"
    run(simulate, "--out", "scans", "--scans", "2", "--size", "160x120", "--format", "pcm")
    first, second = sorted(Path("scans").glob("*.pcm"))
    for name in ("part.pcm", "tooth.pcm", "left.pcm", "cut.pcm"):
        Path(name).write_bytes(first.read_bytes())
    Path("right.pcm").write_bytes(second.read_bytes())
    # A curved square of 21 x 21 vertices, so that the clip plane finds a height.
    points = [(x, y, 0.01 * (x - 10) * (y - 10)) for y in range(21) for x in range(21)]
    corners = [21 * y + x for y in range(20) for x in range(20)]
    faces = [f for c in corners for f in ((c, c + 1, c + 21), (c + 1, c + 22, c + 21))]
    header = ["ply", "format ascii 1.0", f"element vertex {len(points)}"]
    header += [f"property float {axis}" for axis in "xyz"]
    header += [f"element face {len(faces)}", "property list uchar int vertex_indices", "end_header"]
    rows = [" ".join(map(str, point)) for point in points] + [f"3 {a} {b} {c}" for a, b, c in faces]
    Path("part.ply").write_text("\n".join(header + rows) + "\n", encoding="ascii")
    Path("mould.ply").write_text("\n".join(header + rows) + "\n", encoding="ascii")
    cloud = ["# .PCD v0.7", "VERSION 0.7", "FIELDS x y z", "SIZE 4 4 4", "TYPE F F F", "COUNT 1 1 1"]
    cloud += ["WIDTH 2", "HEIGHT 1", "VIEWPOINT 0 0 0 1 0 0 0", "POINTS 2", "DATA ascii", "0 0 0", "1 1 1"]
    Path("part.pcd").write_text("\n".join(cloud) + "\n", encoding="ascii")


def run_top_level(program: Path, environment: dict, server: X11Server) -> None:
    """Opens the window, closes it as a window manager does, and expects the end of the program."""
    process = subprocess.Popen([program, "part.ply"], env=environment, stderr=subprocess.PIPE, text=True)
    windows: list = []

    def is_shown() -> bool:
        search = ["xdotool", "search", "--onlyvisible", "--name", "^Parts$"]
        windows[:] = subprocess.run(search, env=environment, stdout=subprocess.PIPE, text=True).stdout.split()
        return bool(windows) or process.poll() is not None

    wait_until(is_shown)
    with X11Client(server.name) as client:
        for window in windows:
            client.ask_to_close(int(window))
    if not wait_until(lambda: process.poll() is not None):
        process.kill()
    if not windows or process.wait() != 0:
        sys.exit(f"{program} ended with {process.wait()}: {process.stderr.read()}")


def build_and_run_cpp(arguments: argparse.Namespace, pending: list) -> None:
    project = Path("project")
    project.mkdir()
    sources = Path(__file__).parent / "snippets"
    (project / "CMakeLists.txt").write_text((sources / "CMakeLists.txt").read_text(encoding="utf-8"))
    fragment = take(pending, "docs/hosting.md", "cmake", "find_package")
    (project / "snippets.cmake").write_text(fragment.text, encoding="utf-8")
    for name in PROGRAMS:
        (project / name).write_text(fill(sources / name, pending), encoding="utf-8")
    run("cmake", "-S", project, "-B", "build", "-G", "Ninja", f"-DCMAKE_PREFIX_PATH={arguments.prefix}",
        f"-DCMAKE_CXX_COMPILER={arguments.cxx}", "--no-warn-unused-cli")
    run("cmake", "--build", "build")
    with X11Server() as server:
        environment = {**os.environ, "DISPLAY": server.name}
        print(run("build/my_host", env=environment), end="")
        run_top_level(Path("build/top_level").resolve(), environment, server)
    run("build/with_qt")


def build_and_run_c(arguments: argparse.Namespace, pending: list) -> None:
    Path("host.c").write_text(take(pending, "docs/hosting.md", "c", "int main").text, encoding="utf-8")
    text = (ROOT / "docs" / "hosting.md").read_text(encoding="utf-8")
    command = re.search(r"`(cc host\.c .*?)`", text)
    assert command is not None and f"    {command[1]} " in (ROOT / "README.md").read_text(encoding="utf-8")
    library = arguments.prefix / arguments.libdir
    environment = {**os.environ, "PKG_CONFIG_LIBDIR": str(library / "pkgconfig"),
                   "LIBRARY_PATH": str(library), "LD_LIBRARY_PATH": str(library)}
    run("sh", "-c", command[1], env=environment)
    output = run("./a.out", "part.ply", env=environment)
    if output != "spheres: 0\nobjects: 1\n":
        sys.exit(f"the program in C wrote {output!r}")


def run_python(arguments: argparse.Namespace, pending: list) -> None:
    Path("readme.py").write_text(take(pending, "README.md", "python", "import").text, encoding="utf-8")
    if arguments.python_path is None:
        print("README.md: its Python is not run, there is no package")
        return
    run(sys.executable, "readme.py", env={**os.environ, "PYTHONPATH": str(arguments.python_path)})
    assert Path("tooth.png").stat().st_size > 1000


def run_command_lines(arguments: argparse.Namespace) -> None:
    """The lines "$ scenepane ..." of README.md, in their order, each with exit status 0."""
    if not (arguments.prefix / "bin" / "scenepane").exists():
        print("README.md: its command lines are not run, scenepane is not installed")
        return
    text = (ROOT / "README.md").read_text(encoding="utf-8")
    pairs = re.search(r"^    \$ cat pairs\.txt\n((?:    [^$].*\n)+)", text, re.M)
    assert pairs is not None
    Path("pairs.txt").write_text(re.sub(r"^    ", "", pairs[1], flags=re.M), encoding="ascii")
    Path("list.txt").write_text("part.ply\nleft.pcm\n", encoding="ascii")
    lines = re.findall(r"^    \$ (scenepane .*)$", text, re.M)
    assert len(lines) >= 10
    path = f"{arguments.prefix / 'bin'}:{os.environ['PATH']}"
    run("scenepane", "--convert", "part.ply", "copied.stl", env={**os.environ, "PATH": path})
    whole = Path("copied.stl").read_bytes()
    Path("copied.stl").write_bytes(whole[: len(whole) * 3 // 5])
    for line in lines:
        run("sh", "-c", line, env={**os.environ, "PATH": path})
    print(f"{len(lines)} command lines")


def main() -> None:
    parser = argparse.ArgumentParser()
    add_options(parser)
    parser.add_argument("--python-path", type=Path, help="folder of the Python package")
    arguments = parser.parse_args()
    if arguments.python_path is not None:
        arguments.python_path = arguments.python_path.resolve()
    install(arguments)
    pending = [fragment for fragment in fragments() if fragment.document not in ELSEWHERE]
    make_files(arguments.prefix)
    build_and_run_cpp(arguments, pending)
    build_and_run_c(arguments, pending)
    run_python(arguments, pending)
    run_command_lines(arguments)
    if pending:
        sys.exit("no program has these fragments: " + ", ".join(map(str, pending)))


if __name__ == "__main__":
    main()
