#include "platform/objectmodel/remote/namequery.h"

#include "wire/textmatch.h"

namespace Tamrix {

namespace {

const char occurrenceProperty[] = "occurrence";

/// The longest part of a value that a message shows.
constexpr int shownLength = 80;

QString shown(QString text) {
    text.replace('\n', QLatin1String("\\n"));
    if (text.size() > shownLength)
        text = text.left(shownLength) + QStringLiteral("...");
    return '\'' + text + '\'';
}

QString partText(const NearMiss::Difference& part) {
    if (part.property == QLatin1String(occurrenceProperty))
        return QStringLiteral("%1 objects match, wanted occurrence %2")
            .arg(part.actual, part.wanted);
    if (part.actual.isNull())
        return QStringLiteral("it has no %1, wanted %2").arg(part.property, shown(part.wanted));
    return QStringLiteral("%1 is %2, wanted %3")
        .arg(part.property, shown(part.actual), shown(part.wanted));
}

}  // namespace

Outcome<Wire::Query> makeQuery(const ObjectName& name) {
    Wire::Query query;
    const auto properties = name.properties();
    for (auto it = properties.cbegin(); it != properties.cend(); ++it) {
        const PropertyValue& value = it.value();
        if (it.key() == QLatin1String(occurrenceProperty)) {
            query.occurrence = value.text().toInt();
            if (query.occurrence < 1 || value.modifiers() != PropertyValue::Plain) {
                return fail(FailureKind::BadArgument,
                            QStringLiteral("The occurrence in a name is a number from 1, not '%1'")
                                .arg(value.text()));
            }
            continue;
        }
        Wire::Criterion criterion;
        criterion.property = it.key();
        criterion.modifier = value.modifiers();
        criterion.text = value.text();
        if (value.isRealName() && isMultiPropertyName(value.text())) {
            criterion.text.clear();
            const Outcome<Wire::Query> object = makeQuery(ObjectName(value.text()));
            if (!object)
                return object;
            criterion.object = std::make_shared<Wire::Query>(*object);
        } else {
            const QString fault = Wire::TextMatch(value.text(), value.modifiers()).errorText();
            if (!fault.isEmpty()) {
                return fail(FailureKind::BadArgument,
                            QStringLiteral("The property '%1' of the name %2: %3")
                                .arg(it.key(), name.qualifiedName(), fault));
            }
        }
        query.criteria.append(criterion);
    }
    return query;
}

QString nameFault(const ObjectName& name) {
    const Outcome<Wire::Query> query = makeQuery(name);
    return query ? QString() : query.error().text;
}

QString differenceText(const NearMiss& miss) {
    QStringList parts;
    for (const NearMiss::Difference& part : miss.differences)
        parts.append(partText(part));
    return parts.join(QStringLiteral("; "));
}

QString missText(const ObjectName& name, const QList<NearMiss>& misses) {
    QStringList lines;
    for (const NearMiss& miss : misses) {
        const QString object =
            miss.object.isEmpty() ? QString() : miss.object + QStringLiteral(": ");
        lines.append(object + differenceText(miss));
    }
    QString text = QStringLiteral("No object matches ") + name.qualifiedName();
    if (lines.size() == 1)
        text += QStringLiteral(". Nearest: ") + lines.first();
    else if (lines.size() > 1)
        text += QStringLiteral(". Nearest:\n  ") + lines.join(QStringLiteral("\n  "));
    return text;
}

}  // namespace Tamrix
