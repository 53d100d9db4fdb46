#pragma once

#include <QRect>
#include <QTimer>
#include <memory>

#include "agent/core/elementref.h"

class QWindow;

namespace Tamrix::Agent {

/// A frame drawn over an element of the application, which it follows, or a place. The frame is a
/// window of its own that takes neither input nor focus. It ends after its time, with stop(), or
/// when the element is gone; meanwhile it is hidden when the element is. GUI thread only.
class Highlight : public QObject {
public:
    explicit Highlight(QObject* parent);
    ~Highlight() override;

    /// Replaces the frame that is there. -1 ms: without end.
    void start(const Element& element, int milliseconds);
    /// The same around a place of the screen.
    void start(const QRect& place, int milliseconds);
    void stop();

private:
    void endAfter(int milliseconds);
    void follow();

    ElementRef m_element;
    std::unique_ptr<QWindow> m_window;
    QTimer m_followTimer;
    QTimer m_endTimer;
};

}  // namespace Tamrix::Agent
