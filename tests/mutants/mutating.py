"""Mutants of a C++ file: one small change of meaning each.

The sources are formatted by clang-format, which writes blanks on both sides of an operator
with two operands and on neither of a template's brackets; that tells one from the other."""
import re
from typing import NamedTuple

from tokens import tokens_of

SWAPS = {
    "<": ["<="], "<=": ["<"], ">": [">="], ">=": [">"], "==": ["!="], "!=": ["=="],
    "+": ["-"], "-": ["+"], "*": ["/"], "/": ["*"], "%": ["*"],
    "+=": ["-="], "-=": ["+="], "*=": ["/="], "/=": ["*="], "|=": ["&="], "&=": ["|="],
    "&&": ["||"], "||": ["&&"], "&": ["|"], "|": ["&"], "^": ["|"], "<<": [">>"], ">>": ["<<"],
}  # fmt: skip
NAMES = {
    "min": "max", "max": "min", "true": "false", "false": "true", "break": "continue", "continue": "break",
    "nth_element": "", "first": "last", "front": "back", "back": "front",
    "lower_bound": "upper_bound", "upper_bound": "lower_bound",
}  # fmt: skip
# A function of one number that is left out; copysign keeps its first argument.
DROPPED = {"floor", "ceil", "round", "fabs", "abs", "trunc", "sqrt", "nextafter", "copysign"}

# What only makes memory ready in time changes no result, nor does what the compiler checks.
NO_MEANING = re.compile(r"\breserve\(|prefetch|static_assert|\bstatic_cast<void>|^\s*(using|namespace|template|extern)\b")
DECLARATION = re.compile(r"^\s*(const|constexpr|static|inline|auto|using|return|break|continue|case|default|else|if|for|"
                         r"while|do|switch|throw|goto|public|private|\}|\{|[\w:<>,]+[&*]? \w+( = .*|\(.*|\{.*)?;$)")
KEYWORD = re.compile(r"\b(delete|throw|return|co_return)\b")


class Mutant(NamedTuple):
    file: str
    line: int
    function: str
    change: str  # what was done
    old: str  # the line, or the two that change places
    new: str
    start: int  # in the file's text
    end: int
    text: str  # in place of what is there

    def apply(self, source):
        return source[: self.start] + self.text + source[self.end :]

    def key(self):
        return self.file, self.function, self.old, self.new

    def as_dict(self):
        return {k: v for k, v in self._asdict().items() if k not in ("start", "end", "text")}

    def __str__(self):
        return f"{self.file}:{self.line}: {self.function or 'outside of functions'}: {self.change}\n    {self.old}\n    {self.new}"


def mutants_of(root, name):
    """All mutants of the file root/name, in the order of its lines."""
    source = (root / name).read_text()
    tokens = tokens_of(source)
    found = []

    def add(start, end, text, change, function):
        first = source.rfind("\n", 0, start) + 1
        last = source.find("\n", end)
        line = source[first:last]
        if NO_MEANING.search(line):
            return
        changed = source[first:start] + text + source[end:last]
        squeeze = lambda lines: " ".join(lines.split())  # noqa: E731
        found.append(Mutant(name, source.count("\n", 0, start) + 1, function, change, squeeze(line), squeeze(changed),
                            start, end, text))

    for i, token in enumerate(tokens):
        _of_token(source, tokens, i, add)
    _of_lines(source, tokens, add)
    found.sort(key=lambda m: (m.start, m.end, m.text))
    return found


def _of_token(source, tokens, i, add):
    kind, text, start, function = tokens[i]
    of_kind = {"sign": _of_sign, "number": _of_number, "name": _of_name}.get(kind)
    if of_kind is None:
        return

    def change(new, what=None):
        add(start, start + len(text), new, what or f"{text} becomes {new or 'nothing'}", function)

    of_kind(source, tokens, i, add, change)


def _of_sign(source, tokens, i, _, change):
    _, text, start, function = tokens[i]
    end = start + len(text)
    before, after = _beside(source, start, end)
    is_operator_name = i > 0 and tokens[i - 1].text == "operator"
    if text in SWAPS and before.isspace() and after.isspace() and not is_operator_name:
        if text == "<<" and re.search(r"std::c(out|err)|^\s*<<", source[source.rfind("\n", 0, start) + 1 : end]):
            return
        for new in SWAPS[text]:
            change(new)
    elif text == "!" and not after.isspace():
        change("", "! is left out")
    elif text in ("++", "--") and not is_operator_name:
        change("--" if text == "++" else "++")
    elif text == "-" and (before in "({, " or before.isspace()) and not after.isspace():
        change("", "a sign is left out")
    elif text == "?" and before.isspace() and function:
        change("&& false ?", "the second of two is taken always")
        change("|| true ?", "the first of two is taken always")


def _of_number(source, tokens, i, _, change):
    _, text, start, _ = tokens[i]
    before, after = _beside(source, start, start + len(text))
    if before == "<" or after == ">" or (i > 0 and tokens[i - 1].text == "operator"):
        return  # an argument of a template
    for new in _numbers_beside(text):
        change(new)


def _of_name(source, tokens, i, add, change):
    text = tokens[i].text
    previous = tokens[i - 1].text if i else ""
    is_call = i + 1 < len(tokens) and tokens[i + 1].text == "("
    if text in NAMES and NAMES[text]:
        owners = _OWNERS.get(text)
        if owners is None or (is_call and previous in owners):
            change(NAMES[text])
    elif text in DROPPED and is_call and previous == "::":
        _drop_function(source, tokens, i, add)
    elif text in ("if", "while") and is_call or (text == "constexpr" and previous == "if"):
        _decide(source, tokens, i, add)
    elif is_call and text not in ("for", "switch", "catch", "sizeof", "alignof", "return"):
        _swap_arguments(source, tokens, i, add)


# Names that are changed only where they are called so.
_OWNERS = {
    **dict.fromkeys(("min", "max"), ("::",)),
    **dict.fromkeys(("first", "front", "back", "lower_bound", "upper_bound"), (".", "::", "->")),
}


def _beside(source, start, end):
    """The characters before and after."""
    return source[start - 1] if start else "\n", source[end : end + 1]


def _numbers_beside(text):
    """A constant by one: the last digit of a number, or an exponent of two."""
    plain = text.replace("'", "")
    if re.fullmatch(r"\d+(u|ul|ull|U|UL|ULL)?", plain):
        digits = re.match(r"\d+", plain).group()
        suffix = plain[len(digits) :]
        number = int(digits)
        return [f"{number + 1}{suffix}"] + ([f"{number - 1}{suffix}"] if number > 0 else [])
    power = re.fullmatch(r"(0x1(?:\.\w+)?p)([-+]?\d+)", plain)
    if power:
        return [f"{power.group(1)}{int(power.group(2)) + 1}", f"{power.group(1)}{int(power.group(2)) - 1}"]
    if re.fullmatch(r"0x[0-9a-fA-F]+(u|ul|ull|U|UL|ULL)?", plain):
        digits = re.match(r"0x[0-9a-fA-F]+", plain).group()
        return [f"{int(digits, 16) ^ 1:#x}{plain[len(digits):]}"]
    if re.fullmatch(r"\d+\.\d*|\d+(\.\d*)?e[-+]?\d+", plain):
        return [f"({text} + 1)"]
    return []


def _closing(tokens, opening):
    """Number of the token that closes the bracket that this one opens; None if nothing does."""
    depth = 0
    for j in range(opening, len(tokens)):
        if tokens[j].kind == "sign":
            depth += {"(": 1, "[": 1, "{": 1, ")": -1, "]": -1, "}": -1}.get(tokens[j].text, 0)
            if depth == 0:
                return j
    return None


def _arguments(tokens, opening, closing):
    """Ranges of tokens between the commas of a call."""
    parts, first, depth = [], opening + 1, 0
    for j in range(opening + 1, closing):
        if tokens[j].kind != "sign":
            continue
        depth += {"(": 1, "[": 1, "{": 1, ")": -1, "]": -1, "}": -1}.get(tokens[j].text, 0)
        if tokens[j].text == "," and depth == 0:
            parts.append((first, j))
            first = j + 1
    parts.append((first, closing))
    return parts


def _text(source, tokens, part):
    last = tokens[part[1] - 1]
    return tokens[part[0]].start, last.start + len(last.text)


def _drop_function(source, tokens, i, add):
    closing = _closing(tokens, i + 1)
    if closing is None or closing == i + 2:
        return
    start = tokens[i - 2].start if tokens[i - 1].text == "::" and tokens[i - 2].text == "std" else tokens[i].start
    first = _arguments(tokens, i + 1, closing)[0]
    begin, end = _text(source, tokens, first)
    add(start, tokens[closing].start + 1, f"({source[begin:end]})", f"{tokens[i].text} is left out", tokens[i].scope)


def _decide(source, tokens, i, add):
    if tokens[i].text == "while" or tokens[i + 1].text != "(":
        return
    closing = _closing(tokens, i + 1)
    condition = [t.text for t in tokens[i + 2 : closing]] if closing else [";"]
    if ";" in condition or "=" in condition:  # declares a name
        return
    begin, end = tokens[i + 1].start + 1, tokens[closing].start
    for value in ("true", "false"):
        add(begin, end, f"{value} || ({source[begin:end]})" if value == "true" else f"false && ({source[begin:end]})",
            f"the condition is {value}", tokens[i].scope)


def _swap_arguments(source, tokens, i, add):
    """Two arguments next to one another; whether they have one type, the compiler says."""
    name = tokens[i].text
    if name in ("min", "max", "minmax", "copy_n", "defined") or not tokens[i].scope:
        return
    closing = _closing(tokens, i + 1)
    if closing is None or closing == i + 2 or closing + 1 >= len(tokens):
        return
    if tokens[closing + 1].text in ("{", "const", ":", "noexcept"):  # a declaration
        return
    parts = _arguments(tokens, i + 1, closing)
    for left, right in zip(parts, parts[1:]):
        if left[0] >= left[1] or right[0] >= right[1]:
            continue
        a, b = _text(source, tokens, left), _text(source, tokens, right)
        one, other = source[a[0] : a[1]], source[b[0] : b[1]]
        if one == other or "{" in one + other or re.search(r"\w \w", one + other):
            continue
        add(a[0], b[1], other + source[a[1] : b[0]] + one, "two arguments change places", tokens[i].scope)


def _of_lines(source, tokens, add):
    """Statements of one line: left out, or in another order, and functions that return at once."""
    scopes = {}
    for token in tokens:
        scopes.setdefault(source.rfind("\n", 0, token.start) + 1, token.scope)
    starts = [m.start() for m in re.finditer(r"^", source, re.MULTILINE)]
    lines = [source[a:b] for a, b in zip(starts, [*starts[1:], len(source)])]

    def statement(k):
        line = lines[k].split("//")[0].rstrip()
        whole = line.endswith(";") and line.count("(") == line.count(")") and line.count("{") == line.count("}")
        previous = next((lines[j].split("//")[0].rstrip() for j in range(k - 1, -1, -1) if lines[j].strip()), "")
        begins = not previous or previous[-1] in ";{}:" or previous.lstrip().startswith(("//", "#"))
        inside = scopes.get(starts[k], "")
        return line if whole and begins and inside and line.startswith("  ") and not DECLARATION.match(line) else ""

    for k in range(len(lines)):
        line = statement(k)
        if not line:
            continue
        end = starts[k] + len(line)
        begin = starts[k] + len(line) - len(line.lstrip())
        add(begin, end, ";", "a statement is left out", scopes[starts[k]])
        follows = statement(k + 1) if k + 1 < len(lines) else ""
        indent = len(line) - len(line.lstrip())
        if follows and len(follows) - len(follows.lstrip()) == indent and _touch(line, follows):
            add(begin, starts[k + 1] + len(follows), follows.strip() + "\n" + line, "two statements change places",
                scopes[starts[k]])


def _touch(one, other):
    """Whether a statement names what the other one writes."""
    written = lambda s: re.search(r"[A-Za-z_]\w*", s).group()  # noqa: E731
    named = lambda s: set(re.findall(r"[A-Za-z_]\w*", s))  # noqa: E731
    return written(one) in named(other) or written(other) in named(one)
