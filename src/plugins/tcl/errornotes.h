#pragma once

#include <deque>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "plugins/tcl/tclinternals.h"

namespace Tamrix::TclPlugin {

/// Where errors were raised. Tcl tells of an error that it has passed all commands only in words;
/// but it writes them to the variable `errorInfo` as it goes, and this listens. An error that is
/// raised once more with its `-errorinfo` is still the same one.
class ErrorNotes {
public:
    /// `raised` is told of each new error, before anything has caught it. It may run code.
    ErrorNotes(Tcl_Interp* interp, std::function<void(const std::vector<TclFrame>&)> raised);
    /// Before the interpreter of Tcl goes.
    ~ErrorNotes();
    ErrorNotes(const ErrorNotes&) = delete;
    ErrorNotes& operator=(const ErrorNotes&) = delete;

    /// Makes sure to be told before code runs: Tcl writes only for who has asked behind it, and
    /// asks anew itself at times.
    void renew();

    /// The frames in which the error with this `-errorinfo` was raised, the innermost first; none
    /// when it was not seen.
    std::vector<TclFrame> framesOf(std::string_view errorInfo) const;

private:
    struct Note {
        std::string errorInfo;
        std::vector<TclFrame> frames;
    };
    static char* variableChanged(void* self, Tcl_Interp* interp, const char* name,
                                 const char* element, int flags);
    void listen();
    void forget();
    void notice();
    const Note* find(std::string_view errorInfo) const;

    Tcl_Interp* m_interp;
    std::function<void(const std::vector<TclFrame>&)> m_raised;
    /// What was written last.
    TclRef m_last;
    /// The last ones, the newest in front.
    std::deque<Note> m_notes;
};

}  // namespace Tamrix::TclPlugin
