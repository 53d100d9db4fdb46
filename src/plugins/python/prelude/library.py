# The module tamrix: exceptions and classes. Scripts get objects of the latter from functions.

import collections

import tamrix


class Error(RuntimeError):
    """A function of the test system failed"""


class VerificationError(Error, AssertionError):
    """A verdict failed that is to end the script"""


class FatalError(BaseException):
    """Ends the test case"""


class LookupError(Error, LookupError):
    """Something was not found in time"""


class Location(collections.namedtuple("Location", ("fileName", "line"))):
    """A position in a script"""
    __slots__ = ()

    def __repr__(self):
        return f"tamrix.Location(fileName={self.fileName!r}, line={self.line!r})"


# Methods whose names begin with "_" are the library's.

def is_same_application(self, other):
    if not isinstance(other, tamrix.ApplicationContext):
        return NotImplemented
    return self._id() == other._id()


tamrix.ApplicationContext.__eq__ = is_same_application
tamrix.ApplicationContext.__hash__ = lambda self: self._id() & 0x7fffffff
tamrix.ApplicationContext.__repr__ = lambda self: self._text()
tamrix.DataSet.__repr__ = lambda self: self._text()


# A method of the application's global class, looked up in the application that is the current one
# when it is called.
class GlobalFunction:
    def __init__(self, name, shown_name):
        self._name = name
        self.__name__ = shown_name

    __doc__ = property(lambda self: help_of_global(self._name))

    def __call__(self, /, *arguments, **named):
        return call_global(self._name, arguments, named)

    def __repr__(self):
        return f"<global function {self._name}>"


# Native classes

class NativeClass(type):
    """The class of the class objects, base of those that have static properties. The classes that
    the test system defines itself take nothing but their properties: a slip in a name is no new
    attribute."""

    def __setattr__(cls, name, value):
        check_property(cls, name)
        super().__setattr__(name, value)

    def __delattr__(cls, name):
        check_property(cls, name)
        super().__delattr__(name)


own_classes = set()


def check_property(cls, name):
    if cls in own_classes and not hasattr(type(cls), name):
        raise AttributeError(f"{cls.__name__} has no property '{name}'")


def make_class(name, base, constructor, members):
    """A class from rows of name, function, setter or None, whether it is a property, and whether it
    is static."""
    attributes = {"__module__": "tamrix", "__new__": constructor,
                  # Objects of the class have its properties and no others.
                  "__slots__": ()}
    static_properties = {"__module__": "tamrix"}
    for member, function, setter, is_property, is_static in members:
        owner = static_properties if is_property and is_static else attributes
        owner[member] = property(function, setter) if is_property else function
    base_class = NativeClass if type(base) is type else type(base)
    made = type(name + "Type", (base_class,), static_properties)(name, (base,), attributes)
    own_classes.add(made)
    return made


class Pixels(tamrix._PixelBuffer):
    """The base of Image, and so of Screenshot: what these have beyond the members that every
    language gets"""
    __slots__ = ()
    # Pixels may change.
    __hash__ = None

    def __eq__(self, other):
        return self.equals(other) if isinstance(other, Pixels) else NotImplemented

    def __repr__(self):
        return f"<{type(self).__name__} {self.width}x{self.height}>"

    def to_png(self):
        """The image as the bytes of a PNG file"""
        return png_of(self)

    @property
    def __array_interface__(self):
        """The pixels for array libraries"""
        return {"shape": (self.height, self.width, 4), "typestr": "|u1", "version": 3,
                "data": pixels_of(self)}

    def _array(self):
        """Red, green, blue and alpha as bytes by row and column: a copy of the pixels."""
        view = memoryview(pixels_of(self))
        return view.cast("B", (self.height, self.width, 4)) if view else view


for each in (Error, VerificationError, FatalError, LookupError, Location, GlobalFunction):
    setattr(tamrix, each.__name__, each)
