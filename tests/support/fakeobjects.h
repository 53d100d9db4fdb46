#pragma once

#include "interpreter/objects/globalfunctions.h"
#include "interpreter/objects/members.h"
#include "interpreter/objects/objectidentity.h"
#include "support/fakelanguage.h"

namespace Tamrix::Test {

// What scripts of the fake language do with objects. Each gives the value as text, or the error as
// "KIND: text", which stands for an exception of a language.

inline QString kindName(ObjectError::Kind kind) {
    static const char* const names[] = {"no member", "bad argument", "not found", "failed"};
    return names[static_cast<int>(kind)];
}

template <typename T>
QString errorText(const ObjectResult<T>& result) {
    return kindName(result.error().kind) + ": " + result.error().text;
}

/// The language's way to write a value: its type in front of all that is no text.
inline QString written(const SharedPtr<ScriptArgument>& value) {
    if (value->isObject())
        return objectText(value->toObject()).value();
    if (value->isList()) {
        QStringList elements;
        for (const auto& element : value->toList())
            elements.append(written(element));
        return "[" + elements.join(", ") + "]";
    }
    if (value->isMap()) {
        QStringList entries;
        for (const auto& [name, entry] : value->toMap())
            entries.append(name + ": " + written(entry));
        return "{" + entries.join(", ") + "}";
    }
    return value->isString() || value->isNull() ? value->toString()
                                                : value->typeName() + " " + value->toString();
}

inline QString written(const ObjectResult<SharedPtr<ScriptArgument>>& result) {
    return result ? written(*result) : errorText(result);
}

/// object.name
inline QString get(FakeContext& context, const SharedPtr<Object>& object, const QString& name) {
    const ObjectResult<Member> member = readMember(context, object, name);
    if (!member)
        return errorText(member);
    const auto* const method = std::get_if<SharedPtr<BoundMethod>>(&*member);
    return method ? (*method)->text() : written(std::get<0>(*member));
}

/// object.name = value; empty on success. A null value deletes.
inline QString set(FakeContext& context, const SharedPtr<Object>& object, const QString& name,
                   const SharedPtr<ScriptArgument>& value) {
    const ObjectResult<void> done = writeMember(context, object, name, value);
    return done ? QString() : errorText(done);
}

/// object.name(arguments)
inline QString call(FakeContext& context, const SharedPtr<Object>& object, const QString& name,
                    const CallArguments& arguments) {
    const ObjectResult<Member> member = readMember(context, object, name);
    if (!member)
        return errorText(member);
    return written(std::get<1>(*member)->call(context, arguments));
}

/// name(arguments)
inline QString call(FakeContext& context, const QString& name, const CallArguments& arguments) {
    return written(callGlobalFunction(context, name, arguments));
}

}  // namespace Tamrix::Test
