"""Replaces a file as a whole or not at all, by the rules of the viewer's exports (libs/files/AtomicFile.h)."""
from __future__ import annotations

import contextlib
import errno
import fcntl
import os
import stat
from typing import Iterator, Optional, Tuple

from ._values import PathLike


def write_whole(path: PathLike, data: bytes) -> None:
    """Links are followed, an existing file keeps its mode and where possible its owner, and a write-protected one is
    refused. A pipe or a device is written directly.

    Raises OSError with the path that was given.
    """
    try:
        _write(os.path.realpath(os.fsencode(path)), data)
    except OSError as error:
        raise OSError(error.errno, error.strerror, os.fspath(path)) from None


def _refuse(number: int) -> None:
    raise OSError(number, os.strerror(number))


def _write(name: bytes, data: bytes) -> None:
    old: Optional[os.stat_result] = None
    with contextlib.suppress(FileNotFoundError):
        old = os.stat(name)
    if old is not None and not stat.S_ISREG(old.st_mode):
        with open(name, "wb") as stream:  # a folder is refused here
            stream.write(data)
        return
    if old is not None and not os.access(name, os.W_OK):
        _refuse(errno.EACCES)
    folder = os.open(os.path.dirname(name), os.O_RDONLY | os.O_DIRECTORY)
    try:
        _remove_left_files(name, old)
        _replace(name, folder, old, data)
        with contextlib.suppress(OSError):  # some file systems cannot flush folders
            os.fsync(folder)
    finally:
        os.close(folder)


def _replace(name: bytes, folder: int, old: Optional[os.stat_result], data: bytes) -> None:
    beside, descriptor, has_name = _open_beside(name, 0o666 if old is None else 0o600)
    try:
        if old is not None:
            with contextlib.suppress(OSError):  # only a privileged process can keep a foreign owner
                os.fchown(descriptor, old.st_uid, old.st_gid)
            os.fchmod(descriptor, stat.S_IMODE(old.st_mode))
        with os.fdopen(descriptor, "wb", closefd=False) as stream:
            stream.write(data)
        os.fsync(descriptor)
        if not has_name:
            # With a folder os.link() calls linkat(), which follows the link in /proc; without one it would not.
            source = f"/proc/self/fd/{descriptor}".encode()
            os.link(source, beside, src_dir_fd=folder, follow_symlinks=True)
            has_name = True
        os.replace(beside, name)
        has_name = False
    finally:
        os.close(descriptor)
        if has_name:
            with contextlib.suppress(OSError):
                os.unlink(beside)


def _open_beside(name: bytes, mode: int) -> Tuple[bytes, int, bool]:
    """The temporary file, locked for as long as it is written: its name, its descriptor, and whether it has the name
    already. Where the file system makes files without a name, it gets that when it is complete."""
    beside = _start(name) + f"{os.getpid()}-{os.urandom(8).hex()}.tmp".encode()
    try:
        if not os.path.isdir(b"/proc/self/fd"):  # by which it is given its name
            _refuse(errno.EOPNOTSUPP)
        flags = os.O_TMPFILE | os.O_WRONLY
        descriptor, has_name = os.open(os.path.dirname(name), flags, mode), False
    except OSError:
        flags = os.O_CREAT | os.O_EXCL | os.O_WRONLY | os.O_NOFOLLOW
        descriptor, has_name = os.open(beside, flags, mode), True
    with contextlib.suppress(OSError):  # a file system without locks
        fcntl.flock(descriptor, fcntl.LOCK_EX | fcntl.LOCK_NB)
    return beside, descriptor, has_name


def _start(name: bytes) -> bytes:
    """The path of a temporary file of this target begins so."""
    hashed = 0xCBF29CE484222325  # FNV-1a
    for byte in os.path.basename(name):
        hashed = ((hashed ^ byte) * 0x100000001B3) & 0xFFFFFFFFFFFFFFFF
    return os.path.join(os.path.dirname(name), f".kv-{hashed:016x}-".encode())


def _left_files(name: bytes) -> Iterator[bytes]:
    start = os.path.basename(_start(name))
    with os.scandir(os.path.dirname(name)) as entries:
        for entry in entries:
            if entry.name.startswith(start) and entry.name.endswith(b".tmp"):
                yield entry.path


def _remove_left_files(name: bytes, old: Optional[os.stat_result]) -> None:
    """Removes what killed processes left of this target: files of this user, or of the target's owner, that no process
    has locked."""
    owners = {os.geteuid()} | ({old.st_uid} if old is not None else set())
    for path in list(_left_files(name)):
        with contextlib.suppress(OSError):
            state = os.lstat(path)
            if not stat.S_ISREG(state.st_mode) or state.st_uid not in owners:
                continue
            descriptor = os.open(path, os.O_WRONLY | os.O_NOFOLLOW | os.O_NONBLOCK)
            try:
                fcntl.flock(descriptor, fcntl.LOCK_EX | fcntl.LOCK_NB)
                # Its writer may have renamed it meanwhile: the path is then that of another file, or of none.
                if os.path.samestat(os.fstat(descriptor), os.lstat(path)):
                    os.unlink(path)
            finally:
                os.close(descriptor)
