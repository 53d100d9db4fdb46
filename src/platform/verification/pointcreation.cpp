#include "platform/verification/pointcreation.h"

#include <QFileInfo>

#include "platform/verification/observation.h"
#include "platform/verification/verificationpointfile.h"

namespace Tamrix {

namespace {

/// What a user sees of an object, as far as the object has it.
constexpr const char* telling[] = {
    "type",         "text",       "title",    "windowTitle",     "visible",   "enabled",
    "checked",      "checkState", "value",    "minimum",         "maximum",   "currentText",
    "currentIndex", "count",      "readOnly", "placeholderText", "plainText",
};

}  // namespace

Outcome<VerificationPoint> propertiesPointOf(const SharedPtr<Object>& object, const QString& name,
                                             const QStringList& properties) {
    ExpectedObject expected;
    expected.name = name;
    const auto add = [&](const QString& property) -> Outcome<> {
        const Outcome<QJsonValue> value = observedProperty(object, property);
        if (!value)
            return fail(value.error());
        expected.properties.push_back({property, {PlainValue{*value}}});
        return {};
    };
    if (properties.isEmpty()) {
        for (const char* const each : telling) {
            // What it does not have is not expected.
            if (const Outcome<> added = add(QLatin1String(each));
                !added && added.error().kind == FailureKind::Ended)
                return fail(added.error());
        }
    }
    for (const QString& property : properties) {
        if (const Outcome<> added = add(property); !added)
            return fail(added.error().kind, QStringLiteral("Object '%1': '%2' can't be read: %3")
                                                .arg(name, property, added.error().text));
    }
    if (expected.properties.empty())
        return fail(FailureKind::Refused,
                    QStringLiteral("Object '%1' has no property to expect").arg(name));
    return PropertiesPoint{{expected}};
}

Outcome<VerificationPoint> tablePointOf(const SharedPtr<Object>& object, const QString& name,
                                        CellContent content) {
    const Outcome<ObservedTable> observed = observedTable(object, 0, 0, -1, -1);
    if (!observed)
        return fail(observed.error());
    ExpectedTable table;
    table.name = name;
    for (const auto& row : observed->rows) {
        std::vector<ExpectedCell>& cells = table.rows.emplace_back();
        for (const ObservedTable::Cell& cell : row) {
            cells.push_back({{PlainValue{cell.text}}, std::nullopt});
            if (content == CellContent::TextsAndBackgrounds)
                cells.back().background = cell.background;
        }
    }
    return TablePoint{{table}};
}

Outcome<VerificationPoint> visualPointOf(const QByteArray& snapshot, const QString& name) {
    Outcome<VisualPoint> point = visualPointOf(snapshot);
    if (!point)
        return fail(point.error());
    if (!name.isEmpty())
        point->name = name;
    return *std::move(point);
}

Outcome<> createVerificationPointFile(const QString& path, VerificationPoint point) {
    const auto exists = [](const QString& file) {
        return fail(FailureKind::Refused, QStringLiteral("File '%1' already exists").arg(file));
    };
    if (QFileInfo::exists(path))
        return exists(path);
    if (auto* const visual = std::get_if<VisualPoint>(&point)) {
        visual->rules.comparePictures = !visual->picture.isNull();
        const QFileInfo picture(path + QStringLiteral(".png"));
        if (visual->rules.comparePictures) {
            if (picture.exists())
                return exists(picture.filePath());
            visual->pictureFile = picture.fileName();
        }
    }
    return writeVerificationPoint(path, point);
}

QString createVisualVPFile(const QString& path, const QByteArray& snapshot) {
    const Outcome<VerificationPoint> point = visualPointOf(snapshot, QString());
    if (!point)
        return point.error().text;
    const Outcome<> created = createVerificationPointFile(path, *point);
    return created ? QString() : created.error().text;
}

}  // namespace Tamrix
