#pragma once

#include <QDateTime>
#include <QMap>
#include <QString>
#include <QStringList>

#include "base/export.h"

namespace Tamrix {

class LanguageInterpreter;
class StepLanguage;
class StepRegistry;

/// The files with step definitions that a test case loads by itself: those in the folder "steps" of
/// the case and those in "shared/steps" of the suite, each in the order of their names.
class TAMRIX_EXPORT StepFiles {
public:
    StepFiles(LanguageInterpreter& interpreter, StepLanguage& language, StepRegistry& registry)
        : m_interpreter(interpreter), m_language(language), m_registry(registry) {}

    /// Loads those that are not loaded yet. Returns an error text, empty on success; what ends the
    /// script passes as ScriptErrorSet.
    QString load(const QString& featureFile);
    /// The same for those that are new or have changed.
    QString loadChanged();
    /// Forgets them: the next test case loads its own.
    void clear();

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

    LanguageInterpreter& m_interpreter;
    StepLanguage& m_language;
    StepRegistry& m_registry;
    QString m_caseFolder;
    QMap<QString, State> m_loaded;
};

}  // namespace Tamrix
