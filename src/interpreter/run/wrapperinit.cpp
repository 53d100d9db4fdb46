#include <QFile>
#include <QFileInfo>
#include <memory>

#include "base/environment.h"
#include "base/wholetext.h"
#include "interpreter/bridge/currentcontextsaver.h"
#include "interpreter/bridge/interpreter.h"
#include "interpreter/bridge/scriptlanguage.h"
#include "interpreter/run/scripttestcase.h"
#include "interpreter/run/wrapperdescriptor.h"
#include "platform/objectmodel/inspector.h"
#include "shared/settings/settings.h"

namespace Tamrix {

namespace {

/// The entries of one wrapper in the installation's settings.
class WrapperEntries {
public:
    explicit WrapperEntries(const QString& wrapperName)
        : m_settings(GlobalSettingsType::Tamrix), m_prefix("/Wrappers/" + wrapperName + "/") {}

    QString text(const char* name) const {
        return m_settings.readEntry(Settings::defaultGroup(), m_prefix + QLatin1String(name));
    }
    /// Comma-separated, in one quoted string or in several; empty parts are dropped.
    QStringList list(const char* name) const {
        return m_settings.readListEntry(Settings::defaultGroup(), m_prefix + QLatin1String(name))
            .join(',')
            .split(',', Qt::SkipEmptyParts);
    }

private:
    GlobalSettings m_settings;
    QString m_prefix;
};

/// The extension scripts in one text, each followed by a line feed, and the suffix of the last one.
/// A script that can't be opened is passed over without a message.
void addExtensionScripts(const QStringList& paths) {
    QString text;
    QString suffix;
    for (const QString& entry : paths) {
        QFile file(expandPrefix(entry));
        if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
            continue;
        const QString whole = wholeUtf8(file.readAll());
        // Up to a first NUL: this is meant.
        text += whole.left(whole.indexOf(QChar(0)));
        text += '\n';
        suffix = QFileInfo(file.fileName()).suffix();
    }
    if (!text.isEmpty())
        Inspector::self()->addExtensionScript(text, suffix);
}

/// Makes an interpreter for the language and the current one, unless the current one has that
/// language already. False when none could be made.
bool useInterpreterOf(const ScriptLanguageInformation& language, TestResult* result,
                      RunnerInterface* runner) {
    std::unique_ptr<Interpreter> interpreter(
        ScriptLanguagePlugin(language.pluginName).interpreter(runner));
    if (!interpreter)
        return false;
    interpreter->initTestFunctions(result);
    interpreter->initUtilFunctions();
    Interpreter*& ip = ScriptTestCase::ip;
    if (ip && ip->language() == interpreter->language())
        return true;
    if (ip != ScriptTestCase::defip)
        delete ip;
    ip = interpreter.release();
    return true;
}

/// Evaluates an init script in the current interpreter. After a success the test script's own
/// interpreter, if there is one, is the current one again.
bool evaluateInCurrentInterpreter(const QString& text, const QString& path, TestResult* result) {
    Interpreter*& ip = ScriptTestCase::ip;
    Interpreter::setSelf(ip);
    ip->evaluate(text, QString(), 0, 0);
    // The outcome is read from the error line alone.
    if (ip->errorLine() != -1) {
        if (result)
            result->addResult(TestResult::Error, "Script Error", ip->errorMessage(),
                              LineInfo(path, ip->errorLine()));
        return false;
    }
    if (ScriptTestCase::defip && ScriptTestCase::defip != ip) {
        delete ip;
        ip = ScriptTestCase::defip;
        Interpreter::setSelf(ip);
    }
    return true;
}

}  // namespace

bool ScriptTestCase::initWrapper(const QString& wrapperName, TestResult* result,
                                 RunnerInterface* runner) {
    // 1. The wrapper's folder.
    const WrapperEntries entries(wrapperName);
    const QString baseDirectory = expandPrefix(entries.text("BaseDir"));

    // 2., 3. Its extension scripts.
    const CurrentContextSaver contextSaver;
    addExtensionScripts(entries.list("ExtensionScripts"));

    // 4. Its init scripts, one after the other.
    for (const QString& entry : entries.list("InitScripts")) {
        // a. Read the script.
        const QString expanded = expandPrefix(entry);
        const QString path =
            QFileInfo(expanded).isRelative() ? baseDirectory + "/" + expanded : expanded;
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) {
            if (result)
                result->addResult(TestResult::Fatal, "Error opening init script",
                                  QString("Init script '%1' could not be opened: %2")
                                      .arg(path, file.errorString()),
                                  LineInfo());
            return false;
        }
        // b. Decode it.
        const QString text = wholeUtf8(file.readAll());

        // c., d. A script of a language runs in that language.
        const ScriptLanguageInformation* language = ScriptLanguageInformation::forFile(path);
        if (language && useInterpreterOf(*language, result, runner)) {
            if (!evaluateInCurrentInterpreter(text, path, result))
                return false;
            continue;
        }

        // e. Anything else is in the command language of init scripts.
        if (!evalInitScript(result, text)) {
            // The missing closing quote is meant.
            if (result)
                result->addResult(
                    TestResult::Fatal, "Unidentified init script language",
                    QString("Wasn't able to deduce type of language for init script '%1").arg(path),
                    LineInfo());
            return false;
        }
    }

    // 5. All is done.
    return true;
}

}  // namespace Tamrix
