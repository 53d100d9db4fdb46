#include "plugins/javascript/valuetext.h"

#include <js/Conversions.h>
#include <js/Object.h>
#include <js/Proxy.h>
#include <jsfriendapi.h>

#include <QRegularExpression>
#include <QStringList>

#include "interpreter/objects/objectidentity.h"
#include "plugins/javascript/errors.h"
#include "plugins/javascript/hostobjects.h"
#include "plugins/javascript/objectparts.h"
#include "plugins/javascript/objectproxy.h"
#include "plugins/javascript/values.h"

namespace Tamrix::JavaScriptPlugin {

namespace {

/// Objects in objects; deeper ones are left out.
constexpr std::size_t deepest = 50;

QString plainText(JS::HandleValue value) {
    return fromJsString(checked(JS::ToString(engineContext(), value)));
}

/// What an accessor of the engine's own gives; an empty text for a failure, which is forgotten.
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
JS::Value inheritedData(JS::HandleObject object, const char* name) {
    JSContext* const context = engineContext();
    JS::RootedString text(context, checked(JS_AtomizeString(context, name)));
    JS::RootedId key(context);
    checked(JS_StringToId(context, text, &key));
    JS::RootedObject holder(context, object);
    while (holder && !js::IsProxy(holder)) {
        bool hasGetter = false;
        JS::RootedValue value(context, dataPropertyOf(holder, key, &hasGetter));
        if (hasGetter || !value.isUndefined())
            return value;
        JS::RootedObject next(context);
        checked(JS_GetPrototype(context, holder, &next));
        holder = next;
    }
    return JS::UndefinedValue();
}

/// Writes lists and objects with what is in them.
class Writer {
public:
    QString text(JS::HandleValue value) {
        if (value.isString())
            return m_holders.empty() ? fromJsString(value.toString())
                                     : quoted(fromJsString(value.toString()));
        if (value.isSymbol()) {
            JS::Rooted<JS::Symbol*> symbol(m_context, value.toSymbol());
            return fromKey(JS::PropertyKey::Symbol(symbol));
        }
        if (!value.isObject())
            return plainText(value);
        JS::RootedObject object(m_context, &value.toObject());
        for (std::size_t index = 0; index < m_holders.length(); ++index) {
            if (m_holders[index] == object.get())
                return QStringLiteral("[Circular]");
        }
        if (m_holders.length() >= deepest)
            return QStringLiteral("...");
        checked(m_holders.append(object));
        const QString written = objectText(value, object);
        m_holders.popBack();
        return written;
    }

private:
    QString objectText(JS::HandleValue value, JS::HandleObject object) {
        if (const SharedPtr<Object> own = applicationObjectOf(object)) {
            const ObjectResult<QString> text = Tamrix::objectText(own);
            return text ? *text : '<' + own->className() + " object>";
        }
        if (const auto application = heldBy<ApplicationContext>(object))
            return '<' + application->displayString() + '>';
        if (JS::IsCallable(object))
            return functionText(object);
        js::ESClass kind = js::ESClass::Other;
        checked(JS::GetBuiltinClass(m_context, object, &kind));
        switch (kind) {
            case js::ESClass::Array:
                return '[' + partsText(object) + ']';
            case js::ESClass::Map:
                return "Map {" + partsText(object) + '}';
            case js::ESClass::Set:
                return "Set {" + partsText(object) + '}';
            case js::ESClass::Date: {
                const QDateTime time = fromJsDate(value);
                return time.isValid() ? time.toString(Qt::ISODateWithMs)
                                      : QStringLiteral("Invalid Date");
            }
            case js::ESClass::Error:
                return errorText(object);
            case js::ESClass::Object:
                return hasOwnText(object) ? scriptText(value, object) : membersText(object);
            default:
                return scriptText(value, object);
        }
    }

    QString partsText(JS::HandleObject object) {
        static const QRegularExpression s_plainName(QStringLiteral("^[A-Za-z_$][\\w$]*$"));
        ObjectParts parts(object);
        QStringList texts;
        for (int number = 0; number < parts.count(); ++number) {
            parts.read(number, [this](JS::HandleValue key) { return text(key); });
            const QString& name = parts.property();
            const bool isPlain = name.isNull() || name.contains(s_plainName);
            texts.append((isPlain ? parts.label() : quoted(name) + ": ") +
                         (parts.hasGetter() ? QStringLiteral("[Getter]") : text(parts.value())));
        }
        return texts.join(", ");
    }

    QString membersText(JS::HandleObject object) {
        const QString className = isPlainObject(object) ? QString() : classNameOf(object);
        return (className.isEmpty() ? QString() : className + ' ') + '{' + partsText(object) + '}';
    }

    /// Whether the script has said how objects of the kind are written.
    bool hasOwnText(JS::HandleObject object) {
        JS::RootedObject root(m_context, checked(JS::GetRealmObjectPrototype(m_context)));
        JS::RootedValue own(m_context, inheritedData(object, "toString"));
        return own.isObject() && own != inheritedData(root, "toString");
    }

    QString scriptText(JS::HandleValue value, JS::HandleObject object) {
        const QString text = quietly([&] { return plainText(value); });
        if (!text.isNull())
            return text;
        return QStringLiteral("<unprintable %1 object>").arg(classNameOf(object));
    }

    JSContext* m_context = engineContext();
    JS::RootedObjectVector m_holders{m_context};
};

}  // namespace

QString textOf(JS::HandleValue value) {
    return Writer().text(value);
}

QString quoted(const QString& text) {
    QString written;
    for (const QChar character : text) {
        if (character == '\\' || character == '\'')
            written += '\\';
        if (character == '\n')
            written += "\\n";
        else if (character.unicode() < 0x20)
            written += QStringLiteral("\\x%1").arg(character.unicode(), 2, 16, QLatin1Char('0'));
        else
            written += character;
    }
    return '\'' + written + '\'';
}

QString functionText(JS::HandleObject function) {
    const QString name = quietly([&] {
        JS::RootedValue text(engineContext(), inheritedData(function, "name"));
        return text.isString() ? fromJsString(text.toString()) : QString();
    });
    return name.isEmpty() ? QStringLiteral("[Function]")
                          : QStringLiteral("[Function: %1]").arg(name);
}

QString classNameOf(JS::HandleObject object) {
    return quietly([&] {
        JSContext* const context = engineContext();
        JS::RootedValue maker(context, inheritedData(object, "constructor"));
        if (!maker.isObject() || js::IsProxy(&maker.toObject()))
            return QString();
        JS::RootedObject constructor(context, &maker.toObject());
        JS::RootedValue name(context, inheritedData(constructor, "name"));
        return name.isString() ? fromJsString(name.toString()) : QString();
    });
}

QString errorText(JS::HandleObject error) {
    JSContext* const context = engineContext();
    const auto textProperty = [&](const char* property) {
        return quietly([&] {
            JS::RootedValue value(context, propertyOf(error, property));
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

QString typeNameOf(JS::HandleValue value) {
    if (value.isNull())
        return QStringLiteral("null");
    if (!value.isObject())
        return QString::fromLatin1(JS::InformalValueTypeName(value));
    JS::RootedObject object(engineContext(), &value.toObject());
    if (isApplicationObject(object))
        return QStringLiteral("Object");
    if (JS::IsCallable(object))
        return QStringLiteral("function");
    const QString name = classNameOf(object);
    return name.isEmpty() ? QStringLiteral("object") : name;
}

}  // namespace Tamrix::JavaScriptPlugin
