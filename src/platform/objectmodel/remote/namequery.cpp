#include "platform/objectmodel/remote/namequery.h"

#include "wire/textmatch.h"

namespace Tamrix {

namespace {

const char occurrenceProperty[] = "occurrence";

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

ObjectName nameOfQuery(const Wire::Query& query) {
    ObjectName name;
    for (const Wire::Criterion& criterion : query.criteria) {
        const QString text =
            criterion.object ? nameOfQuery(*criterion.object).qualifiedName() : criterion.text;
        name.setProperty(criterion.property,
                         PropertyValue(text, criterion.modifier, bool(criterion.object)));
    }
    if (query.occurrence > 1 && name.isValid())
        name.setProperty(QStringLiteral("occurrence"), QString::number(query.occurrence));
    return name;
}

}  // namespace Tamrix
