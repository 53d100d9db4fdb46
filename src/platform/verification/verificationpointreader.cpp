#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImageReader>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <cmath>
#include <limits>

#include "platform/verification/verificationpointfile.h"
#include "wire/textmatch.h"

namespace Tamrix {

namespace {

constexpr int formatVersion = 1;

/// How deep lists may be nested in an expected value.
constexpr int maximalValueDepth = 8;

/// What the reader gives up with. It stays in this file.
struct Fault {
    QString text;
};

[[noreturn]] void give(const QString& place, const QString& what) {
    throw Fault{place.isEmpty() ? what : QStringLiteral("%1: %2").arg(place, what)};
}

QString memberPlace(const QString& place, const QString& name) {
    return place.isEmpty() ? name : QStringLiteral("%1.%2").arg(place, name);
}

QString entryPlace(const QString& place, int index) {
    return QStringLiteral("%1[%2]").arg(place, QString::number(index));
}

/// A JSON object with its place in the file. Members are taken by name; what nobody took is a
/// fault, so that a misspelt member is not passed over.
class Members {
public:
    Members(const QJsonValue& value, QString place) : m_place(std::move(place)) {
        if (!value.isObject())
            give(m_place, QStringLiteral("an object is expected"));
        m_members = value.toObject();
    }

    const QString& place() const { return m_place; }
    QString placeOf(const char* name) const { return memberPlace(m_place, QLatin1String(name)); }
    bool has(const char* name) const { return m_members.contains(QLatin1String(name)); }

    QJsonValue take(const char* name) {
        if (!has(name))
            give(m_place, QStringLiteral("the member \"%1\" is missing").arg(QLatin1String(name)));
        return m_members.take(QLatin1String(name));
    }
    QString takeText(const char* name) {
        const QJsonValue value = take(name);
        if (!value.isString())
            give(placeOf(name), QStringLiteral("a text is expected"));
        return value.toString();
    }
    QString takeText(const char* name, const QString& missing) {
        return has(name) ? takeText(name) : missing;
    }
    QString takeName(const char* name) {
        const QString text = takeText(name);
        if (text.isEmpty())
            give(placeOf(name), QStringLiteral("the text is empty"));
        return text;
    }
    QJsonArray takeList(const char* name) {
        const QJsonValue value = take(name);
        if (!value.isArray())
            give(placeOf(name), QStringLiteral("a list is expected"));
        return value.toArray();
    }
    bool takeBool(const char* name, bool missing) {
        if (!has(name))
            return missing;
        const QJsonValue value = take(name);
        if (!value.isBool())
            give(placeOf(name), QStringLiteral("true or false is expected"));
        return value.toBool();
    }
    double takeNumber(const char* name, double least, double most, double missing) {
        if (!has(name))
            return missing;
        const QJsonValue value = take(name);
        if (!value.isDouble() || !(value.toDouble() >= least && value.toDouble() <= most))
            give(placeOf(name), QStringLiteral("a number from %1 to %2 is expected")
                                    .arg(QString::number(least), QString::number(most)));
        return value.toDouble();
    }
    int takeInteger(const char* name, int least, int most, int missing) {
        const double number = takeNumber(name, least, most, missing);
        if (number != std::floor(number))
            give(placeOf(name), QStringLiteral("a whole number is expected"));
        return static_cast<int>(number);
    }

    void end() const {
        if (!m_members.isEmpty())
            give(
                m_place,
                QStringLiteral("the member \"%1\" is not known").arg(m_members.constBegin().key()));
    }

private:
    QJsonObject m_members;
    QString m_place;
};

/// Calls `read(entry, place)` for each entry of the list and gives what it gave.
template <typename Read>
auto readEach(const QJsonArray& list, const QString& place, Read read) {
    std::vector<decltype(read(QJsonValue(), QString()))> entries;
    entries.reserve(list.size());
    for (int index = 0; index < list.size(); ++index)
        entries.push_back(read(list.at(index), entryPlace(place, index)));
    return entries;
}

// Values

void checkPlainValue(const QJsonValue& value, const QString& place, int depth = 0) {
    if (value.isObject())
        give(place, QStringLiteral("a bool, a number, a text, null or a list is expected"));
    if (depth > maximalValueDepth)
        give(place, QStringLiteral("lists are nested too deep"));
    const QJsonArray list = value.toArray();
    for (int index = 0; index < list.size(); ++index)
        checkPlainValue(list.at(index), entryPlace(place, index), depth + 1);
}

QString takePattern(Members& members, const char* name, Wire::TextMatch::Mode mode) {
    QString text = members.takeText(name);
    const QString fault = Wire::TextMatch(text, mode).errorText();
    if (!fault.isEmpty())
        give(members.placeOf(name), fault);
    return text;
}

double takeTolerance(Members& members) {
    return members.takeNumber("tolerance", 0, std::numeric_limits<double>::max(), 0);
}

constexpr const char* valueForms[] = {"value", "wildcard", "regex", "column"};

ExpectedValue takeExpected(Members& members) {
    // 1. One of the forms.
    const char* form = nullptr;
    for (const char* const each : valueForms) {
        if (!members.has(each))
            continue;
        if (form)
            give(members.place(), QStringLiteral("\"%1\" and \"%2\" exclude each other")
                                      .arg(QLatin1String(form), QLatin1String(each)));
        form = each;
    }
    if (!form)
        give(members.place(),
             QStringLiteral("one of \"value\", \"wildcard\", \"regex\" and \"column\" is missing"));
    // 2. What it says.
    if (form == valueForms[1])
        return {WildcardText{takePattern(members, form, Wire::TextMatch::Wildcard)}};
    if (form == valueForms[2])
        return {PatternText{takePattern(members, form, Wire::TextMatch::Pattern)}};
    if (form == valueForms[3]) {
        const QString column = members.takeName(form);
        return {ColumnValue{column, takeTolerance(members)}};
    }
    const QJsonValue value = members.take(form);
    checkPlainValue(value, members.placeOf(form));
    if (members.has("tolerance") && !value.isDouble())
        give(members.placeOf("tolerance"), QStringLiteral("only numbers have a tolerance"));
    return {PlainValue{value, takeTolerance(members)}};
}

// The kinds

ExpectedProperty readProperty(const QJsonValue& entry, const QString& place) {
    Members members(entry, place);
    ExpectedProperty property;
    property.name = members.takeName("property");
    property.expected = takeExpected(members);
    members.end();
    return property;
}

ExpectedObject readObject(const QJsonValue& entry, const QString& place) {
    Members members(entry, place);
    ExpectedObject object;
    object.name = members.takeName("name");
    object.properties =
        readEach(members.takeList("properties"), members.placeOf("properties"), readProperty);
    members.end();
    if (object.properties.empty())
        give(place, QStringLiteral("no property is expected"));
    return object;
}

CellColor readColor(const QString& text, const QString& place) {
    bool isNumber = false;
    const uint number = text.mid(1).toUInt(&isNumber, 16);
    if (!isNumber || text.size() != 9 || text.at(0) != QLatin1Char('#'))
        give(place, QStringLiteral("a colour of the form #AARRGGBB is expected"));
    const auto channel = [number](int shift) {
        return static_cast<std::uint8_t>((number >> shift) & 0xffU);
    };
    return {channel(24), channel(16), channel(8), channel(0)};
}

ExpectedCell readCell(const QJsonValue& entry, const QString& place) {
    // A bare text stands for itself.
    if (entry.isString())
        return {{PlainValue{entry, 0}}, std::nullopt};
    Members members(entry, place);
    ExpectedCell cell;
    if (members.has("background"))
        cell.background = readColor(members.takeText("background"), members.placeOf("background"));
    cell.text = takeExpected(members);
    members.end();
    return cell;
}

ExpectedTable readTable(const QJsonValue& entry, const QString& place) {
    constexpr int most = 1'000'000;
    Members members(entry, place);
    ExpectedTable table;
    table.name = members.takeName("name");
    table.firstRow = members.takeInteger("firstRow", 0, most, 0);
    table.firstColumn = members.takeInteger("firstColumn", 0, most, 0);
    table.isWhole = members.takeBool("whole", true);
    table.rows = readEach(members.takeList("rows"), members.placeOf("rows"),
                          [](const QJsonValue& row, const QString& rowPlace) {
                              if (!row.isArray())
                                  give(rowPlace, QStringLiteral("a list of cells is expected"));
                              return readEach(row.toArray(), rowPlace, readCell);
                          });
    members.end();
    for (std::size_t row = 1; row < table.rows.size(); ++row) {
        if (table.rows[row].size() != table.rows.front().size())
            give(entryPlace(memberPlace(place, QStringLiteral("rows")), static_cast<int>(row)),
                 QStringLiteral("the row has %1 cells, the first one has %2")
                     .arg(QString::number(table.rows[row].size()),
                          QString::number(table.rows.front().size())));
    }
    return table;
}

QRect readPlace(const QJsonArray& numbers, const QString& place) {
    // No sum or difference of two of them leaves an int.
    constexpr double most = 1 << 29;
    int edges[4] = {};
    if (numbers.size() != 4)
        give(place, QStringLiteral("x, y, width and height are expected"));
    for (int index = 0; index < 4; ++index) {
        const double number = numbers.at(index).toDouble(std::nan(""));
        if (!(number >= (index < 2 ? -most : 0) && number <= most) || number != std::floor(number))
            give(entryPlace(place, index), QStringLiteral("a whole number of pixels is expected"));
        edges[index] = static_cast<int>(number);
    }
    return {edges[0], edges[1], edges[2], edges[3]};
}

VisualElement readElement(const QJsonValue& entry, const QString& place, int depth) {
    if (depth > maximalElementDepth)
        give(place, QStringLiteral("elements are nested too deep"));
    Members members(entry, place);
    VisualElement element;
    element.type = members.takeName("type");
    element.name = members.takeText("name", QString());
    element.text = members.takeText("text", QString());
    element.place = readPlace(members.takeList("place"), members.placeOf("place"));
    if (members.has("children"))
        element.children = readEach(members.takeList("children"), members.placeOf("children"),
                                    [depth](const QJsonValue& child, const QString& childPlace) {
                                        return readElement(child, childPlace, depth + 1);
                                    });
    members.end();
    return element;
}

VisualRules readRules(Members& members) {
    VisualRules rules;
    const QString place = members.placeOf("compare");
    QStringList compared;
    for (const QJsonValue& entry : members.takeList("compare"))
        compared.append(entry.toString());
    rules.compareTexts = compared.removeAll(QStringLiteral("text")) > 0;
    rules.comparePlaces = compared.removeAll(QStringLiteral("place")) > 0;
    rules.comparePictures = compared.removeAll(QStringLiteral("picture")) > 0;
    if (!compared.isEmpty())
        give(place, QStringLiteral("\"text\", \"place\" and \"picture\" are expected"));
    if (members.has("tolerance")) {
        Members tolerance(members.take("tolerance"), members.placeOf("tolerance"));
        rules.placeTolerance = tolerance.takeInteger("place", 0, 10'000, rules.placeTolerance);
        rules.colorTolerance = tolerance.takeInteger("color", 0, 255, rules.colorTolerance);
        rules.pixelTolerance = tolerance.takeNumber("pixels", 0, 100, rules.pixelTolerance);
        tolerance.end();
    }
    return rules;
}

VerificationPoint readVisual(Members& members) {
    VisualPoint point;
    point.name = members.takeName("object");
    point.rules = readRules(members);
    point.pictureFile = members.takeText("picture", QString());
    if (point.pictureFile.contains(QLatin1Char('/')) ||
        point.pictureFile.startsWith(QLatin1Char('.')))
        give(members.placeOf("picture"),
             QStringLiteral("the name of a file beside this one is expected"));
    if (point.rules.comparePictures && point.pictureFile.isEmpty())
        give(members.place(), QStringLiteral("pictures are compared, but there is no \"picture\""));
    point.root = readElement(members.take("element"), members.placeOf("element"), 1);
    return point;
}

template <typename Point, typename Entry>
VerificationPoint readObjects(Members& members, std::vector<Entry> Point::*entries,
                              Entry (*read)(const QJsonValue&, const QString&)) {
    Point point;
    point.*entries = readEach(members.takeList("objects"), members.placeOf("objects"), read);
    if ((point.*entries).empty())
        give(members.placeOf("objects"), QStringLiteral("no object is expected"));
    return point;
}

VerificationPoint readPoint(const QJsonValue& document) {
    Members members(document, QString());
    // 1. Which version of the format it is.
    const QJsonValue version = members.take("tamrixVerificationPoint");
    if (version != formatVersion)
        give(members.placeOf("tamrixVerificationPoint"),
             QStringLiteral("version %1 of the format is expected")
                 .arg(QString::number(formatVersion)));
    // 2. What the kind says.
    const QString kind = members.takeText("kind");
    VerificationPoint point;
    if (kind == QLatin1String("properties"))
        point = readObjects(members, &PropertiesPoint::objects, readObject);
    else if (kind == QLatin1String("table"))
        point = readObjects(members, &TablePoint::tables, readTable);
    else if (kind == QLatin1String("visual"))
        point = readVisual(members);
    else
        give(members.placeOf("kind"),
             QStringLiteral("\"properties\", \"table\" or \"visual\" is expected, not \"%1\"")
                 .arg(kind));
    // 3. Nothing else.
    members.end();
    return point;
}

/// Line and column, from 1, of a byte.
QString textPosition(const QByteArray& text, int offset) {
    const QByteArray before = text.left(offset);
    return QStringLiteral("line %1, column %2")
        .arg(QString::number(before.count('\n') + 1),
             QString::number(before.size() - before.lastIndexOf('\n')));
}

Outcome<QImage> readPicture(const QString& path) {
    QImageReader reader(path, "png");
    const QSize size = reader.size();
    if (static_cast<qint64>(size.width()) * size.height() > maximalPicturePixels)
        return fail(
            FailureKind::Failed,
            QStringLiteral("The picture '%1' of a verification point is too large").arg(path));
    QImage picture = reader.read();
    if (picture.isNull())
        return fail(FailureKind::Failed,
                    QStringLiteral("The picture '%1' of a verification point can't be read: %2")
                        .arg(path, reader.errorString()));
    return picture;
}

tl::unexpected<Failure> fileFailure(const QString& path, const QString& reason) {
    return fail(FailureKind::Failed,
                QStringLiteral("The verification point '%1' can't be read: %2").arg(path, reason));
}

}  // namespace

Outcome<VerificationPoint> parseVerificationPoint(const QByteArray& json) {
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(json, &error);
    if (error.error != QJsonParseError::NoError)
        return fail(
            FailureKind::Failed,
            QStringLiteral("%1: %2").arg(textPosition(json, error.offset), error.errorString()));
    try {
        return readPoint(document.isObject() ? QJsonValue(document.object()) : QJsonValue());
    } catch (const Fault& fault) {
        return fail(FailureKind::Failed, fault.text);
    }
}

Outcome<VerificationPoint> readVerificationPoint(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return fileFailure(path, file.errorString());
    // A device or a pipe may have no size and no end.
    const QByteArray json = file.read(maximalPointFileSize + 1);
    if (json.size() > maximalPointFileSize)
        return fileFailure(path, QStringLiteral("it has more than %1 MiB")
                                     .arg(QString::number(maximalPointFileSize >> 20)));
    if (json.isEmpty() && file.error() != QFileDevice::NoError)
        return fileFailure(path, file.errorString());
    Outcome<VerificationPoint> point = parseVerificationPoint(json);
    if (!point)
        return fileFailure(path, point.error().text);
    auto* const visual = std::get_if<VisualPoint>(&*point);
    if (visual && !visual->pictureFile.isEmpty()) {
        const QString picturePath = QFileInfo(path).dir().filePath(visual->pictureFile);
        const Outcome<QImage> picture = readPicture(picturePath);
        if (!picture)
            return fail(picture.error());
        visual->picture = *picture;
    }
    return point;
}

}  // namespace Tamrix
