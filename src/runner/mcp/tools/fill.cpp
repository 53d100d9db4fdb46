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
    const QString text = arguments.text("text");
    ActArguments others;
    others.add(text);
    // No script contains a password. What is typed goes where the focus is within the target.
    const SharedPtr<Object> field = Session::objectOf(*meant);
    const QString key = passwordKeyOf(*meant);
    bool isPassword = isForPasswords(field);
    if (isPassword)
        session.recording().addPassword(text, key);
    others.whenDone = [&] {
        const Outcome<Meant> focused = isPassword ? meant : session.focused();
        const SharedPtr<Object> filled = focused ? Session::objectOf(*focused) : nullptr;
        isPassword = isPassword || isForPasswords(filled);
        if (!isPassword)
            return;
        session.recording().addPassword(text, key);
        // Also what was there before it.
        session.recording().addPassword(hiddenText(filled), key);
    };
    Outcome<ToolAnswer> answer = actOn(session, meant, function, others);
    if (answer && isPassword)
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
