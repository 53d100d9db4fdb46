#pragma once

class QWidget;

namespace Tamrix::Agent {

/// What keeps a widget from clicks and typing because it is open: the field or box whose list it
/// is, or a menu or other popup itself. Null for none, and for the parts of the popup, its field
/// or box, and the menus and bars that work together with an open menu.
QWidget* openListOver(const QWidget* widget);

/// The field or box that an open list belongs to; null for other popups.
QWidget* ownerOfList(QWidget* popup);

/// Closes the list of completions of a field, now and when it opens late: the field is filled.
/// Until keepListOf() is called for it.
void closeListOf(QWidget* field);
void keepListOf(const QWidget* field);

}  // namespace Tamrix::Agent
