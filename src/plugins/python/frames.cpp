#include "plugins/python/frames.h"

#include <algorithm>

#include "plugins/python/conversion.h"
#include "plugins/python/prelude.h"
#include "plugins/python/pythonargument.h"

namespace Tamrix::PythonPlugin {

namespace {

PyFrameObject* asFrame(PyObject* frame) {
    return reinterpret_cast<PyFrameObject*>(frame);
}

PyCodeObject* asCode(const PyRef& code) {
    return reinterpret_cast<PyCodeObject*>(code.get());
}

int columnAt(PyCodeObject* code, int instruction) {
    int line = -1;
    int column = -1;
    int endLine = -1;
    int endColumn = -1;
    const bool isKnown =
        PyCode_Addr2Location(code, instruction, &line, &column, &endLine, &endColumn) != 0;
    return isKnown && column >= 0 ? column + 1 : -1;
}

int frameColumn(PyObject* frame) {
    return columnAt(asCode(frameCode(frame)), PyFrame_GetLasti(asFrame(frame)));
}

/// The frame, or the first one outwards, that runs code of a script.
PyRef firstInScript(PyRef frame, CodeFiles& files) {
    while (frame && !files.isScript(frameFileName(frame.get()).get()))
        frame = PyRef::steal(reinterpret_cast<PyObject*>(PyFrame_GetBack(asFrame(frame.get()))));
    return frame;
}

ScriptFrame frameAt(const PyRef& frame, int line, int column, CodeFiles& files) {
    return {frame, files.path(frameFileName(frame.get()).get()), line, column, -1};
}

}  // namespace

const CodeFiles::Entry& CodeFiles::entry(PyObject* codeFileName) {
    const auto found = m_entries.constFind(codeFileName);
    if (found != m_entries.constEnd())
        return *found;
    if (m_entries.isEmpty())
        addLibraries();
    const QByteArray name = fromPyString(codeFileName).toUtf8();
    return *m_entries.insert(codeFileName,
                             {PyRef::borrow(codeFileName), m_files.path(name.constData()),
                              m_files.isScript(name.constData())});
}

void CodeFiles::addLibraries() {
    const PythonArgument folders(PyRef::borrow(ownName("state", "LIBRARY_FOLDERS")));
    for (const SharedPtr<ScriptArgument>& folder : folders.toList())
        m_files.addLibrary(folder->toString());
}

PyRef innermostFrame(CodeFiles& files) {
    return firstInScript(PyRef::borrow(reinterpret_cast<PyObject*>(PyEval_GetFrame())), files);
}

PyRef outerFrame(PyObject* frame, CodeFiles& files) {
    return firstInScript(PyRef::steal(reinterpret_cast<PyObject*>(PyFrame_GetBack(asFrame(frame)))),
                         files);
}

PyRef frameCode(PyObject* frame) {
    return PyRef::steal(reinterpret_cast<PyObject*>(PyFrame_GetCode(asFrame(frame))));
}

PyRef frameFileName(PyObject* frame) {
    return PyRef::borrow(asCode(frameCode(frame))->co_filename);
}

int frameLine(PyObject* frame) {
    return PyFrame_GetLineNumber(asFrame(frame));
}

PyObject* frameBehind(const ScriptFrame& frame) {
    const PyRef* const own = std::any_cast<PyRef>(&frame.own);
    return own ? own->get() : nullptr;
}

std::vector<ScriptFrame> runningFrames(CodeFiles& files) {
    std::vector<ScriptFrame> frames;
    for (PyRef frame = innermostFrame(files); frame; frame = outerFrame(frame.get(), files))
        frames.push_back(frameAt(frame, frameLine(frame.get()), frameColumn(frame.get()), files));
    return frames;
}

int runningDepth(CodeFiles& files) {
    int depth = 0;
    for (PyRef frame = innermostFrame(files); frame; frame = outerFrame(frame.get(), files))
        ++depth;
    return depth;
}

std::vector<ScriptFrame> framesOfError(PyObject* traceback, CodeFiles& files) {
    // A traceback runs from the outermost frame inwards.
    std::vector<ScriptFrame> frames;
    for (auto* entry = reinterpret_cast<PyTracebackObject*>(traceback); entry;
         entry = entry->tb_next) {
        auto* const frame = reinterpret_cast<PyObject*>(entry->tb_frame);
        if (!files.isScript(frameFileName(frame).get()))
            continue;
        // A frame that has raised the exception once more stands in it twice.
        if (!frames.empty() && frameBehind(frames.back()) == frame)
            frames.pop_back();
        frames.push_back(frameAt(PyRef::borrow(frame), entry->tb_lineno,
                                 columnAt(asCode(frameCode(frame)), entry->tb_lasti), files));
    }
    std::reverse(frames.begin(), frames.end());
    for (ScriptFrame& running : runningFrames(files)) {
        if (frames.empty() || frameBehind(frames.back()) != frameBehind(running))
            frames.push_back(std::move(running));
    }
    return frames;
}

}  // namespace Tamrix::PythonPlugin
