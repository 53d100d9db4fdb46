#include "agent/pictures/highlight.h"

#include <QPainter>
#include <QRasterWindow>

#include "agent/core/toolkit.h"
#include "agent/core/windowstack.h"

namespace Tamrix::Agent {

namespace {

constexpr int frameWidth = 3;
constexpr int followInterval = 50;

class FrameWindow : public QRasterWindow {
public:
    FrameWindow() {
        // A window of this type keeps no program running and stays above the others.
        setFlags(Qt::ToolTip | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint |
                 Qt::WindowTransparentForInput | Qt::WindowDoesNotAcceptFocus |
                 Qt::BypassWindowManagerHint);
        setProperty(internalWindowProperty, true);
    }

    void frame(const QRect& bounds) {
        const QRect outer = bounds.adjusted(-frameWidth, -frameWidth, frameWidth, frameWidth);
        if (outer == geometry())
            return;
        setGeometry(outer);
        const QRect all(QPoint(0, 0), outer.size());
        setMask(QRegion(all) -
                QRegion(all.adjusted(frameWidth, frameWidth, -frameWidth, -frameWidth)));
    }

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        painter.fillRect(QRect(QPoint(0, 0), size()), Qt::red);
    }
};

}  // namespace

Highlight::Highlight(QObject* parent) : QObject(parent) {
    m_followTimer.setInterval(followInterval);
    m_endTimer.setSingleShot(true);
    connect(&m_followTimer, &QTimer::timeout, this, [this] { follow(); });
    connect(&m_endTimer, &QTimer::timeout, this, [this] { stop(); });
}

Highlight::~Highlight() = default;

void Highlight::start(const Element& element, int milliseconds) {
    stop();
    m_element = ElementRef(element);
    m_window = std::make_unique<FrameWindow>();
    m_window->setTransientParent(topLevelOf(element.toolkit->nativeWindow(element)));
    follow();
    m_followTimer.start();
    endAfter(milliseconds);
}

void Highlight::start(const QRect& place, int milliseconds) {
    stop();
    auto window = std::make_unique<FrameWindow>();
    window->frame(place);
    window->show();
    m_window = std::move(window);
    endAfter(milliseconds);
}

void Highlight::endAfter(int milliseconds) {
    if (milliseconds >= 0)
        m_endTimer.start(milliseconds);
}

void Highlight::stop() {
    m_followTimer.stop();
    m_endTimer.stop();
    m_window.reset();
}

void Highlight::follow() {
    const Element element = m_element.get();
    if (element.isNull()) {
        stop();
        return;
    }
    const QRect bounds =
        element.toolkit->isVisible(element) ? element.toolkit->visibleBounds(element) : QRect();
    if (bounds.isEmpty()) {
        m_window->hide();
        return;
    }
    static_cast<FrameWindow*>(m_window.get())->frame(bounds);
    m_window->show();
}

}  // namespace Tamrix::Agent
