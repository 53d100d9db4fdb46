#include "interpreter/generic/comparisonoptions.h"

#include "comparison/xmlcompareoptions.h"
#include "interpreter/bridge/scriptcontext.h"
#include "platform/testresult/testresult.h"

namespace Tamrix {

namespace {

void warn(TestResult* result, const QString& message) {
    if (!result)
        return;
    const ScriptContext* const context = ScriptContext::current();
    result->addResult(TestResult::Warning, message, QString(),
                      context ? context->lineInfoForResult() : LineInfo());
}

}  // namespace

SharedPtr<ScriptArgument> retrieveOption(const ScriptArgument::Map& options, const QString& name) {
    const auto found = options.find(name);
    return found == options.end() ? SharedPtr<ScriptArgument>() : found->second;
}

void retrieveBooleanOption(TestResult* result, const ScriptArgument::Map& options,
                           const QString& name, bool* out) {
    const SharedPtr<ScriptArgument> value = retrieveOption(options, name);
    if (!value)
        return;
    if (value->isBool())
        *out = value->toBool();
    else
        warn(result, QStringLiteral("Option '%1' expected boolean").arg(name));
}

void retrieveStringOption(TestResult* result, const ScriptArgument::Map& options,
                          const QString& name, QString* out) {
    const SharedPtr<ScriptArgument> value = retrieveOption(options, name);
    if (!value)
        return;
    if (value->isString())
        *out = value->toString();
    else
        warn(result, QStringLiteral("Option '%1' expected string").arg(name));
}

void retrieveStringSetOption(TestResult* result, const ScriptArgument::Map& options,
                             const QString& name, std::set<std::string>* out) {
    const SharedPtr<ScriptArgument> value = retrieveOption(options, name);
    if (!value)
        return;
    if (!value->isList()) {
        warn(result, QStringLiteral("Option '%1' expected string list").arg(name));
        return;
    }
    std::set<std::string> texts;
    const ScriptArgument::List items = value->toList();
    for (const SharedPtr<ScriptArgument>& item : items) {
        if (!item->isString()) {
            warn(result,
                 QStringLiteral("Option '%1' expected string list (list item is not a string)")
                     .arg(name));
            return;
        }
        texts.insert(item->toString().toStdString());
    }
    *out = texts;
}

void reportUnknownOptions(TestResult* result, const ScriptArgument::Map& options,
                          const QStringList& known) {
    for (const auto& option : options) {
        if (!known.contains(option.first))
            warn(result, QStringLiteral("Unknown option: '%1'").arg(option.first));
    }
}

void parseWhitespaceHandlingOptions(TestResult* result, const QString& value, bool* normalize,
                                    bool* trim, const QString& defaultValue) {
    if (readWhitespaceHandling(value, normalize, trim))
        return;
    if (defaultValue.isEmpty()) {
        warn(result,
             QStringLiteral("Whitespace handling option expected values 'preserve', 'normalize' or "
                            "'trim' but got '%1' using defaults.")
                 .arg(value));
        return;
    }
    warn(result,
         QStringLiteral("Whitespace handling option expected values 'preserve', 'normalize' or "
                        "'trim' but got '%1' defaulting to '%2'")
             .arg(value, defaultValue));
    parseWhitespaceHandlingOptions(result, defaultValue, normalize, trim, QString());
}

}  // namespace Tamrix
