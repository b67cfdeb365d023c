"""Every link of every document in every package leads somewhere inside of the package, or to an address."""

import re
from html.parser import HTMLParser

import pytest


class Page(HTMLParser):
    """The links and the anchors of a page."""

    def __init__(self, text):
        super().__init__()
        self.links, self.anchors = [], set()
        self.feed(text)

    def handle_starttag(self, tag, attributes):
        for name, value in attributes:
            if name in ("href", "src"):
                self.links.append(value)
            if name in ("id", "name"):
                self.anchors.add(value)


def slug(heading):
    """The anchor that a heading of Markdown gets."""
    return re.sub(r"[^\w\- ]", "", heading.strip().lower()).replace(" ", "-")


def links_and_anchors(path):
    text = path.read_text(encoding="utf-8")
    if path.suffix == ".html":
        page = Page(text)
        return page.links, page.anchors
    prose = re.sub(r"^```.*?^```", "", text, flags=re.S | re.M)
    links = re.findall(r"\]\(([^)\s]+)[^)]*\)", re.sub(r"`[^`]*`(?!\])", "", prose))
    return links, {slug(line.lstrip("#")) for line in text.splitlines() if line.startswith("#")}


def broken(path, root):
    for link in links_and_anchors(path)[0]:
        if re.match(r"(https?|mailto|data):", link):
            continue
        name, _, anchor = link.partition("#")
        target = (path.parent / name).resolve() if name else path
        if root.resolve() not in (target, *target.parents) or not target.exists():
            yield f"{path.relative_to(root)}: {link}"
        elif anchor and anchor not in links_and_anchors(target)[1]:
            yield f"{path.relative_to(root)}: {link}"


@pytest.mark.parametrize("name, least", [
    ("zip_content", 4), ("nuget", 2), ("windows", 4), ("linux", 3), ("debian", 0), ("sources", 10),
    ("wheel", 1),
])  # fmt: skip
def test_no_document_has_a_broken_link(request, name, least):
    root = request.getfixturevalue(name)
    # Templates are no documents yet.
    documents = [path for kind in ("*.md", "*.html", "METADATA") for path in root.rglob(kind)
                 if not {"third-party", "packaging", "page"} & set(path.relative_to(root).parts)]
    assert len(documents) >= least
    assert [complaint for path in documents for complaint in broken(path, root)] == []


def test_a_broken_link_is_found(tmp_path):
    (tmp_path / "a.md").write_text("# One Two\n[x](b.md) [y](#one-two) [z](#three) [w](../up) ![i](i.png) `[c](c)`\n")
    assert [line.split(": ")[1] for line in broken(tmp_path / "a.md", tmp_path)] == ["b.md", "#three", "../up", "i.png"]
