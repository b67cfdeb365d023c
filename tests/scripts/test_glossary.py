"""The glossary of docs/architecture.md: short, about words that the code has, and kept to."""

import functools
import re

import built

FOLDERS = [built.SOURCE / "src", built.SOURCE / "tools" / "qelm"]
MOST_TERMS = 30


def rows():
    text = (built.SOURCE / "docs" / "architecture.md").read_text()
    table = text.partition("## Glossary")[2].partition("\n## ")[0]
    lines = [line for line in table.splitlines() if line.startswith("| ")][1:]
    return [[cell.strip() for cell in line.strip("|").split("|")] for line in lines]


def words(cell):
    return [word.strip() for word in cell.split(",") if word.strip()]


@functools.cache
def code():
    """Names as they are and comments without line breaks, by file."""
    sources = [file for folder in FOLDERS for ending in ("h", "cpp") for file in sorted(folder.rglob(f"*.{ending}"))]
    assert len(sources) > 100
    return {file: re.sub(r"\s*\n\s*(///?<?)?\s*", " ", file.read_text()) for file in sources}


def pattern(term):
    """'half-edge' is in half-edges and in halfEdge, but not in a word that goes on in front."""
    return re.compile(r"(?<![a-z])" + r"[-_ ]?".join(map(re.escape, re.split(r"[- ]", term))), re.IGNORECASE)


def exactly(word):
    return re.compile(r"\b" + re.escape(word) + r"s?\b", re.IGNORECASE)


def test_it_is_short():
    assert 15 <= len(rows()) <= MOST_TERMS
    assert all(len(row) == 3 for row in rows())


def test_no_term_is_explained_twice():
    terms = [term for row in rows() for term in words(row[0])]
    assert len(terms) == len(set(terms))


def test_the_code_has_every_term():
    missing = [
        term for row in rows() for term in words(row[0])
        if not any(pattern(term).search(text) for text in code().values())
    ]
    assert missing == []


def test_the_code_has_no_other_word_for_a_term():
    found = [
        f"{file.relative_to(built.SOURCE)} says '{word}', not '{row[0]}'"
        for row in rows() for word in words(row[2]) for file, text in code().items() if exactly(word).search(text)
    ]
    assert found == []
