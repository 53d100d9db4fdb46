#pragma once

#include <QJsonObject>
#include <QString>
#include <optional>
#include <vector>

#include "dap/protocol/json.h"

// The messages of the Debug Adapter Protocol that this server knows, each with the fields that it
// reads or writes, named as the protocol names them. json.h tells how they become JSON and back.

namespace Tamrix::Dap {

/// Arguments of a request, or body of a response, that has none.
struct Nothing {
    template <typename Self, typename Visitor>
    static void visitFields(Self&, Visitor&) {}
};

// Set-up

struct InitializeArguments {
    std::optional<bool> linesStartAt1;
    std::optional<bool> columnsStartAt1;
    std::optional<QString> pathFormat;
    std::optional<bool> supportsInvalidatedEvent;

    template <typename Self, typename Visitor>
    static void visitFields(Self& self, Visitor& visit) {
        visit("linesStartAt1", self.linesStartAt1);
        visit("columnsStartAt1", self.columnsStartAt1);
        visit("pathFormat", self.pathFormat);
        visit("supportsInvalidatedEvent", self.supportsInvalidatedEvent);
    }
};

struct ExceptionBreakpointsFilter {
    QString filter;
    QString label;
    QString description;
    /// Whether a client is to have it switched on at first.
    bool isDefault = false;

    template <typename Self, typename Visitor>
    static void visitFields(Self& self, Visitor& visit) {
        visit("filter", self.filter);
        visit("label", self.label);
        visit("description", self.description);
        visit("default", self.isDefault);
    }
};

struct Capabilities {
    bool supportsConfigurationDoneRequest = true;
    bool supportsConditionalBreakpoints = true;
    bool supportsHitConditionalBreakpoints = true;
    bool supportsLogPoints = true;
    bool supportsEvaluateForHovers = true;
    bool supportsSetVariable = true;
    bool supportsSetExpression = true;
    bool supportsCompletionsRequest = true;
    bool supportsTerminateRequest = true;
    bool supportsRestartRequest = true;
    bool supportsExceptionInfoRequest = true;
    std::vector<ExceptionBreakpointsFilter> exceptionBreakpointFilters;
    std::vector<QString> completionTriggerCharacters;

    template <typename Self, typename Visitor>
    static void visitFields(Self& self, Visitor& visit) {
        visit("supportsConfigurationDoneRequest", self.supportsConfigurationDoneRequest);
        visit("supportsConditionalBreakpoints", self.supportsConditionalBreakpoints);
        visit("supportsHitConditionalBreakpoints", self.supportsHitConditionalBreakpoints);
        visit("supportsLogPoints", self.supportsLogPoints);
        visit("supportsEvaluateForHovers", self.supportsEvaluateForHovers);
        visit("supportsSetVariable", self.supportsSetVariable);
        visit("supportsSetExpression", self.supportsSetExpression);
        visit("supportsCompletionsRequest", self.supportsCompletionsRequest);
        visit("supportsTerminateRequest", self.supportsTerminateRequest);
        visit("supportsRestartRequest", self.supportsRestartRequest);
        visit("supportsExceptionInfoRequest", self.supportsExceptionInfoRequest);
        visit("exceptionBreakpointFilters", self.exceptionBreakpointFilters);
        visit("completionTriggerCharacters", self.completionTriggerCharacters);
    }
};

/// What a launch configuration may say.
struct LaunchArguments {
    /// The suite's folder.
    QString suite;
    /// Names of test cases; all when there are none.
    std::optional<std::vector<QString>> cases;
    /// For the scripts.
    std::optional<std::vector<QString>> arguments;
    /// Changes of the environment; null takes a variable out.
    std::optional<TextMap> env;
    /// Where applications appear: "auto", "inherit" or ":N".
    std::optional<QString> display;
    std::optional<bool> stopOnEntry;
    /// The client wants to run without stops.
    std::optional<bool> noDebug;

    template <typename Self, typename Visitor>
    static void visitFields(Self& self, Visitor& visit) {
        visit("suite", self.suite);
        visit("cases", self.cases);
        visit("arguments", self.arguments);
        visit("env", self.env);
        visit("display", self.display);
        visit("stopOnEntry", self.stopOnEntry);
        visit("noDebug", self.noDebug);
    }
};

struct RestartArguments {
    /// The launch configuration as it is now.
    std::optional<LaunchArguments> arguments;

    template <typename Self, typename Visitor>
    static void visitFields(Self& self, Visitor& visit) {
        visit("arguments", self.arguments);
    }
};

// Sources and break points

struct Source {
    std::optional<QString> name;
    std::optional<QString> path;

    template <typename Self, typename Visitor>
    static void visitFields(Self& self, Visitor& visit) {
        visit("name", self.name);
        visit("path", self.path);
    }
};

struct SourceArguments {
    std::optional<Source> source;

    template <typename Self, typename Visitor>
    static void visitFields(Self& self, Visitor& visit) {
        visit("source", self.source);
    }
};

struct SourceBody {
    QString content;

    template <typename Self, typename Visitor>
    static void visitFields(Self& self, Visitor& visit) {
        visit("content", self.content);
    }
};

struct SourceBreakpoint {
    int line = 0;
    std::optional<QString> condition;
    std::optional<QString> hitCondition;
    std::optional<QString> logMessage;

    template <typename Self, typename Visitor>
    static void visitFields(Self& self, Visitor& visit) {
        visit("line", self.line);
        visit("condition", self.condition);
        visit("hitCondition", self.hitCondition);
        visit("logMessage", self.logMessage);
    }
};

struct SetBreakpointsArguments {
    Source source;
    std::optional<std::vector<SourceBreakpoint>> breakpoints;

    template <typename Self, typename Visitor>
    static void visitFields(Self& self, Visitor& visit) {
        visit("source", self.source);
        visit("breakpoints", self.breakpoints);
    }
};

struct Breakpoint {
    int id = 0;
    bool verified = false;
    std::optional<QString> message;
    std::optional<Source> source;
    std::optional<int> line;

    template <typename Self, typename Visitor>
    static void visitFields(Self& self, Visitor& visit) {
        visit("id", self.id);
        visit("verified", self.verified);
        visit("message", self.message);
        visit("source", self.source);
        visit("line", self.line);
    }
};

struct BreakpointsBody {
    std::vector<Breakpoint> breakpoints;

    template <typename Self, typename Visitor>
    static void visitFields(Self& self, Visitor& visit) {
        visit("breakpoints", self.breakpoints);
    }
};

struct SetExceptionBreakpointsArguments {
    std::vector<QString> filters;

    template <typename Self, typename Visitor>
    static void visitFields(Self& self, Visitor& visit) {
        visit("filters", self.filters);
    }
};

// Execution

/// Of all requests that name a thread and no more. There is one thread, so that it need not be
/// looked at.
struct ThreadArguments {
    std::optional<int> threadId;

    template <typename Self, typename Visitor>
    static void visitFields(Self& self, Visitor& visit) {
        visit("threadId", self.threadId);
    }
};

struct ContinueBody {
    bool allThreadsContinued = true;

    template <typename Self, typename Visitor>
    static void visitFields(Self& self, Visitor& visit) {
        visit("allThreadsContinued", self.allThreadsContinued);
    }
};

struct DisconnectArguments {
    std::optional<bool> terminateDebuggee;

    template <typename Self, typename Visitor>
    static void visitFields(Self& self, Visitor& visit) {
        visit("terminateDebuggee", self.terminateDebuggee);
    }
};

// Where the script stands

struct Thread {
    int id = 0;
    QString name;

    template <typename Self, typename Visitor>
    static void visitFields(Self& self, Visitor& visit) {
        visit("id", self.id);
        visit("name", self.name);
    }
};

struct ThreadsBody {
    std::vector<Thread> threads;

    template <typename Self, typename Visitor>
    static void visitFields(Self& self, Visitor& visit) {
        visit("threads", self.threads);
    }
};

struct StackTraceArguments {
    std::optional<int> startFrame;
    std::optional<int> levels;

    template <typename Self, typename Visitor>
    static void visitFields(Self& self, Visitor& visit) {
        visit("startFrame", self.startFrame);
        visit("levels", self.levels);
    }
};

struct StackFrame {
    int id = 0;
    QString name;
    Source source;
    int line = 0;
    int column = 0;

    template <typename Self, typename Visitor>
    static void visitFields(Self& self, Visitor& visit) {
        visit("id", self.id);
        visit("name", self.name);
        visit("source", self.source);
        visit("line", self.line);
        visit("column", self.column);
    }
};

struct StackTraceBody {
    std::vector<StackFrame> stackFrames;
    int totalFrames = 0;

    template <typename Self, typename Visitor>
    static void visitFields(Self& self, Visitor& visit) {
        visit("stackFrames", self.stackFrames);
        visit("totalFrames", self.totalFrames);
    }
};

struct ScopesArguments {
    int frameId = 0;

    template <typename Self, typename Visitor>
    static void visitFields(Self& self, Visitor& visit) {
        visit("frameId", self.frameId);
    }
};

struct Scope {
    QString name;
    int variablesReference = 0;
    bool expensive = false;

    template <typename Self, typename Visitor>
    static void visitFields(Self& self, Visitor& visit) {
        visit("name", self.name);
        visit("variablesReference", self.variablesReference);
        visit("expensive", self.expensive);
    }
};

struct ScopesBody {
    std::vector<Scope> scopes;

    template <typename Self, typename Visitor>
    static void visitFields(Self& self, Visitor& visit) {
        visit("scopes", self.scopes);
    }
};

struct ExceptionInfoBody {
    QString exceptionId;
    std::optional<QString> description;
    QString breakMode;

    template <typename Self, typename Visitor>
    static void visitFields(Self& self, Visitor& visit) {
        visit("exceptionId", self.exceptionId);
        visit("description", self.description);
        visit("breakMode", self.breakMode);
    }
};

// Searches that failed: beyond the protocol, described in docs/debugger.md

/// The script stands where a search on the screen has failed.
struct SearchFailure {
    /// What was searched for.
    QString subject;
    /// The picture that was searched, a file that is there as long as the script stands.
    QString screenshot;
    /// How it was searched.
    QJsonObject state;

    template <typename Self, typename Visitor>
    static void visitFields(Self& self, Visitor& visit) {
        visit("subject", self.subject);
        visit("screenshot", self.screenshot);
        visit("state", self.state);
    }
};

struct SetSearchStateArguments {
    /// What is to be changed of the state.
    QJsonObject state;

    template <typename Self, typename Visitor>
    static void visitFields(Self& self, Visitor& visit) {
        visit("state", self.state);
    }
};

// Values

struct VariablesArguments {
    int variablesReference = 0;
    std::optional<int> start;
    std::optional<int> count;

    template <typename Self, typename Visitor>
    static void visitFields(Self& self, Visitor& visit) {
        visit("variablesReference", self.variablesReference);
        visit("start", self.start);
        visit("count", self.count);
    }
};

struct Variable {
    QString name;
    QString value;
    std::optional<QString> type;
    std::optional<QString> evaluateName;
    int variablesReference = 0;

    template <typename Self, typename Visitor>
    static void visitFields(Self& self, Visitor& visit) {
        visit("name", self.name);
        visit("value", self.value);
        visit("type", self.type);
        visit("evaluateName", self.evaluateName);
        visit("variablesReference", self.variablesReference);
    }
};

struct VariablesBody {
    std::vector<Variable> variables;

    template <typename Self, typename Visitor>
    static void visitFields(Self& self, Visitor& visit) {
        visit("variables", self.variables);
    }
};

struct SetVariableArguments {
    int variablesReference = 0;
    QString name;
    QString value;

    template <typename Self, typename Visitor>
    static void visitFields(Self& self, Visitor& visit) {
        visit("variablesReference", self.variablesReference);
        visit("name", self.name);
        visit("value", self.value);
    }
};

struct SetExpressionArguments {
    QString expression;
    QString value;
    std::optional<int> frameId;

    template <typename Self, typename Visitor>
    static void visitFields(Self& self, Visitor& visit) {
        visit("expression", self.expression);
        visit("value", self.value);
        visit("frameId", self.frameId);
    }
};

/// What was assigned, of both requests that assign.
struct AssignedBody {
    QString value;
    std::optional<QString> type;
    std::optional<int> variablesReference;

    template <typename Self, typename Visitor>
    static void visitFields(Self& self, Visitor& visit) {
        visit("value", self.value);
        visit("type", self.type);
        visit("variablesReference", self.variablesReference);
    }
};

struct EvaluateArguments {
    QString expression;
    std::optional<int> frameId;
    std::optional<QString> context;

    template <typename Self, typename Visitor>
    static void visitFields(Self& self, Visitor& visit) {
        visit("expression", self.expression);
        visit("frameId", self.frameId);
        visit("context", self.context);
    }
};

struct EvaluateBody {
    QString result;
    std::optional<QString> type;
    int variablesReference = 0;

    template <typename Self, typename Visitor>
    static void visitFields(Self& self, Visitor& visit) {
        visit("result", self.result);
        visit("type", self.type);
        visit("variablesReference", self.variablesReference);
    }
};

struct CompletionsArguments {
    QString text;
    int column = 0;
    std::optional<int> line;
    std::optional<int> frameId;

    template <typename Self, typename Visitor>
    static void visitFields(Self& self, Visitor& visit) {
        visit("text", self.text);
        visit("column", self.column);
        visit("line", self.line);
        visit("frameId", self.frameId);
    }
};

struct CompletionItem {
    QString label;
    std::optional<QString> type;
    std::optional<int> start;
    std::optional<int> length;

    template <typename Self, typename Visitor>
    static void visitFields(Self& self, Visitor& visit) {
        visit("label", self.label);
        visit("type", self.type);
        visit("start", self.start);
        visit("length", self.length);
    }
};

struct CompletionsBody {
    std::vector<CompletionItem> targets;

    template <typename Self, typename Visitor>
    static void visitFields(Self& self, Visitor& visit) {
        visit("targets", self.targets);
    }
};

// Events

struct OutputEvent {
    /// "console", "stdout" or "stderr".
    QString category;
    QString output;
    std::optional<Source> source = {};
    std::optional<int> line = {};

    template <typename Self, typename Visitor>
    static void visitFields(Self& self, Visitor& visit) {
        visit("category", self.category);
        visit("output", self.output);
        visit("source", self.source);
        visit("line", self.line);
    }
};

struct StoppedEvent {
    QString reason;
    std::optional<QString> description;
    std::optional<QString> text;
    int threadId = 0;
    bool allThreadsStopped = true;
    std::optional<std::vector<int>> hitBreakpointIds;

    template <typename Self, typename Visitor>
    static void visitFields(Self& self, Visitor& visit) {
        visit("reason", self.reason);
        visit("description", self.description);
        visit("text", self.text);
        visit("threadId", self.threadId);
        visit("allThreadsStopped", self.allThreadsStopped);
        visit("hitBreakpointIds", self.hitBreakpointIds);
    }
};

struct BreakpointEvent {
    QString reason;
    Breakpoint breakpoint;

    template <typename Self, typename Visitor>
    static void visitFields(Self& self, Visitor& visit) {
        visit("reason", self.reason);
        visit("breakpoint", self.breakpoint);
    }
};

struct ThreadEvent {
    QString reason;
    int threadId = 0;

    template <typename Self, typename Visitor>
    static void visitFields(Self& self, Visitor& visit) {
        visit("reason", self.reason);
        visit("threadId", self.threadId);
    }
};

struct InvalidatedEvent {
    std::vector<QString> areas;

    template <typename Self, typename Visitor>
    static void visitFields(Self& self, Visitor& visit) {
        visit("areas", self.areas);
    }
};

struct ExitedEvent {
    int exitCode = 0;

    template <typename Self, typename Visitor>
    static void visitFields(Self& self, Visitor& visit) {
        visit("exitCode", self.exitCode);
    }
};

}  // namespace Tamrix::Dap
