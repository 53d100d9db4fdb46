#pragma once

#include <QImage>
#include <QString>

#include "base/export.h"

namespace Tamrix {

class InternalDebugger;

// What searches on the screen and the debugger have to do with each other.

/// Lets the front end of the debugger, if there is one, get at the state of a search for as long as
/// this object lives.
class TAMRIX_EXPORT SearchRegistration {
public:
    /// `search` outlives this object.
    explicit SearchRegistration(InternalDebugger* search);
    /// Puts back what was there before: code that the debugger evaluates may search, too.
    ~SearchRegistration();
    SearchRegistration(const SearchRegistration&) = delete;
    SearchRegistration& operator=(const SearchRegistration&) = delete;

private:
    InternalDebugger* m_before;
};

// A search has found nothing. Where test and front end of the debugger want that, the script stops
// for as long as the screenshot, which the front end gets as a file, is looked at. True when the
// search is to be made again, false when the failure takes its course.

/// `target` is that of Debugger::stopWithSearchImage().
TAMRIX_EXPORT bool stopForMissingImage(const QString& name, int target, const QImage& screenshot);
TAMRIX_EXPORT bool stopForMissingText(const QImage& screenshot);

}  // namespace Tamrix
