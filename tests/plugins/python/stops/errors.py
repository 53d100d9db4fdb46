"""Each function ends by an error or catches one; the golden file tells where that stops."""
import asyncio
import contextlib
import threading

cleaned = []


def native():
    findNothing()


def nativeInTry():
    try:
        findNothing()
    except (KeyError, UnicodeError, OSError):
        return
    finally:
        cleaned.append("native")


def wrongCall():
    try:
        findNothing(unasked="for")
    finally:
        cleaned.append("call")


def plain():
    return 1 / 0


def deep():
    try:
        plain()
    finally:
        cleaned.append("deep")


def caught():
    try:
        plain()
    except ArithmeticError:
        return


def caughtBare():
    try:
        deep()
    except:
        return


def caughtOutside():
    caughtType = ZeroDivisionError
    try:
        wrongType()
    except (KeyError, caughtType) as error:
        return


def wrongType():
    try:
        plain()
    except KeyError:
        return


def raisedAgain():
    try:
        plain()
    except ArithmeticError:
        raise


def replaced():
    try:
        plain()
    except ArithmeticError as error:
        raise ValueError("replaced") from error


def suppressed():
    with contextlib.suppress(ArithmeticError):
        plain()


def inWith():
    with contextlib.nullcontext():
        plain()


def group():
    try:
        plain()
    except* ArithmeticError:
        pass


def ofIteration():
    class Numbers:
        def __iter__(self): return self
        def __next__(self): raise StopIteration
        def __getattr__(self, name): raise AttributeError(name)
        @property
        def broken(self): raise AttributeError("broken")
    numbers = Numbers()
    next(numbers, 0)
    hasattr(numbers, "broken")
    return list(numbers), getattr(numbers, "other", 0)


def missingAttribute():
    return cleaned.nothing


def inCallback():
    called(lambda value: plain())


def inVerdict():
    test.exception(plain)
    test.exception("plain()")


def inSource():
    source(brokenFile)


def ofGenerator():
    yield 1 / 0


def viaGenerator():
    return list(ofGenerator())


async def failing():
    await asyncio.sleep(0)
    plain()


def inCoroutine():
    asyncio.run(failing())


def inThread():
    thread = threading.Thread(target=plain)
    threading.excepthook = lambda arguments: None
    thread.start()
    thread.join()


def exits():
    exit(3)


def skips():
    test.skip("not here")


# What is written in Python of the test system is no frame of the script, and asks for no answers.

def missingInNamespace():
    try:
        object.exsits(":name")
    finally:
        cleaned.append("namespace")


def missingInContext():
    from bdd import context
    try:
        context.nothing
    finally:
        cleaned.append("context")


def wrongStep():
    from bdd import step
    try:
        step("a {nothing}")(print)
    finally:
        cleaned.append("step")


def wrongPrint():
    import sys
    try:
        sys.stdout.write(5)
    finally:
        cleaned.append("print")
