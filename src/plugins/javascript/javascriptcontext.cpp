#include "plugins/javascript/javascriptcontext.h"

#include "interpreter/objects/objectidentity.h"
#include "plugins/javascript/javascriptinterpreter.h"

#include "plugins/javascript/nativefunctions.h"

namespace Tamrix::JavaScriptPlugin {

namespace {

/// Whether two values are equal to a tester: the same, or lists and objects of equal members. One
/// that holds itself is equal to one of the same shape. Values that are too deep throw
/// ScriptErrorSet with a RangeError. Remembers which objects it is comparing already.
class Comparison {
public:
    bool areEqual(JS::HandleValue left, JS::HandleValue right) {
        // The same; numbers of either kind by their value; what is not there in either way.
        if (left.isNullOrUndefined() && right.isNullOrUndefined())
            return true;
        const bool areNumbers = left.isNumeric() && right.isNumeric();
        return given<bool>(areNumbers ? JS::LooselyEqual : JS::StrictlyEqual, left, right) ||
               (left.isObject() && right.isObject() &&
                areEqualObjects(ObjectRoot(left), ObjectRoot(right)));
    }

private:
    bool areEqualObjects(JS::HandleObject left, JS::HandleObject right) {
        const SharedPtr<Object> one = applicationObjectOf(left);
        const SharedPtr<Object> other = applicationObjectOf(right);
        if (one && other)
            return isSameObject(one, other);
        js::AutoCheckRecursionLimit recursion(engineContext());
        checked(recursion.check(engineContext()));
        for (std::size_t index = 0; index < m_compared.length(); index += 2) {
            if (m_compared[index] == left.get() && m_compared[index + 1] == right.get())
                return true;
        }
        const js::ESClass kind = builtinClass(left);
        if (kind != builtinClass(right))
            return false;
        checked(m_compared.append(left) && m_compared.append(right));
        const bool equal = haveEqualMembers(kind, left, right);
        m_compared.shrinkBy(2);
        return equal;
    }

    bool haveEqualMembers(js::ESClass kind, JS::HandleObject left, JS::HandleObject right) {
        if (kind == js::ESClass::Date)
            return fromJsDate(JS::ObjectValue(*left)) == fromJsDate(JS::ObjectValue(*right));
        if (const std::optional<QByteArray> bytes = fromJsBytes(left))
            return bytes == fromJsBytes(right);
        ValueRoots first;
        ValueRoots second;
        if (!addMembers(kind, left, &first) || !addMembers(kind, right, &second))
            return false;
        bool equal = first.length() == second.length();
        for (std::size_t index = 0; equal && index < first.length(); ++index)
            equal = areEqual(first[index], second[index]);
        return equal;
    }

    /// Those of a list, or names and values in the order of the names. False when it is neither.
    static bool addMembers(js::ESClass kind, JS::HandleObject container, ValueRoots* members) {
        const bool isPlain = isPlainObject(container);
        if (isPlain) {
            const JavaScriptArgument object(JS::ObjectValue(*container));
            for (const auto& [name, value] : object.toMap())
                members->add(toJsText(name)).add(valueOf(value));
        } else if (isCollection(kind)) {
            elementsOf(container, members);
        }
        return isPlain || isCollection(kind);
    }

    JS::RootedObjectVector m_compared{engineContext()};
};

}  // namespace

// Values

JS::Value JavaScriptContext::makeValue(const SharedPtr<NativeScriptObject>& object) {
    if (!object)
        return JS::NullValue();
    const ObjectRoot* const known = m_interpreter.realm().nativePrototypes().find(object->typeId());
    return JS::ObjectValue(*makeHostObject(object, known ? *known : ObjectRoot()));
}

JS::Value JavaScriptContext::makeValue(const SharedPtr<ApplicationContext>& application) {
    // One object for each application, so that `===` tells whether two are the same.
    ScriptRealm& realm = m_interpreter.realm();
    const QString id = QString::number(application->id);
    ValueRoot known(propertyOf(realm.applicationContexts(), toKey(id)));
    if (!known.isObject()) {
        known.setObject(*makeHostObject(application, realm.applicationContextPrototype()));
        defineProperty(realm.applicationContexts(), id, known);
    }
    return known;
}

// Registration

void JavaScriptContext::defineName(const QString& owner, const QString& name,
                                   const JS::Value& value, unsigned attributes) {
    const ValueRoot kept(value);
    const JS::HandleObject global = m_interpreter.realm().global();
    ObjectRoot holder(owner.isEmpty() ? JS::ObjectValue(*global)
                                      : propertyOf(global, toKey(owner)));
    if (!holder) {
        holder = newObject();
        defineProperty(global, owner, holder, 0);
    }
    defineProperty(holder, name, kept, attributes);
}

void JavaScriptContext::define(const NativeFunction& function) {
    const QString& owner = function.signature().owner;
    defineName(owner, function.signature().name, JS::ObjectValue(*makeFunction(function)),
               owner.isEmpty() ? 0 : JSPROP_ENUMERATE);
}

void JavaScriptContext::defineMember(const NativeFunction& function) {
    const QString& owner = function.signature().owner;
    const bool isOfApplications = owner == QLatin1String("ApplicationContext");
    if (!isOfApplications && owner != QLatin1String("StepContext"))
        return LanguageContext::defineMember(function);
    ScriptRealm& realm = m_interpreter.realm();
    defineProperty(isOfApplications ? realm.applicationContextPrototype() : realm.stepContext(),
                   function.signature().name, makeMemberFunction(function), 0);
}

void JavaScriptContext::defineConstant(const QString& owner, const QString& name, int value) {
    defineName(owner, name, JS::Int32Value(value), 0);
}

// Positions

bool JavaScriptContext::lineInfoOfFrame(LineInfo& position, int ancestorLevel) const {
    JS::AutoFilename file;
    unsigned line = 0;
    LineInfo place;
    if (ancestorLevel == 0 && JS::DescribeScriptedCaller(engineContext(), &file, &line))
        place = placeOfCode(QString::fromUtf8(file.get()), static_cast<int>(line));
    if (!place.isValid()) {
        const std::vector<LineInfo> lines = runningLines();
        if (ancestorLevel >= static_cast<int>(lines.size()))
            return false;
        place = lines[static_cast<std::size_t>(ancestorLevel)];
    }
    position = place;
    return true;
}

// The language's own judgement

QString JavaScriptContext::explainArgument(const char* /*parameter*/) {
    QStringList lines;
    const auto texts = makeLimitedTexts();
    m_interpreter.attempt([&] {
        for (const ValueTexts::Part& each : JavaScriptDebugger::explainCaller())
            lines += lines.isEmpty() ? each.name : each.name + ": " + texts->textOf(each.value);
    });
    return lines.join('\n');
}

bool JavaScriptContext::valuesEqual(SharedPtr<ScriptArgument> left,
                                    SharedPtr<ScriptArgument> right) {
    return Comparison().areEqual(valueOf(left), valueOf(right));
}

std::pair<QString, QString> JavaScriptContext::evaluateForException(
    SharedPtr<ScriptArgument> code) {
    return attemptException(
        *code, {nullptr,
                [](const QString& text) {
                    JavaScriptDebugger::evaluateInCaller(text, "<test.exception>");
                },
                [&] { static_cast<const JavaScriptArgument*>(code.get())->called({}); }});
}

bool JavaScriptContext::evaluateCondition(const QString& expression, QString* error) {
    return attemptCondition(
        [&] {
            return argumentOf(JavaScriptDebugger::evaluateInCaller(
                                  '(' + expression.trimmed() + "\n)", "<waitFor>"))
                ->toBool();
        },
        error);
}

}  // namespace Tamrix::JavaScriptPlugin
