#include "plugins/python/pythondebugger.h"

#include <vector>

#include "plugins/python/conversion.h"
#include "plugins/python/frames.h"
#include "plugins/python/pythoninterpreter.h"

namespace Tamrix::PythonPlugin {

namespace {

QString typeNameOf(PyObject* value) {
    const QString name = QString::fromUtf8(Py_TYPE(value)->tp_name);
    return name.mid(name.lastIndexOf('.') + 1);
}

/// The parts of a value that a listing can go into: entries of a dictionary, elements of a list or
/// tuple, attributes of any other object. A mapping, or null.
PyRef membersOf(PyObject* value) {
    if (PyDict_Check(value))
        return PyRef::borrow(value);
    if (PyList_Check(value) || PyTuple_Check(value)) {
        PyRef members = PyRef::steal(PyDict_New());
        for (Py_ssize_t index = 0; members && index < PySequence_Fast_GET_SIZE(value); ++index) {
            const PyRef key = PyRef::steal(PyLong_FromSsize_t(index));
            if (!key || PyDict_SetItem(members.get(), key.get(),
                                       PySequence_Fast_GET_ITEM(value, index)) < 0)
                return {};
        }
        return members;
    }
    PyRef attributes = PyRef::steal(PyObject_GetAttrString(value, "__dict__"));
    PyErr_Clear();
    return attributes && PyDict_Check(attributes.get()) ? attributes : PyRef();
}

/// The member whose name is the text.
PyRef memberNamed(PyObject* members, const QString& name) {
    const PyRef items = PyRef::steal(PyMapping_Items(members));
    for (Py_ssize_t index = 0; items && index < PyList_GET_SIZE(items.get()); ++index) {
        PyObject* const item = PyList_GET_ITEM(items.get(), index);
        if (textOf(PyTuple_GET_ITEM(item, 0)) == name)
            return PyRef::borrow(PyTuple_GET_ITEM(item, 1));
    }
    PyErr_Clear();
    return {};
}

}  // namespace

PythonDebugger::PythonDebugger(PythonInterpreter& interpreter)
    : Debugger(&interpreter), m_python(interpreter) {}

PythonDebugger::~PythonDebugger() {
    PythonDebugger::setInteractive(false);
}

// Frames

int PythonDebugger::sourceIdOf(PyObject* frame) {
    const QString path = m_python.files().path(frameFileName(frame).get());
    const auto known = m_sourceIds.constFind(path);
    if (known != m_sourceIds.constEnd())
        return *known;
    const int id = nextSourceId();
    m_sourceIds.insert(path, id);
    setCode(id, path);
    return id;
}

void PythonDebugger::readFrames() {
    SourceFiles& files = m_python.files();
    std::vector<DebuggerFrame> positions;
    for (PyRef frame = innermostFrame(files); frame; frame = outerFrame(frame.get(), files))
        positions.push_back({frameLine(frame.get()), -1, sourceIdOf(frame.get())});
    clearFrames();
    Debugger::setCurrentLine(-1);
    Debugger::setCurrentColumn(-1);
    Debugger::setCurrentSourceId(-1);
    for (auto position = positions.rbegin(); position != positions.rend(); ++position)
        pushFrameAndSetCurrent(position->line, position->column, position->sourceId);
}

void PythonDebugger::updateFrames() {
    if (!m_tracing)
        readFrames();
}

// Tracing

void PythonDebugger::setInteractive(bool interactive) {
    Debugger::setInteractive(interactive);
    if (interactive == m_tracing)
        return;
    if (interactive) {
        // Frames that are running already have no events of their own.
        readFrames();
        const PyRef self = PyRef::steal(PyCapsule_New(this, nullptr, nullptr));
        PyEval_SetTrace(trace, self.get());
    } else {
        PyEval_SetTrace(nullptr, nullptr);
    }
    m_tracing = interactive;
}

void PythonDebugger::shutDown() {
    setInteractive(false);
    Debugger::shutDown();
}

int PythonDebugger::trace(PyObject* self, PyFrameObject* frame, int event, PyObject*) {
    auto* const debugger = static_cast<PythonDebugger*>(PyCapsule_GetPointer(self, nullptr));
    if (!debugger)
        return -1;
    try {
        debugger->traceEvent(reinterpret_cast<PyObject*>(frame), event);
    } catch (const PythonErrorSet&) {
        return -1;
    }
    return 0;
}

void PythonDebugger::traceEvent(PyObject* frame, int event) {
    // Code in no file and the library's own code are passed through.
    if (m_stopping || !m_python.files().isScript(frameFileName(frame).get()))
        return;
    switch (event) {
        case PyTrace_CALL:
            pushFrameAndSetCurrent(frameLine(frame), -1, sourceIdOf(frame));
            break;
        case PyTrace_LINE:
            setCurrentLine(frameLine(frame));
            if (wantsStop(currentFrame())) {
                m_stopping = true;
                stop();
                m_stopping = false;
            }
            break;
        case PyTrace_RETURN:
            popFrameAndSetCurrent();
            break;
        default:
            break;
    }
}

// Variables

Debugger::VariableBindings PythonDebugger::variables(const QString& path) {
    VariableBindings bindings;
    const PyRef frame = innermostFrame(m_python.files());
    if (!frame)
        return bindings;
    PyRef members = PyRef::steal(PyFrame_GetLocals(reinterpret_cast<PyFrameObject*>(frame.get())));
    for (const QString& name : path.split('.', Qt::SkipEmptyParts)) {
        const PyRef value = members ? memberNamed(members.get(), name) : PyRef();
        members = value ? membersOf(value.get()) : PyRef();
    }
    const PyRef items = PyRef::steal(members ? PyMapping_Items(members.get()) : nullptr);
    for (Py_ssize_t index = 0; items && index < PyList_GET_SIZE(items.get()); ++index) {
        PyObject* const item = PyList_GET_ITEM(items.get(), index);
        const QString name = textOf(PyTuple_GET_ITEM(item, 0));
        PyObject* const value = PyTuple_GET_ITEM(item, 1);
        if (path.isEmpty() && (name.startsWith("__") || m_python.isSelfDefinedVariableName(name)))
            continue;
        bindings.push_back({name, typeNameOf(value), representation(value)});
    }
    PyErr_Clear();
    return bindings;
}

}  // namespace Tamrix::PythonPlugin
