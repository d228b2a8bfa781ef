"""Builds the installed examples/ against the installed viewer, as a host's project is built, and runs them.

The hosts of X11, Qt, GTK 3 and SDL 2 each show a scan under Xvfb, follow a new size of their window, and
end when it is closed.
"""

import argparse
import os
import subprocess
import sys
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "python"))

from installed import add_options, install, run  # noqa: E402
from x11_client import X11Client  # noqa: E402
from x11_server import X11Server, wait_until  # noqa: E402

BACKGROUND = (25, 25, 50)  # of the viewer
HOSTS = ("x11_host", "qt_host", "gtk_host", "sdl_host")


def is_surface(color: tuple) -> bool:
    return color != BACKGROUND and min(color) > 60


def run_host(name: str, server: X11Server) -> None:
    environment = {**os.environ, "DISPLAY": server.name}
    process = subprocess.Popen([f"build/{name}", "sphere.pcm"], env=environment, stderr=subprocess.PIPE, text=True)

    def fail(what: str) -> None:
        process.kill()
        sys.exit(f"{name}: {what}; its standard error: {process.stderr.read()}")

    with X11Client(server.name) as client:

        def shows(size: tuple) -> bool:
            """A sphere in the middle, nothing in the corner, or the end of the program."""
            right, bottom = size[0] - 3, size[1] - 3
            if process.poll() is not None:
                return True
            middle = client.screen_color(size[0] // 2, size[1] // 2)
            return is_surface(middle) and client.screen_color(right, bottom) == BACKGROUND

        if not wait_until(lambda: shows((800, 600)), 30):
            fail("it does not show the scan")
        for window in client.closable_windows():
            client.resize_window(window, 900, 700)
        if not wait_until(lambda: shows((900, 700)), 30):
            fail("it does not follow its window")
        if process.poll() is not None:
            fail(f"it ended before its window was closed, with {process.returncode}")
        for window in client.closable_windows():
            client.ask_to_close(window)
        if not wait_until(lambda: process.poll() is not None, 30):
            fail("it does not end")
    if process.returncode != 0:
        fail(f"it ended with {process.returncode}")


def run_without_display() -> None:
    """The others print what they find of a scan."""
    for command in (["c_host", "sphere.pcm", "c_host.ppm"], ["cut_mask_host", "sphere.pcm"]):
        if not run(f"build/{command[0]}", *command[1:]):
            sys.exit(f"{command[0]} printed nothing")
    scans = [str(path) for path in sorted(Path("scans").glob("*.pcm"))]
    run("build/alignment_host", *scans[:2])


def main() -> None:
    parser = argparse.ArgumentParser()
    add_options(parser)
    parser.add_argument("--docdir", default="share/doc/KV_ScenePane", help="folder of the documents below the prefix")
    arguments = parser.parse_args()
    install(arguments)
    run("cmake", "-S", arguments.prefix / arguments.docdir / "examples", "-B", "build", "-G", "Ninja",
        f"-DCMAKE_PREFIX_PATH={arguments.prefix}", f"-DCMAKE_CXX_COMPILER={arguments.cxx}",
        f"-DCMAKE_C_COMPILER={arguments.cc}", "-DKV_REQUIRE_TOOLKITS=ON", "--no-warn-unused-cli")
    run("cmake", "--build", "build")
    simulate = arguments.prefix / "bin" / "simulate-scans"
    run(simulate, "--out", "scans", "--shape", "sphere", "--scans", "2", "--size", "320x240")
    Path("sphere.pcm").write_bytes(sorted(Path("scans").glob("*.pcm"))[0].read_bytes())
    with X11Server() as server:
        for name in HOSTS:
            run_host(name, server)
    run_without_display()
    print(f"{len(HOSTS)} hosts with a window")


if __name__ == "__main__":
    main()
