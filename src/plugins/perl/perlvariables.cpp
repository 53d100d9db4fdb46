#include "plugins/perl/perlvariables.h"

#include "interpreter/language/languagedebugger.h"
#include "plugins/perl/caseinterpreter.h"
#include "plugins/perl/conversion.h"
#include "plugins/perl/lexicals.h"

namespace Tamrix::PerlPlugin {

std::vector<LanguageVariables::Member> PerlVariables::variablesOf(int level) {
    pTHX = m_perl.perl();
    std::vector<Member> variables;
    const std::optional<ScriptFrame> code = codeFrame(level);
    if (!code)
        return variables;
    const auto frame = std::any_cast<CodeFrame>(code->own);
    for (const Lexical& each : lexicalsOf(frame))
        variables.push_back({each.name, valueOfVariable(aTHX_ each.variable.get())});
    if (HV* const package = CopSTASH(frame.statement))
        addOfPackage(variables, package);
    return variables;
}

void PerlVariables::addOfPackage(std::vector<Member>& variables, HV* package) {
    pTHX = m_perl.perl();
    for (const auto& [name, glob] : entriesOf(aTHX_ package)) {
        const QChar first = name.isEmpty() ? QChar() : name.at(0);
        if (!isGV_with_GP(glob) || name.endsWith("::") || !(first.isLetter() || first == '_') ||
            name.startsWith("_<") || m_perl.isOwnName(package, name))
            continue;
        auto* const entry = reinterpret_cast<GV*>(glob);
        if (GvSV(entry) && SvOK(GvSV(entry)))
            variables.push_back({"$" + name, valueOfVariable(aTHX_ GvSV(entry))});
        if (GvAV(entry))
            variables.push_back(
                {"@" + name, valueOfVariable(aTHX_ reinterpret_cast<SV*>(GvAV(entry)))});
        if (GvHV(entry))
            variables.push_back(
                {"%" + name, valueOfVariable(aTHX_ reinterpret_cast<SV*>(GvHV(entry)))});
    }
}

}  // namespace Tamrix::PerlPlugin
