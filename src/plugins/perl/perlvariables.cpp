#include "plugins/perl/perlvariables.h"

#include <algorithm>

#include "interpreter/language/languagedebugger.h"
#include "interpreter/language/valuepath.h"
#include "plugins/perl/caseinterpreter.h"
#include "plugins/perl/conversion.h"
#include "plugins/perl/lexicals.h"
#include "plugins/perl/perlargument.h"

namespace Tamrix::PerlPlugin {

namespace {

using Value = SharedPtr<ScriptArgument>;

/// A variable as a value: an array or a hash as a reference to it.
Value valueOfVariable(pTHX_ SV* variable) {
    if (SvTYPE(variable) == SVt_PVAV || SvTYPE(variable) == SVt_PVHV)
        return new PerlArgument(SvRef::steal(newRV_inc(variable)));
    return new PerlArgument(SvRef::borrow(variable));
}

/// What a reference leads to, unless looking at it would run code of the script.
SV* targetOf(SV* value) {
    if (!SvROK(value) || NativeHolder::check(value) || ApplicationContextHolder::check(value))
        return nullptr;
    SV* const target = SvRV(value);
    return SvRMAGICAL(target) && mg_find(target, PERL_MAGIC_tied) ? nullptr : target;
}

/// The key of an entry as it stands in a path.
QString nameOfKey(const QString& key) {
    return "['" + pathPart(key, "'\\[]()\"") + "']";
}

}  // namespace

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

LanguageVariables::Members PerlVariables::membersOf(const Value& value, int first, int limit) {
    pTHX = m_perl.perl();
    Members members;
    SV* const target = targetOf(valueOf(value));
    if (!target)
        return members;
    if (SvTYPE(target) == SVt_PVAV) {
        auto* const array = reinterpret_cast<AV*>(target);
        members.count = static_cast<int>(av_count(array));
        for (int index = first; index < std::min(members.count, first + limit); ++index) {
            SV** const place = av_fetch(array, index, 0);
            members.page.push_back(
                {QString::number(index), valueOfVariable(aTHX_ place ? *place : &PL_sv_undef)});
        }
    } else if (SvTYPE(target) == SVt_PVHV) {
        auto* const hash = reinterpret_cast<HV*>(target);
        members.count = static_cast<int>(HvUSEDKEYS(hash));
        if (limit == 0)
            return members;
        const std::vector<std::pair<QString, SV*>> entries = entriesOf(aTHX_ hash);
        for (int index = first; index < std::min(members.count, first + limit); ++index) {
            const auto& [key, entry] = entries[static_cast<std::size_t>(index)];
            members.page.push_back({nameOfKey(key), valueOfVariable(aTHX_ entry)});
        }
    }
    return members;
}

QString PerlVariables::textOf(const Value& value) {
    pTHX = m_perl.perl();
    return m_texts.textOf(aTHX_ valueOf(value));
}

}  // namespace Tamrix::PerlPlugin
