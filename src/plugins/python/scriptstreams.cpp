#include "plugins/python/scriptstreams.h"

#include "plugins/python/conversion.h"

namespace Tamrix::PythonPlugin {

namespace {

ScriptOutput* s_installed = nullptr;

template <ScriptOutput::Stream stream>
PyObject* writeMethod(PyObject*, PyObject* text) {
    if (!PyUnicode_Check(text))
        return PyErr_Format(PyExc_TypeError, "write() argument must be str, not %s",
                            Py_TYPE(text)->tp_name);
    const QString words = fromPyString(text);
    if (s_installed)
        s_installed->write(stream, words);
    else
        ScriptOutput::writeToProcess(stream, words);
    return PyLong_FromSsize_t(PyUnicode_GET_LENGTH(text));
}

PyObject* flushMethod(PyObject*, PyObject*) {
    if (s_installed)
        s_installed->flush();
    Py_RETURN_NONE;
}

template <ScriptOutput::Stream stream>
PyObject* filenoMethod(PyObject*, PyObject*) {
    return PyLong_FromLong(stream == ScriptOutput::Stdout ? 1 : 2);
}

PyObject* trueMethod(PyObject*, PyObject*) {
    Py_RETURN_TRUE;
}

PyObject* falseMethod(PyObject*, PyObject*) {
    Py_RETURN_FALSE;
}

PyObject* encodingProperty(PyObject*, void*) {
    return PyUnicode_FromString("utf-8");
}

/// The binary stream below: bytes go past the results, to the process's own stream.
template <ScriptOutput::Stream stream>
PyObject* bufferProperty(PyObject*, void*) {
    if (s_installed)
        s_installed->flush();
    PyObject* const own =
        PySys_GetObject(stream == ScriptOutput::Stdout ? "__stdout__" : "__stderr__");
    if (!own) {
        PyErr_SetString(PyExc_AttributeError, "buffer");
        return nullptr;
    }
    return PyObject_GetAttrString(own, "buffer");
}

/// A text stream of one of the two kinds.
template <ScriptOutput::Stream stream>
PyRef makeStream(const char* typeName) {
    static PyMethodDef s_methods[] = {
        {"write", writeMethod<stream>, METH_O, "Writes text to the test results"},
        {"flush", flushMethod, METH_NOARGS, "Passes on a line that is not whole yet"},
        {"fileno", filenoMethod<stream>, METH_NOARGS, "Descriptor of the process's own stream"},
        {"writable", trueMethod, METH_NOARGS, "True"},
        {"isatty", falseMethod, METH_NOARGS, "False"},
        {nullptr, nullptr, 0, nullptr}};
    static PyGetSetDef s_properties[] = {
        {"encoding", encodingProperty, nullptr, "utf-8", nullptr},
        {"buffer", bufferProperty<stream>, nullptr, "The process's own binary stream", nullptr},
        {nullptr, nullptr, nullptr, nullptr, nullptr}};
    PyType_Slot slots[] = {{Py_tp_methods, s_methods}, {Py_tp_getset, s_properties}, {0, nullptr}};
    PyType_Spec definition{typeName, 0, 0, Py_TPFLAGS_DEFAULT, slots};
    const PyRef io = PyRef::steal(PyImport_ImportModule("io"));
    const PyRef base = PyRef::steal(io ? PyObject_GetAttrString(io.get(), "TextIOBase") : nullptr);
    const PyRef bases = PyRef::steal(base ? PyTuple_Pack(1, base.get()) : nullptr);
    const PyRef type =
        PyRef::steal(bases ? PyType_FromSpecWithBases(&definition, bases.get()) : nullptr);
    return PyRef::steal(type ? PyObject_CallNoArgs(type.get()) : nullptr);
}

}  // namespace

bool installStreams(ScriptOutput* output) {
    s_installed = output;
    if (!output)
        return PySys_SetObject("stdout", PySys_GetObject("__stdout__")) == 0 &&
               PySys_SetObject("stderr", PySys_GetObject("__stderr__")) == 0;
    const PyRef standardOutput = makeStream<ScriptOutput::Stdout>("tamrix.StandardOutput");
    const PyRef standardError = makeStream<ScriptOutput::Stderr>("tamrix.StandardError");
    return standardOutput && standardError &&
           PySys_SetObject("stdout", standardOutput.get()) == 0 &&
           PySys_SetObject("stderr", standardError.get()) == 0;
}

}  // namespace Tamrix::PythonPlugin
