#include "agent/core/objecttoolkit.h"

#include <QGuiApplication>
#include <QPixmap>
#include <QScreen>
#include <QWindow>

#include "agent/core/session.h"
#include "agent/core/windowstack.h"

namespace Tamrix::Agent {

namespace {

QWindow* windowOf(const Element& element) {
    return qobject_cast<QWindow*>(element.object);
}

QWindow* ownerOf(QWindow* window) {
    QWindow* const parent = window->parent();
    return parent ? parent : window->transientParent();
}

/// Whether `below` is `window` or hangs from it as child or transient window.
bool isSameOrBelow(QWindow* below, const QWindow* window) {
    for (QWindow* each = below; each; each = ownerOf(each)) {
        if (each == window)
            return true;
    }
    return false;
}

}  // namespace

QWindow* blockingWindow(QWindow* window) {
    if (!window || window->type() == Qt::Popup || window->type() == Qt::ToolTip)
        return nullptr;
    // The most recent modal window first: what hangs from it is not blocked by older ones.
    QWindowList modalWindows;
    for (QWindow* each : QGuiApplication::topLevelWindows()) {
        if (each->isVisible() && each->modality() != Qt::NonModal)
            modalWindows.prepend(each);
    }
    QWindow* const recent = QGuiApplication::modalWindow();
    if (modalWindows.removeOne(recent))
        modalWindows.prepend(recent);
    for (QWindow* modal : modalWindows) {
        if (isSameOrBelow(window, modal))
            return nullptr;
        if (modal->modality() == Qt::ApplicationModal)
            return modal;
        for (QWindow* owner = ownerOf(modal); owner; owner = ownerOf(owner)) {
            if (isSameOrBelow(window, owner))
                return modal;
        }
    }
    return nullptr;
}

bool ObjectToolkit::knows(const QObject* /*object*/) const {
    return true;
}

void ObjectToolkit::topLevels(QVector<Element>* elements) const {
    elements->append(element(QCoreApplication::instance()));
    for (QWindow* window : QGuiApplication::topLevelWindows()) {
        const Element top = Session::self()->element(window);
        if (top.toolkit == this)
            elements->append(top);
    }
}

void ObjectToolkit::children(const Element& element, bool /*withItems*/,
                             QVector<Element>* elements) const {
    for (QObject* child : element.object->children()) {
        // Windows are top-level elements wherever they hang.
        if (child->isWidgetType() || child->isWindowType())
            continue;
        // An action of a group is at home in a menu.
        const Element below = Session::self()->element(child);
        if (below.toolkit == this || below.toolkit->parent(below) == element)
            elements->append(below);
    }
}

Element ObjectToolkit::parent(const Element& element) const {
    if (element.object->isWindowType())
        return {};
    return Session::self()->element(element.object->parent());
}

Element ObjectToolkit::window(const Element& element) const {
    for (Element each = element; !each.isNull(); each = each.toolkit->parent(each)) {
        if (each.toolkit != this)
            return each.toolkit->window(each);
        if (each.object->isWindowType())
            return each;
    }
    return {};
}

QString ObjectToolkit::text(const Element& element) const {
    const QWindow* const window = windowOf(element);
    return window ? window->title() : QString();
}

bool ObjectToolkit::isVisible(const Element& element) const {
    const QWindow* const window = windowOf(element);
    return window && window->isVisible();
}

bool ObjectToolkit::isEnabled(const Element& /*element*/) const {
    return true;
}

bool ObjectToolkit::isInternal(const Element& element) const {
    const QByteArray name = element.object->metaObject()->className();
    return (name.startsWith('Q') && name.contains("Private")) ||
           element.object->property(internalWindowProperty).isValid();
}

bool ObjectToolkit::isPlain(const Element& element) const {
    return !element.object->isWindowType();
}

QRect ObjectToolkit::globalBounds(const Element& element) const {
    const QWindow* const window = windowOf(element);
    return window && window->isVisible() ? QRect(window->mapToGlobal(QPoint(0, 0)), window->size())
                                         : QRect();
}

QRect ObjectToolkit::visibleBounds(const Element& element) const {
    return globalBounds(element);
}

QWindow* ObjectToolkit::nativeWindow(const Element& element) const {
    return windowOf(element);
}

Element ObjectToolkit::elementAt(const Element& inWindowOf, const QPoint& globalPoint,
                                 Qt::MouseButton /*button*/) const {
    return globalBounds(inWindowOf).contains(globalPoint) ? inWindowOf : Element();
}

Element ObjectToolkit::blockedBy(const Element& element) const {
    return Session::self()->element(blockingWindow(windowOf(element)));
}

QImage ObjectToolkit::grab(const Element& element) const {
    QWindow* const window = windowOf(element);
    if (!window || !window->isVisible() || !window->screen())
        return {};
    return window->screen()->grabWindow(window->winId()).toImage();
}

}  // namespace Tamrix::Agent
