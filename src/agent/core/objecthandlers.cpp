#include <QRect>

#include "agent/core/handlers.h"
#include "agent/core/listing.h"
#include "agent/core/lookup.h"
#include "agent/core/nameindex.h"
#include "agent/core/readiness.h"
#include "agent/core/session.h"
#include "agent/core/snapshot.h"
#include "agent/core/toolkit.h"
#include "agent/core/vocabulary.h"
#include "agent/core/walk.h"

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
    const Aim aim = wanted == Wire::Wanted::Reach ? Aim::withoutPoint() : Aim();
    lookIfReady(element, aim, [result, responder](const Readiness& readiness) mutable {
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
    QString reason;
    const Element item = view.toolkit->item(view, ItemPath::ofText(request.text), request.row,
                                            request.column, &reason);
    if (!item.isNull()) {
        answerFound(item, request.wantReady ? Wire::Wanted::Readiness : Wire::Wanted::Existence,
                    responder);
        return;
    }
    Wire::LookUpResult result;
    result.obstacle = reason;
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
    const Element element =
        request.handle == 0 ? Element() : Session::self()->findOrFail(request.handle, responder);
    if (request.handle != 0 && element.isNull())
        return;
    Wire::Value value;
    value.value = takeSnapshot(element, request.withImages);
    responder->replyBody(value);
}

void listObjects(const QByteArray& /*body*/, const ResponderPtr& responder) {
    responder->replyBody(makeListing());
}

}  // namespace

void appendShownChildren(const Element& element, bool withPlainObjects,
                         QVector<Element>* elements) {
    QVector<Element> children;
    element.toolkit->children(element, true, &children);
    for (const Element& child : children) {
        if (child.toolkit->isInternal(child))
            appendShownChildren(child, withPlainObjects, elements);
        else if (withPlainObjects || !child.toolkit->isPlain(child))
            elements->append(child);
    }
}

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
}

}  // namespace Tamrix::Agent
