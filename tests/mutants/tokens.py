"""C++ as tokens: enough of it to change an operator and nothing else.

Comments, preprocessor lines and the insides of strings give no tokens."""
import re
from typing import NamedTuple

PATTERN = re.compile(
    r"""(?P<comment>//[^\n]*|/\*.*?\*/)
      | (?P<directive>^[ \t]*\#(?:\\\n|[^\n])*)
      | (?P<string>(?:u8|[uUL])?R"(?P<mark>[^(\s]*)\(.*?\)(?P=mark)"|(?:u8|[uUL])?"(?:\\.|[^"\\\n])*"|'(?:\\.|[^'\\\n])+')
      | (?P<number>\.?\d(?:[eEpP][+-]|'(?=\w)|[\w.])*)
      | (?P<name>[A-Za-z_]\w*)
      | (?P<sign><<=|>>=|<=>|->|\+\+|--|&&|\|\||[-+*/%&|^=!<>]=|<<|>>|::|\.\.\.|[-+*/%&|^=!<>~?:;,.(){}\[\]])
    """, re.VERBOSE | re.DOTALL | re.MULTILINE)

CONTROL = {"if", "for", "while", "switch", "catch", "do", "else", "return"}
ATTRIBUTE = re.compile(r"__attribute__\(\(.*?\)\)\)?|\[\[.*?\]\]|template <[^()]*?>\s")


class Token(NamedTuple):
    kind: str  # string, number, name or sign
    text: str
    start: int
    scope: str  # the function, or the type or nothing round it


def tokens_of(text):
    """The tokens of a file, each with the function in which it is."""
    found = []
    scopes = []  # of every brace that is open: name, whether it is a function
    header = 0  # where what may be a function's header begins
    parentheses = 0
    for match in PATTERN.finditer(text):
        kind = match.lastgroup if match.lastgroup != "mark" else "string"
        if kind in ("comment", "directive"):
            if not parentheses:
                header = match.end()
            continue
        sign = match.group()
        if kind == "sign":
            if sign == "{":
                scopes.append(_scope(text[header:match.start()], scopes))
            elif sign == "}" and scopes:
                scopes.pop()
            parentheses += {"(": 1, ")": -1}.get(sign, 0)
            if sign in "{}" or (sign == ";" and not parentheses):
                header = match.end()
        inside = next((name for name, _ in reversed(scopes) if name), "")
        found.append(Token(kind, sign, match.start(), inside))
    return found


def _scope(header, outer):
    """Name of what the brace after this header opens, and whether it is a function."""
    if any(is_function for _, is_function in outer):
        return "", True
    header = ATTRIBUTE.sub("", header)
    kind = re.search(r"\b(?:class|struct)\s+(\w+)", header)
    if kind:
        return kind.group(1), False
    named = re.search(r"(operator\s*\S+?|[\w~]+)\s*\(", header)
    if named and named.group(1) not in CONTROL:
        return named.group(1), True
    return "", False
