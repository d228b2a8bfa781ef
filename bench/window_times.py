#!/usr/bin/python3
"""Times of the window of scenepane on an X server without a window manager: from the start of the program to the first
picture of a scan, until a burst of wheel notches has settled, and the processor time of an idle window.

    bench/window_times.py start PROGRAM FILE...   # needs Xvfb; wheel also xdotool
    bench/window_times.py wheel PROGRAM FILE...
    bench/window_times.py idle PROGRAM FILE...

What the window shows is read from the screen. A first run finds what it shows in the end; the times are those until
the middle of the screen is equal to that. Run it on an idle machine, or with `nice -n -19` as root.
"""
import ctypes
import os
import statistics
import subprocess
import sys
import tempfile
import time

SIDE = 120  # pixels of the square that is compared
X11 = ctypes.CDLL("libX11.so.6")


class Image(ctypes.Structure):
    _fields_ = [
        ("width", ctypes.c_int), ("height", ctypes.c_int), ("xoffset", ctypes.c_int), ("format", ctypes.c_int),
        ("data", ctypes.POINTER(ctypes.c_char)), ("byte_order", ctypes.c_int), ("bitmap_unit", ctypes.c_int),
        ("bitmap_bit_order", ctypes.c_int), ("bitmap_pad", ctypes.c_int), ("depth", ctypes.c_int),
        ("bytes_per_line", ctypes.c_int),
    ]  # fmt: skip


X11.XOpenDisplay.restype = ctypes.c_void_p
X11.XDefaultRootWindow.argtypes = [ctypes.c_void_p]
X11.XDefaultRootWindow.restype = ctypes.c_ulong
X11.XGetImage.argtypes = [ctypes.c_void_p, ctypes.c_ulong] + [ctypes.c_int] * 2 + [ctypes.c_uint] * 2
X11.XGetImage.argtypes += [ctypes.c_ulong, ctypes.c_int]
X11.XGetImage.restype = ctypes.POINTER(Image)
X11.XFree.argtypes = [ctypes.c_void_p]


class Screen:
    def __init__(self, number: int) -> None:
        self.name = f":{number}"
        self.server = subprocess.Popen(["Xvfb", self.name, "-screen", "0", "1400x1000x24", "-nolisten", "tcp"])
        self.display = None
        while not self.display:
            time.sleep(0.05)
            self.display = X11.XOpenDisplay(self.name.encode())
        self.root = X11.XDefaultRootWindow(self.display)

    def middle(self, x: int, y: int) -> bytes:
        image = X11.XGetImage(self.display, self.root, x - SIDE // 2, y - SIDE // 2, SIDE, SIDE, 2**32 - 1, 2)
        size = image.contents.bytes_per_line * image.contents.height
        pixels = ctypes.string_at(image.contents.data, size)
        X11.XFree(image.contents.data)
        X11.XFree(image)
        return pixels

    def settled(self, place: tuple, quiet: float) -> tuple:
        """Waits until nothing changes for a time. Returns the picture and when it was first there."""
        shown, since = self.middle(*place), time.monotonic()
        while time.monotonic() - since < quiet:
            time.sleep(0.004)
            now = self.middle(*place)
            if now != shown:
                shown, since = now, time.monotonic()
        return shown, since


def main() -> None:
    if len(sys.argv) < 4 or sys.argv[1] not in ("start", "wheel", "idle"):
        sys.exit(__doc__)
    what, program, files = sys.argv[1], sys.argv[2], sys.argv[3:]
    place = (340, 300)  # in the viewer
    screen = Screen(int(os.environ.get("KV_DISPLAY", "71")))
    folder = tempfile.TemporaryDirectory()
    environment = dict(os.environ, DISPLAY=screen.name, XDG_CONFIG_HOME=folder.name, QT_QPA_PLATFORM="xcb")

    def start() -> tuple:
        began = time.monotonic()
        return subprocess.Popen([program, *files], env=environment, stdout=subprocess.DEVNULL), began

    def processor_seconds(process: subprocess.Popen) -> float:
        fields = open(f"/proc/{process.pid}/stat", encoding="ascii").read().rsplit(")", 1)[1].split()
        return (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK")

    def context_switches(process: subprocess.Popen) -> int:
        with open(f"/proc/{process.pid}/status", encoding="ascii") as lines:
            return sum(int(line.split()[1]) for line in lines if "ctxt_switches" in line)

    def xdotool(*words: str) -> None:
        subprocess.run(["xdotool", *words], env=environment, check=True)

    try:
        process, began = start()
        final, since = screen.settled(place, 8)
        print(f"first run: settled after {since - began:.2f} s")
        if what == "start":
            times = []
            for _ in range(5):
                process.kill()
                process.wait()
                while screen.middle(*place) == final:
                    time.sleep(0.05)
                process, began = start()
                while screen.middle(*place) != final:
                    time.sleep(0.004)
                times.append(time.monotonic() - began)
            print("start to picture, s:", " ".join(f"{t:.3f}" for t in times))
            print(f"median {statistics.median(times):.3f} s")
        elif what == "wheel":
            xdotool("mousemove", str(place[0]), str(place[1]))
            screen.settled(place, 1)
            began, used = time.monotonic(), processor_seconds(process)
            xdotool("click", "--repeat", "20", "--delay", "25", "5")
            sent = time.monotonic() - began
            _, since = screen.settled(place, 6)
            print(f"20 notches in {sent:.2f} s, settled after {since - began:.2f} s, "
                  f"{processor_seconds(process) - used:.1f} s of processor time")
        else:
            used = processor_seconds(process)
            before = context_switches(process)
            time.sleep(10)
            print(f"10 s without input: {processor_seconds(process) - used:.2f} s of processor time, "
                  f"{context_switches(process) - before} context switches of the main thread")
    finally:
        process.kill()
        screen.server.kill()
        screen.server.wait()  # its number is free again


main()
