#include "vision/search/frame.h"

#include <QPainter>

namespace Tamrix::Vision {

void drawFrame(QImage* image, const QRect& place, Qt::GlobalColor colour) {
    QPainter painter(image);
    const QRect frame = place.adjusted(-2, -2, 1, 1);
    painter.setPen(Qt::white);
    painter.drawRect(frame.adjusted(-1, -1, 1, 1));
    painter.setPen(colour);
    painter.drawRect(frame);
    painter.drawRect(frame.adjusted(1, 1, -1, -1));
}

}  // namespace Tamrix::Vision
