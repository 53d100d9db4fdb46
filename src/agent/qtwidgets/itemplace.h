#pragma once

#include <QRect>

#include "agent/core/element.h"

class QWidget;

namespace Tamrix::Agent {

/// The widget in which an item of ItemToolkit is drawn, and where; null while nothing draws it.
struct ItemPlace {
    QWidget* widget = nullptr;
    QRect rect;
};

ItemPlace placeOfItem(const Element& item);

}  // namespace Tamrix::Agent
