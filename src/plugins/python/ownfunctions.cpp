#include <QBuffer>
#include <QImage>

#include "interpreter/generic/imageobjects.h"
#include "interpreter/objects/globalfunctions.h"
#include "plugins/python/conversion.h"
#include "plugins/python/nativefunction.h"
#include "plugins/python/prelude.h"
#include "plugins/python/pythoninterpreter.h"
#include "plugins/python/scriptcall.h"
#include "plugins/python/valuetext.h"

namespace Tamrix::PythonPlugin {

namespace {

// Each takes a tuple of arguments, which the plug-in's own code gives as they are described.

/// The result of `function`; null with the error indicator set when it throws PythonErrorSet.
template <PyRef (*function)(PyObject* arguments)>
PyObject* guarded(PyObject*, PyObject* arguments) {
    try {
        return function(arguments).release();
    } catch (const PythonErrorSet&) {
        return nullptr;
    }
}

PyObject* at(PyObject* arguments, Py_ssize_t place) {
    return PyTuple_GET_ITEM(arguments, place);
}

PyRef none() {
    return PyRef::borrow(Py_None);
}

PyRef truth(bool value) {
    return PyRef::borrow(value ? Py_True : Py_False);
}

// Output

PyRef writeOutput(PyObject* arguments) {
    const auto stream =
        PyLong_AsLong(at(arguments, 0)) == 1 ? ScriptOutput::Stdout : ScriptOutput::Stderr;
    const QString text = fromPyString(at(arguments, 1));
    if (PythonInterpreter* const interpreter = PythonInterpreter::active())
        interpreter->output().write(stream, text);
    else
        ScriptOutput::writeToProcess(stream, text);
    return none();
}

PyRef flushOutput(PyObject*) {
    if (PythonInterpreter* const interpreter = PythonInterpreter::active())
        interpreter->output().flush();
    return none();
}

// Code

/// The path of the file that code or a module names as its own, None for none, and whether it is
/// one of a script.
PyRef sourceOf(PyObject* arguments) {
    PythonInterpreter* const interpreter = PythonInterpreter::active();
    const QString path = interpreter ? interpreter->files().path(at(arguments, 0)) : QString();
    const bool isScript = !path.isNull() && interpreter->files().isScript(at(arguments, 0));
    return checked(PyTuple_Pack(2,
                                (path.isNull() ? none() : checkedReference(toPyString(path))).get(),
                                truth(isScript).get()));
}

PyRef isNative(PyObject* arguments) {
    return truth(isNativeFunction(at(arguments, 0)));
}

PyRef represent(PyObject* arguments) {
    return timedRepresentation(at(arguments, 0));
}

// Global functions of applications

PyRef callGlobalFunction(PyObject* arguments) {
    return useObject([=] {
        return callGlobal(PythonInterpreter::active(), fromPyString(at(arguments, 0)),
                          callArguments(at(arguments, 1), at(arguments, 2)));
    });
}

PyRef helpOfGlobalFunction(PyObject* arguments) {
    return toPyString(globalFunctionHelp(fromPyString(at(arguments, 0))));
}

// Images

QImage imageOf(PyObject* arguments) {
    const PythonArgument given(PyRef::borrow(at(arguments, 0)));
    const SharedPtr<NativeScriptObject> native = given.toNative(ImageScriptObject::staticTypeId());
    if (native)
        return staticPointerCast<ImageScriptObject>(native)->image;
    PyErr_SetString(PyExc_TypeError, "Not called on an image");
    throw PythonErrorSet();
}

PyRef toBytes(const void* bytes, Py_ssize_t size) {
    return checked(PyBytes_FromStringAndSize(static_cast<const char*>(bytes), size));
}

PyRef pixelsOf(PyObject* arguments) {
    // Without padding between the rows.
    const QImage pixels = imageOf(arguments).convertToFormat(QImage::Format_RGBA8888);
    return toBytes(pixels.constBits(), pixels.sizeInBytes());
}

PyRef pngOf(PyObject* arguments) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    if (imageOf(arguments).save(&buffer, "PNG"))
        return toBytes(bytes.constData(), bytes.size());
    PyErr_SetString(PyExc_ValueError, "The image has no pixels to be written");
    return {};
}

}  // namespace

PyMethodDef* ownFunctions() {
    static PyMethodDef s_functions[] = {
        {"write_output", guarded<writeOutput>, METH_VARARGS, nullptr},
        {"flush_output", guarded<flushOutput>, METH_VARARGS, nullptr},
        {"source_of", guarded<sourceOf>, METH_VARARGS, nullptr},
        {"is_native_function", guarded<isNative>, METH_VARARGS, nullptr},
        {"represented", guarded<represent>, METH_VARARGS, nullptr},
        {"call_global", guarded<callGlobalFunction>, METH_VARARGS, nullptr},
        {"help_of_global", guarded<helpOfGlobalFunction>, METH_VARARGS, nullptr},
        {"pixels_of", guarded<pixelsOf>, METH_VARARGS, nullptr},
        {"png_of", guarded<pngOf>, METH_VARARGS, nullptr},
        {nullptr, nullptr, 0, nullptr}};
    return s_functions;
}

}  // namespace Tamrix::PythonPlugin
