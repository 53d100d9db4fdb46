#pragma once

#include <QByteArray>
#include <QList>
#include <QRect>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <QVector>
#include <memory>

#include "base/export.h"
#include "base/outcome.h"
#include "wire/protocol.h"

/// The bodies of the messages, as plain data with `<<` and `>>` on QDataStream. Reading checks each
/// count, length and depth; after a fault the stream's status is not Ok and the rest is left as it
/// was. Each body is written in the order of its fields.
namespace Tamrix::Wire {

/// An object of the application, as it travels. Handle 0 is none.
struct ObjectInfo {
    quint64 handle = 0;
    QString className;
    QString objectName;
};

using ObjectInfoList = QList<ObjectInfo>;

/// A value: see value.h for what it may hold.
struct Value {
    QVariant value;
};

struct ObjectHandle {
    quint64 handle = 0;
};

struct Text {
    QString text;
};

struct Hello {
    quint32 magic = magicNumber;
    quint16 version = protocolVersion;
    // What follows is read only when the two above agree.
    QString token;
    qint64 pid = 0;
    qint64 parentPid = 0;
    /// Path of the program.
    QString program;
    QStringList arguments;
    QString qtVersion;
    /// The QPA platform: "xcb", "offscreen"...
    QString platform;
    /// As QSysInfo::prettyProductName().
    QString osName;
};

// Why a request failed travels as what the caller gets.
using Failure = Tamrix::Failure;
using NearMiss = Tamrix::NearMiss;

struct Query;

/// One wanted property of a query. The modifier is one of PropertyValue::Modifier.
struct Criterion {
    QString property;
    qint32 modifier = 0;
    QString text;
    /// The wanted object, for a property that is an object; null for all others.
    std::shared_ptr<Query> object;
};

/// An object's name: all criteria must hold.
struct Query {
    QList<Criterion> criteria;
    /// Which of several matches in the stable order, from 1.
    qint32 occurrence = 1;
};

/// What is asked of an object beside being there.
enum class Wanted : quint8 {
    Existence = 0,
    /// Ready for input, whatever lies over its middle: for what looks at its own point later.
    Reach = 1,
    /// Ready for input in its middle.
    Readiness = 2
};

/// An item of a view, list, tree, menu, tab bar or combo box: by text, or for a null text by row
/// and column, from 0. Nested items: "parent.child", a "." in a text escaped as "\.".
struct ItemAddress {
    QString text;
    qint32 row = -1;
    qint32 column = -1;
};

/// What something is done with: the object of a handle that is not 0, else the one that the query
/// finds, or an item in it; nothing when there is neither. The application waits until it is there
/// and as wanted, and acts at once: request and act are one. Where that does not come to pass, the
/// answer is Missed.
struct Target {
    quint64 handle = 0;
    Query query = {};
    bool isItem = false;
    ItemAddress item = {};
    Wanted wanted = Wanted::Existence;
    /// How long is waited for it, in ms; 0 for one look.
    qint32 timeout = 0;
    /// Also names what matched nearly, when nothing matches.
    bool wantNearMisses = false;

    bool isNothing() const { return handle == 0 && query.criteria.isEmpty(); }
};

/// Why nothing was done with a target.
struct Missed {
    /// Handle 0: it is not there. Else it was not as wanted.
    ObjectInfo object;
    /// What is missing for being ready, "it is not visible"; of an item, why there is none.
    QString obstacle;
    QList<NearMiss> nearMisses;
};

/// Looks once. By handle when it is not 0, else by query.
struct LookUp {
    quint64 handle = 0;
    Query query;
    Wanted wanted = Wanted::Existence;
    /// Also names what matched nearly, when nothing matches.
    bool wantNearMisses = false;
};

struct LookUpResult {
    /// Handle 0: nothing matches.
    ObjectInfo object;
    /// Meaningless where existence was wanted.
    bool isReady = false;
    /// What is missing for being ready: "it is not visible"; empty when ready.
    QString obstacle;
    QList<NearMiss> nearMisses;
};

struct FindItem {
    quint64 handle = 0;
    ItemAddress item;
    bool wantReady = false;
};

/// Where the objects are that a query matches.
struct Match {
    ObjectInfo object;
    /// On the screen.
    QRect bounds;
    bool isVisible = false;
};

/// What a query matches, whatever occurrence it says, in the order in which occurrences count.
struct MatchList {
    /// All of them; only the first of many are listed.
    qint32 count = 0;
    QList<Match> matches;
};

/// How many matches are listed.
inline constexpr int listedMatches = 100;

/// A point on the screen.
struct ScreenPoint {
    qint32 x = 0;
    qint32 y = 0;
};

struct TextList {
    QStringList texts;
};

/// Looks once for an object, by handle when it is not 0, else by query, and compares it. Criteria
/// of `properties` that the object does not fit come back as the differences of one near miss;
/// those of an object that is not there as with LookUp.
struct Expect {
    quint64 handle = 0;
    Query query;
    Query properties;
    /// Also names what matched nearly, when nothing matches the query.
    bool wantNearMisses = false;
};

struct PropertyInfo {
    QString name;
    QString typeName;
    bool isWritable = false;
};

struct MethodInfo {
    QString name;
    QString returnType;
    QStringList argumentTypes;
    /// Of global functions, see ApplicationFunction.
    QString parameters = {};
    QString description = {};
};

struct EventInfo {
    QString name;
    QStringList argumentTypes;
};

struct ClassInfo {
    QString name;
    /// The nearest first.
    QStringList superClasses;
    QList<PropertyInfo> properties;
    QList<MethodInfo> methods;
    QList<EventInfo> events;
};

struct PropertyAccess {
    quint64 handle = 0;
    QString name;
    /// Written only.
    QVariant value;
};

/// Calls a method; handle 0 calls a global function. A function that injects input waits for the
/// object to be ready, up to `timeout` milliseconds, is answered then, and acts after the answer.
struct Invoke {
    quint64 handle = 0;
    QString method;
    QVariantList arguments;
    qint32 timeout = 20000;
};

/// Calls a global function with the target as its first argument. `timeout` is that of Invoke; the
/// time that the target took counts.
struct Act {
    Target target;
    QString method;
    QVariantList arguments;
    qint32 timeout = 20000;
};

struct ActResult {
    ObjectInfo object;
    QVariant value;
};

struct Snapshot {
    /// Nothing for all top-level objects.
    Target target;
    /// A picture of the target, or of each window.
    bool withImages = false;
};

/// One line of an ObjectListing.
struct ListedObject {
    enum State { Visible = 1, Enabled = 2 };

    /// How many objects of the listing it is below.
    qint32 depth = 0;
    /// Index into ObjectListing::types.
    qint32 type = 0;
    /// Of State.
    quint8 state = 0;
    /// On the screen.
    QRect geometry;
    QString text;
    /// The name that finds it.
    QString name;
};

/// All objects that a person can see a part of, parents first: what Snapshot tells of them, in a
/// tenth of the bytes.
struct ObjectListing {
    QStringList types;
    QVector<ListedObject> objects;
};

/// One line of an ObjectOutline.
struct OutlinedObject {
    enum State : quint16 {
        Enabled = 1,
        Focused = 2,
        /// It can be checked, and is.
        Checkable = 4,
        Checked = 8,
        PartlyChecked = 16,
        /// Of items, and of the tab that is in front.
        Selected = 32,
        Window = 64,
        Modal = 128,
        /// The text is what somebody enters or sets.
        Entered = 256,
        Item = 512
    };

    /// How many objects of the outline it is below.
    qint32 depth = 0;
    /// Index into ObjectOutline::types.
    qint32 type = 0;
    quint64 handle = 0;
    /// Of State.
    quint16 state = 0;
    /// What is seen of it, on the screen.
    QRect geometry;
    /// The object's own name.
    QString name;
    /// What is read on it, else its value. Of a very long one the middle is left out.
    QString text;
    /// What says what it is, where the text doesn't: the label beside it, else its tool tip.
    QString label;
};

/// What is visible now, parents first, in short and with handles: for who acts on it.
struct ObjectOutline {
    QStringList types;
    QVector<OutlinedObject> objects;
    /// There are more than `most`.
    bool isCut = false;

    static constexpr int most = 20'000;
};

/// As RunnerInterface::mouseEvent. Coordinates are relative to the target, or to the screen without
/// one. Button: 1 left, 2 right, 4 middle, as Qt::MouseButton. Modifiers as Qt::KeyboardModifiers.
struct MouseEvent {
    Target target;
    qint32 mask = 0;
    qint32 x = 0;
    qint32 y = 0;
    qint32 button = 1;
    qint32 modifiers = 0;
    bool buttonChange = false;
    bool press = false;
};

struct KeyEvent {
    /// "A", "Ctrl", "Return"; as press() takes it.
    QString key;
    bool press = false;
};

struct Highlight {
    Target target;
    /// -1: until StopHighlight.
    qint32 milliseconds = -1;
    /// On the screen, when the target is nothing.
    QRect place = {};
};

struct NativeRequest {
    QString name;
    QVariantList arguments;
};

struct EventHandler {
    /// 0: for the class, or with an empty class name for all objects.
    quint64 handle = 0;
    QString className;
    QString event;
    /// Comes back in EventFired.
    QString callback;
};

struct SendEvent {
    quint64 handle = 0;
    QString event;
    QVariantList arguments;
};

struct EventFired {
    QString callback;
    ObjectInfo object;
};

// NOLINTBEGIN(bugprone-macro-parentheses): a type can't stand in parentheses.
#define TAMRIX_WIRE_OPERATORS(Type)                                 \
    QDataStream& operator<<(QDataStream& stream, const Type& body); \
    QDataStream& operator>>(QDataStream& stream, Type& body)
// NOLINTEND(bugprone-macro-parentheses)
TAMRIX_WIRE_OPERATORS(NearMiss::Difference);
TAMRIX_WIRE_OPERATORS(NearMiss);
TAMRIX_WIRE_OPERATORS(PropertyInfo);
TAMRIX_WIRE_OPERATORS(MethodInfo);
TAMRIX_WIRE_OPERATORS(EventInfo);
// Exported: for a type in variants, Qt 6 asks for them wherever it is known.
TAMRIX_EXPORT QDataStream& operator<<(QDataStream& stream, const ObjectInfo& body);
TAMRIX_EXPORT QDataStream& operator>>(QDataStream& stream, ObjectInfo& body);
TAMRIX_WIRE_OPERATORS(ObjectInfoList);
TAMRIX_WIRE_OPERATORS(Value);
TAMRIX_WIRE_OPERATORS(ObjectHandle);
TAMRIX_WIRE_OPERATORS(Text);
TAMRIX_WIRE_OPERATORS(Hello);
TAMRIX_WIRE_OPERATORS(Failure);
TAMRIX_WIRE_OPERATORS(Query);
TAMRIX_WIRE_OPERATORS(ItemAddress);
TAMRIX_WIRE_OPERATORS(Target);
TAMRIX_WIRE_OPERATORS(Missed);
TAMRIX_WIRE_OPERATORS(LookUp);
TAMRIX_WIRE_OPERATORS(LookUpResult);
TAMRIX_WIRE_OPERATORS(FindItem);
TAMRIX_WIRE_OPERATORS(Expect);
TAMRIX_WIRE_OPERATORS(Match);
TAMRIX_WIRE_OPERATORS(MatchList);
TAMRIX_WIRE_OPERATORS(ScreenPoint);
TAMRIX_WIRE_OPERATORS(TextList);
TAMRIX_WIRE_OPERATORS(ClassInfo);
TAMRIX_WIRE_OPERATORS(PropertyAccess);
TAMRIX_WIRE_OPERATORS(Invoke);
TAMRIX_WIRE_OPERATORS(Act);
TAMRIX_WIRE_OPERATORS(ActResult);
TAMRIX_WIRE_OPERATORS(Snapshot);
TAMRIX_WIRE_OPERATORS(ObjectListing);
TAMRIX_WIRE_OPERATORS(ObjectOutline);
TAMRIX_WIRE_OPERATORS(MouseEvent);
TAMRIX_WIRE_OPERATORS(KeyEvent);
TAMRIX_WIRE_OPERATORS(Highlight);
TAMRIX_WIRE_OPERATORS(NativeRequest);
TAMRIX_WIRE_OPERATORS(EventHandler);
TAMRIX_WIRE_OPERATORS(SendEvent);
TAMRIX_WIRE_OPERATORS(EventFired);
#undef TAMRIX_WIRE_OPERATORS

/// A body as bytes.
template <typename Body>
QByteArray encode(const Body& body) {
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream.setVersion(streamVersion);
    stream << body;
    return bytes;
}

/// Reads a body; false when the bytes are no such body, or more than one.
template <typename Body>
bool decode(const QByteArray& bytes, Body* body) {
    QDataStream stream(bytes);
    stream.setVersion(streamVersion);
    stream >> *body;
    return stream.status() == QDataStream::Ok && stream.atEnd();
}

}  // namespace Tamrix::Wire

Q_DECLARE_METATYPE(Tamrix::Wire::ObjectInfo)
