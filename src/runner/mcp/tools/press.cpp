#include <algorithm>

#include "platform/objectmodel/passwordfields.h"
#include "runner/mcp/tools/acting.h"
#include "wire/keynames.h"

namespace Tamrix::Mcp {

namespace {

/// Whether a field shows what the keys make.
bool entersText(const QString& keys) {
    QString error;
    const Wire::KeyCombination combination = Wire::parseKeys(keys, &error);
    return std::any_of(combination.begin(), combination.end(), [](const Wire::Key& key) {
               return !key.text.isEmpty() && key.text.at(0).isPrint();
           }) &&
           std::none_of(combination.begin(), combination.end(), [](const Wire::Key& key) {
               return key.code == Qt::Key_Control || key.code == Qt::Key_Alt ||
                      key.code == Qt::Key_Meta;
           });
}

Outcome<ToolAnswer> press(Session& session, const Arguments& arguments) {
    const Outcome<Meant> meant =
        arguments.has("target") ? session.meant(arguments.text("target")) : session.focused();
    if (!meant)
        return fail(meant.error());
    if (entersText(arguments.text("keys")) && isForPasswords(Session::objectOf(*meant)))
        return fail(FailureKind::Refused,
                    QStringLiteral("press: %1 hides what is entered: use fill, which keeps it out "
                                   "of the script")
                        .arg(meant->text));
    ActArguments others;
    others.add(arguments.text("keys"));
    return actOn(session, meant, "press", others);
}

}  // namespace

Tool pressTool() {
    return {"press",
            "Presses keys: Ctrl+S, Return",
            {{"keys", ParameterType::Text, Parameter::Required},
             {"target", ParameterType::Text, Parameter::Optional, "default: the focus"}},
            press};
}

}  // namespace Tamrix::Mcp
