#include <QRegularExpression>

#include "interpreter/language/languageplugin.h"
#include "interpreter/language/literals.h"
#include "interpreter/names/genericscriptedobjectmap.h"
#include "plugins/javascript/javascriptinterpreter.h"

namespace Tamrix::JavaScriptPlugin {

namespace {

/// Words of the language, and what its library and ours define: no names of objects.
constexpr const char* reservedWords =
    "AggregateError Array ArrayBuffer Atomics BigInt BigInt64Array BigUint64Array Boolean "
    "DataView Date Error EvalError FinalizationRegistry Float32Array Float64Array Function "
    "Infinity Int16Array Int32Array Int8Array Intl JSON Map Math NaN Number Object Promise "
    "Proxy RangeError ReferenceError Reflect RegExp RemoteSystem Set SharedArrayBuffer "
    "String Symbol SyntaxError TypeError URIError Uint16Array Uint32Array Uint8Array "
    "Uint8ClampedArray WeakMap WeakRef WeakSet WebAssembly arguments async await break case "
    "catch class clearTimeout console const continue debugger decodeURI decodeURIComponent "
    "default delete do else encodeURI encodeURIComponent enum escape eval export extends "
    "false finally for function globalThis if implements import in instanceof interface "
    "isFinite isNaN let new null of package parseFloat parseInt pending print private "
    "protected public return setTimeout static super switch tamrix this throw true try "
    "typeof undefined unescape var void while with yield";

/// Object names that a module exports, as shared/scripts/names.js.
class JavaScriptObjectMap final : public GenericScriptedObjectMap {
public:
    explicit JavaScriptObjectMap(const QString& path)
        : GenericScriptedObjectMap(
              path, "js",
              {.statement = "export const %1 = %2;",
               .comment = "// ",
               .heading = "// Names of objects, for scripts: import * as names from \"names\";\n",
               .words = ScriptNotation::Words::Camels,
               .literal = [](const QString& text) { return literalOf(text); },
               .reserved = reservedWords,
               .hasBareProperties = true}) {}

protected:
    ScriptArgument::Map scriptVariables() override {
        ScriptArgument::Map variables = JavaScriptInterpreter::active()->exportedVariables();
        // It is no variable.
        variables.erase(QStringLiteral("default"));
        return variables;
    }

    /// Also fails for a script that exports none of its objects.
    bool runScript(const QString& text) override {
        static const QRegularExpression s_kept(
            QStringLiteral("^(?:const|let|var)\\s+([A-Za-z]\\w*)\\s*=\\s*\\{"),
            QRegularExpression::MultilineOption);
        if (!GenericScriptedObjectMap::runScript(text))
            return false;
        JavaScriptInterpreter& interpreter = *JavaScriptInterpreter::active();
        const QRegularExpressionMatch kept = s_kept.match(text);
        // Where nothing is exported, who makes objects has left it out.
        if (!interpreter.exportedVariables().empty() || !kept.hasMatch())
            return true;
        return interpreter.failAt(
            LineInfo(path(), 1 + text.left(kept.capturedStart()).count(QLatin1Char('\n'))),
            QStringLiteral("the variable '%1' is no name of an object, since it is not exported "
                           "(one that is not meant to be starts with '_')")
                .arg(kept.captured(1)));
    }
};

}  // namespace
}  // namespace Tamrix::JavaScriptPlugin

Tamrix::ScriptedObjectMap* createScriptedObjectMap(const QString& path) {
    return new Tamrix::JavaScriptPlugin::JavaScriptObjectMap(path);
}
