#include "plugins/perl/perlsteps.h"

#include "plugins/perl/caseinterpreter.h"
#include "plugins/perl/conversion.h"
#include "plugins/perl/literal.h"
#include "plugins/perl/ownfunctions.h"
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

/// expression, whether it is regular, function
SvRef registerStep(pTHX_ const OwnCall& call) {
    call.active.steps().addStep(utf8Of(aTHX_ call.arguments[0]), SvTRUE_nomg(call.arguments[1]),
                                functionOf(aTHX_ call.arguments[2]));
    return {};
}

/// name, tags, function
SvRef registerHook(pTHX_ const OwnCall& call) {
    call.active.steps().addHook(*hookKind(textOf(aTHX_ call.arguments[0])),
                                utf8Of(aTHX_ call.arguments[1]),
                                functionOf(aTHX_ call.arguments[2]));
    return {};
}

/// name, patterns, function or undef
SvRef registerType(pTHX_ const OwnCall& call) {
    std::vector<std::string> patterns;
    for (const Value& pattern : PerlArgument(SvRef::borrow(call.arguments[1])).toList())
        patterns.push_back(pattern->toString().toStdString());
    call.active.steps().registry().addParameterType(
        utf8Of(aTHX_ call.arguments[0]), std::move(patterns), functionOf(aTHX_ call.arguments[2]));
    return {};
}

// The hash of the context.

SvRef contextGet(pTHX_ const OwnCall& call) {
    const Value value = call.active.steps().scopes().find(textOf(aTHX_ call.arguments[0]));
    return value ? SvRef::borrow(valueOf(value)) : SvRef();
}

SvRef contextSet(pTHX_ const OwnCall& call) {
    call.active.steps().scopes().set(
        textOf(aTHX_ call.arguments[0]),
        new PerlArgument(SvRef::steal(newSVsv_nomg(call.arguments[1]))));
    return {};
}

SvRef contextRemove(pTHX_ const OwnCall& call) {
    SvRef value = contextGet(aTHX_ call);
    call.active.steps().scopes().remove(textOf(aTHX_ call.arguments[0]));
    return value;
}

SvRef contextAll(pTHX_ const OwnCall& call) {
    PERL_UNUSED_CONTEXT;
    return SvRef::borrow(
        valueOf(call.active.context().createMap(call.active.steps().scopes().all())));
}

constexpr OwnFunction stepFunctions[] = {
    {"bdd::_step", 3, registerStep},       {"bdd::_hook", 3, registerHook},
    {"bdd::_type", 3, registerType},       {"bdd::Context::_get", 1, contextGet},
    {"bdd::Context::_set", 2, contextSet}, {"bdd::Context::_remove", 1, contextRemove},
    {"bdd::Context::_all", 0, contextAll},
};

}  // namespace

PerlSteps::PerlSteps(CaseInterpreter& interpreter)
    : StepLanguage(interpreter), m_perl(interpreter) {}

std::optional<ScriptError> PerlSteps::loadFile(const QString& path, const QString& text) {
    return m_perl.attempt([&] { m_perl.runText(text, path); });
}

StepLanguage::Value PerlSteps::contextValue() {
    pTHX = m_perl.perl();
    return new PerlArgument(valueOrThrow(callOwn(aTHX_ "bdd::Context::_make", {})));
}

StepLanguage::Value PerlSteps::tableValue(const Value& rows) {
    pTHX = m_perl.perl();
    return new PerlArgument(
        valueOrThrow(callOwn(aTHX_ "bdd::Table::_make", {SvRef::borrow(valueOf(rows))})));
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
    defineOwn(aTHX_ stepFunctions);
}

}  // namespace Tamrix::PerlPlugin
