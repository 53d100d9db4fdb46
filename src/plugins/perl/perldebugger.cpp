#include "plugins/perl/perldebugger.h"

#include "plugins/perl/caseinterpreter.h"
#include "plugins/perl/conversion.h"
#include "plugins/perl/lexicals.h"
#include "plugins/perl/perlvaluetexts.h"

namespace Tamrix::PerlPlugin {

PerlDebugger::PerlDebugger(CaseInterpreter& interpreter)
    : LanguageDebugger(&interpreter), m_perl(interpreter) {}

PerlDebugger::~PerlDebugger() {
    setStatementListener(nullptr);
}

void PerlDebugger::setInteractive(bool interactive) {
    LanguageDebugger::setInteractive(interactive);
    setStatementListener(interactive ? this : nullptr);
}

void PerlDebugger::enterSilence() {
    m_errorsAside = std::make_unique<ScriptErrors>(m_perl.errors());
}

void PerlDebugger::leaveSilence() {
    m_perl.errors() = std::move(*m_errorsAside);
    m_errorsAside.reset();
}

void PerlDebugger::stopSoon() {
    requestOfScript(Request::Stop);
}

void PerlDebugger::statementReached(pTHX_ const COP* statement) {
    PERL_UNUSED_CONTEXT;
    if (isSilent())
        return;
    const int sourceId = sourceIdOf(CopFILE(statement), m_perl.files());
    if (sourceId >= 0)
        lineReached(sourceId, static_cast<int>(CopLINE(statement)));
}

void PerlDebugger::stopRequested() {
    if (!isSilent())
        stop();
}

std::vector<ScriptFrame> PerlDebugger::runningFrames() {
    pTHX = m_perl.perl();
    SourceFiles& files = m_perl.files();
    std::vector<ScriptFrame> frames;
    for (const CodeFrame& frame : scriptFrames(aTHX_ files))
        frames.push_back({frame, files.path(CopFILE(frame.statement)),
                          static_cast<int>(CopLINE(frame.statement)), -1});
    return frames;
}

int PerlDebugger::runningDepth() {
    pTHX = m_perl.perl();
    return static_cast<int>(scriptFrames(aTHX_ m_perl.files()).size());
}

std::unique_ptr<ValueTexts> PerlDebugger::makeValueTexts() {
    return std::make_unique<PerlValueTexts>();
}

// Variables

std::vector<ValueTexts::Part> PerlDebugger::variablesOf(const ScriptFrame& frame) {
    const auto code = std::any_cast<CodeFrame>(frame.own);
    std::vector<ValueTexts::Part> variables;
    pTHX = m_perl.perl();
    for (const Lexical& each : lexicalsOf(code))
        variables.push_back({each.name, valueOfVariable(aTHX_ each.variable.get())});
    if (HV* const package = CopSTASH(code.statement))
        addOfPackage(variables, package);
    return variables;
}

void PerlDebugger::addOfPackage(std::vector<ValueTexts::Part>& variables, HV* package) {
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

void PerlDebugger::errorPasses(pTHX_ SV* exception) {
    if (!stopsForErrors() || isSilent() || areErrorsCaught() || isCaughtByScript(aTHX))
        return;
    const QString text = ScriptErrors::messageOf(aTHX_ exception);
    // A native function may have made another exception of one that was told.
    if (!hasTold(text))
        stopForError(text, runningFrames());
}

}  // namespace Tamrix::PerlPlugin
