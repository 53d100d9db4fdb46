#include "interpreter/objects/members.h"

#include "interpreter/objects/nearestnames.h"
#include "interpreter/objects/objectvalues.h"
#include "platform/objectmodel/objectclass.h"

namespace Tamrix {

namespace {

using Kind = ObjectError::Kind;

/// A member's name for messages, made when it is wanted.
struct MemberName {
    const SharedPtr<Object>& object;
    const QString& name;

    QString operator()() const { return object->className() + '.' + name; }
};

/// The object's class, null when it has none; an application that can't tell it any more is an
/// error.
ObjectResult<const Class*> classOf(const SharedPtr<Object>& object) {
    Inspector::self()->setLastError(QString());
    const Class* const objectClass = object->objectClass();
    if (!objectClass && !Inspector::self()->lastError().isEmpty())
        return applicationError({FailureKind::Failed, Inspector::self()->lastError()});
    return objectClass;
}

bool hasMethod(const Class* objectClass, const QString& name) {
    return objectClass && !objectClass->methodsByName(name).isEmpty();
}

QStringList namesOf(const ScriptContext& context, const Class* objectClass) {
    QStringList names;
    for (int index = 0; objectClass && index < objectClass->numProperties(); ++index)
        names.append(context.scriptName(objectClass->property(index)->name()));
    for (int index = 0; objectClass && index < objectClass->numMethods(); ++index)
        names.append(context.scriptName(objectClass->method(index)->name()));
    names.removeDuplicates();
    return names;
}

Member asMember(const SharedPtr<ScriptArgument>& value) {
    return Member(std::in_place_index<0>, value);
}

/// That there is no such member, with the nearest names that there are.
tl::unexpected<ObjectError> noMember(const ScriptContext& context, const SharedPtr<Object>& object,
                                     const QString& name) {
    const QString written = context.scriptName(name);
    QString text =
        QStringLiteral("'%1' has no property or method '%2'").arg(object->className(), written);
    const QStringList nearest = nearestNames(written, namesOf(context, object->objectClass()));
    if (!nearest.isEmpty())
        text += "; the nearest: '" + nearest.join("', '") + "'";
    return objectError(Kind::NoMember, text);
}

tl::unexpected<ObjectError> noProperty(const ScriptContext& context,
                                       const SharedPtr<Object>& object, const QString& name) {
    return objectError(Kind::NoMember, QStringLiteral("'%1' of '%2' is a method: call it instead")
                                           .arg(context.scriptName(name), object->className()));
}

}  // namespace

ObjectResult<Member> readMember(ScriptContext& context, const SharedPtr<Object>& object,
                                const QString& name) {
    return askApplication(MemberName{object, name}, [&]() -> ObjectResult<Member> {
        const ObjectResult<const Class*> objectClass = classOf(object);
        if (!objectClass)
            return tl::unexpected(objectClass.error());
        if (const Property* property = *objectClass ? (*objectClass)->property(name) : nullptr)
            return scriptValue(context, object->readProperty(*property)).map(asMember);
        if (hasMethod(*objectClass, name))
            return Member(std::in_place_index<1>, new BoundMethod(object, name));
        // One object may have more than its class.
        if (const Outcome<SharedPtr<Object>> value = object->readProperty(Property(name)))
            return scriptValue(context, value).map(asMember);
        return noMember(context, object, name);
    });
}

ObjectResult<SharedPtr<ScriptArgument>> readProperty(ScriptContext& context,
                                                     const SharedPtr<Object>& object,
                                                     const QString& name) {
    const ObjectResult<Member> member = readMember(context, object, name);
    if (!member)
        return tl::unexpected(member.error());
    if (const auto* const value = std::get_if<SharedPtr<ScriptArgument>>(&*member))
        return *value;
    return noProperty(context, object, name);
}

ObjectResult<void> writeMember(ScriptContext& context, const SharedPtr<Object>& object,
                               const QString& name, const SharedPtr<ScriptArgument>& value) {
    return askApplication(MemberName{object, name}, [&]() -> ObjectResult<void> {
        const ObjectResult<const Class*> objectClass = classOf(object);
        if (!objectClass)
            return tl::unexpected(objectClass.error());
        if (hasMethod(*objectClass, name))
            return noProperty(context, object, name);
        // One object may have more than its class.
        const Property own(name, QString(), true);
        const Property* property = *objectClass ? (*objectClass)->property(name) : nullptr;
        if (!property && object->readProperty(own))
            property = &own;
        if (!property)
            return noMember(context, object, name);
        if (!value || !property->isWritable())
            return objectError(Kind::NoMember,
                               QStringLiteral("The property '%1' of '%2' can't be %3")
                                   .arg(context.scriptName(name), object->className(),
                                        QLatin1String(value ? "written" : "deleted")));
        const Outcome<SharedPtr<Object>> written = objectOfValue(value, property->typeName());
        if (!written)
            return objectError(Kind::BadArgument, written.error().text);
        if (const Outcome<> outcome = object->writeProperty(*property, *written); !outcome)
            return applicationError(outcome.error());
        return {};
    });
}

ObjectResult<QStringList> memberNames(ScriptContext& context, const SharedPtr<Object>& object) {
    return askApplication(
        [] { return QStringLiteral("dir"); },
        [&]() -> ObjectResult<QStringList> { return namesOf(context, object->objectClass()); });
}

// Methods

QString BoundMethod::text() const {
    return "<method " + displayName() + " of " + m_object->realName() + ">";
}

ObjectResult<SharedPtr<ScriptArgument>> BoundMethod::call(ScriptContext& context,
                                                          const CallArguments& arguments) const {
    const QString function = displayName();
    return askApplication(
        [&] { return function; },
        [&]() -> ObjectResult<SharedPtr<ScriptArgument>> {
            if (const ObjectResult<void> plain = refuseNamed(function, arguments); !plain)
                return tl::unexpected(plain.error());
            const Class* const objectClass = m_object->objectClass();
            const QList<const Method*> methods =
                objectClass ? objectClass->methodsByName(m_name) : QList<const Method*>();
            const auto count = static_cast<int>(arguments.positional.size());
            const Method* chosen = nullptr;
            QStringList known;
            for (const Method* method : methods) {
                known.append("(" + joinArguments(method->signature(), ", ") + ")");
                if (!chosen && method->signature().argumentCount() == count)
                    chosen = method;
            }
            if (!chosen)
                return objectError(Kind::BadArgument,
                                   QStringLiteral("%1() takes %2, not %3 arguments")
                                       .arg(function, known.join(" or "), QString::number(count)));
            const ObjectResult<ObjectList> objects =
                objectsOfArguments(function, arguments.positional);
            if (!objects)
                return tl::unexpected(objects.error());
            if (!chosen->deprecationMessage().isEmpty())
                logDeprecationWarning(Interpreter::self(), chosen,
                                      "(" + joinArguments(chosen->signature(), ", ") + ")");
            return scriptValue(context, chosen->invoke(m_object, *objects));
        });
}

}  // namespace Tamrix
