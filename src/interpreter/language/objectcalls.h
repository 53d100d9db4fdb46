#pragma once

#include <QString>
#include <QStringList>
#include <variant>

#include "base/export.h"
#include "interpreter/language/scriptfailure.h"
#include "interpreter/objects/members.h"

namespace Tamrix {

class LanguageInterpreter;

// What scripts do with an application's objects, from the check of the thread to the result or the
// failure. `active` is the interpreter whose scripts run, null when there is none. A value that a
// script gets is never null; one of a method without result is the language's own null.
// ScriptErrorSet passes.

/// A property's value, or the method of that name.
TAMRIX_EXPORT tl::expected<Member, ScriptFailure> getMember(LanguageInterpreter* active,
                                                            const SharedPtr<Object>& object,
                                                            const QString& name);
/// A property's value alone; a method is none.
TAMRIX_EXPORT ScriptResult getProperty(LanguageInterpreter* active, const SharedPtr<Object>& object,
                                       const QString& name);
/// A null value asks for the deletion of the property, which is always refused.
TAMRIX_EXPORT tl::expected<void, ScriptFailure> setMember(LanguageInterpreter* active,
                                                          const SharedPtr<Object>& object,
                                                          const QString& name,
                                                          const SharedPtr<ScriptArgument>& value);
/// As scripts write them.
TAMRIX_EXPORT tl::expected<QStringList, ScriptFailure> listMembers(LanguageInterpreter* active,
                                                                   const SharedPtr<Object>& object);
/// The object for people: objectText().
TAMRIX_EXPORT tl::expected<QString, ScriptFailure> writtenObject(LanguageInterpreter* active,
                                                                 const SharedPtr<Object>& object);
TAMRIX_EXPORT ScriptResult callMethod(LanguageInterpreter* active,
                                      const SharedPtr<BoundMethod>& method,
                                      const CallArguments& arguments);
/// A method by its name, for a language in which getting and calling are one. Without arguments a
/// property of the name gives its value.
TAMRIX_EXPORT ScriptResult callMember(LanguageInterpreter* active, const SharedPtr<Object>& object,
                                      const QString& name, const CallArguments& arguments);
/// A global function of the current application.
TAMRIX_EXPORT ScriptResult callGlobal(LanguageInterpreter* active, const QString& name,
                                      CallArguments arguments);

}  // namespace Tamrix
