"""Makes mutants of C++ sources: small changes of the text that a good test notices.

A tokenizer that knows comments, texts and the preprocessor, and clang-format's layout: a binary operator stands between
blanks, a template's angle bracket never does. It needs no compiler: what does not compile shows itself when built.
"""

import re
from bisect import bisect_right
from collections import Counter, namedtuple

Token = namedtuple("Token", "kind text start end")

# file:line:operator:n names a mutant in a report; (file, text, occurrence, operator, n) finds it again after the lines
# have moved: the line's text, which of the lines of that text it is, and which change of that operator on it.
# regions are ranges of lines, innermost first: whoever ran none of the first that has code did not reach the mutant.
Mutant = namedtuple("Mutant", "file line operator n text occurrence start end before after regions")

_TOKEN = re.compile(
    r"""
    (?P<gap>\s+|\\\n|//[^\n]*|/\*.*?\*/)
    |(?P<raw>(?:u8|[uUL])?R"(?P<mark>[^()\\\s]{0,16})\(.*?\)(?P=mark)")
    |(?P<str>(?:u8|[uUL])?"(?:\\.|[^"\\\n])*")
    |(?P<chr>(?:u8|[uUL])?'(?:\\.|[^'\\\n])*')
    |(?P<num>\.?\d(?:'?[\w.]|(?<=[eEpP])[+-])*)
    |(?P<id>[A-Za-z_]\w*)
    |(?P<op><=>|<<=|>>=|->\*|\.\.\.|::|->|\+\+|--|<<|>>|<=|>=|==|!=|&&|\|\||[-+*/%&|^]=|.)
    """,
    re.VERBOSE | re.DOTALL,
)
_DIRECTIVE = re.compile(r"\#(?:/\*.*?\*/|\\\n|//[^\n]*|[^\n])*", re.DOTALL)

_SWAPS = {
    "relation": {"<": "<=", "<=": "<", ">": ">=", ">=": ">", "==": "!=", "!=": "=="},
    "logic": {"&&": "||", "||": "&&"},
    "arithmetic": {
        "+": "-", "-": "+", "*": "/", "/": "*", "%": "*", "<<": ">>", ">>": "<<", "|": "&", "&": "|", "^": "|",
        "+=": "-=", "-=": "+=", "*=": "/=", "|=": "&=", "&=": "|=", "^=": "|=", "++": "--", "--": "++",
    },
}
_OPENING = {"(": ")", "[": "]", "{": "}"}
_NOT_CODE = {"static_assert", "using", "typedef", "template", "friend", "extern", "operator", "__declspec", "alignas"}


def tokenize(source):
    """The tokens of a source, without comments, blanks and preprocessor lines."""
    tokens = []
    position = 0
    line_begins = True
    while position < len(source):
        if line_begins and source[position] == "#":
            position = _DIRECTIVE.match(source, position).end()
            continue
        found = _TOKEN.match(source, position)
        kind = found.lastgroup if found.lastgroup != "mark" else "raw"
        if kind == "gap":
            line_begins = "\n" in found.group() or line_begins
        else:
            line_begins = False
            tokens.append(Token(kind, found.group(), position, found.end()))
        position = found.end()
    return tokens


class Source:
    """One source: its tokens, which bracket closes which, what each brace is, and where statements stand."""

    def __init__(self, text):
        self.text = text
        self.tokens = tokenize(text)
        self.line_starts = [0] + [found.end() for found in re.finditer("\n", text)]
        self.match = self._matches()
        self.braces = self._braces()
        self.skipped = self._skipped()
        self.statements, self.conditions, self.labels = [], [], []
        for index, kind in self.braces.items():
            if kind == "block":
                self._read_block(index)

    def is_op(self, index, *texts):
        return 0 <= index < len(self.tokens) and self.tokens[index].text in texts

    def line_of(self, position):
        return bisect_right(self.line_starts, position)

    def line_text(self, line):
        return self.text.split("\n", line)[line - 1].strip()

    def text_of(self, first, end):
        """The text of the tokens from first up to, not including, end."""
        return self.text[self.tokens[first].start:self.tokens[end - 1].end]

    def _matches(self):
        match, opened = {}, []
        for index, token in enumerate(self.tokens):
            if token.kind != "op":
                continue
            if token.text in _OPENING:
                opened.append(index)
            elif token.text in ")]}" and opened and _OPENING[self.tokens[opened[-1]].text] == token.text:
                match[opened[-1]] = index
                match[index] = opened.pop()
        return match

    def _head(self, index):
        """The tokens before a brace, back to the end of what stands before."""
        first = index
        while first > 0 and not self.is_op(first - 1, ";", "{", "}"):
            first -= 1
        return [token.text for token in self.tokens[first:index]]

    def _braces(self):
        kinds, opened = {}, []
        for index, token in enumerate(self.tokens):
            if token.kind != "op" or index not in self.match:
                continue
            if token.text == "{":
                kinds[index] = self._brace_kind(index, opened[-1] if opened else None)
            if token.text in _OPENING:
                opened.append(kinds.get(index, token.text))
            elif token.text in ")]}":
                opened.pop()
        return kinds

    def _brace_kind(self, index, around):
        before = self.tokens[index - 1] if index else None
        head = self._head(index)
        if before is None or before.text in (";", "}"):
            return "list" if around == "list" else "block"
        if before.text == ":":
            return "list" if around in ("(", "list") else "block"
        if before.text == "{":
            return "list" if around == "list" else "block"
        if before.text == ")" or before.text in ("else", "do", "try", "const", "noexcept", "override", "mutable"):
            return "block"
        if "namespace" in head or before.kind == "str":
            return "namespace"
        if before.text == "]":  # a lambda without parameters, or an array
            opening = self.match[index - 1]
            lambda_ = opening == 0 or \
                self.tokens[opening - 1].kind == "op" and not self.is_op(opening - 1, "]", ">", ")")
            return "block" if lambda_ else "list"
        if before.kind == "id" or before.text == ">":
            if "enum" in head:
                return "enum"
            if {"class", "struct", "union"} & set(head) and "=" not in head and "(" not in head:
                return "class"
            first = index - 1  # a result named behind the parameters
            while first > 0 and (self.tokens[first].kind == "id" or self.is_op(first, "::", "<", ">", "*", "&")):
                first -= 1
            return "block" if self.is_op(first, "->") and self.is_op(first - 1, ")", "const", "mutable") else "list"
        return "list"

    def _skipped(self):
        """The tokens that are no code of their own: attributes, aliases, template heads, names of operators."""
        skipped = set()
        index = 0
        while index < len(self.tokens):
            token = self.tokens[index]
            end = index
            if token.text == "[" and self.is_op(index + 1, "["):
                end = self.match.get(index, index)
            elif token.text == "template" and self.is_op(index + 1, "<"):
                depth, end = 0, index + 1
                while end < len(self.tokens):
                    depth += {"<": 1, ">": -1, ">>": -2}.get(self.tokens[end].text, 0)
                    if depth <= 0:
                        break
                    end += 1
            elif token.text == "operator":
                end = index + 1
                while end + 1 < len(self.tokens) and not self.is_op(end + 1, "("):
                    end += 1
            elif token.text == "extern":
                end = index + 1
            elif token.text in _NOT_CODE:
                while end < len(self.tokens) and not self.is_op(end, ";", "{", "}"):
                    end = self.match.get(end, end) + 1 if self.is_op(end, "(", "[") else end + 1
            elif token.text == "=" and self.is_op(index + 2, ";") and self.is_op(
                    index - 1, ")", "const", "noexcept", "override"):
                end = index + 2  # a pure function, a defaulted or deleted one
            skipped.update(range(index, end + 1) if end > index else ())
            index = end + 1
        return skipped

    def _read_block(self, opening):
        index, closing = opening + 1, self.match[opening]
        while index < closing:
            text = self.tokens[index].text
            if text == "{":
                index = self.match[index] + 1
            elif text in ("if", "while", "for", "switch", "catch"):
                if text == "if" and self.is_op(index + 1, "constexpr"):
                    index += 1
                parenthesis = index + 1
                if parenthesis not in self.match:
                    index += 1
                    continue
                self.conditions.append((text, parenthesis, self.match[parenthesis]))
                index = self.match[parenthesis] + 1
            elif text in ("else", "do", "try", ";"):
                index += 1
            elif text in ("case", "default", "public", "private", "protected") and self._label_end(index, closing):
                end = self._label_end(index, closing)
                self.labels.append((index, end + 1))
                index = end + 1
            else:
                end = index
                while end < closing and not self.is_op(end, ";"):
                    end = self.match.get(end, end) + 1 if self.is_op(end, "(", "[", "{") else end + 1
                self.statements.append((index, end))
                index = end + 1

    def _label_end(self, index, closing):
        while index < closing and not self.is_op(index, ";", "{"):
            if self.is_op(index, ":"):
                return index
            index += 1
        return None

    def regions_of(self, first, end):
        """The ranges of lines around some tokens: statement or condition, then the blocks around it."""
        around = []
        spans = [(a, b) for a, b in self.statements + self.labels] + [(a, b + 1) for _, a, b in self.conditions]
        spans += [(a, self.match[a] + 1) for a, kind in self.braces.items() if kind == "block"]
        for a, b in spans:
            if a <= first and end <= b + 1:
                around.append((b - a, self.line_of(self.tokens[a].start),
                               self.line_of(self.tokens[min(b, len(self.tokens)) - 1].end - 1)))
        return [(low, high) for _, low, high in sorted(around)]


class _Maker:
    def __init__(self, file, source):
        self.file = file
        self.source = source
        self.made = []

    def add(self, operator, first, end, after):
        """A change of the tokens from first up to, not including, end."""
        tokens = self.source.tokens
        if any(index in self.source.skipped for index in range(first, end)):
            return
        self.made.append((tokens[first].start, tokens[end - 1].end, operator, after, first, end))

    def mutants(self):
        source = self.source
        texts, occurrences, seen = {}, Counter(), {}
        for number, line in enumerate(source.text.split("\n"), 1):
            texts[number] = line.strip()
            occurrences[line.strip()] += 1
            seen[number] = occurrences[line.strip()]
        counts, result, known = Counter(), [], set()
        for start, end, operator, after, first, last in sorted(self.made):
            before = source.text[start:end]
            if before == after or (start, end, after) in known:
                continue
            known.add((start, end, after))
            line = source.line_of(start)
            counts[line, operator] += 1
            result.append(Mutant(self.file, line, operator, counts[line, operator], texts[line], seen[line], start, end,
                                 before, after, source.regions_of(first, last)))
        return result


def _make_operators(maker):
    source = maker.source
    for index, token in enumerate(source.tokens):
        if token.kind != "op":
            continue
        apart = source.text[token.start - 1:token.start].isspace() and source.text[token.end:token.end + 1].isspace()
        for operator, swaps in _SWAPS.items():
            if token.text in ("+", "-") and "str" in (source.tokens[index - 1].kind, source.tokens[index + 1].kind):
                continue  # texts are joined, and nothing else can be done with them
            if token.text in swaps and (apart or token.text in ("++", "--")):
                maker.add(operator, index, index + 1, swaps[token.text])
        if token.text == "!":
            maker.add("negation", index, index + 1, "")
        if token.text == "?":
            _make_ternary(maker, index)


def _make_ternary(maker, question):
    source = maker.source
    depth, index, colon = 0, question + 1, None
    while index < len(source.tokens):
        if source.is_op(index, "(", "[", "{"):
            index = source.match[index]
        elif source.is_op(index, "?"):
            depth += 1
        elif source.is_op(index, ":"):
            if depth == 0 and colon is None:
                colon = index
            else:
                depth -= 1
        elif source.is_op(index, ")", "]", "}", ";", ","):
            break
        index += 1
    if colon is not None and colon > question + 1 and index > colon + 1:
        one, other = source.text_of(question + 1, colon), source.text_of(colon + 1, index)
        maker.add("choice", question + 1, index, f"{other} : {one}")


def _make_conditions(maker):
    source = maker.source
    for kind, opening, closing in source.conditions:
        if kind not in ("if", "while") or opening + 1 == closing:
            continue
        first, index, plain, relations = opening + 1, opening + 1, True, 0
        while index < closing:
            if source.is_op(index, ";"):
                first, plain, relations = index + 1, True, 0
            elif source.is_op(index, "="):
                plain = False  # a declaration
            elif source.is_op(index, "==", "!=", "!"):
                relations += 1
            elif source.is_op(index, "&&", "||", "?"):
                relations += 2
            index = source.match.get(index, index) + 1 if source.is_op(index, "(", "[", "{") else index + 1
        if plain and relations != 1 and first < closing:  # one relation alone is turned round by its own operator
            maker.add("condition", first, closing, f"!({source.text_of(first, closing)})")


_NUMBER = re.compile(r"(0[xX][\da-fA-F']+|0[bB][01']+|\d[\d']*)([uUlLzZ]*)$")


def _make_constants(maker):
    source = maker.source
    for index, token in enumerate(source.tokens):
        if token.kind == "num":
            found = _NUMBER.match(token.text)
            if found:
                digits = found.group(1).replace("'", "")
                base = 16 if digits[:2].lower() == "0x" else 2 if digits[:2].lower() == "0b" else \
                    8 if digits[:1] == "0" and len(digits) > 1 else 10
                value = int(digits, base)
                after = {0: 1, 1: 0, 0xFFFFFFFF: 0xFFFFFFFE}.get(value, value + 1)
                maker.add("constant", index, index + 1, (hex(after) if base == 16 else str(after)) + found.group(2))
        elif token.text in ("true", "false"):
            maker.add("constant", index, index + 1, {"true": "false", "false": "true"}[token.text])
        elif token.kind == "chr":
            prefix = token.text[:token.text.index("'")]
            maker.add("constant", index, index + 1, f"{prefix}'~'" if token.text != f"{prefix}'~'" else f"{prefix}'!'")
        elif token.kind == "str":
            prefix = token.text[:token.text.index('"') + 1]
            maker.add("text", index, index + 1, prefix + "~" + token.text[len(prefix):])
        elif token.kind == "raw":
            inside = token.text.index("(") + 1
            maker.add("text", index, index + 1, token.text[:inside] + "~" + token.text[inside:])


def _elements(source, opening):
    """The elements of a braced list, as ranges of tokens."""
    elements, first, index, closing = [], opening + 1, opening + 1, source.match[opening]
    while index < closing:
        if source.is_op(index, ","):
            elements.append((first, index))
            first = index + 1
        index = source.match.get(index, index) + 1 if source.is_op(index, "(", "[", "{") else index + 1
    if first < closing:
        elements.append((first, closing))
    return elements


def _make_rows(maker):
    source = maker.source
    for opening, kind in source.braces.items():
        if kind != "list" or not source.is_op(opening - 1, "=", ":"):
            continue
        elements = _elements(source, opening)
        if len(elements) < 2 or source.is_op(elements[0][0], "."):
            continue
        for number, (first, end) in enumerate(elements):
            comma = end + 1 if source.is_op(end, ",") else end
            if number == len(elements) - 1 and comma == end:  # the comma before it goes with it
                maker.add("row", first - 1, end, "")
            else:
                maker.add("row", first, comma, "")
        rows = [_elements(source, first) for first, end in elements
                if source.is_op(first, "{") and source.match[first] == end - 1]
        for number, row in enumerate(rows):  # a name in a row becomes the next row's
            other = rows[(number + 1) % len(rows)]
            for (first, end), (theirs, their_end) in zip(row, other):
                if len(row) == len(other) and end == first + 1 + 2 * ((end - first) // 2) and \
                        source.tokens[end - 1].kind == "id" and source.tokens[end - 1].text not in ("true", "false"):
                    maker.add("value", first, end, source.text_of(theirs, their_end))
    for first, end in source.labels:
        if source.tokens[first].text == "case":
            maker.add("row", first, end, "")


def _make_statements(maker):
    source = maker.source
    for first, end in source.statements:
        head = source.tokens[first]
        if first == end or first in source.skipped:
            continue
        if head.text == "return":
            value = source.text_of(first + 1, end) if end > first + 1 else ""
            if value not in ("", "{}", "0", "true", "false", "nullptr", "*this", "S_OK", "ERROR_SUCCESS"):
                maker.add("result", first + 1, end, "{}")
        elif head.text in ("break", "continue", "throw", "goto"):
            maker.add("deletion", first, end, "")
        elif head.text in ("static_cast",) and source.is_op(first + 2, "void"):
            continue
        elif not _is_declaration(source, first, end):
            maker.add("deletion", first, end, "")
        elif _is_guard(source, first, end):
            maker.add("deletion", first, end, "")


def _is_declaration(source, first, end):
    index = first
    while index < end and not source.is_op(index, "=", "(", "{", "[", "+=", "-=", "|=", "&=", "<<", "++", "--", "."):
        one, other = source.tokens[index], source.tokens[index + 1] if index + 1 < end else None
        if other and other.kind == "id" and (one.kind == "id" or index > first and one.text in (">", "*", "&", "&&")):
            return True
        index += 1
    return source.tokens[first].text in ("auto", "const", "constexpr", "static", "struct", "enum", "class")


def _is_guard(source, first, end):
    """A declaration whose name is not mentioned again: its making and its end are all that it is for."""
    index = first
    while index < end and not source.is_op(index, "=", "(", "{", "["):
        index += 1
    name = source.tokens[index - 1]
    if name.kind != "id" or index >= end or name.text == "auto":
        return False
    inner = [(opening, source.match[opening]) for opening, kind in source.braces.items()
             if kind == "block" and opening < first and end <= source.match[opening]]
    closing = max(inner)[1] if inner else end
    return all(token.text != name.text for token in source.tokens[end:closing])


def mutants_of(file, text):
    """All mutants of a C++ source, in the order of the text."""
    maker = _Maker(file, Source(text))
    for make in (_make_operators, _make_conditions, _make_constants, _make_rows, _make_statements):
        make(maker)
    return maker.mutants()


def apply(text, mutant):
    """The source with the mutant's change."""
    return text[:mutant.start] + mutant.after + text[mutant.end:]


def identity(mutant):
    """What finds a mutant again after its line has moved."""
    return f"{mutant.file} {mutant.operator}:{mutant.n} #{mutant.occurrence} {mutant.text}"


def name(mutant):
    """What a report calls a mutant."""
    return f"{mutant.file}:{mutant.line}:{mutant.operator}:{mutant.n}"
