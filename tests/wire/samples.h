#pragma once

#include <QColor>
#include <QDateTime>
#include <QPoint>
#include <QRect>
#include <QSize>
#include <vector>

#include "wire/messages.h"
#include "wire/observations.h"

namespace Tamrix::Wire {

/// Calls `use(type, body)` with a body of every message, each field different from its default.
template <typename Use>
void forEachSample(const Use& use) {
    const ObjectInfo object{0x1234567890, "QPushButton", "ok"};
    const QVariantList arguments{
        QVariant(),
        true,
        qint64(-5),
        2.5,
        QString("text"),
        QByteArray("bytes"),
        QDateTime({2024, 2, 29}, {12, 30}, Qt::UTC),
        QPoint(1, -2),
        QSize(3, 4),
        QRect(1, 2, 3, 4),
        QPointF(0.25, -2),
        QSizeF(3.5, 4),
        QRectF(1, 2, 0.5, 4),
        QColor(1, 2, 3, 4),
        QVariantMap{{"list", QVariantList{1, QVariantList{}}}, {"null", QVariant()}},
        QVariant::fromValue(object)};
    auto inner = std::make_shared<Query>();
    inner->criteria = {{"type", 1, "Q*", nullptr}};
    inner->occurrence = 3;
    const Query query{{{"text", 2, "^Save$", nullptr}, {"window", 0, {}, inner}}, 2};

    use(MessageType::Hello, Hello{magicNumber, protocolVersion, "token", 12, 11, "/bin/app",
                                  QStringList{"-a", "b"}, "5.15.8", "xcb", "Debian"});
    use(MessageType::Refusal, Text{"why"});
    const NearMiss miss{"QPushButton 'a'", 8, {{"text", "b", "a"}, {"size", "3", QString()}}};
    use(MessageType::Failure, Failure{FailureKind::NotReady, "it is disabled", {miss}});
    use(MessageType::Missed, Missed{object, "it is disabled", {miss}});
    use(MessageType::EventFired, EventFired{"callback", object});
    use(MessageType::LookUp, LookUp{7, query, Wanted::Reach, true});
    use(MessageType::FindItem, FindItem{7, {"a.b", 1, 2}, true});
    use(MessageType::FindItem, FindItem{7, {QString(), 1, 2}, true});
    use(MessageType::Expect, Expect{7, query, query, true});
    use(MessageType::Children, ObjectHandle{7});
    use(MessageType::WriteProperty, PropertyAccess{7, "text", arguments});
    use(MessageType::Invoke, Invoke{7, "click", arguments, 5});
    const Target target{7, query, true, {"a.b", 1, 2}, Wanted::Reach, 5, true};
    use(MessageType::Act, Act{target, "click", arguments, 5});
    use(MessageType::FindMatches, query);
    use(MessageType::ObjectAt, ScreenPoint{1, 2});
    use(MessageType::Snapshot, Snapshot{target, true});
    use(MessageType::MouseEvent, MouseEvent{target, 9, -1, 2, 4, 0x02000000, true, true});
    use(MessageType::KeyEvent, KeyEvent{"Return", true});
    use(MessageType::Highlight, Highlight{target, 100, QRect(5, 6, 7, 8)});
    use(MessageType::NativeRequest, NativeRequest{"desktopScreenshot", arguments});
    use(MessageType::InstallHandler, EventHandler{7, "QWidget", "clicked", "callback"});
    use(MessageType::SendEvent, SendEvent{7, "QMouseEvent", arguments});

    const ObservedObject used{7, ObservedRole::Item, query};
    const ObservedObject holder{8, ObservedRole::Control, query};
    for (const Observation& observation : std::initializer_list<Observation>{
             ObservedState{7, "text", 2, 2.5, true},
             ObservedPress{used, holder, QStringList{"a", "b"}, QPoint(1, 2), 2, 0x02000000,
                           holder},
             ObservedDoubleClick{}, ObservedRelease{QPoint(3, 4), true}, ObservedWheel{used},
             ObservedRest{}, ObservedChoice{holder, QStringList{"a", "b"}},
             ObservedKey{used, "Shift+A", "A"},
             ObservedShortcut{used, QStringList{"Ctrl+K", "A"}, holder}, ObservedClose{used},
             ObservedVerdict{used, QVariantMap{{"text", "a"}, {"checked", true}}},
             ObservedMode{true}})
        use(MessageType::Observed, observation);
    use(MessageType::Record, Record{false, "F12", true});

    use(MessageType::Reply, Value{arguments});
    use(MessageType::Reply, ObjectInfoList{object, {8, "QLabel", QString()}});
    use(MessageType::Reply, LookUpResult{object, true, "it is hidden", {miss}});
    use(MessageType::Reply, ActResult{object, arguments});
    use(MessageType::Reply, MatchList{2, {{object, QRect(1, 2, 3, 4), true}}});
    use(MessageType::Reply, TextList{QStringList{"a", "b"}});
    use(MessageType::Reply,
        ObjectOutline{QStringList{"QWidget", "QLineEdit"},
                      {{0, 0, 7, OutlinedObject::Window, QRect(1, 2, 3, 4), "w", "Title", ""},
                       {1, 1, 8, OutlinedObject::Entered, QRect(), "", "text", "Name"}},
                      true});
    use(MessageType::Reply, ObjectListing{QStringList{"QWidget", "QLabel"},
                                          {{0, 0, 3, QRect(1, 2, 3, 4), QString(), "{type='a'}"},
                                           {1, 1, 2, QRect(), "text", "{type='b'}"}}});
    use(MessageType::Reply, ClassInfo{"QPushButton",
                                      QStringList{"QWidget"},
                                      {{"text", "QString", true}},
                                      {{"click", "void", {"int", "bool"}, "x[, y]", "Clicks"}},
                                      {{"clicked", {"bool"}}}});
}

}  // namespace Tamrix::Wire
