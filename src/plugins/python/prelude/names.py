# Modules with names of objects.

import sys
from importlib.machinery import SourceFileLoader


def imported_code(path, folder):
    """The code of a module as Python's import has it, which keeps it below the folder until the
    file changes. None when it can't be had so."""
    # Nothing of what the script imports itself is kept.
    sys.pycache_prefix = folder
    sys.dont_write_bytecode = False
    try:
        return SourceFileLoader("names", path).get_code("names")
    except Exception:
        return None
    finally:
        sys.dont_write_bytecode = True
        sys.pycache_prefix = None
