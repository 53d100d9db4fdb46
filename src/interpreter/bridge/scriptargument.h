#pragma once

#include <QString>
#include <QVariant>
#include <map>
#include <optional>
#include <stdexcept>
#include <vector>

#include "base/export.h"
#include "base/shared.h"
#include "interpreter/bridge/nativescripttype.h"
#include "platform/objectmodel/applicationcontext.h"
#include "platform/objectmodel/object.h"
#include "platform/objectmodel/objectname.h"
#include "shared/testdata/testdataset.h"

namespace Tamrix {

/// Thrown where a value of a script holds others in more levels than can be passed on, as a list or
/// map that holds itself does. The text tells the limit.
class TAMRIX_EXPORT NestingError : public std::length_error {
public:
    using std::length_error::length_error;
};

/// One value of a script, wrapped by the language's plug-in. Script thread only.
///
/// The is...() operations are type tests, the to...() operations conversions; a conversion of a
/// value of another type gives the type's null value.
class TAMRIX_EXPORT ScriptArgument : public Shared {
public:
    using List = std::vector<SharedPtr<ScriptArgument>>;
    using Map = std::map<QString, SharedPtr<ScriptArgument>>;

    /// The language's name of the value's type.
    virtual QString typeName() const = 0;
    virtual bool isBool() const = 0;
    /// Any number, integer or float.
    virtual bool isNumber() const = 0;
    bool isInteger() const { return m_keepsInteger || holdsInteger(); }
    virtual bool isString() const = 0;
    /// What the language treats as text; by default isString().
    virtual bool isStringLike() const;
    virtual bool isObject() const = 0;
    virtual bool isClass() const;
    /// A script function.
    virtual bool isCallable() const = 0;
    virtual bool isList() const = 0;
    virtual bool isMap() const = 0;
    /// An instance of the native class with this type identifier, or of one derived from it.
    virtual bool isNative(void* typeId) const = 0;

    virtual bool toBool() const = 0;
    virtual double toDouble() const = 0;
    long long toInt() const { return m_keepsInteger ? m_keptInteger : convertedToInt(); }
    /// Any value as text.
    virtual QString toString() const = 0;
    virtual SharedPtr<Object> toObject() const = 0;
    virtual const Class* toClass() const;
    virtual List toList() const = 0;
    virtual Map toMap() const = 0;
    /// Null when the value is not an instance of the class or of one derived from it.
    virtual SharedPtr<NativeScriptObject> toNative(void* typeId) const = 0;
    /// The data set of a value made by ScriptContext::createTestDataSet(), else null.
    virtual SharedPtr<TestDataSet> toTestDataSet() const = 0;
    virtual SharedPtr<ApplicationContext> toApplicationContext() const = 0;
    /// The text of a string, the qualified name of a map of properties. Throws NestingError.
    virtual QString toRealName() const;
    /// Calls a callable and returns its result. A raised error lands in `*error`, which the caller
    /// starts as an empty string; the result is then null.
    virtual SharedPtr<ScriptArgument> call(const List& arguments, QString* error) = 0;
    /// Names a callable: the same text for the same script function over the run.
    virtual QString callableIdentifier() const;
    /// The value as the wanted value of a property in an object's name. Throws NestingError.
    virtual PropertyValue toPropertyValue() const;
    /// The record behind a value that is one row of a data set, else null. Owned by its set.
    virtual const TestDataRecord* toTestDataRecord() const;
    /// The value as an application takes it: bool, number, text, list, map, objects as
    /// SharedPtr<Object>; a language adds what it has beyond that. Nothing for any other value, and
    /// for one that holds such a value. Throws NestingError.
    virtual std::optional<QVariant> toVariant() const;
    /// Whether it is the value by which the language says that there is none. By default false.
    virtual bool isNull() const;

    /// The native object as a T, null when it is of another class.
    template <typename T>
    SharedPtr<T> toNative() const {
        return staticPointerCast<T>(toNative(T::staticTypeId()));
    }

protected:
    /// What the value is, for a wrapper that knows it to be an integer: who asks needs no virtual
    /// call then.
    void keepInteger(long long value) {
        m_keepsInteger = true;
        m_keptInteger = value;
    }
    void keepNoInteger() { m_keepsInteger = false; }

    // isInteger() and toInt() of a value that is not kept.
    virtual bool holdsInteger() const = 0;
    virtual long long convertedToInt() const = 0;

private:
    bool m_keepsInteger = false;
    long long m_keptInteger = 0;
};

/// Whether the value names an object: a string or a map of properties. Null names nothing.
TAMRIX_EXPORT bool isStringOrObjectName(const SharedPtr<ScriptArgument>& argument);

/// The object's name that the value stands for: toRealName() of a map that is not a string,
/// toString() of anything else, an empty string for null. Throws NestingError.
TAMRIX_EXPORT QString serializeObjectName(const SharedPtr<ScriptArgument>& argument);

}  // namespace Tamrix
