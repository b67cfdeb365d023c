"""The parts that make a zip file a package by the Open Packaging Conventions, as NuGet has them."""

import hashlib
from xml.sax.saxutils import escape

CONTENT_TYPES = "http://schemas.openxmlformats.org/package/2006/content-types"
RELATIONSHIPS = "http://schemas.openxmlformats.org/package/2006/relationships"
CORE_PROPERTIES = "http://schemas.openxmlformats.org/package/2006/metadata/core-properties"
MANIFEST_RELATION = "http://schemas.microsoft.com/packaging/2010/07/manifest"
CORE_RELATION = f"{RELATIONSHIPS}/metadata/core-properties"
DECLARATION = '<?xml version="1.0" encoding="utf-8"?>\n'

SPECIAL_TYPES = {
    "rels": "application/vnd.openxmlformats-package.relationships+xml",
    "psmdcp": "application/vnd.openxmlformats-package.core-properties+xml",
}
ANY_TYPE = "application/octet"


def with_parts(entries, manifest, properties):
    """The entries with relationships, core properties and content types added."""
    # Names are usually random; made from the content they are the same every time.
    digest = hashlib.sha256(b"".join(entries[name] for name in sorted(entries))).hexdigest()
    core = f"package/services/metadata/core-properties/{digest[:32]}.psmdcp"
    parts = dict(entries)
    parts[core] = _core_properties(properties)
    parts["_rels/.rels"] = _relationships({MANIFEST_RELATION: manifest, CORE_RELATION: core}, digest)
    parts["[Content_Types].xml"] = _content_types(parts)
    return parts


def _core_properties(properties):
    lines = "".join(f"  <{name}>{escape(text)}</{name}>\n" for name, text in properties.items())
    return (
        f'{DECLARATION}<coreProperties xmlns="{CORE_PROPERTIES}"'
        ' xmlns:dc="http://purl.org/dc/elements/1.1/">\n'
        f"{lines}</coreProperties>\n"
    ).encode()


def _relationships(targets, digest):
    lines = "".join(
        f'  <Relationship Type="{kind}" Target="/{target}" Id="R{digest[k * 16 : k * 16 + 16]}" />\n'
        for k, (kind, target) in enumerate(targets.items())
    )
    return f'{DECLARATION}<Relationships xmlns="{RELATIONSHIPS}">\n{lines}</Relationships>\n'.encode()


def _content_types(parts):
    extensions = sorted({name.rsplit(".", 1)[1] for name in parts if "." in name.rsplit("/", 1)[-1]})
    lines = [
        f'  <Default Extension="{extension}" ContentType="{SPECIAL_TYPES.get(extension, ANY_TYPE)}" />\n'
        for extension in extensions
    ]
    lines += [
        f'  <Override PartName="/{name}" ContentType="{ANY_TYPE}" />\n'
        for name in sorted(parts)
        if "." not in name.rsplit("/", 1)[-1]
    ]
    return f'{DECLARATION}<Types xmlns="{CONTENT_TYPES}">\n{"".join(lines)}</Types>\n'.encode()
