#include "runner/applications/objectnames.h"

#include <QRegularExpression>
#include <QStringList>

#include "base/overloaded.h"
#include "base/textescape.h"
#include "platform/objectmodel/nearmisstext.h"

namespace Tamrix {

namespace {

/// How many of the objects that a name matches are listed.
constexpr size_t listedObjects = 10;

std::optional<QPoint> pointOf(const QString& text) {
    static const QRegularExpression s_form(
        QStringLiteral("\\A\\s*(-?\\d{1,6}),(-?\\d{1,6})\\s*\\z"));
    const QRegularExpressionMatch match = s_form.match(text);
    if (!match.hasMatch())
        return std::nullopt;
    return QPoint(match.captured(1).toInt(), match.captured(2).toInt());
}

QString objectText(const SharedPtr<Object>& object) {
    const QString name = object->objectName();
    return name.isEmpty() ? object->className()
                          : QStringLiteral("%1 '%2'").arg(object->className(), name);
}

QString boundsText(const QRect& bounds) {
    return QStringLiteral("at %1,%2, %3x%4")
        .arg(QString::number(bounds.x()), QString::number(bounds.y()),
             QString::number(bounds.width()), QString::number(bounds.height()));
}

/// The objects that match, with their places.
QStringList matchLines(const NameMatches& found, const QString& name) {
    QStringList lines{
        found.count == 1
            ? QStringLiteral("1 object matches %1").arg(name)
            : QStringLiteral("%1 objects match %2").arg(QString::number(found.count), name)};
    for (const NameMatches::Match& match : found.matches) {
        if (static_cast<size_t>(lines.size()) > listedObjects) {
            lines.append(QStringLiteral("  ..."));
            break;
        }
        lines.append(QStringLiteral("  %1  %2%3")
                         .arg(match.object->realName(), boundsText(match.bounds),
                              match.isVisible ? QString() : QStringLiteral(" (hidden)")));
    }
    return lines;
}

/// "Names of X" and the names.
Outcome<QStringList> nameLines(Access& access, const SharedPtr<Object>& object) {
    const Outcome<QList<CheckedName>> names = access.namesOf(object);
    if (!names)
        return fail(names.error());
    QStringList lines{QStringLiteral("Names of %1:").arg(objectText(object))};
    for (const CheckedName& each : *names) {
        const QString shared =
            each.count == 1 ? QString() : QStringLiteral("  (matches %1 objects)").arg(each.count);
        lines.append(QStringLiteral("  ") + each.name + shared);
    }
    return lines;
}

/// What nearly has the name, each with the best name that it has itself.
Outcome<QStringList> nearMissLines(Access& access, const ObjectName& name) {
    const Outcome<QList<NearMiss>> misses = access.nearMissesOf(name);
    if (!misses)
        return fail(misses.error());
    QStringList lines{QStringLiteral("No object matches %1").arg(name.qualifiedName())};
    for (const NearMiss& miss : *misses) {
        lines.append(QStringLiteral("  %1: %2").arg(miss.object, differenceText(miss)));
        const Outcome<SharedPtr<Object>> object = access.objectById(static_cast<int>(miss.handle));
        const Outcome<QList<CheckedName>> names =
            object ? access.namesOf(*object) : fail(object.error());
        // It may have gone meanwhile.
        if (names && !names->isEmpty())
            lines.append(QStringLiteral("    ") + names->first().name);
    }
    return lines;
}

ObjectNames found(const QStringList& lines, bool isFound) {
    ObjectNames names;
    for (const QString& line : lines)
        names.text += escapedForTerminal(line) + QLatin1Char('\n');
    names.isFound = isFound;
    return names;
}

Outcome<ObjectNames> describeAt(Access& access, const QPoint& point) {
    const Outcome<SharedPtr<Object>> object = access.objectAt(point);
    if (!object)
        return fail(object.error());
    if (!*object)
        return found({QStringLiteral("No object is at %1,%2")
                          .arg(QString::number(point.x()), QString::number(point.y()))},
                     false);
    const Outcome<QStringList> lines = nameLines(access, *object);
    if (!lines)
        return fail(lines.error());
    return found(*lines, true);
}

Outcome<ObjectNames> describeNamed(Access& access, const ObjectName& name) {
    // 1. What the name matches.
    const Outcome<NameMatches> matches = access.matchesOf(name);
    if (!matches)
        return fail(matches.error());
    const Outcome<SharedPtr<Object>> object = access.findObject(name);
    if (!object && object.error().kind != FailureKind::NotFound)
        return fail(object.error());
    // 2. The names of what it finds, or what it nearly finds.
    QStringList lines;
    if (matches->count > 0)
        lines = matchLines(*matches, name.qualifiedName());
    const Outcome<QStringList> others =
        object ? nameLines(access, *object) : nearMissLines(access, name);
    if (!others)
        return fail(others.error());
    return found(lines + *others, object.has_value());
}

}  // namespace

Outcome<WantedObject> readWantedObject(const QString& text) {
    if (const std::optional<QPoint> point = pointOf(text))
        return *point;
    QMap<QString, PropertyValue> properties;
    QString error;
    if (!parseNameByProperties(text, &properties, &error))
        return fail(FailureKind::BadArgument,
                    QStringLiteral("'%1' is neither a point \"X,Y\" nor an object's name: %2")
                        .arg(text, error));
    return ObjectName(properties);
}

Outcome<ObjectNames> describeNames(Access& access, const WantedObject& wanted) {
    return std::visit(Overloaded{
                          [&](const ObjectName& name) { return describeNamed(access, name); },
                          [&](const QPoint& point) { return describeAt(access, point); },
                      },
                      wanted);
}

}  // namespace Tamrix
