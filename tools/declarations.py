"""declarations: reads from C headers what they declare as exported, for the tools beside it.

The headers are ours and written in one style; what does not parse is an error, never left out.
"""

import re
from typing import NamedTuple

EXPORT = re.compile(r"\b(?:CF|CG|HOST)_(?:EXPORT|EXTERN)\b")
MEMBER_EXPORT = re.compile(r"\bFM_MEMBER_EXPORT\b")
ATTRIBUTES = re.compile(
    r"__attribute__\s*\(\(.*?\)\)|\b[A-Z]+_(?:PRINTF|FORMAT_FUNCTION|FORMAT_ARGUMENT)\s*\([^()]*\)"
    r"|\b[A-Z]+_NORETURN\b"
)


class Unreadable(Exception):
    pass


class Declaration(NamedTuple):
    name: str
    result: str  # The result's type; of a variable its own.
    parameters: list  # The text of each; None for a variable.


def without_comments(text):
    # Strings are matched too, so that what looks like a comment inside them stays.
    token = re.compile(r'/\*.*?\*/|//[^\n]*|"(?:\\.|[^"\\\n])*"', re.S)
    return token.sub(lambda m: m.group() if m.group()[0] == '"' else " ", text)


def without_directives(text):
    return re.sub(r"^[ \t]*#(?:[^\n]*\\\n)*[^\n]*", "", text, flags=re.M)


def split_at_commas(text):
    parts, depth = [""], 0
    for character in text:
        depth += {"(": 1, ")": -1}.get(character, 0)
        if character == "," and depth == 0:
            parts.append("")
        else:
            parts[-1] += character
    return [" ".join(part.split()) for part in parts]


def parse(statement):
    """`statement` is what stands between the export macro and the semicolon."""
    statement = " ".join(ATTRIBUTES.sub(" ", statement).split())
    pointer = re.fullmatch(r"([^()]*)\(\s*\*\s*(\w+)\s*\)\s*\(.*\)", statement)
    if pointer:
        return Declaration(pointer.group(2), pointer.group(1), None)
    function = re.fullmatch(r"([^()]*?)\b(\w+)\s*\((.*)\)", statement)
    if function:
        result, name, parameters = function.groups()
        parameters = split_at_commas(parameters)
        return Declaration(name, result.strip(), [] if parameters == ["void"] else parameters)
    variable = re.fullmatch(r"([^()=]*?)\b(\w+)\s*(?:\[[^\]]*\]\s*)*", statement)
    if variable and variable.group(1).strip():
        return Declaration(variable.group(2), variable.group(1).strip(), None)
    raise Unreadable(f"cannot read the declaration '{statement}'")


def declarations_in(text):
    text = without_directives(without_comments(text))
    for macro in EXPORT.finditer(text):
        end = text.find(";", macro.end())
        if end < 0:
            raise Unreadable("a declaration does not end")
        yield parse(text[macro.end() : end])


def members_in(text):
    """The exported members of C++ classes, as "Class::member"."""
    text = without_directives(without_comments(text))
    for head in re.finditer(r"\b(?:class|struct)\s+(\w+)[^;{}()]*\{", text):
        end = text.find("\n};", head.end())
        body = text[head.end() : end if end >= 0 else len(text)]
        for macro in MEMBER_EXPORT.finditer(body):
            name = re.match(r"[^;()]*?(~?\w+)\s*\(", body[macro.end() :])
            if not name:
                raise Unreadable(f"cannot read a member of {head.group(1)}")
            yield f"{head.group(1)}::{name.group(1)}"
