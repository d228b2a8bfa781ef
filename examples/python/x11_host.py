"""The viewer in a window of another program: x11_host.py WINDOW_ID FILE...

WINDOW_ID is that of any window of X11, such as a toolkit returns or xwininfo prints; 0x... is
accepted. The viewer fills it until it is closed.
"""

import select
import sys

import kv_scenepane as kv


def main(window_id: int, paths: list) -> int:
    with kv.ScenePane.child(window_id, 800, 600) as pane:
        for path in paths:
            pane.ImportScan(path, 0xC8D4DC)
        pane.CenterView()
        # The whole event loop: a program of its own adds its descriptors to the list.
        while pane.has_window:
            select.select([pane.fileno()], [], [])
            pane.process_events()
    return 0


if __name__ == "__main__":
    if len(sys.argv) < 2:
        sys.exit(__doc__)
    sys.exit(main(int(sys.argv[1], 0), sys.argv[2:]))
