#include "plugins/perl/frameevaluation.h"

#include <QRegularExpression>

#include "plugins/perl/conversion.h"
#include "plugins/perl/departure.h"
#include "plugins/perl/guardedcall.h"
#include "plugins/perl/lexicals.h"
#include "plugins/perl/perlvaluetexts.h"

namespace Tamrix::PerlPlugin {

namespace {

/// Of a whole array or hash a person means what is in it, where Perl gives its size.
QString asReference(const QString& code) {
    static const QRegularExpression s_container(QStringLiteral("^\\s*[@%][\\w:]+\\s*;?\\s*$"));
    return s_container.match(code).hasMatch() ? "\\" + code.trimmed() : code;
}

/// Code that sees the variables of the frame as its own, by other names for the same.
QString withVariables(pTHX_ const CodeFrame& frame, const QString& code) {
    if (!frame.statement)
        return "package main; no strict; no warnings;\n#line 1 \"(debugger)\"\n" + code;
    AV* const references = get_av("tamrix::FRAME", GV_ADD);
    av_clear(references);
    QString aliases;
    int count = 0;
    for (const Lexical& each : lexicalsOf(frame)) {
        av_push(references, newRV_inc(each.variable.get()));
        aliases += QStringLiteral("\\my %1 = $tamrix::FRAME[%2]; ")
                       .arg(each.name, QString::number(count++));
    }
    const HV* const package = CopSTASH(frame.statement);
    return QStringLiteral(
               "package %1; no strict; use feature 'refaliasing'; no warnings; %2\n"
               "#line 1 \"(debugger)\"\n%3")
        .arg(package ? QString::fromUtf8(HvNAME_get(package)) : QStringLiteral("main"), aliases,
             code);
}

}  // namespace

QString evaluateInFrame(pTHX_ const CodeFrame& frame, const QString& code) {
    const SvRef text = toPerl(aTHX_ withVariables(aTHX_ frame, asReference(code)));
    SvUTF8_on(text.get());
    const HeldDepartures held;
    CodeEnd end = evaluateCode(aTHX_ text.get());
    av_clear(get_av("tamrix::FRAME", GV_ADD));
    return PerlValueTexts().textOf(aTHX_ valueOrThrow(std::move(end)).get());
}

LineInfo placeOfFunction(pTHX_ SourceFiles& files, SV* function) {
    PERL_UNUSED_CONTEXT;
    if (!SvROK(function) || SvTYPE(SvRV(function)) != SVt_PVCV)
        return {};
    CV* const code = reinterpret_cast<CV*>(SvRV(function));
    if (CvISXSUB(code))
        return {};
    for (const OP* each = CvSTART(code); each; each = each->op_next) {
        if (each->op_type != OP_NEXTSTATE)
            continue;
        const auto* const statement = reinterpret_cast<const COP*>(each);
        return LineInfo(files.path(CopFILE(statement)), static_cast<int>(CopLINE(statement)));
    }
    return {};
}

}  // namespace Tamrix::PerlPlugin
