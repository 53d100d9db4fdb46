// The search that failed and stopped: its state is looked at and changed.

#include <json/json.h>

#include <QUrl>
#include <exception>
#include <memory>

#include "interpreter/bridge/internaldebugger.h"
#include "interpreter/debugger/lineprotocol/commandfunctions.h"

namespace Tamrix {

namespace {

/// The search behind the stop, if it is of the kind that the command means.
Outcome<InternalDebugger*> searchOfKind(const CommandCall& call, const QString& wanted) {
    InternalDebugger* const search = call.debugger.internalDebugger();
    const QString kind = search ? search->contextName() : QStringLiteral("<none>");
    if (!search || kind != wanted) {
        return fail(FailureKind::BadArgument,
                    QStringLiteral("context mismatch (expected %1, got %2)").arg(kind, wanted));
    }
    return search;
}

/// What is malformed in the text is a failure, as is a text that is no object.
Outcome<Json::Value> parseObject(const QString& text) {
    Json::CharReaderBuilder builder;
    Json::CharReaderBuilder::strictMode(&builder.settings_);
    const std::unique_ptr<Json::CharReader> reader(builder.newCharReader());
    const std::string bytes = text.toStdString();
    Json::Value value;
    std::string errors;
    bool isParsed = false;
    try {
        isParsed = reader->parse(bytes.data(), bytes.data() + bytes.size(), &value, &errors);
    } catch (const std::exception& error) {
        // The parser gives up in this way above its limit of depth.
        errors = error.what();
    }
    if (!isParsed) {
        return fail(FailureKind::BadArgument,
                    QStringLiteral("Invalid JSON: %1").arg(QString::fromStdString(errors)));
    }
    if (!value.isObject())
        return fail(FailureKind::BadArgument, QStringLiteral("JSON data is not an object"));
    return value;
}

Outcome<> setState(const CommandCall& call) {
    if (call.arguments.size() < 2)
        return fail(FailureKind::BadArgument, QStringLiteral("command requires two arguments"));
    const Outcome<InternalDebugger*> search = searchOfKind(call, call.arguments.first());
    if (!search)
        return fail(search.error());
    const Outcome<Json::Value> state =
        parseObject(QUrl::fromPercentEncoding(call.arguments.at(1).toUtf8()));
    if (!state)
        return fail(state.error());
    try {
        (*search)->setState(*state);
    } catch (const std::exception& error) {
        return fail(FailureKind::BadArgument, QString::fromUtf8(error.what()));
    }
    return {};
}

Outcome<std::string> stateText(const CommandCall& call) {
    if (call.arguments.isEmpty())
        return fail(FailureKind::BadArgument, QStringLiteral("command requires one arguments"));
    const Outcome<InternalDebugger*> search = searchOfKind(call, call.arguments.first());
    if (!search)
        return fail(search.error());
    return searchStateText(**search);
}

}  // namespace

std::string searchStateText(const InternalDebugger& search) {
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "";
    return Json::writeString(builder, search.getState());
}

CommandEffect setInterpreterStateForCommand(const CommandCall& call) {
    const Outcome<> isSet = setState(call);
    call.output.print("setInterpreterStateFor " +
                      (isSet ? "ok:" : "error: " + call.output.encoded(isSet.error().text)));
    return CommandEffect::Stays;
}

CommandEffect getInterpreterStateForCommand(const CommandCall& call) {
    const Outcome<std::string> state = stateText(call);
    // Meant: the state has a line end of its own, so that the answer ends in an empty line.
    call.output.print(
        "getInterpreterStateFor " +
        (state ? "ok: " + *state + '\n' : "error: " + call.output.encoded(state.error().text)));
    return CommandEffect::Stays;
}

}  // namespace Tamrix
