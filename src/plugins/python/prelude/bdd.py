"""Step definitions, hooks and parameter types for feature files"""

import tamrix as _tamrix

_FLAGS = ((2, "i"), (8, "m"), (16, "s"))
# It changes nothing: a text is always Unicode.
_UNICODE = 32


class PendingStepError(Exception):
    """A step is still to be written"""


class Context:
    """What steps and hooks keep for each other, by scenario, feature and test case; with `table`
    and `text` of a step"""
    __slots__ = ()

    # Methods whose names begin with "_" are the library's.
    def __getattr__(self, name):
        found = self._find(name)
        if found is None:
            raise AttributeError(f"'bdd.Context' object has no attribute '{name}'")
        return found[0]

    def __setattr__(self, name, value):
        self._set(name, value)

    def __delattr__(self, name):
        if not self._remove(name):
            raise AttributeError(name)

    __dict__ = property(lambda self: self._all())

    def __repr__(self):
        return "<context of steps>"


_tamrix.StepContext = Context
context = Context()


class Table(list):
    """The rows of a step's table as dictionaries"""


def _make_table(raw):
    table = Table(dict(zip(raw[0], cells)) for cells in raw[1:])
    table.headers = raw[0]
    table.raw = raw
    # No reference to itself: a list of the same rows.
    table.rows = list(table)
    return table


def _pattern(expression):
    """The text of an expression, with its flags in front."""
    if isinstance(expression, str):
        return expression
    text = getattr(expression, "pattern", None)
    flags = getattr(expression, "flags", None)
    if not isinstance(text, str) or not isinstance(flags, int):
        raise TypeError(
            "a step is given as a text or as a compiled regular expression of texts")
    letters = "".join(letter for flag, letter in _FLAGS if flags & flag)
    if flags & ~_UNICODE & ~sum(flag for flag, _ in _FLAGS):
        raise TypeError("steps know the flags re.I, re.M and re.S of regular expressions only")
    # A pattern that names its flags itself has them in both.
    names_them = text.startswith("(?") and text[2:3] in tuple("imsu")
    return f"(?{letters}){text}" if letters and not names_them else text


def _function(given):
    if not callable(given):
        raise TypeError("what is registered has to be a function")
    return given


def _registered(function, register, *what):
    try:
        register(*what, function)
    except TypeError as error:
        # What was checked here is of the right type.
        raise ValueError(*error.args) from None
    return function


def step(expression, /):
    """Registers a function for steps that an expression fits"""
    text = _pattern(expression)
    return lambda function: _registered(
        _function(function), context._addStep, text, not isinstance(expression, str))


given = when = then = step


def _hook(name, description):
    def hook(tags_or_function, /):
        if isinstance(tags_or_function, str):
            return lambda function: _registered(
                _function(function), context._addHook, name, tags_or_function)
        return _registered(_function(tags_or_function), context._addHook, name, "")
    hook.__name__ = hook.__qualname__ = name
    hook.__doc__ = description
    return hook


before_feature = _hook("before_feature", "Runs before each feature")
after_feature = _hook("after_feature", "Runs after each feature")
before_scenario = _hook("before_scenario", "Runs before each scenario")
after_scenario = _hook("after_scenario", "Runs after each scenario")
before_step = _hook("before_step", "Runs before each step")
after_step = _hook("after_step", "Runs after each step")


def parameter_type(name, pattern, transformer=None):
    """parameter_type(name, pattern[, transformer]): what may stand in braces in an expression"""
    if not isinstance(name, str):
        raise TypeError("the name of a parameter type is a text")
    many = pattern if isinstance(pattern, (list, tuple)) else [pattern]
    patterns = [_pattern(each) for each in many]
    _registered(None if transformer is None else _function(transformer), context._addType, name,
                patterns)
    if transformer is not None:
        return transformer
    return lambda function: _registered(_function(function), context._addType, name, patterns)


def pending(reason="the step definition is to be written"):
    """Says that the running step is still to be written"""
    raise PendingStepError(reason)
