#include "plugins/perl/perlsteps.h"

#include "plugins/perl/caseinterpreter.h"
#include "plugins/perl/conversion.h"
#include "plugins/perl/literal.h"
#include "plugins/perl/perlcontext.h"

namespace Tamrix::PerlPlugin {

PerlSteps::PerlSteps(CaseInterpreter& interpreter)
    : StepLanguage(interpreter), m_perl(interpreter) {}

StepLanguage::Value PerlSteps::contextValue() {
    pTHX = m_perl.perl();
    return new PerlArgument(valueOrThrow(callOwn(aTHX_ "tamrix::StepContext::_make", {})));
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

}  // namespace Tamrix::PerlPlugin
