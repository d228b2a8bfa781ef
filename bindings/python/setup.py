"""Makes a wheel of the package that a build has staged; it compiles nothing.

    pip wheel --no-build-isolation --no-deps --no-index -w OUT bindings/python

KV_BUILD_DIR names the build folder, build/release by default. Nothing is written into this folder.
"""

import atexit
import os
import runpy
import shutil
import sysconfig
import tempfile
from pathlib import Path

from setuptools import Distribution, setup
from wheel.bdist_wheel import bdist_wheel

ROOT = Path(__file__).resolve().parents[2]
STAGED = Path(os.environ.get("KV_BUILD_DIR", ROOT / "build" / "release")).resolve() / "python"
PACKAGE = STAGED / "kv_scenepane"

SONAME = PACKAGE / "_soname.py"  # names the library of this version

LIBRARIES = ["libKV_Components.so.1", "libKV_UtilsLantern.so.1", "libMSRDLL.so.1"]
if SONAME.is_file():
    LIBRARIES.append(runpy.run_path(str(SONAME))["LIBRARY"])


class PlatformWheel(bdist_wheel):
    """A wheel for every version of Python: the libraries are called through ctypes."""

    def get_tag(self) -> tuple:
        return "py3", "none", sysconfig.get_platform().replace("-", "_").replace(".", "_")


class PackageWithLibraries(Distribution):
    """Is installed where extension modules are, although there is none."""

    def has_ext_modules(self) -> bool:
        return True


def check_staged() -> None:
    files = ("__init__.py", SONAME.name, *LIBRARIES)
    missing = [name for name in files if not (PACKAGE / name).is_file()]
    if missing:
        raise SystemExit(
            f"{PACKAGE} is not complete, there is no {missing[0]}: build the project first "
            "(cmake --build --preset release), or name another build folder by KV_BUILD_DIR"
        )


def scratch() -> str:
    """A folder for what setuptools leaves behind."""
    folder = tempfile.mkdtemp(prefix="kv_scenepane-")
    atexit.register(shutil.rmtree, folder, ignore_errors=True)
    return folder


check_staged()
SCRATCH = scratch()
setup(
    version=(STAGED / "VERSION").read_text(encoding="ascii").strip(),
    packages=["kv_scenepane"],
    package_dir={"kv_scenepane": str(PACKAGE)},
    package_data={"kv_scenepane": ["py.typed", "*.pyi", *LIBRARIES]},
    include_package_data=False,
    distclass=PackageWithLibraries,
    cmdclass={"bdist_wheel": PlatformWheel},
    options={"build": {"build_base": SCRATCH}, "egg_info": {"egg_base": SCRATCH}},
)
