"""Archives that depend on nothing but their content: sorted entries, one date, one compression."""

import stat
import zipfile

# The first moment that a zip entry can have.
DATE = (1980, 1, 1, 0, 0, 0)
UNIX = 3


class Link(str):
    """Where a symbolic link points."""


def write(path, entries):
    """Writes {name: bytes or Link} as a zip file."""
    with zipfile.ZipFile(path, "w") as archive:
        for name in sorted(entries):
            content = entries[name]
            is_link = isinstance(content, Link)
            info = zipfile.ZipInfo(name, DATE)
            info.create_system = UNIX
            info.compress_type = zipfile.ZIP_DEFLATED
            info.external_attr = (stat.S_IFLNK | 0o777 if is_link else stat.S_IFREG | 0o644) << 16
            archive.writestr(info, str(content) if is_link else content, compresslevel=9)


def folder(path, prefix):
    """The files and links below a folder as entries below a prefix."""
    entries = {}
    for file in path.rglob("*"):
        name = f"{prefix}/{file.relative_to(path).as_posix()}"
        if file.is_symlink():
            entries[name] = Link(file.readlink())
        elif file.is_file():
            entries[name] = file.read_bytes()
    return entries
