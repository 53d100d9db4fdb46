#include "runner/mcp/tools/acting.h"

namespace Tamrix::Mcp {

void ActArguments::add(int number) {
    values.append(number);
    inScript.append(ActionValue(qint64(number)));
}

void ActArguments::add(const QString& text) {
    values.append(text);
    inScript.append(ActionValue(text));
}

Outcome<ToolAnswer> actOn(Session& session, const Outcome<Meant>& meant, const char* function,
                          const ActArguments& others) {
    if (!meant)
        return fail(meant.error());
    const QString name = QLatin1String(function);
    const Act act{name, others.values, [&]() -> ScriptAction {
                      if (others.whenDone)
                          others.whenDone();
                      return FunctionAction{name, meant->name, others.inScript,
                                            others.namedInScript};
                  }};
    const Outcome<QString> done = session.perform(*meant, act);
    if (!done)
        return fail(done.error());
    return ToolAnswer{*done};
}

Outcome<ToolAnswer> actOn(Session& session, const Arguments& arguments, const char* function,
                          const ActArguments& others) {
    return actOn(session, session.meant(arguments.text("target")), function, others);
}

}  // namespace Tamrix::Mcp
