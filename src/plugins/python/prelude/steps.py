# Files with steps: modules of their own, which the module `bdd` helps to register what they have.

import builtins
import os.path
import sys
import types
from decimal import Decimal

from bdd import context, _make_table

MODULES = sys.modules


def is_module_of(module, path):
    file = getattr(module, "__file__", None)
    return isinstance(file, str) and source_of(file)[0] == path


def module_name(path):
    """The name under which others can import the file, unless something else has it."""
    name = os.path.splitext(os.path.basename(path))[0]
    return name if name not in MODULES or is_module_of(MODULES[name], path) else "steps in " + path


def run_file(path, code, names):
    """Runs the code of a file as a module with these names."""
    name = module_name(path)
    MODULES[name] = module = types.ModuleType(name)
    module.__dict__.update(names, __file__=path, __builtins__=builtins.__dict__)
    exec(code, module.__dict__)


def is_loaded(path):
    name = os.path.splitext(os.path.basename(path))[0]
    return is_module_of(MODULES.get(name), path)


def forget_files(paths):
    for path in paths:
        MODULES.pop(module_name(path), None)
