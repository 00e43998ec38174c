"""Where the mutants of a module are: places in clang's syntax tree of each of its sources."""
import glob
import hashlib
import os
import pickle
import re
import subprocess

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))

RELATIONS = {
    "<": ("less", ["<=", ">="]),
    "<=": ("lessEqual", ["<", ">"]),
    ">": ("greater", [">=", "<="]),
    ">=": ("greaterEqual", [">", "<"]),
    "==": ("equal", ["!="]),
    "!=": ("notEqual", ["=="]),
}
ARITHMETIC = {
    "+": ("plus", ["-"]), "-": ("minus", ["+"]), "*": ("times", ["+"]), "/": ("divide", ["*"]),
    "%": ("remainder", ["*"]), "&": ("bitAnd", ["|"]), "|": ("bitOr", ["&"]), "^": ("bitXor", ["&"]),
    "<<": ("left", [">>"]), ">>": ("right", ["<<"]),
}
ASSIGNMENTS = {"+=": ("addAssign_subtract", "-="), "-=": ("subtractAssign_add", "+=")}


class Mutant:
    """A change of one place: inserted texts and one replaced token, all of which keep the lines.
    The texts name the mutant's numbers as %s."""

    def __init__(self, file, line, start, end, change, inserts, replaced=None):
        self.file, self.line, self.start, self.end = file, line, start, end
        self.change, self.inserts, self.replaced = change, inserts, replaced
        self.number = 0
        self.size = end - start  # of two at one place the larger is outside
        self.which = 0  # of those that share a place: 0 or 1
        self.declared = None  # (offset, line, other word, name) of the constexpr that it is part of
        self.last = line  # the last line of it
        self.name = ""  # of that constant
        self.key = ""
        self.code = ""


class Finder:
    def __init__(self, module):
        import clang.cindex as cindex
        self.cindex = cindex
        self.kinds = cindex.CursorKind
        self.folder = os.path.join(ROOT, "src", module) + os.sep
        self.index = cindex.Index.create()
        self.texts = {}
        self.found = {}

    def arguments(self):
        headers = subprocess.run(["i686-w64-mingw32-g++", "-print-file-name=include/c++"],
                                 capture_output=True, text=True, check=True).stdout.strip()
        own = subprocess.run(["clang", "-print-resource-dir"], capture_output=True, text=True,
                             check=True).stdout.strip()
        return ["-std=c++20", "-resource-dir", own, "--target=i686-w64-mingw32", "-I" + os.path.join(ROOT, "src"),
                "-I" + os.path.join(ROOT, "build", "mingw", "generated"), "-isystem", headers,
                "-isystem", headers + "/i686-w64-mingw32", "-DWIN32_LEAN_AND_MEAN", "-DNOMINMAX",
                "-DSTRICT", "-D_WIN32_WINNT=0x0601", '-DCORVINA_VERSION="1.0.0"', "-march=pentium4",
                "-Wno-everything"]

    def mutants(self):
        arguments = self.arguments()
        for source in sorted(glob.glob(self.folder + "*.cpp")):
            unit = self.index.parse(source, args=arguments)
            for problem in unit.diagnostics:
                if problem.severity >= 4:
                    raise SystemExit("mutate: %s" % problem)
            for cursor in unit.cursor.get_children():
                file = cursor.location.file
                if file and file.name.startswith(self.folder):
                    self.visit(cursor, [])
        return list(self.found.values())

    def text(self, file):
        if file not in self.texts:
            with open(file, "rb") as stream:
                self.texts[file] = stream.read()
        return self.texts[file]

    def add(self, cursor, change, inserts, replaced=None, which=0, more=0):
        extent = cursor.extent
        file = extent.start.file.name
        mutant = Mutant(os.path.relpath(file, ROOT), extent.start.line, extent.start.offset,
                        extent.end.offset, change, inserts, replaced)
        mutant.declared = self.declared
        mutant.which = which
        mutant.size += more
        self.found.setdefault((mutant.file, mutant.start, mutant.end, change), mutant)

    def visit(self, cursor, above, declared=None):
        kinds = self.kinds
        kind = cursor.kind
        # Names and promises, which would not compile.
        if kind in (kinds.ENUM_DECL, kinds.STATIC_ASSERT, kinds.TEMPLATE_REF,
                    kinds.TEMPLATE_TYPE_PARAMETER, kinds.TEMPLATE_NON_TYPE_PARAMETER):
            return
        if kind in (kinds.VAR_DECL, kinds.FIELD_DECL):
            declared = self.constant(cursor) or declared
            # In a header others need it while they are compiled.
            if declared and cursor.extent.start.file.name.endswith(".h"):
                return
        self.mutate(cursor, above, declared)
        children = list(cursor.get_children())
        if kind == kinds.CASE_STMT:
            children = children[1:]
        for child in children:
            self.visit(child, above + [cursor], declared)

    def constant(self, cursor):
        """A constant is computed anew when the mutated program starts, if it can be."""
        for token in list(cursor.get_tokens())[:6]:
            if token.spelling == "constexpr":
                member = cursor.semantic_parent.kind in (self.kinds.CLASS_DECL, self.kinds.STRUCT_DECL)
                return (token.location.offset, cursor.extent.start.line,
                        "inline const" if member else "const", cursor.spelling)
        return None

    def span(self, cursor):
        return cursor.extent.start.offset, cursor.extent.end.offset

    def inBody(self, above):
        return any(c.kind == self.kinds.COMPOUND_STMT for c in above)

    def mutate(self, cursor, above, declared):
        kinds = self.kinds
        kind = cursor.kind
        if not cursor.extent.start.file or not (declared or self.inBody(above)):
            return
        self.declared = declared
        if kind == kinds.BINARY_OPERATOR:
            self.binary(cursor)
        elif kind == kinds.COMPOUND_ASSIGNMENT_OPERATOR:
            self.assignment(cursor)
        elif kind in (kinds.IF_STMT, kinds.CONDITIONAL_OPERATOR):
            self.condition(cursor)
        elif kind == kinds.INTEGER_LITERAL:
            self.number(cursor)
        elif kind == kinds.RETURN_STMT:
            self.result(cursor)
        if above and above[-1].kind in (kinds.COMPOUND_STMT, kinds.IF_STMT, kinds.FOR_STMT,
                                        kinds.WHILE_STMT, kinds.CXX_FOR_RANGE_STMT):
            self.statement(cursor, above[-1])

    def operatorToken(self, cursor):
        """The operator between the two operands, as (offset, spelling)."""
        children = list(cursor.get_children())
        if len(children) != 2:
            return None
        left, right = self.span(children[0]), self.span(children[1])
        text = self.text(cursor.extent.start.file.name)
        between = text[left[1]:right[0]].decode(errors="replace")
        found = re.fullmatch(r"\s*([-+*/%&|^<>=!]+)\s*", between)
        if not found or left[1] > right[0]:
            return None
        return left[1] + found.start(1), found.group(1), left, right

    def arithmeticType(self, cursor):
        kind = cursor.type.get_canonical().kind
        types = self.cindex.TypeKind
        return kind not in (types.RECORD, types.UNEXPOSED, types.DEPENDENT, types.INVALID)

    def binary(self, cursor):
        token = self.operatorToken(cursor)
        if not token or not self.arithmeticType(cursor):
            return
        offset, operator, left, right = token
        if operator in ("&&", "||"):
            for side in (left, right):
                mutant = Mutant(os.path.relpath(cursor.extent.start.file.name, ROOT),
                                cursor.extent.start.line, side[0], side[1], "operand negated",
                                [(side[0], "mutants::negate(%s, ", 0), (side[1], ")", 1)])
                mutant.declared = self.declared
                self.found.setdefault((mutant.file, side, operator), mutant)
            return
        name, others = RELATIONS.get(operator) or ARITHMETIC.get(operator) or ("", [])
        if operator in ARITHMETIC and not all(
                self.arithmeticType(child) for child in cursor.get_children()):
            return
        for which, other in enumerate(others):
            self.add(cursor, "%s becomes %s" % (operator, other),
                     [(left[0], "mutants::%s(%%s, " % name, 0), (right[1], ")", 1)],
                     (offset, operator, ","), which)

    def assignment(self, cursor):
        token = self.operatorToken(cursor)
        if not token or token[1] not in ASSIGNMENTS or not self.arithmeticType(cursor):
            return
        offset, operator, left, right = token
        name, other = ASSIGNMENTS[operator]
        self.add(cursor, "%s becomes %s" % (operator, other),
                 [(left[0], "mutants::%s(%%s, " % name, 0), (right[1], ")", 1)],
                 (offset, operator, ","))

    def condition(self, cursor):
        """If the condition is one comparison, its operator has mutants of its own."""
        words = [token.spelling for token in cursor.get_tokens()][:2]
        children = list(cursor.get_children())
        if "constexpr" in words or not children or "VAR_DECL" in str(children[0].kind) or \
                children[0].kind == self.kinds.DECL_STMT:
            return
        first = children[0]
        if first.kind == self.kinds.BINARY_OPERATOR or not first.extent.start.file:
            return
        start, end = self.span(first)
        self.add(first, "condition negated",
                 [(start, "mutants::negate(%s, ", 0), (end, ")", 1)])

    def number(self, cursor):
        start, end = self.span(cursor)
        text = self.text(cursor.extent.start.file.name)[start:end].decode(errors="replace")
        if re.fullmatch(r"[0-9][0-9A-Fa-fxXuUlLzZ']*", text):
            self.add(cursor, "%s becomes one more" % text,
                     [(start, "mutants::more(%s, ", 0), (end, ")", 1)])

    def result(self, cursor):
        children = list(cursor.get_children())
        if len(children) != 1 or children[0].kind == self.kinds.BINARY_OPERATOR:
            return
        types = self.cindex.TypeKind
        kind = children[0].type.get_canonical().kind
        start, end = self.span(children[0])
        if kind == types.BOOL:
            self.add(cursor, "result negated",
                     [(start, "mutants::negate(%s, ", 0), (end, ")", 1)])
        elif kind in (types.INT, types.UINT, types.LONG, types.ULONG, types.SHORT, types.USHORT,
                      types.UCHAR, types.LONGLONG, types.ULONGLONG, types.DOUBLE, types.FLOAT) and \
                children[0].kind != self.kinds.INTEGER_LITERAL:
            self.add(cursor, "result one more",
                     [(start, "mutants::more(%s, ", 0), (end, ")", 1)])

    def statement(self, cursor, parent):
        kinds = self.kinds
        if kind_is_left_out(cursor, kinds):
            if parent.kind != kinds.COMPOUND_STMT:
                children = list(parent.get_children())
                bodies = children[1:] if parent.kind == kinds.IF_STMT else children[-1:]
                if cursor not in bodies:
                    return
            start, _ = self.span(cursor)
            text = self.text(cursor.extent.start.file.name)
            end = text.find(b";", cursor.extent.end.offset)
            if end < 0 or text[cursor.extent.end.offset:end].strip():
                return
            self.add(cursor, "statement left out",
                     [(start, "{ if (!mutants::is(%s)) { ", 0), (end + 1, " } }", 1)], more=1)


def kind_is_left_out(cursor, kinds):
    if cursor.kind in (kinds.COMPOUND_ASSIGNMENT_OPERATOR, kinds.CALL_EXPR):
        return True
    if cursor.kind == kinds.UNEXPOSED_EXPR:
        children = list(cursor.get_children())
        return len(children) == 1 and kind_is_left_out(children[0], kinds)
    if cursor.kind in (kinds.CSTYLE_CAST_EXPR, kinds.CXX_FUNCTIONAL_CAST_EXPR):
        return True
    return cursor.kind == kinds.BINARY_OPERATOR


def file_hash(text):
    return hashlib.sha1(text).hexdigest()[:10]


def mutants_of(module):
    """All mutants of a module, always in the same order; kept until one of its files changes."""
    everything = b"".join(open(path, "rb").read() for path in sorted(
        glob.glob(os.path.join(ROOT, "src", module, "*")) + [os.path.abspath(__file__)]))
    kept = os.path.join(ROOT, "build", "mutate", "found", "%s.%s" % (module, file_hash(everything)))
    if os.path.exists(kept):
        return pickle.load(open(kept, "rb"))
    mutants = Finder(module).mutants()
    texts = {}
    for mutant in mutants:
        if mutant.file not in texts:
            text = open(os.path.join(ROOT, mutant.file), "rb").read()
            texts[mutant.file] = text, file_hash(text)
        text, known = texts[mutant.file]
        mutant.last = mutant.line + text.count(b"\n", mutant.start, mutant.end)
        mutant.name = mutant.declared[3] if mutant.declared else ""
        mutant.code = " ".join(text[mutant.start:mutant.end].decode(errors="replace").split())
        mutant.key = "%s@%s:%d-%d:%s" % (mutant.file, known, mutant.start, mutant.end, mutant.change)
    os.makedirs(os.path.dirname(kept), exist_ok=True)
    pickle.dump(mutants, open(kept, "wb"))
    return mutants
