#pragma once

#include <QHash>
#include <QString>
#include <QStringList>
#include <vector>

#include "interpreter/language/languagedebugger.h"
#include "plugins/python/pyref.h"

namespace Tamrix::PythonPlugin {

/// The files behind Python's code objects: their paths as results show them, and which of them are
/// scripts. Paths are resolved once for each file. Script thread only.
class SourceFiles {
public:
    /// The path with links resolved; the null string for code that is in no file, such as a string
    /// that was evaluated or Python's frozen import machinery.
    QString path(PyObject* codeFileName);

    /// Whether the file is a script: in a file, and not of Python's own library or of an installed
    /// package.
    bool isScript(PyObject* codeFileName);

private:
    struct Entry {
        PyRef keepAlive;
        QString path;
        bool script = false;
    };
    const Entry& entry(PyObject* codeFileName);
    const QStringList& libraryFolders();

    QHash<PyObject*, Entry> m_entries;
    QStringList m_libraryFolders;
};

/// The innermost frame that runs code of a script, null when there is none. Python's library and
/// installed packages are passed over, as they are in the stacks of exceptions and by the debugger.
PyRef innermostFrame(SourceFiles& files);
/// The next frame outwards that runs code of a script.
PyRef outerFrame(PyObject* frame, SourceFiles& files);

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
std::vector<ScriptFrame> runningFrames(SourceFiles& files);
/// How many they are.
int runningDepth(SourceFiles& files);
/// The frames that an exception has left or is about to leave, the innermost first, and those that
/// it has not reached yet. `traceback` may be null.
std::vector<ScriptFrame> framesOfError(PyObject* traceback, SourceFiles& files);

}  // namespace Tamrix::PythonPlugin
