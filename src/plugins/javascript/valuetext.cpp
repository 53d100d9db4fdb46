#include "plugins/javascript/valuetext.h"

#include <QRegularExpression>
#include <limits>
#include <memory>

#include "interpreter/language/literals.h"
#include "interpreter/language/valuepath.h"
#include "interpreter/objects/objectidentity.h"
#include "plugins/javascript/errors.h"
#include "plugins/javascript/javascriptargument.h"

namespace Tamrix::JavaScriptPlugin {

namespace {

const QString getter = QStringLiteral("[Getter]");

/// What an accessor of the engine's own gives; the null text for a failure, which is forgotten.
template <typename Read>
QString quietly(Read read) {
    try {
        return read();
    } catch (const ScriptErrorSet&) {
        if (isEndOfScript())
            throw;
        clearException();
        return {};
    }
}

/// A data property of the object or of what it inherits from; undefined for others.
JS::Value inheritedData(JSObject* object, const char* name) {
    ObjectRoot holder(object);
    const IdRoot key(toKey(QString::fromLatin1(name)));
    for (; holder && !js::IsProxy(holder); holder = prototypeOf(holder)) {
        bool hasGetter = false;
        const ValueRoot value(dataPropertyOf(holder, key, &hasGetter));
        if (hasGetter || !value.isUndefined())
            return value;
    }
    return JS::UndefinedValue();
}

/// The name that a function or a class was given; empty without one.
QString nameOf(const JS::Value& maker) {
    const ObjectRoot function(maker);
    const ValueRoot name(function ? inheritedData(function, "name") : JS::UndefinedValue());
    return name.isString() ? fromJsText(name) : QString();
}

/// The name of the class that made an object; empty without one. Runs no code of the script.
QString classNameOf(JS::HandleObject object) {
    return quietly([&] {
        const ObjectRoot maker(inheritedData(object, "constructor"));
        return maker && !js::IsProxy(maker) ? nameOf(JS::ObjectValue(*maker)) : QString();
    });
}

/// An error's name and message, without what led to it.
QString errorText(JS::HandleObject error) {
    const auto textProperty = [&](const char* property) {
        return quietly([&] {
            const ValueRoot value(propertyOf(error, property));
            return value.isUndefined() ? QString() : plainText(value);
        });
    };
    QString name = textProperty("name");
    // A class of errors that does not name itself.
    const QString made = classNameOf(error);
    if (name == QLatin1String("Error") && !made.isEmpty())
        name = made;
    const QString message = textProperty("message");
    return message.isEmpty() ? name : name + ": " + message;
}

/// Whether the language or the script has said how objects of the kind are written.
bool hasOwnText(JS::HandleObject object) {
    const ValueRoot own(inheritedData(object, "toString"));
    return builtinClass(object) != js::ESClass::Object ||
           (own.isObject() && own != inheritedData(rootPrototype(), "toString"));
}

/// Writes values, within limits or whole.
class JavaScriptValueTexts final : public ValueTexts {
public:
    explicit JavaScriptValueTexts(bool isWhole)
        : ValueTexts(isWhole ? withoutLimits : Limits()), m_isWhole(isWhole) {}
    QString wholeText(const Value& value) { return text(value, 0); }

    Parts partsOf(const Value& value, int end, int depth = 0) override;

protected:
    QString text(const Value& own, int depth) override;

private:
    QString objectText(const Value& own, JS::HandleObject object, int depth);
    Parts propertiesOf(JS::HandleObject object);

    /// But of containers in containers.
    static constexpr Limits withoutLimits{.length = std::numeric_limits<int>::max(), .depth = 50};

    bool m_isWhole;
    /// The objects that are being written whole, the outermost first.
    JS::PersistentRootedVector<JSObject*> m_holders{engineContext()};
};

// Parts

ValueTexts::Parts JavaScriptValueTexts::partsOf(const Value& value, int end, int depth) {
    const ObjectRoot object(valueOf(value));
    // Looking into a proxy of the script would run code of it.
    const bool isProxy = object && js::IsProxy(object);
    if (!object || JS::IsCallable(object) || (isProxy && !m_isWhole))
        return {};
    const js::ESClass kind = builtinClass(object);
    if (kind == js::ESClass::Array)
        return {static_cast<int>(given<std::uint32_t>(JS::GetArrayLength, object)),
                [value](int number) {
                    const ObjectRoot array(valueOf(value));
                    return Part{QString::number(number),
                                argumentOf(dataPropertyOf(array, JS::PropertyKey::Int(number)))};
                }};
    const bool isMap = kind == js::ESClass::Map;
    if (isProxy || !isCollection(kind))
        return propertiesOf(object);
    const std::size_t width = isMap ? 2 : 1;
    const auto entries = std::make_shared<JS::PersistentRootedVector<JS::Value>>(engineContext());
    elementsOf(object, entries.get(), width * static_cast<std::size_t>(end));
    const std::uint32_t count =
        isMap ? JS::MapSize(engineContext(), object) : JS::SetSize(engineContext(), object);
    return {static_cast<int>(count), [this, entries, width, depth](int number) {
                const std::size_t index = width * static_cast<std::size_t>(number);
                const Value element = argumentOf((*entries)[index + width - 1]);
                QString name = QString::number(number);
                if (width == 1)
                    return Part{name, element};
                const JS::HandleValue key = (*entries)[index];
                const QString whole = text(argumentOf(key), depth + 1);
                const QString written = m_isWhole ? whole : cut(whole);
                // Objects that look alike are keys of their own.
                name = key.isObject() ? QStringLiteral("%1: %2").arg(name, written) : written;
                return Part{keyName(name), element, written + " => "};
            }};
}

ValueTexts::Parts JavaScriptValueTexts::propertiesOf(JS::HandleObject object) {
    const auto keys = std::make_shared<JS::PersistentRootedIdVector>(engineContext());
    checked(js::GetPropertyKeys(engineContext(), object, JSITER_OWNONLY, keys.get()));
    const Value own = argumentOf(JS::ObjectValue(*object));
    return {static_cast<int>(keys->length()), [this, keys, own](int number) {
                static const QRegularExpression s_plainName(QStringLiteral("^[A-Za-z_$][\\w$]*$"));
                const jsid key = (*keys)[static_cast<std::size_t>(number)];
                const QString name = fromKey(key);
                bool hasGetter = false;
                const ValueRoot value(dataPropertyOf(ObjectRoot(valueOf(own)), key, &hasGetter));
                Value part = argumentOf(value);
                if (hasGetter)
                    part = m_isWhole ? Value() : argumentOf(toJsText(getter));
                return Part{pathPart(name), part,
                            (name.contains(s_plainName) ? name : quoted(name)) + ": "};
            }};
}

// Texts

QString JavaScriptValueTexts::text(const Value& own, int depth) {
    // Of a property with a getter there is no value.
    if (!own)
        return getter;
    const JS::HandleValue value = valueOf(own);
    if (value.isString()) {
        const QString text = fromJsText(value);
        if (m_isWhole)
            return depth == 0 ? text : quoted(text);
        // With one more character where there are more, so that it shows.
        return quoted(text.left(longest + (text.size() > longest ? 1 : 0)));
    }
    if (value.isSymbol())
        return fromKey(JS::PropertyKey::Symbol(value.toSymbol()));
    if (!value.isObject())
        return plainText(value) + (value.isBigInt() && !m_isWhole ? "n" : "");
    const ObjectRoot object(value);
    if (!m_isWhole)
        return objectText(own, object, depth);
    for (JSObject* const each : m_holders) {
        if (each == object)
            return QStringLiteral("[Circular]");
    }
    checked(m_holders.append(object));
    const QString written = objectText(own, object, depth);
    m_holders.popBack();
    return written;
}

QString JavaScriptValueTexts::objectText(const Value& own, JS::HandleObject object, int depth) {
    if (const SharedPtr<Object> held = applicationObjectOf(object)) {
        const ObjectResult<QString> text = Tamrix::objectText(held);
        return text ? *text : '<' + held->className() + " object>";
    }
    if (const auto application = heldBy<ApplicationContext>(object))
        return '<' + application->displayString() + '>';
    if (js::IsProxy(object) && !m_isWhole)
        return QStringLiteral("[Proxy]");
    if (JS::IsCallable(object)) {
        const QString name = quietly([&] { return nameOf(valueOf(own)); });
        return (name.isEmpty() ? QStringLiteral("[Function") : "[Function: " + name) + ']';
    }
    const js::ESClass kind = builtinClass(object);
    if (kind == js::ESClass::Error)
        return errorText(object);
    if (kind == js::ESClass::Date) {
        const QDateTime time = fromJsDate(valueOf(own));
        return time.isValid() ? time.toString(Qt::ISODateWithMs) : QStringLiteral("Invalid Date");
    }
    if (kind == js::ESClass::Array)
        return '[' + partsText(own, depth) + ']';
    const bool hasCount = kind == js::ESClass::Map || kind == js::ESClass::Set;
    if (m_isWhole && !hasCount && hasOwnText(object)) {
        const QString text = quietly([&] { return plainText(valueOf(own)); });
        return text.isNull() ? QStringLiteral("<unprintable %1 object>").arg(classNameOf(object))
                             : text;
    }
    QString name = isPlainObject(object) ? QString() : classNameOf(object);
    if (hasCount && !m_isWhole)
        name += QStringLiteral("(%1)").arg(partsOf(own, 0).count);
    return (name.isEmpty() ? QString() : name + ' ') + '{' + partsText(own, depth) + '}';
}

}  // namespace

QString textOf(JS::HandleValue value) {
    return JavaScriptValueTexts(true).wholeText(argumentOf(value));
}

std::unique_ptr<ValueTexts> makeLimitedTexts() {
    return std::make_unique<JavaScriptValueTexts>(false);
}

QString typeNameOf(JS::HandleValue value) {
    if (value.isNull())
        return QStringLiteral("null");
    if (!value.isObject())
        return QString::fromLatin1(JS::InformalValueTypeName(value));
    const ObjectRoot object(value);
    if (isApplicationObject(object))
        return QStringLiteral("Object");
    if (JS::IsCallable(object))
        return QStringLiteral("function");
    const QString name = classNameOf(object);
    return name.isEmpty() ? QStringLiteral("object") : name;
}

QString quoted(const QString& text) {
    return literalOf(text, {.quote = '\''});
}

}  // namespace Tamrix::JavaScriptPlugin
