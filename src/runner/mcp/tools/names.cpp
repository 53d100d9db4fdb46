#include "runner/applications/objectnames.h"
#include "runner/mcp/tools/acting.h"

namespace Tamrix::Mcp {

namespace {

Outcome<ToolAnswer> names(Session& session, const Arguments& arguments) {
    const Outcome<Meant> meant = session.meant(arguments.text("target"));
    if (!meant)
        return fail(meant.error());
    Access& access = meant->application->access();
    if (!meant->object) {
        const Outcome<ObjectNames> described = describeNames(access, ObjectName(meant->name));
        if (!described)
            return fail(described.error());
        return ToolAnswer{described->text};
    }
    const Outcome<QList<CheckedName>> list = access.namesOf(meant->object);
    if (!list)
        return fail(list.error());
    QString text;
    for (const CheckedName& each : *list) {
        text += each.name;
        if (each.count != 1)
            text += QStringLiteral("  (matches %1 objects)").arg(each.count);
        text += QLatin1Char('\n');
    }
    return ToolAnswer{text};
}

}  // namespace

Tool namesTool() {
    return {
        "names", "Names that find an object in scripts, the best first", {targetParameter}, names};
}

}  // namespace Tamrix::Mcp
