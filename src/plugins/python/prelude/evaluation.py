# Code that a person writes while a script stands still, with the variables of a frame.

import ast

# No file of a script, so that its frame is none of the script's.
FILE = "<debugger>"


def evaluate(text, names, variables):
    """The representation of an expression's value. Statements give an empty text; what they assign
    is in the variables then."""
    code = expression(text)
    if code is not None:
        return represented(run(code, names, variables))
    run_statements(text, names, variables)
    return ""


def expression(text):
    """The code of an expression; None for other code."""
    try:
        return compile(text.strip(), FILE, "eval")
    except SyntaxError:
        return None


def run_statements(text, names, variables):
    """Runs them one after another, so that functions in a later one see what an earlier one has
    assigned."""
    declarations = []
    for statement in ast.parse(text, FILE).body:
        # A declaration holds for all statements behind it.
        if isinstance(statement, ast.Global):
            declarations.append(statement)
        else:
            module = ast.Module([*declarations, statement], [])
            run(compile(module, FILE, "exec"), names, variables)


def has_function_using(code, variables):
    """Whether a function in the code, such as a comprehension, uses a variable of the frame. Python
    looks names up in globals there."""
    functions = [each for each in code.co_consts if isinstance(each, type(code))]
    return any(name in variables for each in functions for name in each.co_names) or any(
        has_function_using(each, variables) for each in functions)


def run(code, names, variables):
    if names is variables or not has_function_using(code, variables):
        return eval(code, names, variables)
    # Functions in the code see globals only: these get the frame's variables for once.
    before = {**names, **variables}
    mixed = dict(before)
    value = eval(code, mixed, variables)
    for name, changed in mixed.items():
        if name not in before or before[name] is not changed:
            names[name] = changed
    for name in before:
        if name not in mixed:
            names.pop(name, None)
    return value


def entry_of(dictionary, name):
    """The value under a text, or under the key that code in brackets gives, in a tuple; None
    without one."""
    try:
        key = ast.literal_eval(name[1:-1]) if name.startswith("[") else name
        # As it is in every dictionary, whatever a class that is derived from it makes of it.
        return (dict.__getitem__(dictionary, key),) if dict.__contains__(dictionary, key) else None
    except Exception:
        return None
