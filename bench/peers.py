#!/usr/bin/env python3
"""Times the mesh import of other programs on the files that bench/peer_files times ours on.

    bench/peers.py [BUILD]      BUILD: the build folder, default build/release

VTK (python3-vtk9) and assimp (libassimp5) are timed where they are installed. The time is the best of seven loads in one
process from a warm file cache, without process start. They compute no normals here; this viewer does.
"""
import ctypes
import glob
import subprocess
import sys
import tempfile
import time

RUNS = 7


def best_ms(load):
    times = []
    for _ in range(RUNS):
        start = time.perf_counter()
        triangles, release = load()
        times.append(1000 * (time.perf_counter() - start))
        release()
    return min(times), triangles


def vtk_loaders(path):
    try:
        from vtkmodules.vtkIOGeometry import vtkSTLReader
        from vtkmodules.vtkIOPLY import vtkPLYReader
    except ImportError:
        return

    def load():
        reader = vtkSTLReader() if path.endswith(".stl") else vtkPLYReader()
        reader.SetFileName(path)
        reader.Update()
        return reader.GetOutput().GetNumberOfPolys(), lambda: None

    yield "VTK", load


class AssimpMesh(ctypes.Structure):
    _fields_ = [("primitives", ctypes.c_uint), ("vertices", ctypes.c_uint), ("faces", ctypes.c_uint)]


class AssimpScene(ctypes.Structure):
    _fields_ = [("flags", ctypes.c_uint), ("root", ctypes.c_void_p), ("mesh_count", ctypes.c_uint),
                ("meshes", ctypes.POINTER(ctypes.POINTER(AssimpMesh)))]


JOIN_IDENTICAL_VERTICES = 2


def assimp_loaders(path):
    found = glob.glob("/usr/lib/*/libassimp.so.5")
    if not found:
        return
    library = ctypes.CDLL(found[0])
    library.aiImportFile.restype = ctypes.POINTER(AssimpScene)
    library.aiReleaseImport.argtypes = [ctypes.POINTER(AssimpScene)]
    steps = JOIN_IDENTICAL_VERTICES if path.endswith(".stl") else 0

    def load():
        scene = library.aiImportFile(path.encode(), steps)
        if not scene:
            raise RuntimeError(f"assimp cannot read {path}")
        triangles = sum(scene.contents.meshes[i].contents.faces for i in range(scene.contents.mesh_count))
        return triangles, lambda: library.aiReleaseImport(scene)

    yield "assimp", load


def main():
    build = sys.argv[1] if len(sys.argv) > 1 else "build/release"
    with tempfile.TemporaryDirectory() as folder:
        ours = subprocess.run([f"{build}/bin/peer_files", folder], check=True, capture_output=True, text=True).stdout
        for line in ours.splitlines():
            path, milliseconds = line.rsplit(" ", 1)
            name = path.rsplit("/", 1)[1]
            print(f"{name:18} {'this viewer':12} {float(milliseconds):8.1f} ms")
            if name.endswith(".hps"):
                continue  # the other programs cannot read it
            for program, load in [*vtk_loaders(path), *assimp_loaders(path)]:
                took, triangles = best_ms(load)
                print(f"{name:18} {program:12} {took:8.1f} ms  {triangles} triangles")


if __name__ == "__main__":
    main()
