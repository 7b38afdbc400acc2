"""Small changes to C++ sources that a good test suite should detect."""

import dataclasses
import re

TOKEN = re.compile(
    r"""(?P<space>\s+)
    |(?P<skip>//[^\n]*|/\*.*?\*/|\#(?:\\\n|[^\n])*
        |(?:u8|[uUL])?R"(?P<mark>[^(\s]*)\(.*?\)(?P=mark)"
        |(?:u8|[uUL])?"(?:\\.|[^"\\\n])*"
        |(?:u8|[uUL])?'(?:\\.|[^'\\\n])+')
    |(?P<number>(?:0[xX][0-9a-fA-F']+|0[bB][01']+|\d[\d']*(?:\.\d*)?(?:[eE][+-]?\d+)?)[uUlLfF]*)
    |(?P<word>[A-Za-z_]\w*)
    |(?P<operator><<=|>>=|->\*|<=>|\.\.\.|::|->|\+\+|--|<<|>>|<=|>=|==|!=|&&|\|\||[-+*/%&|^]=|.)""",
    re.VERBOSE | re.DOTALL | re.MULTILINE)

# Only between spaces: otherwise they are template brackets, signs or pointers.
BINARY = {
    "<": ("<=", ">="), "<=": ("<", ">"), ">": (">=", "<="), ">=": (">", "<"),
    "==": ("!=",), "!=": ("==",), "&&": ("||",), "||": ("&&",),
    "+": ("-",), "-": ("+",), "*": ("/",), "/": ("*",), "%": ("*",),
    "&": ("|",), "|": ("&",), "^": ("&",), "<<": (">>",), ">>": ("<<",),
    "+=": ("-=",), "-=": ("+=",), "*=": ("/=",), "/=": ("*=",), "|=": ("&=",), "&=": ("|=",),
    "<<=": (">>=",), ">>=": ("<<=",),
}
WORDS = {"true": "false", "false": "true", "continue": "break"}
NO_STATEMENT = {
    "return", "if", "else", "for", "while", "do", "switch", "case", "default", "break", "continue",
    "goto", "throw", "try", "catch", "using", "typedef", "namespace", "class", "struct", "enum",
    "union", "template", "static_assert", "public", "private", "protected", "const", "constexpr",
    "static", "auto", "extern", "inline", "virtual", "explicit", "friend", "delete", "operator",
    "Q_OBJECT", "Q_DISABLE_COPY", "Q_UNUSED",
}
NOT_IN_STATEMENT = {
    "{", "}", ":", "<", ">", "<=", ">=", "==", "!=", "&&", "||", "default", "delete",
}
ACTS = {"(", "=", "+=", "-=", "*=", "/=", "%=", "&=", "|=", "^=", "<<=", ">>="}
NO_CODE = {"static_assert", "template", "using", "enum", "case", "include"}


@dataclasses.dataclass(frozen=True)
class Token:
    kind: str
    text: str
    start: int

    @property
    def end(self):
        return self.start + len(self.text)


@dataclasses.dataclass(frozen=True)
class Mutant:
    path: str
    kind: str
    start: int  # the text that is replaced, and its replacement
    end: int
    replacement: str
    line: int
    before: str  # the first affected line, without its indentation
    after: str

    @property
    def key(self):
        return f"{self.path}:{self.line}: {self.kind}: {self.before} -> {self.after}"

    def applied_to(self, text):
        return text[:self.start] + self.replacement + text[self.end:]


def tokens_of(text):
    """Returns the tokens without spaces. Comments, preprocessor lines and literals have a kind of
    their own."""
    return [Token(found.lastgroup if found.lastgroup != "mark" else "skip", found[0], found.start())
            for found in TOKEN.finditer(text) if found.lastgroup != "space"]


def mutants_of(path, text):
    tokens = [token for token in tokens_of(text)
              if token.kind != "skip" or token.text[0] not in "/#" and not _is_directive(token)]
    changes = [*_operators(tokens, text), *_words_and_numbers(tokens), *_conditions(tokens, text),
               *_statements(tokens)]
    skipped = _without_code(tokens)
    return [_mutant(path, text, *change) for change in sorted(changes)
            if not any(start <= change[0] < end for start, end in skipped)]


def _is_directive(token):
    return token.text.lstrip().startswith("#")


def _mutant(path, text, start, end, kind, replacement):
    begin = text.rfind("\n", 0, start) + 1
    stop = text.find("\n", end)
    before = text[begin:text.find("\n", start)].strip()
    after = (text[begin:start] + replacement + text[end:stop]).strip().split("\n")[0]
    line = text.count("\n", 0, start) + 1
    return Mutant(path, kind, start, end, replacement, line, before, after)


def _operators(tokens, text):
    for token in tokens:
        if token.kind != "operator":
            continue
        spaced = text[token.start - 1:token.start] in (" ", "\n") and \
            text[token.end:token.end + 1] in (" ", "\n")
        for other in BINARY.get(token.text, ()) if spaced else ():
            yield token.start, token.end, "operator", other
        if token.text in ("++", "--"):
            yield token.start, token.end, "operator", "--" if token.text == "++" else "++"
        if token.text == "!":
            yield token.start, token.end, "negation", ""


def _words_and_numbers(tokens):
    for token in tokens:
        if token.kind == "word" and token.text in WORDS:
            yield token.start, token.end, "constant", WORDS[token.text]
        if token.kind == "number":
            for other in _other_numbers(token.text):
                yield token.start, token.end, "constant", other


def _other_numbers(text):
    found = re.fullmatch(r"(0[xX][0-9a-fA-F']+|[\d']+)([uUlL]*)", text)
    if not found:
        return []  # a fraction, or binary
    digits, suffix = found[1].replace("'", ""), found[2]
    if digits.lower().startswith("0x"):
        return [f"{int(digits, 16) + 1:#x}{suffix}"]
    value = int(digits, 8 if len(digits) > 1 and digits[0] == "0" else 10)
    return [f"{value + 1}{suffix}"] + ([f"{value - 1}{suffix}"] if value > 0 else [])


def _conditions(tokens, text):
    """Changes that make the condition of an "if" or "while" always or never true."""
    for i, token in enumerate(tokens[:-1]):
        if token.kind != "word" or token.text not in ("if", "while") or tokens[i + 1].text != "(":
            continue
        end = _closing(tokens, i + 1)
        if end is None or any(inner.text == ";" for inner in tokens[i + 1:end]):
            continue  # the condition contains a declaration
        start, stop = tokens[i + 1].end, tokens[end].start
        for value in ("true", "false"):
            if text[start:stop] != value and not (token.text == "while" and value == "true"):
                yield start, stop, "condition", value


def _statements(tokens):
    """Changes that remove a call or an assignment."""
    for i, token in enumerate(tokens):
        follows = i > 0 and tokens[i - 1].text in ("{", "}", ";", ")", "else")
        if not follows or token.kind != "word" or token.text in NO_STATEMENT:
            continue
        end = _end_of_statement(tokens, i)
        if end is not None:
            yield token.start, tokens[end].start, "statement", ""


def _end_of_statement(tokens, i):
    """Returns where the statement of a call or an assignment ends; None if it is neither."""
    depth = 0
    acts = False
    for j in range(i, len(tokens)):
        text, kind = tokens[j].text, tokens[j].kind
        if depth == 0 and text == ";":
            return j if acts else None
        if depth == 0 and (text in NOT_IN_STATEMENT or
                           j > i and kind == "word" and tokens[j - 1].kind == "word"):
            return None  # not a statement, or a declaration: a type and a name
        if depth == 0 and not acts and kind == "word" and j > i and tokens[j - 1].text in "*&>":
            return None
        acts = acts or text in ACTS
        depth += (text in "([{") - (text in ")]}") if kind == "operator" else 0
        if depth < 0:
            return None
    return None


def _closing(tokens, i):
    depth = 0
    for j in range(i, len(tokens)):
        depth += (tokens[j].text == "(") - (tokens[j].text == ")")
        if depth == 0:
            return j
    return None


def _without_code(tokens):
    """Returns code that only the compiler evaluates, or in which values are names."""
    stretches = []
    for i, token in enumerate(tokens):
        if token.kind == "word" and token.text in NO_CODE:
            end = next((later for later in tokens[i:] if later.text in ("{", ";", ":")), tokens[-1])
            stretches.append((token.start, end.end))
    return stretches
