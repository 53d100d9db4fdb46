#include "plugins/tcl/errornotes.h"

#include <algorithm>
#include <utility>

#include "plugins/tcl/conversion.h"

namespace Tamrix::TclPlugin {

namespace {

const char* const variable = "::errorInfo";
constexpr int traced = TCL_GLOBAL_ONLY | TCL_TRACE_WRITES | TCL_TRACE_UNSETS;
/// With these words Tcl tells of the command that has failed, and of those that have called it.
constexpr std::string_view failedMark = "\n    while ";
constexpr std::string_view calledMark = "\n    invoked from within\n\"";
constexpr std::string_view commandMark = "\n\"";
/// So much of a command is looked at.
constexpr std::size_t longestCommand = 60;
/// So many errors may be caught before one is raised once more.
constexpr std::size_t mostNotes = 16;

}  // namespace

ErrorNotes::ErrorNotes(Tcl_Interp* interp, std::function<void(const std::vector<TclFrame>&)> raised)
    : m_interp(interp), m_raised(std::move(raised)) {
    listen();
}

ErrorNotes::~ErrorNotes() {
    forget();
}

void ErrorNotes::forget() {
    Tcl_UntraceVar2(m_interp, variable, nullptr, traced, variableChanged, this);
}

void ErrorNotes::renew() {
    forget();
    listen();
}

void ErrorNotes::listen() {
    Tcl_TraceVar2(m_interp, variable, nullptr, traced, variableChanged, this);
}

char* ErrorNotes::variableChanged(void* self, Tcl_Interp* interp, const char*, const char*,
                                  int flags) {
    auto* const notes = static_cast<ErrorNotes*>(self);
    if ((flags & TCL_TRACE_UNSETS) == 0)
        notes->notice();
    else if ((flags & TCL_TRACE_DESTROYED) != 0 && !Tcl_InterpDeleted(interp))
        notes->listen();
    return nullptr;
}

void ErrorNotes::notice() {
    Tcl_Obj* const written = Tcl_GetVar2Ex(m_interp, variable, nullptr, TCL_GLOBAL_ONLY);
    // Tcl writes it once more when it forgets the error.
    if (written && written == m_last.get())
        return;
    m_last = TclRef(written);
    const std::string_view errorInfo = written ? bytesOf(written) : std::string_view();
    const std::size_t failed = errorInfo.find(failedMark);
    const bool isPassedOn = errorInfo.find(calledMark) != std::string_view::npos;
    if (failed == std::string_view::npos && !isPassedOn)
        return;
    // More is known of one that goes on its way.
    const Note* const known = find(errorInfo);
    if (known && (isPassedOn || known->errorInfo.size() < errorInfo.size()))
        return;
    // The same error may have been raised elsewhere before.
    std::erase_if(m_notes, [&](const Note& each) { return each.errorInfo == errorInfo; });
    std::vector<TclFrame> frames;
    if (isPassedOn) {
        frames = runningFrames(m_interp);
    } else {
        const std::size_t begin = errorInfo.find(commandMark, failed);
        std::string_view command =
            begin == std::string_view::npos ? "" : errorInfo.substr(begin + commandMark.size());
        command = command.substr(0, command.find('\n')).substr(0, longestCommand);
        if (!command.empty() && command.size() < longestCommand && command.back() == '"')
            command.remove_suffix(1);
        frames = framesAtError(m_interp, command);
    }
    m_notes.push_front({std::string(errorInfo), frames});
    if (m_notes.size() > mostNotes)
        m_notes.pop_back();
    m_raised(frames);
}

const ErrorNotes::Note* ErrorNotes::find(std::string_view errorInfo) const {
    const auto note = std::find_if(m_notes.begin(), m_notes.end(), [&](const Note& each) {
        return errorInfo.starts_with(each.errorInfo);
    });
    return note == m_notes.end() ? nullptr : &*note;
}

std::vector<TclFrame> ErrorNotes::framesOf(std::string_view errorInfo) const {
    const Note* const note = find(errorInfo);
    return note ? note->frames : std::vector<TclFrame>();
}

}  // namespace Tamrix::TclPlugin
