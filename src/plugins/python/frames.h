#pragma once

#include <QHash>
#include <QString>
#include <vector>

#include "interpreter/language/languagedebugger.h"
#include "interpreter/language/sourcefiles.h"
#include "plugins/python/pyref.h"

namespace Tamrix::PythonPlugin {

/// The files behind Python's code objects, by the objects of their names, of which all code of a
/// file has the same. Script thread only.
class CodeFiles {
public:
    /// As those of SourceFiles.
    QString path(PyObject* codeFileName) { return entry(codeFileName).path; }
    bool isScript(PyObject* codeFileName) { return entry(codeFileName).isScript; }

private:
    struct Entry {
        PyRef keepAlive;
        QString path;
        bool isScript = false;
    };
    const Entry& entry(PyObject* codeFileName);
    /// Python's library and installed packages.
    void addLibraries();

    SourceFiles m_files;
    QHash<PyObject*, Entry> m_entries;
};

/// The innermost frame that runs code of a script, null when there is none. Python's library and
/// installed packages are passed over, as they are in the stacks of exceptions and by the debugger.
PyRef innermostFrame(CodeFiles& files);
/// The next frame outwards that runs code of a script.
PyRef outerFrame(PyObject* frame, CodeFiles& files);

/// A frame's code object.
PyRef frameCode(PyObject* frame);
/// The file name in a frame's code object, as Python keeps it.
PyRef frameFileName(PyObject* frame);
/// The line that a frame is at, counted from 1.
int frameLine(PyObject* frame);

/// Python's frame behind one of the debugger's; null for a place in a file that is none of
/// Python's. Borrowed.
PyObject* frameBehind(const ScriptFrame& frame);

/// The frames that run code of scripts, the innermost first.
std::vector<ScriptFrame> runningFrames(CodeFiles& files);
/// How many they are.
int runningDepth(CodeFiles& files);
/// The frames that an exception has left or is about to leave, the innermost first, and those that
/// it has not reached yet. `traceback` may be null.
std::vector<ScriptFrame> framesOfError(PyObject* traceback, CodeFiles& files);

}  // namespace Tamrix::PythonPlugin
