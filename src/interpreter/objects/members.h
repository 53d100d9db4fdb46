#pragma once

#include <QString>
#include <QStringList>
#include <variant>

#include "base/export.h"
#include "base/shared.h"
#include "interpreter/bridge/scriptargument.h"
#include "interpreter/bridge/scriptcontext.h"
#include "interpreter/objects/objectcall.h"
#include "interpreter/objects/objecterror.h"
#include "platform/objectmodel/object.h"

namespace Tamrix {

// The members of an object as scripts see them: its properties, and its methods. Names are the
// application's, which ScriptContext::scriptName() turns into what scripts write. Of a property and
// a method of one name the property is meant; what an object has beyond its class comes last.
// Script thread only.

/// A method of an object, by name: what the class knows under it is asked at each call.
class TAMRIX_EXPORT BoundMethod : public Shared {
public:
    /// `object` is not null.
    BoundMethod(SharedPtr<Object> object, const QString& name)
        : m_object(std::move(object)), m_name(name) {}

    /// Class and name, for messages: QPushButton.click.
    QString displayName() const { return m_object->className() + '.' + m_name; }
    /// For people; asks the application.
    QString text() const;

    /// Calls the method and gives its result, null of the language for none. Which of several
    /// methods of the name is meant is the application's to choose, which knows the types best:
    /// only a number of arguments that none of them takes is refused before.
    ObjectResult<SharedPtr<ScriptArgument>> call(ScriptContext& context,
                                                 const CallArguments& arguments) const;

private:
    SharedPtr<Object> m_object;
    QString m_name;
};

/// A property's value, or a method.
using Member = std::variant<SharedPtr<ScriptArgument>, SharedPtr<BoundMethod>>;

TAMRIX_EXPORT ObjectResult<Member> readMember(ScriptContext& context,
                                              const SharedPtr<Object>& object, const QString& name);

/// The value of a property; a method is none.
TAMRIX_EXPORT ObjectResult<SharedPtr<ScriptArgument>> readProperty(ScriptContext& context,
                                                                   const SharedPtr<Object>& object,
                                                                   const QString& name);

/// Sets a property; a null value asks for its deletion, which is always refused.
TAMRIX_EXPORT ObjectResult<void> writeMember(ScriptContext& context,
                                             const SharedPtr<Object>& object, const QString& name,
                                             const SharedPtr<ScriptArgument>& value);

/// Names of the properties and methods that the object's class has, as scripts write them, each
/// once.
TAMRIX_EXPORT ObjectResult<QStringList> memberNames(ScriptContext& context,
                                                    const SharedPtr<Object>& object);

}  // namespace Tamrix
