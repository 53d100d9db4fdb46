#pragma once

#include <QString>

namespace Tamrix::TclPlugin {

/// The text as one word of a command, as people write it: as it is, in braces, or in quotes where
/// braces can't hold it. It may stand in a body, where the braces of all words count.
QString tclWord(const QString& text);

}  // namespace Tamrix::TclPlugin
