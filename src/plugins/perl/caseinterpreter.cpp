#include "plugins/perl/caseinterpreter.h"

#include <unistd.h>

#include <utility>

#include "plugins/perl/conversion.h"
#include "plugins/perl/departure.h"
#include "plugins/perl/frameevaluation.h"
#include "plugins/perl/hooks.h"
#include "plugins/perl/nativeclasses.h"
#include "plugins/perl/objecttypes.h"
#include "plugins/perl/perlcontext.h"
#include "plugins/perl/perldebugger.h"
#include "plugins/perl/perlsteps.h"
#include "plugins/perl/prelude.h"
#include "plugins/perl/scriptstreams.h"

namespace Tamrix::PerlPlugin {

namespace {

/// Stands for the file of code that has none.
const QString noFile = QStringLiteral("<init script>");

/// The text with what tells Perl its file and, once it runs, us that it could be compiled.
SvRef withPlace(pTHX_ const QString& text, const QByteArray& codeFile) {
    const QString place =
        codeFile.isEmpty() ? QString()
                           : QStringLiteral("\n#line 1 \"%1\"\n").arg(QString::fromUtf8(codeFile));
    const QString whole = "$tamrix::isCompiled = 1; " + place + text;
    SvRef value = toPerl(aTHX_ whole);
    // Characters, also where all of them are ASCII.
    SvUTF8_on(value.get());
    return value;
}

SharedPtr<ScriptArgument> referenceTo(pTHX_ CV* function) {
    return new PerlArgument(SvRef::steal(newRV_inc(reinterpret_cast<SV*>(function))));
}

}  // namespace

CaseInterpreter::CaseInterpreter(RunnerInterface* runner)
    : LanguageInterpreter(runner, Perl), m_process(getpid()) {
    for (const QString& folder : m_runtime.libraryFolders())
        m_files.addLibrary(folder);
    m_context = std::make_unique<PerlContext>(*this);
    m_debugger = std::make_unique<PerlDebugger>(*this);
    pTHX = perl();
    defineObjectTypes(aTHX);
    m_context->defineValueMembers();
    m_context->defineStepMembers();
    defineStreams(aTHX);
    for (const char* const name : {"library", "output", "steps", "remotesystem"})
        runPrelude(aTHX_ name);
    begin(*m_context, *m_debugger, std::make_unique<PerlSteps>(*this));
    installHooks(m_runtime.perl());
}

CaseInterpreter::~CaseInterpreter() {
    m_runtime.enter();
    m_checked.reset();
    m_initialNames = SvRef();
    m_initialModules = SvRef();
    end();
    leaveActive();
    m_errors.clear();
    m_debugger.reset();
    m_context.reset();
    setHookedRuntime(nullptr);
    m_runtime.end();
    if (CaseInterpreter* const other = active()) {
        other->m_runtime.enter();
        setHookedRuntime(other->perl());
    }
}

bool CaseInterpreter::isInChild() const {
    return getpid() != m_process;
}

void CaseInterpreter::exceptionRaised(pTHX_ SV* exception) {
    if (m_errors.note(aTHX_ exception))
        m_debugger->errorPasses(aTHX_ exception);
}

// Names for scripts

void CaseInterpreter::addNativeType(const QString& name, void* typeId,
                                    const NativeScriptType& type) {
    defineNativeClass(*this, name, typeId, type);
}

void CaseInterpreter::publishFunctions(const QStringList& names) {
    for (const QString& name : names)
        m_functions.defineOfApplications(name);
}

QString CaseInterpreter::addToSearchPath(const QFileInfo& directory) {
    m_folders.append(directory.absoluteFilePath());
    m_runtime.setSearchPath(m_folders);
    return {};
}

void CaseInterpreter::startScript(const QString& path, const QStringList& arguments,
                                  const QStringList& folders) {
    m_runtime.enter();
    setHookedRuntime(perl());
    m_runtime.noteSignals();
    pTHX = perl();
    m_checked.reset();
    departure() = Departure();
    if (m_initialNames) {
        callOwn(aTHX_ "tamrix::_forget", {m_initialNames, m_initialModules});
    } else {
        m_initialNames = callOwn(aTHX_ "tamrix::_names", {}).value;
        m_initialModules =
            SvRef::steal(newRV_noinc(reinterpret_cast<SV*>(newHVhv(get_hv("INC", GV_ADD)))));
    }
    m_folders = folders + m_folders;
    m_folders.removeDuplicates();
    m_runtime.setSearchPath(m_folders);
    AV* const values = get_av("ARGV", GV_ADD);
    av_clear(values);
    for (const QString& argument : arguments)
        av_push(values, toPerl(aTHX_ argument).release());
    // Without what an assignment does, which is to rename the process.
    const QByteArray script = path.toUtf8();
    sv_setpvn(get_sv("0", GV_ADD), script.constData(), static_cast<STRLEN>(script.size()));
}

bool CaseInterpreter::isOwnName(HV* package, const QString& name) const {
    pTHX = perl();
    if (package != PL_defstash || !m_initialNames || !SvROK(m_initialNames.get()))
        return false;
    const SvRef key = toPerl(aTHX_ name);
    return hv_exists_ent(reinterpret_cast<HV*>(SvRV(m_initialNames.get())), key.get(), 0);
}

CV* CaseInterpreter::mainFunction(const QString& name) const {
    pTHX = perl();
    const QByteArray wholeName = "main::" + name.toUtf8();
    CV* const function =
        get_cvn_flags(wholeName.constData(), static_cast<STRLEN>(wholeName.size()), SVf_UTF8);
    // One that is only declared has no body.
    return function && (CvROOT(function) || CvXSUB(function)) ? function : nullptr;
}

SharedPtr<ScriptArgument> CaseInterpreter::scriptFunction(const QString& name) {
    m_runtime.enter();
    pTHX = perl();
    CV* const function = mainFunction(name);
    return function && !CvISXSUB(function) ? referenceTo(aTHX_ function) : nullptr;
}

SharedPtr<ScriptArgument> CaseInterpreter::libraryFunction(const QString& name) {
    pTHX = perl();
    CV* const function = mainFunction(name);
    return function ? referenceTo(aTHX_ function) : nullptr;
}

// Running

CodeEnd CaseInterpreter::evaluateText(const QString& text, const QString& fileName,
                                      bool* isCompiled) {
    pTHX = perl();
    SV* const flag = get_sv("tamrix::isCompiled", GV_ADD);
    sv_setiv(flag, 0);
    if (text.contains(QLatin1String("\n__DATA__")) || text.contains(QLatin1String("\n__END__")))
        callOwn(aTHX_ "tamrix::_openData", {toPerl(aTHX_ text)});
    const SvRef code =
        withPlace(aTHX_ text, fileName.isEmpty() ? QByteArray() : codeFileOf(m_files, fileName));
    CodeEnd end = evaluateCode(aTHX_ code.get());
    if (isCompiled)
        *isCompiled = SvTRUE_nomg(flag);
    return end;
}

void CaseInterpreter::runFile(const QString& text, const QString& path) {
    CodeEnd end = evaluateText("package main; " + text, path, nullptr);
    output().flush();
    valueOrThrow(std::move(end));
}

bool CaseInterpreter::isErrorOrdinary() {
    return pendingEnding() == Ending::Died;
}

ScriptError CaseInterpreter::takeError() {
    pTHX = perl();
    const CodeEnd end = takePendingEnd();
    return end.ending == Ending::Died ? m_errors.take(aTHX_ end.value)
                                      : ScriptErrors::ofDeparture(aTHX);
}

bool CaseInterpreter::checkSyntax(const QString& text, const QString& fileName) {
    clearError();
    m_runtime.enter();
    ScriptContext::setCurrent(&context());
    departure() = Departure();
    bool isCompiled = false;
    CodeEnd end = evaluateText("package main; " + text, fileName, &isCompiled);
    if (!isCompiled && end.ending == Ending::Died)
        return runCode(true, [&] { valueOrThrow(std::move(end)); });
    m_checked = {text, fileName, std::move(end)};
    return true;
}

bool CaseInterpreter::runScript(const QString& text, const QString& fileName) {
    m_runtime.enter();
    if (m_checked && m_checked->text == text && m_checked->fileName == fileName) {
        CodeEnd end = std::move(m_checked->end);
        m_checked.reset();
        return runCode(true, [&] { valueOrThrow(std::move(end)); });
    }
    departure() = Departure();
    return runCode(!fileName.isEmpty(),
                   [&] { runFile(text, fileName.isEmpty() ? noFile : fileName); });
}

LanguageInterpreter::CallEnd CaseInterpreter::call(const SharedPtr<ScriptArgument>& function,
                                                   const CallArguments& arguments,
                                                   const QString& /*name*/, bool isCallback) {
    m_runtime.enter();
    if (!isCallback)
        departure() = Departure();
    return runCall(isCallback, [&] {
        pTHX = perl();
        std::vector<SvRef> values;
        for (const SharedPtr<ScriptArgument>& argument : arguments.positional)
            values.push_back(SvRef::borrow(valueOf(argument)));
        // Named ones as Perl has them: pairs behind the others.
        for (const auto& [name, argument] : arguments.named) {
            values.push_back(toPerl(aTHX_ name));
            values.push_back(SvRef::borrow(valueOf(argument)));
        }
        valueOrThrow(callCode(aTHX_ valueOf(function), values));
    });
}

QString CaseInterpreter::evaluateAtStop(const ScriptFrame* frame, const QString& code) {
    pTHX = perl();
    return evaluateInFrame(aTHX_ frame ? std::any_cast<CodeFrame>(frame->own) : CodeFrame(), code);
}

TimeLimit::Expired CaseInterpreter::endOfEvaluation() {
    return requestTimeLimit;
}

void CaseInterpreter::forgetEndOfEvaluation() {
    takeTimeExpired();
}

LineInfo CaseInterpreter::placeOf(const SharedPtr<ScriptArgument>& function) {
    pTHX = perl();
    return placeOfFunction(aTHX_ m_files, valueOf(function));
}

}  // namespace Tamrix::PerlPlugin
