"""Archives that depend on nothing but their content: sorted entries, one date, one compression."""

import gzip
import io
import os
import stat
import tarfile
import zipfile

# The first moment that a zip entry can have.
DATE = (1980, 1, 1, 0, 0, 0)
UNIX = 3
# For what tells of ancient files.
SECONDS = 1767225600  # the beginning of 2026


class Link(str):
    """Where a symbolic link points."""


class Program(bytes):
    """The content of a file that can be run."""


def _mode(content):
    return 0o755 if isinstance(content, Program) else 0o644


def write(path, entries):
    """Writes {name: bytes, Program or Link} as a zip file."""
    with zipfile.ZipFile(path, "w") as archive:
        for name in sorted(entries):
            content = entries[name]
            is_link = isinstance(content, Link)
            info = zipfile.ZipInfo(name, DATE)
            info.create_system = UNIX
            info.compress_type = zipfile.ZIP_DEFLATED
            info.external_attr = (stat.S_IFLNK | 0o777 if is_link else stat.S_IFREG | _mode(content)) << 16
            archive.writestr(info, str(content) if is_link else bytes(content), compresslevel=9)


def write_tar(path, entries):
    """Writes {name: bytes, Program or Link} as a compressed tar file."""
    with open(path, "wb") as file, gzip.GzipFile("", "wb", 9, file, mtime=SECONDS) as packed:
        with tarfile.open(fileobj=packed, mode="w", format=tarfile.GNU_FORMAT) as archive:
            for name in sorted(entries):
                content = entries[name]
                info = tarfile.TarInfo(name)
                info.mtime = SECONDS
                if isinstance(content, Link):
                    info.type, info.linkname, info.mode = tarfile.SYMTYPE, str(content), 0o777
                    archive.addfile(info)
                else:
                    info.size, info.mode = len(content), _mode(content)
                    archive.addfile(info, io.BytesIO(content))


def file(path):
    """One file as an entry."""
    if path.is_symlink():
        return Link(path.readlink())
    content = path.read_bytes()
    return Program(content) if os.access(path, os.X_OK) and ".so" not in path.name else content


def folder(path, prefix):
    """The files and links below a folder as entries below a prefix."""
    return {
        f"{prefix}/{path_in.relative_to(path).as_posix()}": file(path_in)
        for path_in in path.rglob("*")
        if path_in.is_symlink() or path_in.is_file()
    }
