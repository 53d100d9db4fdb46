#include "runner/mcp/screen/viewtext.h"
#include "runner/mcp/session/session.h"
#include "runner/mcp/tools/arguments.h"

namespace Tamrix::Mcp {

namespace {

Outcome<ToolAnswer> start(Session& session, const Arguments& arguments) {
    if (const Outcome<> started = session.start(arguments.text("program")); !started)
        return fail(started.error());
    // A window that comes a little later belongs to it.
    constexpr int longestWithoutWindow = 50;
    Outcome<const View*> view = session.lookAtRest();
    for (int count = 0; view && (*view)->empty() && count < longestWithoutWindow; ++count)
        view = session.lookAtRest();
    view = view ? session.look() : view;
    if (!view)
        return fail(view.error());
    return ToolAnswer{viewText(**view, {})};
}

}  // namespace

Tool startTool() {
    return {"start",
            "Starts a program (command line), ends the one before; tells what is visible",
            {{"program", ParameterType::Text, Parameter::Required}},
            start};
}

}  // namespace Tamrix::Mcp
