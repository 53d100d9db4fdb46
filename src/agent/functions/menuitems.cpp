#include <QAction>
#include <QMenu>
#include <QMenuBar>
#include <QPointer>

#include "agent/core/itempath.h"
#include "agent/core/readiness.h"
#include "agent/functions/functiontable.h"
#include "agent/input/activation.h"
#include "agent/input/mousesteps.h"

namespace Tamrix::Agent {

namespace {

/// A menu or menu bar on the way through the menus, and what is left of the way.
struct MenuWay {
    Call call;
    ElementRef menu;
    QStringList parts;

    QWidget* widget() const { return qobject_cast<QWidget*>(menu.get().object); }
};

/// As a person reads it: without mnemonic markers and the shortcut behind a tab.
QString plainText(const QAction* action) {
    QString text = action->text().section(u'\t', 0, 0);
    for (int i = 0; i < text.size(); ++i)
        // Of "&&" the second one stays.
        if (text.at(i) == u'&')
            text.remove(i, 1);
    return text;
}

QAction* actionOf(const MenuWay& way) {
    const QWidget* const widget = way.widget();
    if (widget == nullptr)
        return nullptr;
    const QString wanted = unescapeItemText(way.parts.first());
    const QList<QAction*> actions = widget->actions();
    for (QAction* action : actions)
        if (action->isVisible() && !action->isSeparator() && plainText(action) == wanted)
            return action;
    return nullptr;
}

QRect placeOf(const QWidget* menu, QAction* action) {
    if (const auto* const bar = qobject_cast<const QMenuBar*>(menu))
        return bar->actionGeometry(action);
    return qobject_cast<const QMenu*>(menu)->actionGeometry(action);
}

void failNotFound(const MenuWay& way) {
    if (failIfGone(way.call, way.menu))
        return;
    QStringList texts;
    if (const QWidget* const widget = way.widget()) {
        const QList<QAction*> actions = widget->actions();
        for (const QAction* action : actions)
            if (action->isVisible() && !action->isSeparator())
                texts.append(plainText(action));
    }
    way.call.responder()->fail(
        Wire::FailureCode::NotFound,
        QStringLiteral("%1 has no item '%2'; it has: %3")
            .arg(Session::self()->describe(way.menu.get()), unescapeItemText(way.parts.first()),
                 texts.isEmpty() ? QStringLiteral("nothing") : texts.join(QStringLiteral(", "))));
}

void addWay(StepQueue* queue, const MenuWay& way);

/// Adds the click on the item at the point, and what comes after it.
void addItem(StepQueue* queue, const MenuWay& way, const QPoint& point) {
    QAction* const action = actionOf(way);
    if (action == nullptr) {
        failNotFound(way);
        return;
    }
    const QString name = plainText(action);
    if (!action->isEnabled()) {
        way.call.responder()->fail(
            Wire::FailureCode::NotReady,
            QStringLiteral("the menu item '%1' is not ready: it is disabled").arg(name));
        return;
    }
    if (way.parts.size() == 1) {
        addAnswer(queue, way.call);
        addClick(queue, way.menu, point);
        return;
    }
    const QPointer<QMenu> inner = action->menu();
    if (inner == nullptr) {
        way.call.responder()->fail(Wire::FailureCode::NotFound,
                                   QStringLiteral("the menu item '%1' has no items").arg(name));
        return;
    }
    // A click on an open menu's title would close it.
    if (!inner->isVisible())
        addClick(queue, way.menu, point);
    const auto isOpen = [inner] { return inner != nullptr && inner->isVisible(); };
    queue->waitFor(isOpen, way.call.timeout(), [way, name] {
        way.call.responder()->fail(
            Wire::FailureCode::NotReady,
            QStringLiteral("the menu item '%1' is not ready: its menu does not open").arg(name));
    });
    queue->add([queue, way, inner] {
        MenuWay next = way;
        next.menu = ElementRef(Session::self()->element(inner));
        next.parts.removeFirst();
        addWay(queue, next);
    });
}

/// Adds the steps for the first item of the way.
void addWay(StepQueue* queue, const MenuWay& way) {
    // Menus are often filled when they open.
    queue->waitFor([way] { return actionOf(way) != nullptr; }, way.call.timeout(),
                   [way] { failNotFound(way); });
    queue->add([queue, way] {
        const Element menu = way.menu.get();
        QAction* const action = actionOf(way);
        if (menu.isNull() || action == nullptr) {
            failNotFound(way);
            return;
        }
        const QPoint offset = placeOf(way.widget(), action).center();
        queue->hold();
        const QPointer<StepQueue> guard(queue);
        waitUntilReady(menu, &offset, way.call.timeout(), [guard, way](const Readiness& readiness) {
            if (guard == nullptr)
                return;
            guard->resume();
            if (readiness.isReady)
                addItem(guard, way, readiness.point);
            else
                way.call.responder()->fail(Wire::FailureCode::NotReady,
                                           notReadyText(way.menu, readiness.obstacle));
        });
    });
}

}  // namespace

bool selectMenuItem(const Call& call, const Element& element, const QString& text) {
    const bool isMenu = !element.isItem() && (qobject_cast<QMenu*>(element.object) != nullptr ||
                                              qobject_cast<QMenuBar*>(element.object) != nullptr);
    if (!isMenu)
        return false;
    auto* const queue = StepQueue::create();
    addActivation(queue, ElementRef(element));
    addWay(queue, MenuWay{call, ElementRef(element), splitItemPath(text)});
    run(queue, call);
    return true;
}

}  // namespace Tamrix::Agent
