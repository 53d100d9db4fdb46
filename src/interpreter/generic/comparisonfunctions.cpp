#include "interpreter/generic/comparisonfunctions.h"

#include "comparison/filecomparison.h"
#include "interpreter/bridge/scriptcontext.h"
#include "interpreter/generic/comparisonoptions.h"
#include "interpreter/generic/verdictsupport.h"

namespace Tamrix {

namespace {

/// Checks the arguments of a comparison with options; false after setting an error.
bool readArguments(ScriptContext* context, ScriptArgument::Map* options) {
    const int count = context->argumentCount();
    QString error;
    if (count < 2 || count > 3)
        error =
            QStringLiteral("Expected two or three arguments (supplied arguments: %1)").arg(count);
    else if (!context->argument(0)->isString())
        error = QStringLiteral("1st argument expected file path to expected file");
    else if (!context->argument(1)->isString())
        error = QStringLiteral("2nd argument expected file path to actual file");
    else if (count == 3 && !context->argument(2)->isMap())
        error = QStringLiteral("3rd argument expected map");
    if (!error.isEmpty()) {
        context->setError(error);
        return false;
    }
    if (count == 3)
        *options = context->argument(2)->toMap();
    return true;
}

/// One result, whatever its type: a failed comparison neither stops the script nor the debugger.
void report(ScriptContext* context, const FileComparison& comparison) {
    if (!comparison.error.isEmpty()) {
        context->setError(comparison.error);
        return;
    }
    addScriptResult(context, comparison.equal ? TestResult::Pass : TestResult::Fail,
                    comparison.message, comparison.detail);
    context->setBoolResult(comparison.equal);
}

void readXmlOption(TestResult* result, const ScriptArgument::Map& options,
                   const XmlOptionDescription& description, XmlCompareOptions* out) {
    if (description.flag)
        retrieveBooleanOption(result, options, description.name, &(out->*description.flag));
    if (description.names)
        retrieveStringSetOption(result, options, description.name, &(out->*description.names));
    if (description.whitespace) {
        QString value = description.defaultValue;
        retrieveStringOption(result, options, description.name, &value);
        WhitespaceHandling& handling = out->*description.whitespace;
        parseWhitespaceHandlingOptions(result, value, &handling.normalize, &handling.trim,
                                       description.defaultValue);
    }
}

}  // namespace

void testCompareTextFiles(ScriptContext* context) {
    ScriptArgument::Map options;
    if (!readArguments(context, &options))
        return;
    bool strictLineEndings = false;
    reportUnknownOptions(context->testResult(), options, {strictLineEndingsOption});
    retrieveBooleanOption(context->testResult(), options, strictLineEndingsOption,
                          &strictLineEndings);
    report(context, compareTextFiles(context->argument(0)->toString(),
                                     context->argument(1)->toString(), strictLineEndings));
}

void testCompareJSONFiles(ScriptContext* context) {
    const int count = context->argumentCount();
    if (count != 2) {
        context->setError(
            QStringLiteral("Expected two arguments (supplied arguments: %1)").arg(count));
        return;
    }
    if (!context->argument(0)->isString()) {
        context->setError("First argument expected file path to expected file");
        return;
    }
    if (!context->argument(1)->isString()) {
        context->setError("Second argument expected file path to actual file");
        return;
    }
    report(context,
           compareJsonFiles(context->argument(0)->toString(), context->argument(1)->toString()));
}

void testCompareXMLFiles(ScriptContext* context) {
    ScriptArgument::Map map;
    if (!readArguments(context, &map))
        return;
    QStringList known;
    for (const XmlOptionDescription& description : xmlCompareOptionDescriptions())
        known.append(description.name);
    reportUnknownOptions(context->testResult(), map, known);
    XmlCompareOptions options;
    for (const XmlOptionDescription& description : xmlCompareOptionDescriptions())
        readXmlOption(context->testResult(), map, description, &options);
    report(context, compareXmlFiles(context->argument(0)->toString(),
                                    context->argument(1)->toString(), options));
}

}  // namespace Tamrix
