# What a script can change in Python, and how that is undone: what a case leaves behind must not
# reach the next. Modules of Python's library stay: they would only be loaded again.

import builtins
import importlib
import os
import signal
import sys
import sysconfig
import time

import bdd
import tamrix

# Namespaces that live on.
NAMESPACES = [vars(each) for each in (builtins, tamrix, bdd)]
MODULES = sys.modules


def library_folders():
    """Python's library, installed packages, and Debian's own ones."""
    paths = sysconfig.get_paths()
    return [*map(paths.get, ("stdlib", "platstdlib", "purelib", "platlib")), "/usr/lib/python3"]


# Found before a script can break anything.
LIBRARY_FOLDERS = library_folders()


def set_back(names, before):
    """Makes a dictionary equal to one that was copied of it."""
    for name in list(names):
        if name not in before:
            del names[name]
    names.update(before)


def signal_handlers():
    """The handlers of the signals below those that are ours. None is one that is not Python's."""
    handlers = {}
    for number in range(1, signal.SIGRTMIN):
        try:
            handlers[number] = signal.getsignal(number)
        except ValueError:
            # Some numbers are no signals.
            pass
    return handlers


def attribute(value, name):
    """None for one that can't be read."""
    try:
        return getattr(value, name)
    except Exception:
        return None


def is_of_library(name):
    """Whether a module belongs to Python's library. The others are the suite's own, folders of it,
    and stand-ins that a script made."""
    module = MODULES.get(name)
    if module is None:
        return False
    file = attribute(module, "__file__")
    if isinstance(file, str):
        return not source_of(file)[1]
    if attribute(attribute(module, "__spec__"), "origin") in ("built-in", "frozen"):
        return True
    # The library makes some modules by hand, below the one that makes them.
    parent = name.rpartition(".")[0] if isinstance(name, str) else ""
    return parent != "" and is_of_library(parent)


class State:
    """How everything is when it is made."""

    def __init__(self):
        self.path = list(sys.path)
        # What was added to the front of it.
        self.search = []
        self.namespaces = list(map(dict, NAMESPACES))
        self.modules = dict(MODULES)
        self.environment = os.environ.copy()
        self.handlers = signal_handlers()

    def search_in(self, folders):
        """Puts folders in front of Python's own, in place of those that were there before. Why that
        can't be done, empty when it is."""
        if not isinstance(sys.path, list):
            return "sys.path is no list"
        folders = list(dict.fromkeys(folders))
        sys.path[:len(self.search)] = folders
        self.search = folders
        return ""

    def add_search_folder(self, folder):
        return self.search_in(self.search + [folder])

    def set_search_folders(self, folders):
        return self.search_in(folders + self.search)

    def restore(self):
        """Makes everything as it was."""
        sys.path = list(self.path)
        sys.argv = [""]
        self.search = []
        for hook in ("excepthook", "displayhook", "unraisablehook", "stdin"):
            setattr(sys, hook, getattr(sys, f"__{hook}__"))
        for names, before in zip(NAMESPACES, self.namespaces):
            set_back(names, before)
        self.restore_environment()
        self.restore_handlers()
        self.drop_modules()

    def restore_environment(self):
        if os.environ != self.environment:
            os.environ.clear()
            os.environ.update(self.environment)
            time.tzset()

    def restore_handlers(self):
        now = signal_handlers()
        for number, handler in self.handlers.items():
            if number in now and now[number] is not handler:
                # One that is not Python's comes back with the state of the process.
                signal.signal(number, signal.SIG_DFL if handler is None else handler)

    def drop_modules(self):
        # What stands under another name than it did before is put right as well.
        MODULES.update(self.modules)
        for name in list(MODULES):
            if name not in self.modules and not is_of_library(name):
                MODULES.pop(name, None)
        # Files may be others when they are looked for again.
        importlib.invalidate_caches()
