"""The faults that tools/mutate can put into a source file, found in the syntax tree that libclang makes of it.

A fault is one replacement of bytes. Whether its result compiles is left to the compiler; what is checked here is that
the bytes to be replaced are what the tree says, since inside a macro's arguments the tree knows only the macro's call."""

import re
from dataclasses import dataclass

from clang.cindex import CursorKind as Kind, Index, TypeKind


@dataclass(frozen=True)
class Fault:
    path: str   # relative to the source tree
    start: int  # in bytes
    end: int
    text: str   # what stands there instead
    kind: str

    def apply(self, source):
        return source[:self.start] + self.text.encode() + source[self.end:]

    def line(self, source):
        return source.count(b'\n', 0, self.start) + 1

    def change(self, source):
        """The lines before and after, each as one text. With the path they name a fault wherever it moves to."""
        first = source.rfind(b'\n', 0, self.start) + 1
        last = source.find(b'\n', self.end)
        last = len(source) if last < 0 else last
        before = source[first:last]
        after = source[first:self.start] + self.text.encode() + source[self.end:last]
        return tuple(' '.join(text.decode().split()) for text in (before, after))


OTHER_OPERATOR = {'<': '<=', '<=': '<', '>': '>=', '>=': '>', '==': '!=', '!=': '==', '&&': '||', '||': '&&',
                  '+': '-', '-': '+', '*': '/', '/': '*', '<<': '>>', '>>': '<<', '&': '|',
                  '+=': '-=', '-=': '+=', '*=': '/=', '/=': '*=', '|=': '&=', '&=': '|='}
COMPARISONS = ('<', '<=', '>', '>=', '==', '!=')
OTHER_WORD = {'TRUE': 'FALSE', 'FALSE': 'TRUE', 'VARIANT_TRUE': 'VARIANT_FALSE', 'VARIANT_FALSE': 'VARIANT_TRUE'}
IDENTIFIER = re.compile(r'[A-Z][A-Z0-9_]*[A-Z0-9]$')
NUMBER = re.compile(r"(0[xX][0-9a-fA-F']+|[0-9][0-9']*)([uUlL]*)$")
TEXT_LITERAL = re.compile(r'(?s)(TEXT\()?(u8|u|L)?".*"\)?$')
CHARACTER = re.compile(r"(TEXT\()?(u8|u|L)?'(.|\\.|\\x[0-9a-fA-F]+)'\)?$")
LEAVING = (Kind.RETURN_STMT, Kind.CONTINUE_STMT, Kind.BREAK_STMT, Kind.CXX_THROW_EXPR)
FUNCTIONS = (Kind.FUNCTION_DECL, Kind.CXX_METHOD, Kind.CONSTRUCTOR, Kind.DESTRUCTOR, Kind.CONVERSION_FUNCTION,
             Kind.FUNCTION_TEMPLATE)
# Their arguments may change places without any effect.
SYMMETRICAL = ('StrCmpIW', 'StrCmpW', 'lstrcmpiW', 'EqualsIgnoringCase', 'IsEqualGUID', 'IsEqualIID', 'min', 'max')
CALLS_WITHOUT_EFFECT = ('reserve', 'shrink_to_fit')


class Finder:
    """Collects the faults of one file of one translation unit."""

    def __init__(self, path, source, file_name, resource_ids):
        self.path, self.source, self.file_name = path, source, file_name
        self.ids = resource_ids
        self.found = {}

    def faults(self, unit):
        for cursor in unit.cursor.get_children():
            if cursor.location.file and cursor.location.file.name == self.file_name:
                self.visit(cursor, None, None)
        return sorted(self.found.values(), key=lambda fault: (fault.start, fault.end, fault.text))

    def add(self, start, end, text, kind):
        fault = Fault(self.path, start, end, text, kind)
        changed = b''.join(fault.apply(self.source).split())
        if changed != b''.join(self.source.split()):
            self.found.setdefault((start, end, text), fault)

    def range(self, cursor):
        extent = cursor.extent
        if not extent.start.file or extent.start.file.name != self.file_name:
            return None
        start, end = extent.start.offset, extent.end.offset
        return (start, end) if start < end else None

    def text(self, span):
        return self.source[span[0]:span[1]].decode() if span else ''

    def visit(self, cursor, parent, function):
        if cursor.kind == Kind.STATIC_ASSERT:
            return
        if cursor.kind in FUNCTIONS or cursor.kind == Kind.LAMBDA_EXPR:
            function = cursor
        span = self.range(cursor)
        if span:
            self.look_at(cursor, parent, function, span)
        for child in cursor.get_children():
            self.visit(child, cursor, function)

    def look_at(self, cursor, parent, function, span):
        kind = cursor.kind
        if kind == Kind.IF_STMT:
            self.condition(cursor, span)
        elif kind == Kind.WHILE_STMT:
            self.loop(cursor)
        elif kind == Kind.CONDITIONAL_OPERATOR:
            self.negate(next(cursor.get_children()))
        elif kind in (Kind.BINARY_OPERATOR, Kind.COMPOUND_ASSIGNMENT_OPERATOR):
            self.operator(list(cursor.get_children()), span)
        elif kind == Kind.UNARY_OPERATOR:
            if self.text(span)[0] in '!-~':
                self.add(span[0], span[0] + 1, '', 'operator dropped')
        elif kind == Kind.COMPOUND_STMT:
            self.statements(cursor, span)
        elif kind == Kind.RETURN_STMT:
            self.returned(cursor)
        elif kind == Kind.INIT_LIST_EXPR:
            self.table(cursor)
        elif kind == Kind.DECL_REF_EXPR:
            self.enumerator(cursor, span)
        if kind == Kind.CALL_EXPR:
            self.call(cursor, span)
        if kind in (Kind.INTEGER_LITERAL, Kind.FLOATING_LITERAL, Kind.CXX_BOOL_LITERAL_EXPR, Kind.CHARACTER_LITERAL,
                    Kind.STRING_LITERAL, Kind.PAREN_EXPR, Kind.BINARY_OPERATOR, Kind.CSTYLE_CAST_EXPR):
            self.literal(cursor, parent, span)

    def is_equality(self, cursor):
        if cursor.kind in (Kind.BINARY_OPERATOR, Kind.CALL_EXPR):
            operands = list(cursor.get_arguments() if cursor.kind == Kind.CALL_EXPR else cursor.get_children())
            spans = [self.range(operand) for operand in operands]
            return len(spans) == 2 and all(spans) and self.text((spans[0][1], spans[1][0])).strip() in ('==', '!=')
        return False

    def negate(self, condition):
        span = self.range(condition)
        # "==" and "!" are exchanged and dropped by themselves.
        if span and not self.text(span).startswith('!') and not self.is_equality(condition):
            self.add(*span, f'!({self.text(span)})', 'condition negated')

    def condition(self, cursor, span):
        parts = list(cursor.get_children())
        if not parts or not parts[0].kind.is_expression():
            return
        self.negate(parts[0])
        if len(parts) != 2:
            return
        then = list(parts[1].get_children()) if parts[1].kind == Kind.COMPOUND_STMT else [parts[1]]
        if len(then) == 1 and then[0].kind in LEAVING:
            self.add(*span, '{}', 'early way out removed')

    def loop(self, cursor):
        parts = list(cursor.get_children())
        span = self.range(parts[0]) if parts and parts[0].kind.is_expression() else None
        if span:
            self.add(*span, 'false', 'loop never entered')

    def operator(self, operands, whole):
        if len(operands) != 2:
            return
        left, right = (self.range(operand) for operand in operands)
        if not left or not right or left[1] > right[0]:
            return
        between = self.text((left[1], right[0]))
        sign = between.strip()
        at = left[1] + len(between[:between.index(sign)].encode()) if sign else 0
        if sign == '|':
            self.add(left[1], whole[1], '', 'flag dropped')
            self.add(whole[0], right[0], '', 'flag dropped')
        elif sign in OTHER_OPERATOR:
            kind = 'comparison moved' if sign in COMPARISONS else 'operator exchanged'
            self.add(at, at + len(sign), OTHER_OPERATOR[sign], kind)

    def statements(self, cursor, span):
        body = self.text(span)
        for child in cursor.get_children():
            part = self.range(child)
            if not part:
                continue
            text = self.text(part)
            if child.kind in (Kind.BREAK_STMT, Kind.CONTINUE_STMT):
                self.add(*part, '', 'statement dropped')
            elif child.kind.is_expression():
                if not re.match(r'\(void\)|static_cast<void>|(\w+(\.|->))*(%s)\(' % '|'.join(CALLS_WITHOUT_EFFECT), text):
                    self.add(*part, '(void)0', 'statement dropped')
            elif child.kind == Kind.DECL_STMT:
                self.guard(child, part, body)

    def guard(self, declaration, span, body):
        """A variable that nothing names is there for what its constructor and destructor do."""
        variables = list(declaration.get_children())
        if len(variables) == 1 and variables[0].kind == Kind.VAR_DECL and \
                variables[0].type.get_canonical().kind == TypeKind.RECORD and \
                len(re.findall(r'\b%s\b' % re.escape(variables[0].spelling), body)) == 1:
            self.add(*span, ';', 'guard dropped')

    def returned(self, cursor):
        value = next(cursor.get_children(), None)
        span = self.range(value) if value else None
        if not span:
            return
        text = self.text(span)
        kind, name = value.type.get_canonical().kind, value.type.spelling
        if text in ('true', 'false') or NUMBER.match(text) or self.is_equality(value):
            return
        if kind == TypeKind.BOOL or name.endswith('BOOL'):
            other = f'!({text})'
        elif 'HRESULT' in name or text in ('S_OK', 'S_FALSE') or text.startswith('E_'):
            other = 'E_FAIL' if text == 'S_OK' else 'S_OK'
        elif kind == TypeKind.POINTER:
            other = 'nullptr'
        elif kind == TypeKind.RECORD and text.split('::')[-1] != name.split('::')[-1] + '()':
            other = '{}'
        elif TypeKind.CHAR_U.value <= kind.value <= TypeKind.LONGDOUBLE.value:
            other = f'({text}) + 1'
        else:
            return
        if text not in (other, 'nullptr', '{}', 'std::nullopt', '*this'):
            self.add(*span, other, 'return value replaced')

    def swap(self, first, second, kind):
        if first and second and first[1] <= second[0]:
            between = self.text((first[1], second[0]))
            if between.strip().startswith(',') and self.text(first) != self.text(second):
                self.add(first[0], second[1], self.text(second) + between + self.text(first), kind)

    def table(self, cursor):
        """Neighbours change places; of two rows only what stands in their first columns does, since the order of
        rows seldom matters."""
        entries = list(cursor.get_children())
        for one, other in zip(entries, entries[1:]):
            columns = [list(entry.get_children()) for entry in (one, other)]
            if one.kind == other.kind == Kind.INIT_LIST_EXPR and all(columns):
                first, second = (self.range(row[0]) for row in columns)
                rests = [self.text((self.range(row[0])[1], self.range(entry)[1])) for row, entry in
                         zip(columns, (one, other)) if self.range(row[0]) and self.range(entry)]
                if first and second and first[1] <= second[0] and len(set(rests)) == 2 and \
                        self.text(first) != self.text(second):
                    self.add(first[0], second[1],
                             self.text(second) + self.text((first[1], second[0])) + self.text(first),
                             'table entries exchanged')
            elif one.type.get_canonical().spelling == other.type.get_canonical().spelling:
                self.swap(self.range(one), self.range(other), 'table entries exchanged')

    def enumerator(self, cursor, span):
        constant = cursor.referenced
        if not constant or constant.kind != Kind.ENUM_CONSTANT_DECL:
            return
        text = self.text(span)
        if not re.match(r'(\w+::)*%s$' % re.escape(constant.spelling), text):
            return
        names = [child.spelling for child in constant.semantic_parent.get_children()
                 if child.kind == Kind.ENUM_CONSTANT_DECL]
        at = names.index(constant.spelling)
        if len(names) > 1:
            other = names[at + 1] if at + 1 < len(names) else names[at - 1]
            self.add(*span, text[:len(text) - len(constant.spelling)] + other, 'constant exchanged')

    def call(self, cursor, span):
        arguments = list(cursor.get_arguments())
        if cursor.spelling.startswith('operator') and len(arguments) == 2:
            self.operator(arguments, span)
            return
        if cursor.spelling in SYMMETRICAL:
            return
        for one, other in zip(arguments, arguments[1:]):
            types = {re.sub(r'\bconst\b|&|\s', '', argument.type.get_canonical().spelling) for argument in (one, other)}
            if len(types) == 1:
                self.swap(self.range(one), self.range(other), 'arguments exchanged')

    def literal(self, cursor, parent, span):
        text = self.text(span)
        kind = cursor.kind
        if IDENTIFIER.match(text):
            if text in OTHER_WORD:
                self.add(*span, OTHER_WORD[text], 'constant exchanged')
            elif text in self.ids:
                self.add(*span, self.ids[text], 'constant exchanged')
            elif text != 'NULL':
                self.add(*span, f'({text} + 1)', 'constant moved')
        elif kind == Kind.INTEGER_LITERAL:
            number = NUMBER.match(text)
            is_length = self.source[span[0] - 1:span[0]] == b'[' and parent and \
                parent.kind in (Kind.VAR_DECL, Kind.FIELD_DECL)
            if number and not is_length:
                value = int(number[1].replace("'", ''), 0 if number[1][:2] in ('0x', '0X') else 10)
                other = value + 1 if value != 1 else 0
                self.add(*span, (hex(other) if 'x' in text.lower() else str(other)) + number[2], 'constant moved')
        elif kind == Kind.FLOATING_LITERAL and re.match(r'[0-9.]', text):
            self.add(*span, f'({text} * 2)', 'constant moved')
        elif kind == Kind.CXX_BOOL_LITERAL_EXPR and text in ('true', 'false'):
            self.add(*span, 'false' if text == 'true' else 'true', 'constant exchanged')
        elif kind == Kind.CHARACTER_LITERAL and CHARACTER.match(text):
            at = text.index("'")
            self.add(*span, text[:at] + "'~'" + text[text.rindex("'") + 1:], 'text changed')
        elif kind == Kind.STRING_LITERAL and TEXT_LITERAL.match(text):
            at = text.rindex('"')
            self.add(*span, text[:at] + '~' + text[at:], 'text changed')


def neighbours(header):
    """Each resource identifier of a header and the one that is defined beside it, of the same kind."""
    names = re.findall(r'(?m)^#define\s+((?:ID[A-Z]*)_\w+)\s+\d+', header)
    others = {}
    for at, name in enumerate(names):
        prefix = name.split('_')[0]
        near = [n for n in names[at + 1:at + 2] + names[max(at - 1, 0):at] if n.split('_')[0] == prefix]
        if near:
            others[name] = near[0]
    return others


def of_source(path, file_name, arguments, resource_ids, translated):
    """The faults of file_name, parsed as part of the translation unit `translated` (which is itself, for a .cpp)."""
    with open(file_name, 'rb') as file:
        source = file.read()
    unit = Index.create().parse(translated, arguments)
    fatal = [str(d) for d in unit.diagnostics if d.severity >= 4]
    if fatal:
        raise SystemExit(f'tools/mutate: {path} could not be read: {fatal[0]}')
    return Finder(path, source, file_name, resource_ids).faults(unit)


RESOURCE_PATTERNS = {
    '.rc': ((r'"[^"\n]+"', lambda found: found[:-1] + '~"', 'text changed'),
            (r' \| \w+', lambda found: '', 'flag dropped'),
            (r', NOT \w+', lambda found: '', 'flag dropped')),
    '.rgs': ((r"'[^'\n]+'", lambda found: found[:-1] + "~'", 'text changed'),),
    '.xml': ((r'="[^"]+"', lambda found: found[:-1] + '~"', 'text changed'),
             (r' \w+="[^"]*"', lambda found: '', 'attribute dropped'),
             (r'>[^<>]*\w[^<>]*<', lambda found: found[:-1] + '~<', 'text changed')),
}


def of_resource(path, file_name, resource_ids):
    """The faults of a resource script, a registry script or a task dialog's document, found by its lines."""
    with open(file_name, 'rb') as file:
        source = file.read()
    text = source.decode('latin-1')  # one character a byte
    found = {}
    suffix = '.' + path.rsplit('.', 1)[-1]
    for pattern, other, kind in RESOURCE_PATTERNS.get(suffix, ()):
        for match in re.finditer(pattern, text):
            line = text[text.rfind('\n', 0, match.start()) + 1:match.start()]
            if not line.lstrip().startswith(('#include', '//', '<?xml')) and 'FONT' not in line:
                fault = Fault(path, match.start(), match.end(), other(match[0]).encode('latin-1').decode('utf-8'), kind)
                found[(fault.start, fault.end, fault.text)] = fault
    if suffix == '.rc':
        for match in re.finditer(r'\bID[A-Z]*_\w+', text):
            if match[0] in resource_ids:
                fault = Fault(path, match.start(), match.end(), resource_ids[match[0]], 'constant exchanged')
                found[(fault.start, fault.end, fault.text)] = fault
    return sorted(found.values(), key=lambda fault: (fault.start, fault.end, fault.text))
