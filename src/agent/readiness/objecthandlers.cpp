#include "agent/readiness/objecthandlers.h"

#include <QRect>

#include "agent/core/listing.h"
#include "agent/core/lookup.h"
#include "agent/core/nameindex.h"
#include "agent/core/outline.h"
#include "agent/core/session.h"
#include "agent/core/snapshot.h"
#include "agent/core/toolkit.h"
#include "agent/core/vocabulary.h"
#include "agent/core/walk.h"
#include "agent/core/windowstack.h"
#include "agent/readiness/readiness.h"
#include "agent/readiness/target.h"
#include "base/boundedgeometry.h"

namespace Tamrix::Agent {

namespace {

/// Answers with what was found and, if wanted, whether it is ready.
void answerFound(const Element& element, Wire::Wanted wanted, const ResponderPtr& responder) {
    Wire::LookUpResult result;
    result.object = Session::self()->info(element);
    if (wanted == Wire::Wanted::Existence) {
        responder->replyBody(result);
        return;
    }
    lookIfReady(element, Aim::of(wanted), [result, responder](const Readiness& readiness) mutable {
        result.isReady = readiness.isReady;
        result.obstacle = readiness.obstacle;
        responder->replyBody(result);
    });
}

void lookUp(const Wire::LookUp& request, const ResponderPtr& responder) {
    if (request.handle != 0) {
        const Element element = Session::self()->findOrFail(request.handle, responder);
        if (!element.isNull())
            answerFound(element, request.wanted, responder);
        return;
    }
    ObjectFinder finder(request.query);
    if (!finder.errorText().isEmpty()) {
        responder->fail(FailureKind::BadArgument, finder.errorText());
        return;
    }
    const Element element = finder.find();
    if (!element.isNull()) {
        answerFound(element, request.wanted, responder);
        return;
    }
    Wire::LookUpResult result;
    if (request.wantNearMisses)
        result.nearMisses = finder.nearMisses();
    responder->replyBody(result);
}

void findItem(const Wire::FindItem& request, const ResponderPtr& responder) {
    const Element view = Session::self()->findOrFail(request.handle, responder);
    if (view.isNull())
        return;
    const Outcome<Element> item = view.toolkit->item(view, ItemPath::ofText(request.item.text),
                                                     request.item.row, request.item.column);
    if (item) {
        answerFound(*item, request.wantReady ? Wire::Wanted::Readiness : Wire::Wanted::Existence,
                    responder);
        return;
    }
    Wire::LookUpResult result;
    result.obstacle = item.error().text;
    responder->replyBody(result);
}

/// Answers with the object and what it has otherwise than expected.
void expect(const Wire::Expect& request, const ResponderPtr& responder) {
    Wire::LookUpResult result;
    Element element;
    if (request.handle != 0) {
        element = Session::self()->findOrFail(request.handle, responder);
        if (element.isNull())
            return;
    }
    ObjectFinder finder(request.query);
    ObjectFinder comparison(request.properties);
    for (const ObjectFinder* each : {&finder, &comparison}) {
        if (!each->errorText().isEmpty()) {
            responder->fail(FailureKind::BadArgument, each->errorText());
            return;
        }
    }
    if (element.isNull())
        element = finder.find();
    result.object = Session::self()->info(element);
    if (!element.isNull()) {
        if (const std::optional<NearMiss> miss = comparison.differences(element))
            result.nearMisses.append(*miss);
    } else if (request.wantNearMisses) {
        result.nearMisses = finder.nearMisses();
    }
    responder->replyBody(result);
}

Wire::ObjectInfoList infos(const QVector<Element>& elements) {
    Wire::ObjectInfoList list;
    for (const Element& element : elements)
        list.append(Session::self()->info(element));
    return list;
}

void listTopLevels(const QByteArray& /*body*/, const ResponderPtr& responder) {
    QVector<Element> shown;
    for (const Element& element : Session::self()->topLevels()) {
        if (!element.toolkit->isInternal(element))
            shown.append(element);
    }
    responder->replyBody(infos(shown));
}

void listChildren(const Wire::ObjectHandle& request, const ResponderPtr& responder) {
    const Element element = Session::self()->findOrFail(request.handle, responder);
    if (element.isNull())
        return;
    QVector<Element> children;
    appendShownChildren(element, true, &children);
    responder->replyBody(infos(children));
}

void tellParent(const Wire::ObjectHandle& request, const ResponderPtr& responder) {
    const Element element = Session::self()->findOrFail(request.handle, responder);
    if (!element.isNull())
        responder->replyBody(Session::self()->info(containerOf(element)));
}

void tellBounds(const Wire::ObjectHandle& request, const ResponderPtr& responder) {
    const Element element = Session::self()->findOrFail(request.handle, responder);
    if (element.isNull())
        return;
    Wire::Value value;
    value.value = element.toolkit->globalBounds(element);
    responder->replyBody(value);
}

void tellRealName(const Wire::ObjectHandle& request, const ResponderPtr& responder) {
    const Element element = Session::self()->findOrFail(request.handle, responder);
    if (element.isNull())
        return;
    Wire::Text name;
    name.text = NameIndex().realName(element);
    responder->replyBody(name);
}

void tellTree(const Wire::Snapshot& request, const ResponderPtr& responder) {
    const auto tell = [responder, withImages = request.withImages](const Element& element) {
        responder->replyBody(Wire::Value{takeSnapshot(element, withImages)});
    };
    if (request.target.isNothing())
        tell(Element());
    else
        whenThere(request.target, responder, tell);
}

void tellMatches(const Wire::Query& request, const ResponderPtr& responder) {
    ObjectFinder finder(request);
    if (!finder.errorText().isEmpty()) {
        responder->fail(FailureKind::BadArgument, finder.errorText());
        return;
    }
    const QVector<Element> elements = finder.findAll();
    Wire::MatchList list;
    list.count = elements.size();
    for (const Element& element : elements.mid(0, Wire::listedMatches))
        list.matches.append({Session::self()->info(element), element.toolkit->globalBounds(element),
                             element.toolkit->isVisible(element)});
    responder->replyBody(list);
}

void tellObjectAt(const Wire::ScreenPoint& request, const ResponderPtr& responder) {
    const QPoint point = boundedPoint(QPointF(request.x, request.y));
    const Element window = Session::self()->element(windowAt(point));
    const Element element =
        window.isNull() ? window : window.toolkit->elementAt(window, point, Qt::LeftButton);
    responder->replyBody(Session::self()->info(element));
}

void tellNames(const Wire::ObjectHandle& request, const ResponderPtr& responder) {
    const Element element = Session::self()->findOrFail(request.handle, responder);
    if (!element.isNull())
        responder->replyBody(Wire::TextList{NameIndex().names(element)});
}

void listObjects(const QByteArray& /*body*/, const ResponderPtr& responder) {
    responder->replyBody(makeListing());
}

void outlineObjects(const QByteArray& /*body*/, const ResponderPtr& responder) {
    responder->replyBody(makeOutline());
}

}  // namespace

void registerObjectHandlers(Session* session) {
    session->setBodyHandler<Wire::LookUp>(Wire::MessageType::LookUp, lookUp);
    session->setBodyHandler<Wire::Expect>(Wire::MessageType::Expect, expect);
    session->setBodyHandler<Wire::FindItem>(Wire::MessageType::FindItem, findItem);
    session->setHandler(Wire::MessageType::TopLevelObjects, listTopLevels);
    session->setBodyHandler<Wire::ObjectHandle>(Wire::MessageType::Children, listChildren);
    session->setBodyHandler<Wire::ObjectHandle>(Wire::MessageType::Parent, tellParent);
    session->setBodyHandler<Wire::ObjectHandle>(Wire::MessageType::GlobalBounds, tellBounds);
    session->setBodyHandler<Wire::ObjectHandle>(Wire::MessageType::RealName, tellRealName);
    session->setBodyHandler<Wire::Snapshot>(Wire::MessageType::Snapshot, tellTree);
    session->setHandler(Wire::MessageType::ListObjects, listObjects);
    session->setHandler(Wire::MessageType::OutlineObjects, outlineObjects);
    session->setBodyHandler<Wire::Query>(Wire::MessageType::FindMatches, tellMatches);
    session->setBodyHandler<Wire::ScreenPoint>(Wire::MessageType::ObjectAt, tellObjectAt);
    session->setBodyHandler<Wire::ObjectHandle>(Wire::MessageType::ListNames, tellNames);
}

}  // namespace Tamrix::Agent
