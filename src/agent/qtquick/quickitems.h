#pragma once

#include <QString>

#include "agent/core/itempath.h"

class QObject;
class QQuickItem;

namespace Tamrix::Agent {

/// The item of a Qt Quick view, box, bar or menu: what shows the text, or what stands in a row. A
/// view makes its items when they are scrolled to: one that is not made yet is looked for in the
/// view's model, and shown. Null for none.
QQuickItem* findQuickItem(QQuickItem* holder, const ItemPath& path, int row);

/// What a person reads on the item: its text or title, without mnemonic markers where it draws
/// none.
QString quickTextOf(const QObject* item);

}  // namespace Tamrix::Agent
