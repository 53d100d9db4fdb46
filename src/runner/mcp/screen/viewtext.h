#pragma once

#include <QString>

#include "runner/mcp/screen/view.h"

namespace Tamrix::Mcp {

/// e7 QPushButton "Save" #saveButton [disabled]
/// e8 QLineEdit "Name" #nameEdit = "Anna" [focused]
QString objectLine(const ViewObject& object);

/// "[checked] [disabled]", empty for nothing special.
QString stateText(const ViewObject& object);

/// A text on one line and in quotes; of a long one the beginning.
QString quotedText(const QString& text);

/// What of a view is wanted.
struct ViewPart {
    /// Nothing but this object and what is below it; 0 for all.
    int root = 0;
    /// Nothing but what has this in its type, its name or a text; empty for all.
    QString find;
    /// How many levels below the root, or below the top.
    int depth = -1;
};

/// The longest text about a view, in bytes of UTF-8.
inline constexpr int longestViewText = 8000;

/// An object a line, those below it indented. What does not fit into longestViewText is counted,
/// with how to ask for less. `part.root` is in the view.
QString viewText(const View& view, const ViewPart& part);

}  // namespace Tamrix::Mcp
