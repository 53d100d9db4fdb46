#include "platform/verification/observation.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QStringList>
#include <algorithm>
#include <cmath>

#include "platform/objectmodel/inspector.h"
#include "platform/objectmodel/objectclass.h"
#include "platform/objectmodel/objectmodel.h"
#include "platform/objectmodel/valueobject.h"
#include "platform/verification/verificationpointfile.h"
#include "shared/uiabstraction/uielement.h"

namespace Tamrix {

namespace {

using UIAbstraction::UIElement;

QJsonValue jsonOf(const QVariant& value);

QJsonValue jsonOfObject(const Object& object) {
    if (object.isNull())
        return QJsonValue::Null;
    const QVariant value = object.toVariant();
    if (value.isValid())
        return jsonOf(value);
    const auto* const bare = dynamic_cast<const ValueObject*>(&object);
    return bare ? bare->text() : object.realName();
}

QJsonValue jsonOf(const QVariant& value) {
    switch (static_cast<QMetaType::Type>(value.userType())) {
        case QMetaType::QVariantList:
        case QMetaType::QStringList: {
            QJsonArray list;
            for (const QVariant& entry : value.toList())
                list.append(jsonOf(entry));
            return list;
        }
        case QMetaType::QVariantMap:
        case QMetaType::QVariantHash:
            return QString::fromUtf8(
                QJsonDocument::fromVariant(value.toMap()).toJson(QJsonDocument::Compact));
        case QMetaType::QByteArray:
            return QString::fromUtf8(value.toByteArray());
        case QMetaType::Double:
        case QMetaType::Float:
            // JSON has no infinity and the like.
            return std::isfinite(value.toDouble()) ? QJsonValue(value.toDouble())
                                                   : QJsonValue(value.toString());
        default:
            break;
    }
    if (value.userType() == qMetaTypeId<SharedPtr<Object>>()) {
        const auto object = value.value<SharedPtr<Object>>();
        return object ? jsonOfObject(*object) : QJsonValue::Null;
    }
    const QJsonValue json = QJsonValue::fromVariant(value);
    return json.isUndefined() ? QJsonValue(value.toString()) : json;
}

constexpr int bytesOfColor = 4;

tl::unexpected<Failure> unreadableAnswer(const char* what) {
    return fail(FailureKind::Failed,
                QStringLiteral("The application's answer with the %1 makes no sense")
                    .arg(QLatin1String(what)));
}

/// The cells of an answer, which is checked: it comes from the application.
Outcome<ObservedTable> tableOf(const QVariantMap& answer) {
    ObservedTable table;
    table.rowCount = answer.value(QStringLiteral("rowCount")).toInt();
    table.columnCount = answer.value(QStringLiteral("columnCount")).toInt();
    const int columns = answer.value(QStringLiteral("columns")).toInt();
    const QStringList texts = answer.value(QStringLiteral("texts")).toStringList();
    const QByteArray colors = answer.value(QStringLiteral("backgrounds")).toByteArray();
    if (colors.size() != texts.size() * bytesOfColor ||
        (columns > 0 ? texts.size() % columns != 0 : !texts.isEmpty()))
        return unreadableAnswer("cells of a view");
    for (int cell = 0; cell < texts.size(); ++cell) {
        if (cell % columns == 0)
            table.rows.emplace_back();
        const auto channel = [&](int index) {
            return static_cast<std::uint8_t>(colors.at(cell * bytesOfColor + index));
        };
        table.rows.back().push_back(
            {texts.at(cell), {channel(0), channel(1), channel(2), channel(3)}});
    }
    return table;
}

bool isVisible(const UIElement& element) {
    return element.concreteProperties().value(QStringLiteral("visible")) != QLatin1String("false");
}

/// Appends the element, or in place of one that does not count its children. What is not to be seen
/// is left out with all below it.
void appendVisible(const UIElement& element, const QPoint& origin, int depth,
                   std::vector<VisualElement>* elements) {
    const QRect place = element.geometry().rect();
    if (!isVisible(element) || depth > maximalElementDepth)
        return;
    std::vector<VisualElement>* children = elements;
    if (!element.isTransparentNode()) {
        if (place.isEmpty())
            return;
        elements->push_back({element.concreteType(),
                             element.identifyingProperties().value(QStringLiteral("name")),
                             element.text(),
                             place.translated(-origin),
                             {}});
        children = &elements->back().children;
    }
    for (const UIElement* const child : element.children())
        appendVisible(*child, origin, depth + 1, children);
}

}  // namespace

Outcome<QJsonValue> observedProperty(const SharedPtr<Object>& object, const QString& path) {
    SharedPtr<Object> value = object;
    for (const QString& name : path.split(QLatin1Char('.'))) {
        Outcome<SharedPtr<Object>> next = value->readProperty(Property(name));
        if (!next)
            return fail(next.error());
        value = *next;
    }
    return jsonOfObject(*value);
}

Outcome<ObservedTable> observedTable(const SharedPtr<Object>& object, int firstRow, int firstColumn,
                                     int rowCount, int columnCount) {
    ObjectModel* const model = Inspector::self()->model();
    if (!model)
        return Inspector::noApplication();
    const Outcome<QVariant> answer = model->nativeRequest(
        QStringLiteral("viewCells"),
        {QVariant::fromValue(object), firstRow, firstColumn, rowCount, columnCount});
    if (!answer)
        return fail(answer.error());
    return tableOf(answer->toMap());
}

Outcome<VisualPoint> visualPointOf(const QByteArray& snapshot) {
    const QList<UIElement*> elements = UIElement::elementsFromByteArray(snapshot);
    VisualPoint point;
    std::vector<VisualElement> roots;
    if (elements.size() == 1) {
        const UIElement& element = *elements.constFirst();
        point.name = element.realName();
        point.picture = element.image();
        appendVisible(element, element.geometry().rect().topLeft(), 1, &roots);
    }
    qDeleteAll(elements);
    // Without a name nobody could find it again.
    if (elements.size() != 1 || point.name.isEmpty())
        return unreadableAnswer("elements of an object");
    if (roots.size() != 1)
        return fail(FailureKind::NotReady,
                    QStringLiteral("The object %1 is not visible").arg(point.name));
    point.root = std::move(roots.front());
    return point;
}

Outcome<VisualPoint> observedVisual(const SharedPtr<Object>& object) {
    const Outcome<QByteArray> snapshot = requestObjectSnapshotForVisualVP(object);
    if (!snapshot)
        return fail(snapshot.error());
    return visualPointOf(*snapshot);
}

}  // namespace Tamrix
