#include "plugins/python/pythonsteps.h"

#include "interpreter/language/literals.h"
#include "plugins/python/conversion.h"
#include "plugins/python/prelude.h"
#include "plugins/python/pythoninterpreter.h"
#include "plugins/python/scriptcall.h"

namespace Tamrix::PythonPlugin {

namespace {

QString pythonLiteral(const QString& text) {
    const bool isRaw = text.contains(QLatin1Char('\\')) && !text.contains(QLatin1Char('"')) &&
                       !text.endsWith(QLatin1Char('\\'));
    return isRaw ? QStringLiteral("r\"%1\"").arg(text) : literalOf(text);
}

}  // namespace

PythonSteps::PythonSteps(PythonInterpreter& interpreter)
    : StepLanguage(interpreter), m_python(interpreter) {}

std::optional<ScriptError> PythonSteps::loadFile(const QString& path, const QString& text) {
    return m_python.attempt([&] {
        callOwn("steps", "run_file", toPyString(path), m_python.compile(text, path, Py_file_input),
                ownName("overlay", "overlays"));
    });
}

bool PythonSteps::isLoaded(const QString& path) {
    return callOwn("steps", "is_loaded", toPyString(path)).get() == Py_True;
}

void PythonSteps::forgetFiles(const QStringList& paths) {
    try {
        callOwn("steps", "forget_files", toPyList(paths));
    } catch (const PythonErrorSet&) {
        PyErr_Print();
    }
}

StepLanguage::Value PythonSteps::contextValue() {
    return new PythonArgument(PyRef::borrow(ownName("steps", "context")));
}

StepLanguage::Value PythonSteps::tableValue(const Value& rows) {
    return new PythonArgument(callOwn("steps", "_make_table", pythonValue(rows)));
}

StepLanguage::Value PythonSteps::bigInteger(const QString& text) {
    return new PythonArgument(
        PyRef::steal(PyLong_FromString(text.toUtf8().constData(), nullptr, 10)));
}

StepLanguage::Value PythonSteps::bigDecimal(const QString& text) {
    return new PythonArgument(callOwn("steps", "Decimal", toPyString(text)));
}

QString PythonSteps::snippetText(const StepSnippet& snippet) {
    const QStringList parameters = QStringList(QStringLiteral("context")) + snippet.parameters;
    return QStringLiteral("from bdd import %1, pending\n\n@%1(%2)\ndef %3(%4):\n    pending()\n")
        .arg(snippet.keyword, pythonLiteral(snippet.expression), snippet.functionName,
             parameters.join(QLatin1String(", ")));
}

}  // namespace Tamrix::PythonPlugin
