#include "agent/core/windowstack.h"

#include <QGuiApplication>
#include <algorithm>

namespace Tamrix::Agent {

namespace {

bool takesInput(const QWindow* window) {
    return (window->flags() & Qt::WindowTransparentForInput) == 0 &&
           !window->property(internalWindowProperty).isValid();
}

/// How high a window is for its own sake.
int layer(const QWindow* window) {
    switch (window->type()) {
        case Qt::ToolTip:
            return 4;
        case Qt::Popup:
            return 3;
        case Qt::SplashScreen:
            return 2;
        default:
            return (window->flags() & Qt::WindowStaysOnTopHint) != 0 ? 2 : 0;
    }
}

bool isOwnedBy(const QWindow* window, const QWindow* owner) {
    for (const QWindow* next = window->transientParent(); next != nullptr;
         next = next->transientParent())
        if (next == owner || topLevelOf(const_cast<QWindow*>(next)) == owner)
            return true;
    return false;
}

int ownerDepth(const QWindow* window) {
    int depth = 0;
    // Owners in a circle are no fault of ours.
    for (const QWindow* next = window->transientParent(); next != nullptr && depth < 100;
         next = next->transientParent())
        ++depth;
    return depth;
}

}  // namespace

QVector<QWindow*> windowStack() {
    QVector<QWindow*> windows;
    const QWindowList all = QGuiApplication::topLevelWindows();
    for (QWindow* window : all)
        if (window->isVisible() && window->type() != Qt::Desktop)
            windows.append(window);
    const QWindow* const active = topLevelOf(QGuiApplication::focusWindow());
    const auto rank = [active](const QWindow* window) {
        const bool isActive = window == active || (active != nullptr && isOwnedBy(window, active));
        return std::make_tuple(layer(window), isActive, ownerDepth(window));
    };
    std::stable_sort(windows.begin(), windows.end(),
                     [&rank](const QWindow* a, const QWindow* b) { return rank(a) < rank(b); });
    return windows;
}

QWindow* windowAt(const QPoint& position) {
    const QVector<QWindow*> windows = windowStack();
    for (auto it = windows.rbegin(); it != windows.rend(); ++it) {
        QWindow* window = *it;
        if (!window->geometry().contains(position) || !takesInput(window))
            continue;
        for (bool isDeeper = true; isDeeper;) {
            isDeeper = false;
            const QPoint local = window->mapFromGlobal(position);
            const QObjectList children = window->children();
            for (auto child = children.rbegin(); child != children.rend(); ++child) {
                auto* const inner = qobject_cast<QWindow*>(*child);
                if (inner != nullptr && inner->isVisible() && takesInput(inner) &&
                    inner->geometry().contains(local)) {
                    window = inner;
                    isDeeper = true;
                    break;
                }
            }
        }
        return window;
    }
    return nullptr;
}

QWindow* windowOver(QWindow* window, const QPoint& position) {
    QWindow* const own = topLevelOf(window);
    const QVector<QWindow*> windows = windowStack();
    for (auto it = windows.rbegin(); it != windows.rend() && *it != own; ++it) {
        QWindow* const other = *it;
        const bool staysAbove = layer(other) > layer(own) || isOwnedBy(other, own);
        if (staysAbove && other->type() != Qt::ToolTip && takesInput(other) &&
            other->frameGeometry().contains(position))
            return other;
    }
    return nullptr;
}

QWindow* topLevelOf(QWindow* window) {
    while (window != nullptr && window->parent() != nullptr)
        window = window->parent();
    return window;
}

}  // namespace Tamrix::Agent
