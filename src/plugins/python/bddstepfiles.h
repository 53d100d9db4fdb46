#pragma once

#include <QDateTime>
#include <QMap>
#include <QString>
#include <QStringList>

#include "plugins/python/pyref.h"

namespace Tamrix::PythonPlugin {

class BddRegistry;
class PythonInterpreter;

/// The files with step definitions that a test case loads by itself: those in the folder "steps" of
/// the case and those in "shared/steps" of the suite, each in the order of their names, as modules
/// of their own.
class BddStepFiles {
public:
    BddStepFiles(PythonInterpreter& interpreter, BddRegistry& registry)
        : m_interpreter(interpreter), m_registry(registry) {}

    /// Loads those that are not loaded yet. Returns an error text, empty on success; what ends the
    /// script passes as PythonErrorSet.
    QString load(const QString& featureFile);
    /// The same for those that are new or have changed.
    QString loadChanged();
    void clear() { m_loaded.clear(); }

private:
    /// How a file was when it was loaded.
    struct State {
        QDateTime changed;
        qint64 size = 0;

        bool operator==(const State&) const = default;
    };
    static State stateOf(const QString& path);
    QStringList files() const;
    QString loadFile(const QString& path);

    PythonInterpreter& m_interpreter;
    BddRegistry& m_registry;
    QString m_caseFolder;
    QMap<QString, State> m_loaded;
};

}  // namespace Tamrix::PythonPlugin
