#pragma once

#include <QHash>
#include <QString>

#include "interpreter/bridge/debugger.h"
#include "plugins/python/pyref.h"

namespace Tamrix::PythonPlugin {

class PythonInterpreter;

/// Python's half of the debugger. While it is interactive, a trace function follows every line of
/// the scripts and decides about stops. Otherwise no line costs anything: the frames are read from
/// Python when they are asked for.
class PythonDebugger final : public Debugger {
public:
    explicit PythonDebugger(PythonInterpreter& interpreter);
    ~PythonDebugger() override;

    VariableBindings variables(const QString& path) override;
    void setInteractive(bool interactive) override;
    void shutDown() override;

protected:
    void updateFrames() override;

private:
    static int trace(PyObject* self, PyFrameObject* frame, int event, PyObject* argument);
    void traceEvent(PyObject* frame, int event);
    int sourceIdOf(PyObject* frame);
    void readFrames();

    PythonInterpreter& m_python;
    QHash<QString, int> m_sourceIds;
    bool m_tracing = false;
    bool m_stopping = false;
};

}  // namespace Tamrix::PythonPlugin
