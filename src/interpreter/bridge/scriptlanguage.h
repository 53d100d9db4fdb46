#pragma once

#include <QFileInfo>
#include <QList>
#include <QString>
#include <string>
#include <vector>

#include "base/export.h"
#include "interpreter/bridge/interpreter.h"

namespace Tamrix {

class EventRecorder;
class ScriptedObjectMap;

/// What the library knows of one script language. The rows are made on first use and stay for the
/// life of the process.
struct TAMRIX_EXPORT ScriptLanguageInformation {
    Interpreter::Language language;
    /// The file suffix without the point, compared exactly.
    QString suffix;
    /// Name of the plug-in's library.
    QString pluginName;
    /// The name to show.
    QString name;
    /// Home of the language's runtime, where one is configured.
    QFileInfo home;

    /// The language of a script file by its suffix, null when there is none.
    static const ScriptLanguageInformation* forFile(const QFileInfo& file);
    static const ScriptLanguageInformation* forLanguage(Interpreter::Language language);
    /// By shown name or suffix, as a person writes them: in capitals or not.
    static const ScriptLanguageInformation* forLanguageName(const QString& name);
    /// All languages, in the order of the table.
    static std::vector<const ScriptLanguageInformation*> knownLanguages();
};

/// A loaded language plug-in: a library in TAMRIX_PREFIX/lib. A value; the library stays loaded.
class TAMRIX_EXPORT ScriptLanguagePlugin {
public:
    explicit ScriptLanguagePlugin(const QString& pluginName);

    /// Why the plug-in was not loaded; empty when it was.
    QString lastErrorMessage() const;

    // Factories of the plug-in; null, with a message on standard error, when it has none.
    /// Owned by the caller.
    Interpreter* interpreter(RunnerInterface* runner) const;
    /// The parameters are passed on unchanged.
    EventRecorder* eventRecorder(bool first, bool second, bool third, const QString& text) const;
    ScriptedObjectMap* scriptedObjectMap(const QString& path) const;

private:
    /// The plug-in's function of this name. Null, with the printf text `failure` and the reason on
    /// standard error, when it has none.
    template <typename Factory>
    Factory factory(const char* symbol, const char* failure) const;

    void* m_handle = nullptr;
    std::string m_lastErrorMessage;
};

}  // namespace Tamrix
