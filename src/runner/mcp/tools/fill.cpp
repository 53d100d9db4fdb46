#include "platform/objectmodel/passwordfields.h"
#include "runner/mcp/tools/acting.h"

namespace Tamrix::Mcp {

namespace {

/// Under which the run is handed the password: the field's own name, as far as a variable takes it.
QString passwordKeyOf(const Meant& meant) {
    QString key = meant.object ? meant.object->objectName() : QString();
    for (QChar& character : key) {
        if (character.unicode() > 'z' || !character.isLetterOrNumber())
            character = QLatin1Char('_');
    }
    return key.isEmpty() ? QStringLiteral("password") : key;
}

Outcome<ToolAnswer> fill(Session& session, const Arguments& arguments) {
    const Outcome<Meant> meant = session.meant(arguments.text("target"));
    if (!meant)
        return fail(meant.error());
    const char* const function = arguments.flag("type", false) ? "typeText" : "fill";
    ActArguments others;
    others.add(arguments.text("text"));
    const SharedPtr<Object> field =
        meant->object
            ? meant->object
            : meant->application->access().findObject(ObjectName(meant->name)).value_or(nullptr);
    if (!isForPasswords(field))
        return actOn(session, meant, function, others);
    // No script contains a password.
    const QString key = passwordKeyOf(*meant);
    others.inScript = {ActionValue(PasswordKey{key})};
    Outcome<ToolAnswer> answer = actOn(session, meant, function, others);
    if (answer)
        answer->text += QStringLiteral("runs take the password from TAMRIX_PASSWORD_%1\n").arg(key);
    return answer;
}

}  // namespace

Tool fillTool() {
    return {"fill",
            "Sets a field's whole text",
            {targetParameter,
             {"text", ParameterType::Text, Parameter::Required},
             {"type", ParameterType::Flag, Parameter::Optional, "types at the cursor instead"}},
            fill};
}

}  // namespace Tamrix::Mcp
