#!/usr/bin/env python3
"""Checks the layers of the code by its #include lines and its CMake targets, and draws them.

    scripts/include_graph.py [--check] [--build FOLDER] [--svg FILE]

Without options: draws docs/include-graph.svg. With --check: prints every violation of the rules below and exits with 1 when
there is one; draws only when --svg is given. --build is a configured build folder (build/release) for the targets.

Layers of src/, lowest first; an include goes to its own layer or downward:
  0 base        src/base
  1 foundation  log, geometry, platform, io: without the control
  2 blocks      view, markers, clip, cut, render, align: without the control
  3 control     the headers of src/control
  4 operations  source files that a module's CMakeLists.txt lists as OPERATIONS, and the sources of src/control

Of src/, programs see src/base (tools), the layers that are foundation (reader) and the automation table (bindings). The
host sees of reader/ the headers of what both programs agree on.
"""
import argparse
import collections
import html
import pathlib
import posixpath
import re
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent
FOLDERS = ("src", "libs", "host", "include", "tools", "reader", "bindings")
PROGRAMS = ("host", "reader", "bindings", "tools")
SOURCES = (".h", ".cpp")
FOUNDATION = ("log", "geometry", "platform", "io")
# What the host and scenepane-read have in common.
READER_SEAM = ("reader/ReaderResult.h", "reader/ReaderProgram.h", "reader/PlyHeader.h")
LAYER_NAMES = ("base", "foundation", "building blocks", "control header", "operations")
# Headers that no public header may include: a host needs none of these libraries.
PRIVATE_TO_US = re.compile(r"^(GL|Eigen|X11|EGL|Qt\w*)/|^Q[A-Z]\w+$|^(glew|eigen3)")


def read_includes():
    """File -> list of (line number, text between the brackets or quotes), for all C++ files; paths relative to ROOT."""
    includes = {}
    for folder in FOLDERS:
        for path in sorted((ROOT / folder).rglob("*")):
            if path.suffix not in SOURCES:
                continue
            lines = path.read_text(encoding="utf-8").splitlines()
            matches = ((i, re.match(r'\s*#\s*include\s*[<"]([^>"]+)[>"]', line)) for i, line in enumerate(lines, 1))
            includes[str(path.relative_to(ROOT))] = [(i, match[1]) for i, match in matches if match]
    return includes


def resolve(file, name, known, roots):
    """The project's file that an include names, or None for a header of another library."""
    for folder in [str(pathlib.PurePosixPath(file).parent), *roots]:
        candidate = posixpath.normpath(f"{folder}/{name}")
        if candidate in known:
            return candidate
    return None


def file_edges(includes):
    """List of (including file, line, included file), within the project."""
    roots = list(FOLDERS)
    roots += sorted(str(path.relative_to(ROOT)) for path in ROOT.glob("libs/*/include"))
    edges = []
    for file, lines in includes.items():
        for number, name in lines:
            target = resolve(file, name, includes, roots)
            if target:
                edges.append((file, number, target))
    return edges


def read_operations():
    """The source files that the modules list as OPERATIONS."""
    operations = set()
    for path in sorted((ROOT / "src").glob("*/CMakeLists.txt")):
        text = re.sub(r"#.*", "", path.read_text(encoding="utf-8"))
        for call in re.findall(r"kv_module\(([^)]*)\)", text):
            words = call.split()
            if "OPERATIONS" not in words:
                continue
            for word in words[words.index("OPERATIONS") + 1:]:
                if word.isupper():
                    break
                operations.add(str(path.parent.relative_to(ROOT) / word))
    return operations


def layer_of(file, operations):
    """The layer of a file of src/, None for others."""
    parts = file.split("/")
    if parts[0] != "src" or len(parts) < 3:
        return None
    if parts[1] == "base":
        return 0
    if parts[1] == "control":
        return 3 if file.endswith(".h") else 4
    if file in operations:
        return 4
    return 1 if parts[1] in FOUNDATION else 2


def is_public_library_header(file):
    """What programs may use of libs/: the public headers of the libraries, the plain file functions in libs/files, and the
    options."""
    return re.match(r"libs/([^/]+/include|files|options)/", file) is not None


def may_include(file, target, operations):
    """An empty string when the include is allowed, else the rule that it breaks."""
    area, other = file.split("/")[0], target.split("/")[0]
    if area == "src":
        if other == "src":
            mine, theirs = layer_of(file, operations), layer_of(target, operations)
            if file.endswith(".h") and mine < 3 and target == "src/control/ScenePaneCtrl.h":
                return "a header of a module includes the control's header"
            if target.endswith(".cpp"):
                return "a source file is included"
            return "" if theirs <= mine else f"{LAYER_NAMES[mine]} include {LAYER_NAMES[theirs]}"
        return "" if other in ("include", "libs") else f"src includes {other}"
    if area == "libs":
        return "" if other in ("libs", "include") else f"libs include {other}"
    if area == "include":
        return "" if other == "include" else f"a public header includes {other}"
    if area == "host":
        allowed = other in ("host", "include") or is_public_library_header(target) or target in READER_SEAM
        return "" if allowed else f"host includes {other}, which is not public"
    if area == "reader":
        allowed = other in ("reader", "include", "libs") or (other == "src" and layer_of(target, operations) <= 1)
        return "" if allowed else f"the reader includes {target}"
    if area == "bindings":
        # The table needs the abstract classes only, so that the generator is built without the control.
        allowed = other in ("bindings", "include") or target == "src/control/AutomationTable.h"
        return "" if allowed else f"bindings include {target}"
    # src/base needs neither OpenGL nor a window system, so that tools may use it.
    allowed = other in ("tools", "include", "libs") or target.startswith("src/base/")
    return "" if allowed else f"tools include {other}"


def circles(graph):
    """The strongly connected components of more than one node (Tarjan's algorithm, without recursion)."""
    index, low, on_stack, stack, found = {}, {}, set(), [], []
    for root in graph:
        if root in index:
            continue
        work = [(root, iter(sorted(graph[root])))]
        index[root] = low[root] = len(index)
        stack.append(root)
        on_stack.add(root)
        while work:
            node, following = work[-1]
            for other in following:
                if other not in index:
                    index[other] = low[other] = len(index)
                    stack.append(other)
                    on_stack.add(other)
                    work.append((other, iter(sorted(graph.get(other, ())))))
                    break
                if other in on_stack:
                    low[node] = min(low[node], index[other])
            else:
                work.pop()
                if work:
                    low[work[-1][0]] = min(low[work[-1][0]], low[node])
                if low[node] == index[node]:
                    component = []
                    while not component or component[-1] != node:
                        component.append(stack.pop())
                        on_stack.discard(component[-1])
                    if len(component) > 1 or node in graph[node]:
                        found.append(sorted(component))
    return found


def target_graph(build):
    """Target -> targets that it links, as CMake knows them."""
    with tempfile.TemporaryDirectory() as folder:
        dot = pathlib.Path(folder) / "targets.dot"
        run = subprocess.run(["cmake", f"--graphviz={dot}", str(build)], capture_output=True, text=True, check=False)
        if run.returncode != 0 or not dot.exists():
            sys.exit(f"cmake --graphviz {build}: {run.stdout}{run.stderr}")
        text = dot.read_text(encoding="utf-8")
    names = {}
    for node, label in re.findall(r'"(node\d+)" \[ label = "([^"]*)"', text):
        names[node] = label.split("\\n")[0]
    graph = {name: set() for name in names.values()}
    for source, target in re.findall(r'"(node\d+)" -> "(node\d+)"', text):
        graph[names[source]].add(names[target])
    return graph


def violations(includes, edges, operations):
    found = []
    for file, number, target in edges:
        reason = may_include(file, target, operations)
        if reason:
            found.append(f"{file}:{number}: includes {target}: {reason}")
    for file, lines in includes.items():
        if file.startswith("include/") or is_public_library_header(file):
            found += [f"{file}:{number}: a public header includes <{name}>"
                      for number, name in lines if PRIVATE_TO_US.match(name)]
    graph = {file: set() for file in includes}
    for file, _, target in edges:
        graph[file].add(target)
    found += ["files include each other: " + ", ".join(circle) for circle in circles(graph)]
    return found


# ---- the picture

BOX_WIDTH, BOX_HEIGHT, COLUMN, ROW, MARGIN, SIDE = 128, 58, 182, 168, 30, 130
# Out of the middle, so that the arrows of the upper box do not run through the lower one; in columns.
ASIDE = {"host": -1.0, "tools": 3.0, "operations": -1.0, "control header": 0.9, "base": 2.3}
COLORS = ("#e8e8e8", "#d9ead3", "#d0e0f3", "#fff2cc", "#f4d9c6", "#e6dcf0")
LINES = ("#777777", "#4a7c3a", "#2f6ca8", "#a8820a", "#b5592a", "#6f4e9b", "#b03060", "#2a8a8a")


def box_of(file, operations):
    """The (row, box) of the picture that a file belongs to; rows are counted from the top."""
    parts = file.split("/")
    if parts[0] in PROGRAMS:
        return 0, parts[0]
    layer = layer_of(file, operations)
    if layer == 4:
        return 1, "operations"
    if layer == 3:
        return 2, "control header"
    if layer is not None:
        return {2: 3, 1: 4, 0: 5}[layer], parts[1]
    return (6, "public headers") if parts[0] == "include" else (6, parts[1])


def arranged(boxes, counts):
    """The boxes of every row in an order with few crossings: several sweeps by the mean column of the neighbours."""
    rows = [sorted(name for row, name in boxes if row == wanted) for wanted in range(7)]
    for _ in range(12):
        place = {name: (i + 0.5) / len(row) for row in rows for i, name in enumerate(row)}
        for row in rows:
            def centre(name):
                near = [(place[b if a == name else a], n) for (a, b), n in counts.items() if name in (a, b)]
                weight = sum(n for _, n in near)
                return sum(x * n for x, n in near) / weight if weight else 0.5
            row.sort(key=lambda name: (centre(name), name))
    return rows


def draw(includes, edges, operations):
    """The picture as SVG text."""
    boxes, sizes, counts = set(), collections.Counter(), collections.Counter()
    for file in includes:
        boxes.add(box_of(file, operations))
        sizes[box_of(file, operations)[1]] += 1
    for file, _, target in edges:
        source, other = box_of(file, operations)[1], box_of(target, operations)[1]
        if source != other:
            counts[source, other] += 1
    # Nearly everything includes these two: a number in the box instead of an arrow.
    common = ("base", "public headers")
    arrows = {pair: n for pair, n in counts.items() if pair[1] not in common}
    rows = arranged(boxes, arrows)
    width = SIDE + 2 * MARGIN + COLUMN * max(len(row) for row in rows)
    place = {}
    for i, row in enumerate(rows):
        left = SIDE + MARGIN + (width - SIDE - 2 * MARGIN - COLUMN * len(row)) / 2
        for j, name in enumerate(row):
            shift = ASIDE.get(name, 0) * COLUMN
            place[name] = (left + shift + COLUMN * (j + 0.5), MARGIN + 30 + ROW * i + BOX_HEIGHT / 2)
    height = MARGIN * 2 + 30 + ROW * (len(rows) - 1) + BOX_HEIGHT + 70
    in_order = [name for row in rows for name in row]

    out = [f'<svg xmlns="http://www.w3.org/2000/svg" width="{width:.0f}" height="{height:.0f}" '
           f'viewBox="0 0 {width:.0f} {height:.0f}" font-family="sans-serif" font-size="12">',
           "<!-- Made by scripts/include_graph.py -->", f'<rect width="{width:.0f}" height="{height:.0f}" fill="white"/>',
           f'<text x="{MARGIN}" y="{MARGIN}" font-size="14">Includes between modules: an arrow and its number say how many '
           "#include lines go from one to the other.</text>"]
    titles = ("programs", "operations", "control header", "building blocks", "foundation", "base", "libraries and headers")
    for i, title in enumerate(titles):
        out.append(f'<text x="{MARGIN}" y="{MARGIN + 34 + ROW * i + BOX_HEIGHT / 2:.0f}" fill="#666666">{title}</text>')

    labels = []
    row_of = {name: row for row, name in boxes}
    # Arrows leave and arrive side by side, in the order of the boxes at their other ends.
    leaving, arriving = collections.defaultdict(list), collections.defaultdict(list)
    for source, other in arrows:
        if row_of[source] != row_of[other]:
            leaving[source].append(other)
            arriving[other].append(source)

    def port(name, others, other):
        ordered = sorted(others, key=lambda entry: place[entry][0])
        return place[name][0] + BOX_WIDTH * 0.9 * ((ordered.index(other) + 1) / (len(ordered) + 1) - 0.5)

    for (source, other), number in sorted(arrows.items()):
        color = LINES[in_order.index(source) % len(LINES)]
        if row_of[source] == row_of[other]:  # an arc below the row
            (x0, y0), (x1, y1) = place[source], place[other]
            side = BOX_WIDTH * 0.3 * (1 if x1 > x0 else -1)
            x0, x1, y0 = x0 + side, x1 - side, y0 + BOX_HEIGHT / 2
            depth = 26 + 0.07 * abs(x1 - x0) + (8 if x1 < x0 else 0)
            path = f"M{x0:.1f},{y0:.1f} C{x0:.1f},{y0 + depth:.1f} {x1:.1f},{y0 + depth:.1f} {x1:.1f},{y0 + 5:.1f}"
            tip = (x1, y0, -1)
            labels.append(((x0 + x1) / 2, y0 + depth * 0.75 + 3, number, color))
        else:
            x0, y0 = port(source, leaving[source], other), place[source][1] + BOX_HEIGHT / 2
            x1, y1 = port(other, arriving[other], source), place[other][1] - BOX_HEIGHT / 2
            bend = min(70, (y1 - y0) * 0.45)
            path = f"M{x0:.1f},{y0:.1f} C{x0:.1f},{y0 + bend:.1f} {x1:.1f},{y1 - bend:.1f} {x1:.1f},{y1 - 5:.1f}"
            tip = (x1, y1, 1)
            step = sorted(leaving[source], key=lambda entry: place[entry][0]).index(other) % 2
            labels.append((x0, y0 + 13 + 12 * step, number, color))
        out.append(f'<path d="{path}" fill="none" stroke="{color}" stroke-width="{1 + min(number, 30) / 15:.1f}" '
                   'stroke-opacity="0.75"/>')
        x, y, way = tip
        out.append(f'<path d="M{x:.1f},{y:.1f} l-4,{-8 * way} l8,0 z" fill="{color}"/>')
    for x, y, number, color in labels:
        out.append(f'<text x="{x:.1f}" y="{y:.1f}" text-anchor="middle" font-size="11" fill="{color}" stroke="white" '
                   f'stroke-width="3" paint-order="stroke">{number}</text>')
    for row, name in sorted(boxes):
        x, y = place[name]
        lines = [name, f"{sizes[name]} files"]
        uses = [f"{word} {counts[name, other]}" for word, other in (("base", "base"), ("public", "public headers"))
                if counts[name, other]]
        if uses:
            lines.append(", ".join(uses))
        out.append(f'<rect x="{x - BOX_WIDTH / 2:.1f}" y="{y - BOX_HEIGHT / 2:.1f}" width="{BOX_WIDTH}" '
                   f'height="{BOX_HEIGHT}" rx="5" fill="{COLORS[min(row, 5)]}" stroke="#555555"/>')
        for i, line in enumerate(lines):
            weight = ' font-weight="bold"' if i == 0 else ' font-size="11" fill="#444444"'
            out.append(f'<text x="{x:.1f}" y="{y - 12 + 16 * i:.1f}" text-anchor="middle"{weight}>{html.escape(line)}</text>')
    out.append(f'<text x="{MARGIN}" y="{height - MARGIN / 2:.0f}" fill="#666666">Not as arrows: "base" and "public" in a box '
               "count the includes of src/base and of the public headers (include/).</text>")
    out.append("</svg>")
    return "\n".join(out) + "\n"


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--check", action="store_true")
    parser.add_argument("--build", type=pathlib.Path, default=ROOT / "build" / "release")
    parser.add_argument("--svg", type=pathlib.Path)
    options = parser.parse_args()

    includes = read_includes()
    edges = file_edges(includes)
    operations = read_operations()
    if options.svg or not options.check:
        picture = options.svg or ROOT / "docs" / "include-graph.svg"
        picture.write_text(draw(includes, edges, operations), encoding="utf-8")
        print(f"drawn: {picture}")
    if not options.check:
        return 0

    if not edges or not operations:
        sys.exit("no includes or no operations were found: the folders are not where this script expects them")
    found = violations(includes, edges, operations)
    targets = target_graph(options.build)
    found += ["targets link each other: " + ", ".join(circle) for circle in circles(targets)]
    for line in found:
        print(line)
    print(f"include graph: {len(includes)} files, {len(edges)} includes, {len(targets)} targets, {len(found)} violations")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
