# A namespace of the library whose name is one of Python's own: "object". Python's library needs the
# name as it is, so it stays in the builtins, and scripts and modules of the suite get an overlay
# instead: an object with the functions of the namespace that otherwise behaves as what it lies
# over. `class Thing(object)`, `object()` and `isinstance(x, object)` mean what they always do.

from importlib.machinery import SourceFileLoader

# The overlays by name, as globals for scripts.
overlays = {}


class Namespace:
    """Functions of the test system under a name of Python's own"""
    __slots__ = ("members", "hidden")

    def __getattribute__(self, name):
        members = members_of(self)
        if name in members:
            return members[name]
        # How it stands for what lies below is the overlay's own affair.
        if name in ("__mro_entries__", "__dir__"):
            return object.__getattribute__(self, name)
        return getattr(hidden_by(self), name)

    # What is set hides what lies below.
    def __setattr__(self, name, value):
        members_of(self)[name] = value

    def __delattr__(self, name):
        del members_of(self)[name]

    def __mro_entries__(self, bases):
        return (hidden_by(self),)

    def __instancecheck__(self, instance):
        return isinstance(instance, hidden_by(self))

    def __subclasscheck__(self, derived):
        return issubclass(derived, hidden_by(self))

    def __call__(self, /, *arguments, **named):
        return hidden_by(self)(*arguments, **named)

    def __dir__(self):
        return [*members_of(self), *dir(hidden_by(self))]

    def __repr__(self):
        return repr(hidden_by(self))

    def __hash__(self):
        return hash(hidden_by(self))

    def __eq__(self, other):
        return hidden_by(self) == uncovered(other)

    def __or__(self, other):
        return hidden_by(self) | uncovered(other)

    def __ror__(self, other):
        return uncovered(other) | hidden_by(self)


members_of = Namespace.members.__get__
hidden_by = Namespace.hidden.__get__


def uncovered(value):
    return hidden_by(value) if type(value) is Namespace else value


def overlay_for(name, hidden):
    """The overlay of this name, made on first use."""
    if name not in overlays:
        overlays[name] = made = object.__new__(Namespace)
        Namespace.members.__set__(made, {})
        Namespace.hidden.__set__(made, hidden)
    return overlays[name]


def hook_into_import(run):
    """Every module that comes from a source file passes here before it runs."""
    def exec_module(self, module):
        file = module.__file__
        if isinstance(file, str) and source_of(file)[1]:
            module.__dict__.update(overlays)
        run(self, module)
    SourceFileLoader.exec_module = exec_module


hook_into_import(SourceFileLoader.exec_module)
