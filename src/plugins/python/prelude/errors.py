# What a person is told of an exception. Nothing may be raised here: one is being told of already.

import types

from bdd import PendingStepError

# Exceptions that led to others, before the list is cut.
MOST_CAUSES = 5


def attribute(value, name):
    """None for one that can't be read."""
    try:
        return getattr(value, name)
    except BaseException:
        return None


def text_of(value):
    try:
        # Of a class that is derived from str, the text alone.
        return str.__str__(str(value))
    except BaseException:
        return ""


def class_name(exception):
    """With its module in front unless it is Python's or the test script's own."""
    name = text_of(attribute(type(exception), "__qualname__"))
    module = attribute(type(exception), "__module__")
    return name if module in (None, "", "builtins", "__test__") else f"{text_of(module)}.{name}"


def own_text(exception):
    words = text_of(exception)
    text = class_name(exception) + (": " + words if words else "")
    notes = attribute(exception, "__notes__")
    return "\n".join([text, *(map(text_of, notes) if isinstance(notes, list) else ())])


def cause_of(exception):
    """The words in front of the exception that led to this one, and that; None without one."""
    cause = attribute(exception, "__cause__")
    if cause is not None:
        return "\ncaused by ", cause
    suppressed = attribute(exception, "__suppress_context__") is True
    return "\nwhile handling ", None if suppressed else attribute(exception, "__context__")


def full_text(exception):
    text = own_text(exception)
    for _ in range(MOST_CAUSES):
        words, exception = cause_of(exception)
        if exception is None:
            break
        text += words + own_text(exception)
    return text


def line_of(number):
    return int(number) if isinstance(number, int) else -1


def stack_of(exception, traceback):
    """(file, line) of lines in scripts, the innermost first. When there is none, the innermost line
    of all stands alone."""
    lines = []
    # A traceback runs from the outermost call inwards.
    while traceback is not None:
        path, is_script = source_of(traceback.tb_frame.f_code.co_filename)
        if path is not None:
            lines.append((path, line_of(traceback.tb_lineno), is_script))
        traceback = traceback.tb_next
    # The place of a syntax error, which no frame runs.
    file = attribute(exception, "filename") if isinstance(exception, SyntaxError) else None
    path = source_of(file)[0] if isinstance(file, str) else None
    line = line_of(attribute(exception, "lineno"))
    if path and line >= 0:
        lines.append((path, line, True))
    lines.reverse()
    return [(path, line) for path, line, is_script in lines if is_script] or [
        (path, line) for path, line, _ in lines[:1]]


def outermost_line(exception, traceback):
    line = line_of(traceback.tb_lineno) if traceback is not None else -1
    if line < 0 and isinstance(exception, SyntaxError):
        line = line_of(attribute(exception, "lineno"))
    return max(line, 0)


def is_clean_exit(exception):
    """Whether it is a sys.exit() that tells of no failure."""
    if not isinstance(exception, SystemExit):
        return False
    code = attribute(exception, "code")
    return code is None or isinstance(code, int) and int(code) == 0


def why_not_run(result):
    """Why nothing of a function has run that was called; None when it has. A coroutine or generator
    has only been made."""
    if isinstance(result, (types.CoroutineType, types.AsyncGeneratorType)):
        if isinstance(result, types.CoroutineType):
            # The error tells more than the warning of a coroutine that was never awaited.
            result.close()
        return ("() is asynchronous and nothing of it has run: let a plain function call "
                "asyncio.run()")
    if isinstance(result, types.GeneratorType):
        return "() is a generator and nothing of it has run: take its 'yield' away"
    return None


def tell(exception, traceback):
    """What a ScriptError has, in the order of its members."""
    return (full_text(exception), stack_of(exception, traceback),
            outermost_line(exception, traceback), is_clean_exit(exception),
            isinstance(exception, PendingStepError))
