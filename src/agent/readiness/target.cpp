#include "agent/readiness/target.h"

#include <QElapsedTimer>
#include <QTimer>
#include <algorithm>

#include "agent/core/elementref.h"
#include "agent/core/guarded.h"
#include "agent/core/itempath.h"
#include "agent/core/lookup.h"
#include "agent/core/toolkit.h"
#include "agent/readiness/readiness.h"

namespace Tamrix::Agent {

namespace {

constexpr int pollInterval = 50;

/// A target that is waited for.
struct Search {
    Wire::Target target;
    ResponderPtr responder;
    std::function<void(const Element&)> act;
    QElapsedTimer clock;
};

using SearchPtr = std::shared_ptr<Search>;

void look(const SearchPtr& search);

/// The target is not there, or there is an obstacle: looks again later, or gives up.
void lookLater(const SearchPtr& search, const Element& element, const QString& obstacle) {
    const Wire::Target& target = search->target;
    const qint64 left = target.timeout - search->clock.elapsed();
    if (left > 0 && search->responder->isWanted()) {
        QTimer::singleShot(static_cast<int>(std::min<qint64>(left, pollInterval)), Session::self(),
                           [search] { guarded(search->responder, [&] { look(search); }); });
        return;
    }
    Wire::Missed missed;
    missed.object = Session::self()->info(element);
    missed.obstacle = obstacle;
    if (element.isNull() && obstacle.isEmpty() && target.wantNearMisses)
        missed.nearMisses = ObjectFinder(target.query).nearMisses();
    search->responder->miss(missed);
}

/// The object of the target, or that an item is looked for in; a failure when no later look can
/// find it.
Outcome<Element> objectOf(const Wire::Target& target) {
    if (target.handle != 0)
        return Session::self()->find(target.handle);
    ObjectFinder finder(target.query);
    if (!finder.errorText().isEmpty())
        return fail(FailureKind::BadArgument, finder.errorText());
    return finder.find();
}

void look(const SearchPtr& search) {
    const Wire::Target& target = search->target;
    // 1. The object.
    const Outcome<Element> object = objectOf(target);
    if (!object) {
        search->responder->fail(object.error().kind, object.error().text);
        return;
    }
    Element element = *object;
    // 2. The item in it, if one is meant.
    if (!element.isNull() && target.isItem) {
        const Outcome<Element> item = element.toolkit->item(
            element, ItemPath::ofText(target.item.text), target.item.row, target.item.column);
        if (!item) {
            lookLater(search, Element(), item.error().text);
            return;
        }
        element = *item;
    }
    if (element.isNull()) {
        lookLater(search, element, QString());
        return;
    }
    // 3. Whether it is as wanted.
    if (target.wanted == Wire::Wanted::Existence) {
        search->act(element);
        return;
    }
    lookIfReady(element, Aim::of(target.wanted),
                [search, ref = ElementRef(element)](const Readiness& readiness) {
                    const Element same = ref.get();
                    guarded(search->responder, [&] {
                        if (readiness.isReady && !same.isNull())
                            search->act(same);
                        else
                            lookLater(search, same, readiness.obstacle);
                    });
                });
}

}  // namespace

void whenThere(const Wire::Target& target, const ResponderPtr& responder,
               const std::function<void(const Element& element)>& act) {
    const auto search = std::make_shared<Search>(Search{target, responder, act, {}});
    search->clock.start();
    look(search);
}

}  // namespace Tamrix::Agent
