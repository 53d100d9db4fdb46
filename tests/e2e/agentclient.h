#pragma once

#include <gtest/gtest.h>

#include <QRegularExpression>
#include <QTemporaryDir>
#include <algorithm>
#include <vector>

#include "e2e/runnerprocess.h"
#include "runner/mcp/protocol/json.h"

namespace Tamrix::Test {

/// A coding agent that speaks with "tamrixrunner mcp" as a script tells it.
class ScriptedAgent {
public:
    ScriptedAgent() {
        runner.setVariable("HOME", home.path());
        runner.setVariable("XDG_CONFIG_HOME", home.path());
        runner.setVariable("XDG_DATA_HOME", home.path());
        runner.startDialogue({"mcp"});
    }

    /// The message that comes next.
    Json::Value receive() {
        QString lines = m_rest;
        while (!lines.contains('\n')) {
            if (!runner.waitForOutput("\n")) {
                ADD_FAILURE() << "no answer: " << runner.errors().toStdString();
                return {};
            }
            lines += runner.takeOutput();
        }
        m_rest = lines.section('\n', 1);
        return Mcp::parseJson(lines.section('\n', 0, 0).toUtf8()).value_or(Json::Value("no JSON"));
    }
    Json::Value request(const char* method, const Json::Value& params) {
        Json::Value message(Json::objectValue);
        message["jsonrpc"] = "2.0";
        message["id"] = ++m_lastId;
        message["method"] = method;
        message["params"] = params;
        runner.type(Mcp::jsonLine(message) + '\n');
        return receive();
    }
    /// The whole result of a tool.
    Json::Value call(const char* tool, const Json::Value& arguments) {
        Json::Value params(Json::objectValue);
        params["name"] = tool;
        params["arguments"] = arguments;
        return request("tools/call", params)["result"];
    }
    /// What a tool answers; "error: " stands in front of a failure.
    QString answer(const char* tool, const Json::Value& arguments = Json::objectValue) {
        const Json::Value result = call(tool, arguments);
        if (!result["content"].isArray())
            return "no result";
        const QString text = Mcp::textOf(result["content"][0]["text"]);
        return result["isError"].asBool() ? "error: " + text : text;
    }
    /// The same for an act; its size is kept.
    QString act(const char* tool, const Json::Value& arguments) {
        const QString text = answer(tool, arguments);
        EXPECT_FALSE(text.startsWith("error")) << text.toStdString();
        m_actSizes.push_back(text.toUtf8().size());
        return text;
    }
    int medianActSize() {
        std::sort(m_actSizes.begin(), m_actSizes.end());
        return m_actSizes.empty() ? 0 : m_actSizes[m_actSizes.size() / 2];
    }

    RunnerProcess runner;
    QTemporaryDir home;

private:
    int m_lastId = 0;
    QString m_rest;
    std::vector<int> m_actSizes;
};

/// The ref of the first line of a snapshot in which the expression matches behind the ref; "none".
inline std::string refOf(const QString& snapshot, const QString& expression) {
    const QRegularExpression line("\\b(e[0-9]+) " + expression);
    const QRegularExpressionMatch match = line.match(snapshot);
    EXPECT_TRUE(match.hasMatch()) << expression.toStdString() << " in\n" << snapshot.toStdString();
    return match.hasMatch() ? match.captured(1).toStdString() : "none";
}

inline Json::Value arguments(std::initializer_list<std::pair<const char*, Json::Value>> values) {
    Json::Value object(Json::objectValue);
    for (const auto& [name, value] : values)
        object[name] = value;
    return object;
}

}  // namespace Tamrix::Test
