# What the running call of a verdict says in its script: the source text of its condition, and below
# it, a line each, the values in it:
#
#     field.text == wanted and len(rows) > 2
#     field.text: 'a'
#     wanted: 'b'
#     len(rows): 2
#
# They are looked up once more: names, attributes, elements, operators and some of Python's own
# functions; no other call is made a second time.

import ast
import builtins
import itertools
import linecache
import sys

MOST_VALUES = 20
LONGEST = 200
# Functions of Python that tell of their arguments and do nothing else.
HARMLESS_FUNCTIONS = {"abs", "all", "any", "bool", "float", "int", "len", "list", "max", "min",
                      "repr", "round", "set", "str", "sum", "tuple", "sorted", "type"}
# Nodes whose parts are shown in their place.
COMPOSITES = (ast.BoolOp, ast.BinOp, ast.UnaryOp, ast.Compare, ast.IfExp, ast.Tuple, ast.List,
              ast.Starred)
# Nodes that can be evaluated again, if their parts can.
HARMLESS_NODES = (ast.Name, ast.Constant, ast.Attribute, ast.Subscript, ast.BoolOp, ast.BinOp,
                  ast.UnaryOp, ast.Compare, ast.Tuple, ast.List, ast.Slice, ast.Load, ast.keyword,
                  ast.IfExp, ast.operator, ast.unaryop, ast.boolop, ast.cmpop)


def explain(parameter):
    """The text for the first argument, or for the one called `parameter`. Empty when there is
    nothing to tell: for a plain constant, code without a file, one that has changed since."""
    try:
        frame = sys._getframe().f_back
        if source_of(frame.f_code.co_filename)[0] is None:
            return ""
        source = call_source(frame)
        call = ast.parse(source, "<condition>", "eval").body
        condition = Condition(source, frame)
        # Functions of Python call others on their own account.
        if not isinstance(call, ast.Call) or not condition.is_native(call.func):
            return ""
        node = argument_of(call, parameter)
        if node is None or isinstance(node, ast.Constant):
            return ""
        condition.visit(node)
        lines = [f"{text}: {shown(value)}" for text, value in condition.values]
        return "\n".join([condition.text(node), *lines])
    except Exception:
        # A source that does not parse is another one by now.
        return ""


def shown(value):
    try:
        text = repr(value)
    except Exception:
        return "<no representation>"
    return text if len(text) <= LONGEST else text[:LONGEST] + "..."


def call_source(frame):
    """The running call as an expression of its own, in brackets since it may take several lines."""
    places = itertools.islice(frame.f_code.co_positions(), frame.f_lasti // 2, None)
    line, end_line, column, end_column = next(places)
    linecache.checkcache(frame.f_code.co_filename)
    lines = linecache.getlines(frame.f_code.co_filename)
    # Columns count bytes of UTF-8.
    parts = [each.encode() for each in lines[line - 1:end_line]]
    parts[-1] = parts[-1][:end_column]
    parts[0] = parts[0][column:]
    return "(" + b"".join(parts).decode("utf-8", "replace") + ")"


def argument_of(call, parameter):
    """The node of the first argument, or of the one of this name; None when there is none."""
    if call.args:
        return None if isinstance(call.args[0], ast.Starred) else call.args[0]
    return next((each.value for each in call.keywords if each.arg == parameter), None)


class Condition:
    def __init__(self, source, frame):
        self.source = source
        self.globals = frame.f_globals
        self.locals = frame.f_locals
        self.seen = set()
        self.values = []

    def text(self, node):
        """On one line, however it was broken."""
        words = ast.get_source_segment(self.source, node)
        return " ".join(words.split()) if "\n" in words else words

    def evaluate(self, node):
        """The value in a list, which is empty when there is none."""
        try:
            code = compile(ast.Expression(node), "<condition>", "eval")
            return [eval(code, self.globals, self.locals)]
        except Exception:
            return []

    def is_native(self, node):
        """Whether the node means a function of the test system."""
        return self.is_harmless(node) and any(map(is_native_function, self.evaluate(node)))

    def is_harmless_function(self, node):
        """Whether the name means Python's own function."""
        return (isinstance(node, ast.Name) and node.id in HARMLESS_FUNCTIONS and
                any(each is getattr(builtins, node.id) for each in self.evaluate(node)))

    def is_harmless(self, node):
        is_known = (self.is_harmless_function(node.func) if isinstance(node, ast.Call)
                    else isinstance(node, HARMLESS_NODES))
        return is_known and all(map(self.is_harmless, ast.iter_child_nodes(node)))

    def visit(self, node):
        """Adds the values in the node, from left to right."""
        is_shown = isinstance(node, (ast.expr, ast.keyword)) and not isinstance(node, ast.Constant)
        if not is_shown or len(self.values) >= MOST_VALUES:
            return
        if not isinstance(node, (ast.keyword, *COMPOSITES)) and self.is_harmless(node):
            self.add(node)
            return
        # What can't be evaluated again: its parts, but no lambda's or comprehension's, whose names
        # mean nothing here.
        if not isinstance(node, (ast.Call, ast.Attribute, ast.Subscript, ast.keyword, *COMPOSITES)):
            return
        for child in ast.iter_child_nodes(node):
            # Of a method that is called, the object tells more.
            is_method = (isinstance(node, ast.Call) and child is node.func and
                         isinstance(child, ast.Attribute))
            self.visit(child.value if is_method else child)

    def add(self, node):
        text = self.text(node)
        if text in self.seen:
            return
        self.seen.add(text)
        # Functions, classes and modules say nothing that their names do not.
        self.values += [(text, value) for value in self.evaluate(node)
                        if not callable(value) and not isinstance(value, type(ast))]
