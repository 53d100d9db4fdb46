#pragma once

#include "plugins/python/pyref.h"

namespace Tamrix::PythonPlugin {

/// The base of the Python class Image, and so of Screenshot: what these have beyond the members
/// that every language gets. Two are equal when Image.equals() says so; repr() tells class and
/// size; to_png() gives the bytes of a PNG file. By the buffer protocol, and as
/// `__array_interface__`, an image is an array of height, width and four: red, green, blue and
/// alpha as bytes, a copy of the pixels at that moment. Null with the error indicator set on
/// failure; borrowed.
PyTypeObject* imageBase();

}  // namespace Tamrix::PythonPlugin
