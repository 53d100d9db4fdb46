#include "plugins/perl/scripterrors.h"

#include <QRegularExpression>
#include <algorithm>

#include "interpreter/bridge/debugger.h"
#include "plugins/perl/caseinterpreter.h"
#include "plugins/perl/conversion.h"
#include "plugins/perl/departure.h"
#include "plugins/perl/frames.h"
#include "plugins/perl/perlargument.h"
#include "plugins/perl/perldebugger.h"

namespace Tamrix::PerlPlugin {

namespace {

int runningDepth(pTHX) {
    CaseInterpreter* const interpreter = CaseInterpreter::onScriptThread();
    return interpreter ? static_cast<int>(scriptFrames(aTHX_ interpreter->files()).size()) : 0;
}

/// What Perl writes behind a message that does not end with a line feed.
const QRegularExpression& placeExpression() {
    static const QRegularExpression s_place(
        QStringLiteral(" at (?<file>[^\\n]+?) line (?<line>\\d+)(?:, <[^>\\n]*> "
                       "(?:line|chunk) \\d+)?(?:\\.(?=\\n|$)|(?=[,\\n]|$))"));
    return s_place;
}

/// Lines that only tell how a failure came up through the files.
const QRegularExpression& echoExpression() {
    static const QRegularExpression s_echo(
        QStringLiteral("\\n(?:BEGIN failed--compilation aborted|Compilation failed in require|"
                       "Execution of [^\\n]* aborted due to compilation errors|"
                       "[^\\n]* had compilation errors)(?: at [^\\n]* line \\d+)?\\.?(?=\\n|$)"));
    return s_echo;
}

QString textWithoutPlace(QString text) {
    text.remove(echoExpression());
    while (text.endsWith('\n'))
        text.chop(1);
    const QRegularExpressionMatch place = placeExpression().match(text);
    if (place.hasMatch())
        text.remove(place.capturedStart(), place.capturedLength());
    return text;
}

LineInfo placeInText(const QString& text, SourceFiles& files) {
    const QRegularExpressionMatch place = placeExpression().match(text);
    if (!place.hasMatch())
        return {};
    const QString path = files.path(place.captured(QStringLiteral("file")).toUtf8().constData());
    return path.isNull() ? LineInfo()
                         : LineInfo(path, place.captured(QStringLiteral("line")).toInt());
}

/// In the order of ScriptFailure::Kind. What is fatal leaves the script, unless it is held.
constexpr const char* classNames[] = {"tamrix::Error",       "tamrix::VerificationError",
                                      "tamrix::Error",       "tamrix::LookupError",
                                      "tamrix::MemberError", "tamrix::ArgumentError"};

void store(pTHX_ HV* hash, const char* key, SvRef value) {
    static_cast<void>(hv_store(hash, key, static_cast<I32>(qstrlen(key)), value.release(), 0));
}

SvRef exceptionOf(pTHX_ const ScriptFailure& failure, const LineInfo& position) {
    HV* const fields = newHV();
    store(aTHX_ fields, "message", toPerl(aTHX_ failure.text));
    store(aTHX_ fields, "file", toPerl(aTHX_ position.fileName()));
    store(aTHX_ fields, "line", SvRef::steal(newSViv(position.lineNumber())));
    SV* const exception = newRV_noinc(reinterpret_cast<SV*>(fields));
    sv_bless(exception, gv_stashpv(ScriptFailure::of(failure.kind, classNames), GV_ADD));
    return SvRef::steal(exception);
}

}  // namespace

bool ScriptErrors::note(pTHX_ SV* exception) {
    // What is raised once more stands where it did at first; with text only what Perl has told the
    // place of can be known again.
    if (isNoted(aTHX_ exception)) {
        if (!SvROK(exception))
            m_noted = SvRef::steal(newSVsv_nomg(exception));
        return false;
    }
    m_stack = positionsOf(runningCode(aTHX));
    m_depth = runningDepth(aTHX);
    if (m_origin.isValid())
        m_stack.insert(m_stack.begin(), m_origin);
    m_origin = LineInfo();
    m_noted = SvRef::steal(newSVsv_nomg(exception));
    if (SvROK(m_noted.get()))
        sv_rvweaken(m_noted.get());
    return true;
}

bool ScriptErrors::isNoted(pTHX_ SV* exception) const {
    SV* const noted = m_noted.get();
    if (!noted || !SvOK(noted) || SvROK(noted) != SvROK(exception))
        return false;
    if (SvROK(noted))
        return SvRV(noted) == SvRV(exception);
    const QString before = PerlPlugin::textOf(aTHX_ noted);
    return placeExpression().match(before).hasMatch() &&
           PerlPlugin::textOf(aTHX_ exception).startsWith(before);
}

ScriptError ScriptErrors::take(pTHX_ const SvRef& exception) {
    ScriptError error;
    SV* const value = exception.get();
    error.isPendingStep = sv_isobject(value) && sv_derived_from(value, "bdd::Pending");
    SV* const noted = m_noted.get();
    const bool isSame =
        isNoted(aTHX_ value) ||
        (noted && SvPOK(noted) && SvPOK(value) &&
         PerlPlugin::textOf(aTHX_ value).startsWith(PerlPlugin::textOf(aTHX_ noted)));
    CaseInterpreter* const interpreter = CaseInterpreter::onScriptThread();
    if (isSame) {
        error.callStack = m_stack;
        leaveRunningCalls(aTHX_ error.callStack);
        // Of a module that can't be compiled only the text has the line.
        const QString text = SvROK(value) ? QString() : PerlPlugin::textOf(aTHX_ value);
        if (interpreter && echoExpression().match(text).hasMatch()) {
            const LineInfo place = placeInText(text, interpreter->files());
            if (place.isValid() && (error.callStack.empty() || error.callStack.front() != place))
                error.callStack.insert(error.callStack.begin(), place);
        }
    } else if (interpreter && !SvROK(value)) {
        // Code that can't be compiled has come to no line.
        const LineInfo place = placeInText(PerlPlugin::textOf(aTHX_ value), interpreter->files());
        if (place.isValid())
            error.callStack = {place};
    }
    const QRegularExpressionMatch place =
        SvROK(value) ? QRegularExpressionMatch()
                     : placeExpression().match(PerlPlugin::textOf(aTHX_ value));
    error.outermostLine = !error.callStack.empty() ? error.callStack.back().lineNumber()
                          : place.hasMatch()       ? place.captured(QStringLiteral("line")).toInt()
                                                   : 0;
    // At the end, since an object that can't tell its text dies there in its turn.
    error.message = messageOf(aTHX_ value);
    clear();
    return error;
}

void ScriptErrors::clear() {
    m_noted = SvRef();
    m_stack.clear();
}

void ScriptErrors::leaveRunningCalls(pTHX_ std::vector<LineInfo>& stack) const {
    const int running = runningDepth(aTHX);
    const auto own = static_cast<std::size_t>(std::max(m_depth - running, 1));
    if (running > 0 && stack.size() > own)
        stack.resize(own);
}

QString ScriptErrors::messageOf(pTHX_ SV* exception) {
    if (!SvROK(exception))
        return textWithoutPlace(PerlPlugin::textOf(aTHX_ exception));
    if (!sv_isobject(exception))
        return QStringLiteral("An exception that is no text: ") +
               PerlArgument(SvRef::borrow(exception)).toString();
    const QString name = QString::fromUtf8(sv_reftype(SvRV(exception), 1));
    const HeldDepartures held;
    const CodeEnd text = callOwn(aTHX_ "tamrix::_message", {SvRef::borrow(exception)});
    QString words;
    if (text.ending == Ending::Returned)
        words = textWithoutPlace(PerlPlugin::textOf(aTHX_ text.value.get()));
    return words.isEmpty() ? name : name + ": " + words;
}

ScriptError ScriptErrors::ofDeparture(pTHX) {
    Departure left = std::exchange(departure(), Departure());
    ScriptError error;
    error.callStack = std::move(left.callStack);
    error.outermostLine = error.callStack.empty() ? 0 : error.callStack.back().lineNumber();
    error.isSkip = left.isSkip;
    switch (left.reason) {
        case Departure::Reason::Memory:
            error.message = QStringLiteral("Perl has no memory left");
            break;
        case Departure::Reason::Exit: {
            const auto status = static_cast<int>(STATUS_EXIT);
            error.isExit = status == 0;
            error.message = QStringLiteral("The script ended with exit(%1)").arg(status);
            break;
        }
        case Departure::Reason::Fatal:
            error.message = "tamrix::FatalError: " + left.text;
            break;
        case Departure::Reason::Interrupt:
            error.message = QStringLiteral("Interrupted");
            break;
    }
    // The next exit starts anew.
    STATUS_ALL_SUCCESS;
    return error;
}

CodeEnd endOfFailure(pTHX_ const ScriptFailure& failure) {
    CaseInterpreter* const interpreter = CaseInterpreter::onScriptThread();
    const std::vector<LineInfo> stack = positionsOf(runningCode(aTHX));
    LineInfo position = stack.empty() ? LineInfo() : stack.front();
    LineInfo origin;
    if (interpreter && failure.origin.line >= 0) {
        origin = LineInfo(interpreter->languageDebugger().findSourceId(failure.origin.sourceId),
                          failure.origin.line);
        position = origin;
    }
    if (failure.kind == ScriptFailure::Kind::Fatal && !HeldDepartures::areHeld()) {
        departure() = {Departure::Reason::Fatal, failure.text, failure.isSkip, stack};
        if (origin.isValid())
            departure().callStack.insert(departure().callStack.begin(), origin);
        return {Ending::Left, SvRef()};
    }
    if (interpreter)
        interpreter->errors().setOrigin(origin);
    return {Ending::Died, exceptionOf(aTHX_ failure, position)};
}

void throwFailure(const ScriptFailure& failure) {
    dTHX;
    throwEnd(endOfFailure(aTHX_ failure));
}

NativeEnd failing(pTHX_ const ScriptFailure& failure) {
    CodeEnd end = endOfFailure(aTHX_ failure);
    return end.ending == Ending::Died ? dying(aTHX_ std::move(end.value)) : leaving();
}

}  // namespace Tamrix::PerlPlugin
