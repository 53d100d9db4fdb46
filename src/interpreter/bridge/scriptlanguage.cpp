#include "interpreter/bridge/scriptlanguage.h"

#include <dlfcn.h>

#include <cstdio>
#include <memory>

#include "base/environment.h"
#include "base/library.h"
#include "base/standardpath.h"
#include "shared/settings/settings.h"

namespace Tamrix {

namespace {

using Languages = std::vector<std::unique_ptr<const ScriptLanguageInformation>>;

ScriptLanguageInformation pythonInformation() {
    const GlobalSettings paths(GlobalSettingsType::Paths);
    const QString version =
        paths.readEntry(QStringLiteral("Interpreter"), QStringLiteral("PythonPluginVersion"),
                        QStringLiteral("unknown"));
    const QString home = expandPrefix(
        paths.readEntry(QStringLiteral("Paths"), QStringLiteral("Scripting/PythonHome")));
    return {Interpreter::Python, QStringLiteral("py"), QStringLiteral("tamrixpython-") + version,
            QStringLiteral("Python"), home.isEmpty() ? QFileInfo() : QFileInfo(home)};
}

Languages makeLanguages() {
    const ScriptLanguageInformation table[] = {
        pythonInformation(),
        {Interpreter::JavaScript,
         QStringLiteral("js"),
         QStringLiteral("tamrixjavascript"),
         QStringLiteral("JavaScript"),
         {}},
        {Interpreter::Tcl,
         QStringLiteral("tcl"),
         QStringLiteral("tamrixtcl"),
         QStringLiteral("Tcl"),
         {}},
        {Interpreter::Perl,
         QStringLiteral("pl"),
         QStringLiteral("tamrixperl"),
         QStringLiteral("Perl"),
         {}},
        {Interpreter::Ruby,
         QStringLiteral("rb"),
         QStringLiteral("tamrixruby"),
         QStringLiteral("Ruby"),
         {}},
    };
    Languages languages;
    for (const ScriptLanguageInformation& row : table)
        languages.push_back(std::make_unique<const ScriptLanguageInformation>(row));
    return languages;
}

const Languages& languages() {
    static const Languages s_rows = makeLanguages();
    return s_rows;
}

template <typename Predicate>
const ScriptLanguageInformation* findLanguage(Predicate matches) {
    for (const auto& row : languages()) {
        if (matches(*row))
            return row.get();
    }
    return nullptr;
}

}  // namespace

const ScriptLanguageInformation* ScriptLanguageInformation::forFile(const QFileInfo& file) {
    const QString suffix = file.suffix();
    return findLanguage([&](const auto& row) { return row.suffix == suffix; });
}

const ScriptLanguageInformation* ScriptLanguageInformation::forLanguage(
    Interpreter::Language language) {
    return findLanguage([&](const auto& row) { return row.language == language; });
}

const ScriptLanguageInformation* ScriptLanguageInformation::forLanguageName(const QString& name) {
    return findLanguage([&](const auto& row) {
        return row.name.compare(name, Qt::CaseInsensitive) == 0 ||
               row.suffix.compare(name, Qt::CaseInsensitive) == 0;
    });
}

std::vector<const ScriptLanguageInformation*> ScriptLanguageInformation::knownLanguages() {
    std::vector<const ScriptLanguageInformation*> known;
    for (const auto& row : languages())
        known.push_back(row.get());
    return known;
}

ScriptLanguagePlugin::ScriptLanguagePlugin(const QString& pluginName) {
    const std::string directory = (StandardPath::prefix() + QStringLiteral("/lib")).toStdString();
    const std::string path = Library::locate(pluginName.toStdString(), directory);
    if (path.empty()) {
        m_lastErrorMessage = "Missing script language plugin '" + pluginName.toStdString() + "'";
        return;
    }
    // Extension modules of a language find their runtime's symbols only when these are global.
    m_handle = Library::open(path, RTLD_GLOBAL | RTLD_LAZY);
    if (!m_handle)
        m_lastErrorMessage = Library::lastErrorMessage();
}

QString ScriptLanguagePlugin::lastErrorMessage() const {
    return QString::fromStdString(m_lastErrorMessage);
}

template <typename Factory>
Factory ScriptLanguagePlugin::factory(const char* symbol, const char* failure) const {
    // A null handle would look through all loaded libraries, other plug-ins included.
    void* address = m_handle ? Library::resolve(m_handle, symbol) : nullptr;
    if (!address) {
        const std::string reason = m_handle ? Library::lastErrorMessage() : m_lastErrorMessage;
        std::fprintf(stderr, failure, reason.c_str());
    }
    return reinterpret_cast<Factory>(address);
}

Interpreter* ScriptLanguagePlugin::interpreter(RunnerInterface* runner) const {
    const auto create = factory<Interpreter* (*)(RunnerInterface*)>(
        "createInterpreter", "Error creating interpreter: %s\n");
    return create ? create(runner) : nullptr;
}

EventRecorder* ScriptLanguagePlugin::eventRecorder(bool first, bool second, bool third,
                                                   const QString& text) const {
    const auto create = factory<EventRecorder* (*)(bool, bool, bool, const QString&)>(
        "createEventRecorder", "Error creating event recorder object: %s\n");
    return create ? create(first, second, third, text) : nullptr;
}

ScriptedObjectMap* ScriptLanguagePlugin::scriptedObjectMap(const QString& path) const {
    const auto create = factory<ScriptedObjectMap* (*)(const QString&)>(
        "createScriptedObjectMap", "Error creating scripted object map object: %s\n");
    return create ? create(path) : nullptr;
}

}  // namespace Tamrix
