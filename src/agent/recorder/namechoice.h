#pragma once

#include "agent/core/element.h"
#include "wire/messages.h"

namespace Tamrix::Agent {

class Survey;

/// The name by which a script should call an element: one that the look-up itself, asked now, says
/// to find it and nothing else. What lasts goes first: the object's name unless it looks generated,
/// the text, the label beside it, the tool tip, a cell's row and column; then the nearest container
/// with a name, the window, and at last the occurrence. Texts that look as if they change, with
/// numbers or times in them, come late. Without criteria when no name finds the element.
/// The names that are tried share the survey.
Wire::Query chooseName(const Element& element, Survey* survey);

/// Whether a text of an element is likely to be another one in the next run.
bool mayChange(const Element& element, const QString& text);

/// Whether nobody has chosen this name of an object: "qt_scrollarea_viewport", "0x55d0c8",
/// "widget_8731".
bool looksGenerated(const QString& objectName);
/// Whether a text is the path of a file, which is elsewhere for another user or on another day.
bool looksLikePath(const QString& text);
/// Whether a text tells a time of the day or a date.
bool looksLikeMoment(const QString& text);
/// Whether a text is a number, whatever signs stand around it.
bool looksLikeNumber(const QString& text);
/// Whether a text tells a number, time or date that may be another one in the next run.
bool looksChanging(const QString& text);

}  // namespace Tamrix::Agent
