#pragma once

#include <QRect>

#include "agent/core/contract/act.h"

class QAbstractItemView;
class QModelIndex;
class QWidget;

namespace Tamrix::Agent {

/// The part of a widget in which a click acts on it, on the screen: mark and label of a check box,
/// the title's mark of a group box that can be checked. Null for all of it.
QRect actingPart(const QWidget* widget, ClickPurpose purpose);
/// The mark of a checkable item that is shown at these bounds.
QRect markOfItem(const QAbstractItemView* view, const QModelIndex& index, const QRect& bounds);

}  // namespace Tamrix::Agent
