#include "runner/mcp/session/session.h"
#include "runner/mcp/tools/arguments.h"

namespace Tamrix::Mcp {

namespace {

Outcome<ToolAnswer> recordTo(Session& session, const Arguments& arguments) {
    Recording& recording = session.recording();
    const Outcome<> written = recording.writeTo(arguments.text("suite"), arguments.text("case"),
                                                arguments.text("language"));
    if (!written)
        return fail(written.error());
    return ToolAnswer{QStringLiteral("%1 has %2 actions; what is done from now on is added\n")
                          .arg(recording.file(), QString::number(recording.size()))};
}

}  // namespace

Tool recordToTool() {
    return {"record_to",
            "Writes all since start, and what follows, as the script of a test case",
            {{"suite", ParameterType::Text, Parameter::Required, "folder"},
             {"case", ParameterType::Text, Parameter::Required},
             {"language", ParameterType::Text, Parameter::Optional, "default py"}},
            recordTo};
}

}  // namespace Tamrix::Mcp
