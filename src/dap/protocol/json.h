#pragma once

#include <QJsonArray>
#include <QJsonObject>
#include <QJsonValue>
#include <QString>
#include <map>
#include <optional>
#include <type_traits>
#include <utility>
#include <vector>

#include "base/outcome.h"

// The structs of messages as JSON and back. A struct names its fields once, for both directions:
//
//     struct Source {
//         std::optional<QString> name;
//         QString path;
//         template <typename Self, typename Visitor>
//         static void visitFields(Self& self, Visitor& visit) {
//             visit("name", self.name);
//             visit("path", self.path);
//         }
//     };
//
// A std::optional is a field that may be missing, everything else must be there. Fields that the
// struct does not name are passed over. Any thread.

namespace Tamrix::Dap {

/// An object with texts or null as values, as the environment of a program.
using TextMap = std::map<QString, std::optional<QString>>;

class FieldWriter {
public:
    explicit FieldWriter(QJsonObject& object) : m_object(object) {}

    template <typename T>
    void operator()(const char* name, const T& value) {
        m_object.insert(QLatin1String(name), valueOf(value));
    }
    template <typename T>
    void operator()(const char* name, const std::optional<T>& value) {
        if (value)
            (*this)(name, *value);
    }

private:
    static QJsonValue valueOf(bool value) { return value; }
    static QJsonValue valueOf(int value) { return value; }
    static QJsonValue valueOf(const QString& value) { return value; }
    static QJsonValue valueOf(const QJsonObject& value) { return value; }
    static QJsonValue valueOf(const TextMap& map) {
        QJsonObject object;
        for (const auto& [name, text] : map)
            object.insert(name, text ? QJsonValue(*text) : QJsonValue(QJsonValue::Null));
        return object;
    }
    template <typename T>
    static QJsonValue valueOf(const std::vector<T>& values) {
        QJsonArray array;
        for (const T& value : values)
            array.append(valueOf(value));
        return array;
    }
    template <typename T>
    requires std::is_class_v<T>
    static QJsonValue valueOf(const T& value) {
        QJsonObject object;
        FieldWriter writer(object);
        T::visitFields(value, writer);
        return object;
    }

    QJsonObject& m_object;
};

/// Reads an object; the first thing that is wrong in it is kept as a sentence that names the field.
class FieldReader {
public:
    /// `place` is what messages call the object, empty for the outermost one. `error` outlives
    /// this.
    FieldReader(const QJsonObject& object, QString place, QString& error)
        : m_object(object), m_place(std::move(place)), m_error(error) {}

    template <typename T>
    void operator()(const char* name, T& value) {
        const QJsonValue json = m_object.value(QLatin1String(name));
        if (json.isUndefined())
            complain(placeOf(name), "is missing");
        else
            read(json, placeOf(name), value);
    }
    template <typename T>
    void operator()(const char* name, std::optional<T>& value) {
        const QJsonValue json = m_object.value(QLatin1String(name));
        // Some clients write what they do not have as null.
        if (!json.isUndefined() && !json.isNull())
            read(json, placeOf(name), value.emplace());
    }

private:
    QString placeOf(const char* name) const;
    void complain(const QString& place, const char* problem);

    void read(const QJsonValue& json, const QString& place, bool& value);
    void read(const QJsonValue& json, const QString& place, int& value);
    void read(const QJsonValue& json, const QString& place, QString& value);
    void read(const QJsonValue& json, const QString& place, QJsonObject& value);
    void read(const QJsonValue& json, const QString& place, TextMap& value);
    template <typename T>
    void read(const QJsonValue& json, const QString& place, std::vector<T>& values) {
        if (!json.isArray()) {
            complain(place, "is to be a list");
            return;
        }
        const QJsonArray array = json.toArray();
        for (int index = 0; index < array.size(); ++index)
            read(array.at(index), QStringLiteral("%1[%2]").arg(place, QString::number(index)),
                 values.emplace_back());
    }
    template <typename T>
    requires std::is_class_v<T>
    void read(const QJsonValue& json, const QString& place, T& value) {
        if (!json.isObject()) {
            complain(place, "is to be an object");
            return;
        }
        const QJsonObject object = json.toObject();
        FieldReader reader(object, place, m_error);
        T::visitFields(value, reader);
    }

    const QJsonObject& m_object;
    QString m_place;
    QString& m_error;
};

template <typename T>
QJsonObject toJson(const T& value) {
    QJsonObject object;
    FieldWriter writer(object);
    T::visitFields(value, writer);
    return object;
}

/// A field that is missing or of the wrong type is a failure whose text names it.
template <typename T>
Outcome<T> fromJson(const QJsonObject& object) {
    T value;
    QString error;
    FieldReader reader(object, {}, error);
    T::visitFields(value, reader);
    if (!error.isEmpty())
        return fail(FailureKind::BadArgument, error);
    return value;
}

}  // namespace Tamrix::Dap
