#include "plugins/perl/perlsteps.h"

#include "interpreter/language/scripterrorset.h"
#include "platform/gherkin/expressions/expressionerror.h"
#include "plugins/perl/caseinterpreter.h"
#include "plugins/perl/conversion.h"
#include "plugins/perl/literal.h"
#include "plugins/perl/perlcontext.h"

namespace Tamrix::PerlPlugin {

namespace {

using Value = SharedPtr<ScriptArgument>;

std::string utf8Of(pTHX_ SV* value) {
    return textOf(aTHX_ value).toStdString();
}

Value functionOf(pTHX_ SV* value) {
    return SvOK(value) ? new PerlArgument(PerlArgument::kept(aTHX_ value)) : nullptr;
}

/// Where the script registers something.
Gherkin::ScriptLocation callingLine(CaseInterpreter& interpreter) {
    LineInfo position;
    interpreter.context().lineInfoOfFrame(position, 0);
    return {position.fileName().toStdString(), position.lineNumber()};
}

/// Runs `work` for the interpreter whose scripts run, on their thread, with arguments that are
/// there. `work` gives the result.
template <typename Work>
NativeEnd withSteps(pTHX_ int count, int wanted, Work work) {
    CaseInterpreter* const interpreter = CaseInterpreter::onScriptThread();
    if (!interpreter)
        return failing(
            aTHX_ refusedCall(QStringLiteral("bdd"), CaseInterpreter::active() != nullptr));
    if (count < wanted)
        return failing(aTHX_{ScriptFailure::Kind::BadArgument,
                             QStringLiteral("Too few arguments for a function of bdd"),
                             false,
                             {}});
    try {
        return returning(aTHX_ work(*interpreter));
    } catch (const Gherkin::ExpressionError& error) {
        return failing(
            aTHX_{ScriptFailure::Kind::BadArgument, QString::fromUtf8(error.what()), false, {}});
    } catch (const ScriptErrorSet&) {
        return endOfCall(aTHX);
    }
}

/// expression, whether it is regular, function
NativeEnd registerStep(pTHX_ CV*, SV** arguments, int count) {
    return withSteps(aTHX_ count, 3, [&](CaseInterpreter& interpreter) {
        interpreter.steps().registry().addStep(
            utf8Of(aTHX_ arguments[0]), SvTRUE_nomg(arguments[1]), functionOf(aTHX_ arguments[2]),
            callingLine(interpreter));
        return SvRef();
    });
}

/// type, order, tags, function
NativeEnd registerHook(pTHX_ CV*, SV** arguments, int count) {
    return withSteps(aTHX_ count, 4, [&](CaseInterpreter& interpreter) {
        interpreter.steps().registry().addHook(
            static_cast<Gherkin::HookType>(SvIV(arguments[0])),
            static_cast<Gherkin::HookOrder>(SvIV(arguments[1])), utf8Of(aTHX_ arguments[2]),
            functionOf(aTHX_ arguments[3]),
            QString::fromStdString(callingLine(interpreter).fileName));
        return SvRef();
    });
}

/// name, patterns, function or undef
NativeEnd registerType(pTHX_ CV*, SV** arguments, int count) {
    return withSteps(aTHX_ count, 3, [&](CaseInterpreter& interpreter) {
        std::vector<std::string> patterns;
        for (const Value& pattern : PerlArgument(SvRef::borrow(arguments[1])).toList())
            patterns.push_back(pattern->toString().toStdString());
        interpreter.steps().registry().addParameterType(
            utf8Of(aTHX_ arguments[0]), std::move(patterns), functionOf(aTHX_ arguments[2]));
        return SvRef();
    });
}

// The hash of the context.

NativeEnd contextGet(pTHX_ CV*, SV** arguments, int count) {
    return withSteps(aTHX_ count, 1, [&](CaseInterpreter& interpreter) {
        const Value value = interpreter.steps().scopes().find(textOf(aTHX_ arguments[0]));
        return value ? SvRef::borrow(valueOf(value)) : SvRef();
    });
}

NativeEnd contextSet(pTHX_ CV*, SV** arguments, int count) {
    return withSteps(aTHX_ count, 2, [&](CaseInterpreter& interpreter) {
        interpreter.steps().scopes().set(
            textOf(aTHX_ arguments[0]), new PerlArgument(SvRef::steal(newSVsv_nomg(arguments[1]))));
        return SvRef();
    });
}

NativeEnd contextRemove(pTHX_ CV*, SV** arguments, int count) {
    return withSteps(aTHX_ count, 1, [&](CaseInterpreter& interpreter) {
        const QString name = textOf(aTHX_ arguments[0]);
        const Value value = interpreter.steps().scopes().find(name);
        interpreter.steps().scopes().remove(name);
        return value ? SvRef::borrow(valueOf(value)) : SvRef();
    });
}

NativeEnd contextAll(pTHX_ CV*, SV**, int count) {
    return withSteps(aTHX_ count, 0, [&](CaseInterpreter& interpreter) {
        return SvRef::borrow(
            valueOf(interpreter.context().createMap(interpreter.steps().scopes().all())));
    });
}

}  // namespace

PerlSteps::PerlSteps(CaseInterpreter& interpreter)
    : StepLanguage(interpreter), m_perl(interpreter) {}

std::optional<ScriptError> PerlSteps::loadFile(const QString& path, const QString& text) {
    return m_perl.loadText(text, path);
}

StepLanguage::Value PerlSteps::contextValue() {
    pTHX = m_perl.perl();
    return new PerlArgument(valueOrThrow(callOwn(aTHX_ "bdd::Context::_make", {})));
}

StepLanguage::Value PerlSteps::tableValue(const Gherkin::Step& step) {
    pTHX = m_perl.perl();
    LanguageContext& context = m_perl.context();
    std::vector<Value> rows;
    for (const std::vector<Gherkin::TableCell>& row : step.table) {
        std::vector<Value> cells;
        cells.reserve(row.size());
        for (const Gherkin::TableCell& cell : row)
            cells.push_back(context.createString(QString::fromStdString(cell.text)));
        rows.push_back(context.createList(cells));
    }
    return new PerlArgument(valueOrThrow(
        callOwn(aTHX_ "bdd::Table::_make", {SvRef::borrow(valueOf(context.createList(rows)))})));
}

QString PerlSteps::snippetText(const StepSnippet& snippet) {
    QString keyword = snippet.keyword;
    keyword[0] = keyword[0].toUpper();
    QStringList parameters{QStringLiteral("$context")};
    for (const QString& name : snippet.parameters)
        parameters += "$" + name;
    return QStringLiteral("use bdd;\n\n%1 %2, sub {\n    my (%3) = @_;\n    Pending();\n};\n")
        .arg(keyword, literal(snippet.expression), parameters.join(QStringLiteral(", ")));
}

void defineStepFunctions(pTHX) {
    defineBody(aTHX_ "bdd::_step", nativeFunction<registerStep>);
    defineBody(aTHX_ "bdd::_hook", nativeFunction<registerHook>);
    defineBody(aTHX_ "bdd::_type", nativeFunction<registerType>);
    defineBody(aTHX_ "bdd::Context::_get", nativeFunction<contextGet>);
    defineBody(aTHX_ "bdd::Context::_set", nativeFunction<contextSet>);
    defineBody(aTHX_ "bdd::Context::_remove", nativeFunction<contextRemove>);
    defineBody(aTHX_ "bdd::Context::_all", nativeFunction<contextAll>);
}

}  // namespace Tamrix::PerlPlugin
