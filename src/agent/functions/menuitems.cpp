// selectItem() through menus: from a bar or menu to the entry that the first step of the way means,
// through the menu behind it to the next one, and a click on the last.

#include <QPointer>

#include "agent/core/toolkit.h"
#include "agent/functions/functiontable.h"
#include "agent/input/activation.h"
#include "agent/input/mousesteps.h"
#include "agent/readiness/readiness.h"

namespace Tamrix::Agent {

namespace {

/// A menu or bar on the way, and what is left of the way.
struct MenuWay {
    Call call;
    std::shared_ptr<const Menu> menu;
    ItemPath path;
};

/// The entry of the menu that is the next step of the way, and the way behind it.
struct Step {
    MenuEntry entry;
    ItemPath::Fit fit;
};

std::optional<Step> nextStep(const MenuWay& way) {
    std::optional<Step> step;
    const QVector<MenuEntry> entries = way.menu->entries();
    for (const MenuEntry& entry : entries) {
        ItemPath::Fit fit = way.path.fit(entry.text);
        if (entry.isShown && !fit.isNone() && (!step || fit.rank < step->fit.rank))
            step = Step{entry, std::move(fit)};
    }
    return step;
}

void failNotFound(const MenuWay& way) {
    const Outcome<Element> menu = way.menu->element();
    if (!menu) {
        way.call.responder()->fail(menu.error().kind, menu.error().text);
        return;
    }
    QStringList texts;
    bool isHidden = false;
    const QVector<MenuEntry> entries = way.menu->entries();
    for (const MenuEntry& entry : entries) {
        texts.append(entry.text);
        isHidden = isHidden || (!entry.isShown && !way.path.fit(entry.text).isNone());
    }
    // The entries of a hidden bar are there, and hidden with it.
    const QString obstacle = isHidden ? obstacleOf(*menu) : QString();
    if (!obstacle.isEmpty()) {
        failNotReady(way.call, ElementRef(*menu), obstacle);
        return;
    }
    way.call.responder()->fail(
        FailureKind::NotFound,
        QStringLiteral("%1 has no item '%2'; it has: %3")
            .arg(way.menu->label(), way.path.text(),
                 texts.isEmpty() ? QStringLiteral("nothing") : texts.join(QStringLiteral(", "))));
}

void addWay(StepQueue* queue, const MenuWay& way);

/// Adds the click on the entry at the point of `target`, and what comes after it.
void addEntry(StepQueue* queue, const MenuWay& way, const ElementRef& target, const QPoint& point) {
    const std::optional<Step> step = nextStep(way);
    if (!step) {
        failNotFound(way);
        return;
    }
    const ResponderPtr& responder = way.call.responder();
    const QString name = step->entry.text;
    if (!step->entry.isEnabled) {
        responder->fail(
            FailureKind::NotReady,
            QStringLiteral("the menu item '%1' is not ready: it is disabled").arg(name));
        return;
    }
    if (step->fit.rest.isNull()) {
        addAnswer(queue, way.call);
        addClick(queue, target, point);
        return;
    }
    const std::shared_ptr<const Menu> below = step->entry.below;
    if (!below) {
        responder->fail(FailureKind::NotFound,
                        QStringLiteral("the menu item '%1' has no items").arg(name));
        return;
    }
    // A click on an open menu's title would close it.
    if (below->state() == Menu::State::Closed)
        addClick(queue, target, point);
    queue->waitFor([below] { return below->state() == Menu::State::Open; }, way.call.timeout(),
                   [responder, name] {
                       responder->fail(FailureKind::NotReady,
                                       QStringLiteral("the menu item '%1' is not ready: its menu "
                                                      "does not open")
                                           .arg(name));
                   });
    queue->add([queue, next = MenuWay{way.call, below, step->fit.rest}] { addWay(queue, next); });
}

/// Adds the steps for the first entry of the way.
void addWay(StepQueue* queue, const MenuWay& way) {
    // Menus are often filled when they open.
    queue->waitFor([way] { return nextStep(way).has_value(); }, way.call.timeout(),
                   [way] { failNotFound(way); });
    queue->add([queue, way] {
        const std::optional<Step> step = nextStep(way);
        if (!step) {
            failNotFound(way);
            return;
        }
        queue->hold();
        const QPointer<StepQueue> guard(queue);
        const ElementRef target(step->entry.target);
        waitUntilReady(step->entry.target, Aim{step->entry.offset}, way.call.timeout(),
                       [guard, way, target](const Readiness& readiness) {
                           if (guard == nullptr)
                               return;
                           guard->resume();
                           if (readiness.isReady)
                               addEntry(guard, way, target, readiness.point);
                           else
                               failNotReady(way.call, target, readiness.obstacle);
                       });
    });
}

}  // namespace

void selectInMenu(const Call& call, const Element& element, const std::shared_ptr<const Menu>& menu,
                  const ItemPath& path) {
    const MenuWay way{call, menu, path};
    if (path.text().isEmpty()) {
        // No entry has it, and none will.
        failNotFound(way);
        call.responder()->finish();
        return;
    }
    auto* const queue = StepQueue::create();
    addActivation(queue, ElementRef(element));
    addWay(queue, way);
    run(queue, call);
}

}  // namespace Tamrix::Agent
