# Whether something catches an exception that is on its way. Handlers are read from the byte code
# of CPython 3.11: a table at each code object says which handler covers an instruction, and the
# handler begins with a fixed sequence of instructions.

import bisect
import dis
import sys

# Handlers in handlers; no code is nested as deep.
MOST_NESTED = 100
# Places of which it is known what catches an exception there.
MOST_PLACES = 1000


def is_caught(exception, traceback):
    """The traceback tells of the frames that it has left."""
    while traceback is not None:
        if may_be_answer(exception, traceback.tb_frame.f_code):
            return True
        traceback = traceback.tb_next
    frame = sys._getframe().f_back
    while frame is not None:
        if may_be_answer(exception, frame.f_code) or may_catch(frame, exception):
            return True
        frame = frame.f_back
    return False


def may_be_answer(exception, code):
    """Whether Python itself, which has no frames, may be waiting for the exception as an answer:
    code of an operator such as `__getitem__`, or an attribute that somebody asks after."""
    name = code.co_name
    if code.co_filename.startswith("<tamrix "):
        # What is written in Python of the test system asks for no answers.
        return False
    if name.startswith("__") and name.endswith("__"):
        return name not in ("__init__", "__call__", "__enter__")
    return matches(exception, AttributeError) and (
        "hasattr" in code.co_names or "getattr" in code.co_names)


def may_catch(frame, exception):
    """Whether a frame may catch an exception that is raised at the instruction where it stands."""
    for types in types_at(frame.f_code, frame.f_lasti):
        try:
            if types is None or matches(exception, eval(types, frame.f_globals, frame.f_locals)):
                return True
        except BaseException:
            # There is no such name: the clause raises something else.
            pass
    return False


def matches(exception, types):
    """As an `except` does it."""
    if isinstance(types, tuple):
        return any(matches(exception, each) for each in types)
    return any(each is types for each in type(exception).__mro__)


known_places = {}


def types_at(code, place):
    """What catches an exception that is raised at a place of the code, from the inside: the code of
    the types in an `except`, None where there are none, or where that can't be judged beforehand,
    as for a `with` or an `except*`. A `finally` does not catch."""
    key = id(code), place
    if key not in known_places:
        if len(known_places) >= MOST_PLACES:
            known_places.clear()
        # It keeps the code: nothing else gets its number.
        known_places[key] = code, list(read_types(code, place))
    return known_places[key][1]


def read_types(code, place):
    instructions = [each for each in dis.get_instructions(code) if each.opname != "EXTENDED_ARG"]
    offsets = [each.offset for each in instructions]
    table = dis._parse_exception_table(code)
    for _ in range(MOST_NESTED):
        # What passes a handler goes on where an exception in the handler would.
        place = next((row.target for row in table if row.start <= place < row.end), None)
        if place is None:
            return
        yield from types_of_handler(instructions, offsets, bisect.bisect_left(offsets, place))


def types_of_handler(instructions, offsets, index):
    """Follows the beginning of a handler as far as it says which exceptions it is for."""
    if instructions[index].opname != "PUSH_EXC_INFO":
        return
    stack = []
    # No type in front: the handler is for all of them.
    is_bare = True
    while (index := index + 1) < len(instructions):
        instruction = instructions[index]
        match instruction.opname:
            case "POP_TOP":
                if is_bare:
                    yield None
                return
            case "WITH_EXCEPT_START" | "BUILD_LIST":
                # An except* collects what it has left over.
                yield None
                return
            case "COPY" | "SWAP":
                is_bare = False
            case "CHECK_EXC_MATCH":
                jump = instructions[index + 1]
                if not stack or jump.opname != "POP_JUMP_FORWARD_IF_FALSE":
                    yield None
                    return
                yield compile(stack.pop(), "<tamrix handlers>", "eval")
                index = bisect.bisect_left(offsets, jump.argval) - 1
                stack.clear()
                is_bare = True
            case _:
                # What names no exceptions is a `finally`.
                if not push_text(stack, instruction):
                    return
                is_bare = False


def push_text(stack, instruction):
    """Does with texts what the instruction does with values, if it is one of those that name
    exceptions."""
    match instruction.opname:
        case "LOAD_NAME" | "LOAD_FAST" | "LOAD_DEREF" | "LOAD_CLASSDEREF":
            stack.append(instruction.argval)
        # With the mark a call follows.
        case "LOAD_GLOBAL" if not instruction.arg & 1:
            stack.append(instruction.argval)
        case "LOAD_ATTR" if stack:
            stack.append(f"{stack.pop()}.{instruction.argval}")
        case "BUILD_TUPLE" if len(stack) >= instruction.arg:
            first = len(stack) - instruction.arg
            stack[first:] = [f"({', '.join(stack[first:])},)"]
        case _:
            return False
    return True
