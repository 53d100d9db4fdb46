#pragma once

#include <QDateTime>
#include <QMap>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <deque>
#include <map>
#include <utility>
#include <vector>

#include "base/export.h"
#include "base/shared.h"
#include "interpreter/bridge/debuggerframe.h"
#include "interpreter/bridge/scriptargument.h"
#include "platform/testresult/lineinfo.h"

namespace Tamrix {

namespace Gherkin {
class ScriptActions;
}

class TestResult;

/// The bridge between a script and the native functions that it calls: arguments, result, error
/// and position of one chain of script calls. A language plug-in derives from it and owns it.
/// Script thread only.
class TAMRIX_EXPORT ScriptContext {
public:
    /// Kinds of script error; a plug-in maps them to its language's exceptions.
    enum ErrorType {
        GeneralError = 0,       ///< wrong arguments and everything that is not one of the others
        VerificationError = 1,  ///< a failed verdict that is to end the script
        FatalError = 2,         ///< ends the test case
        LookupError = 3         ///< something was not found in time
    };

    using Function = void (*)(ScriptContext*);

    /// What is known of a function of the tables beyond its name, for a language's help texts.
    struct FunctionDescription {
        QStringList requiredParameters;
        QStringList optionalParameters;
        QString text;
    };

    ScriptContext() = default;
    /// Clears the arguments; result contexts that are still fixated are dropped.
    virtual ~ScriptContext();
    ScriptContext(const ScriptContext&) = delete;
    ScriptContext& operator=(const ScriptContext&) = delete;

    /// A new context of the same language, owned by the caller.
    virtual ScriptContext* createSubContext() = 0;
    /// Stores message and kind and clears the error's frame. An empty message is no error.
    virtual void setError(const QString& message, ErrorType type = GeneralError);
    /// A general error that stands at a frame of its own.
    virtual void setError(const QString& message, const DebuggerFrame& frame);
    /// Ends the test case as a skipped one, by a FatalError; a result has told the reason.
    void setSkip(const QString& message) {
        setError(message, FatalError);
        m_isSkip = true;
    }
    /// Clears the language's own pending error.
    virtual void clearError() = 0;
    /// Stores the value that the script call returns.
    virtual void setResult(SharedPtr<ScriptArgument> value) = 0;
    /// A map of all properties of the object that can be read, with values of the language.
    virtual void setObjectPropertiesResult(SharedPtr<Object> object);
    virtual void setStackTraceResult(const std::vector<ScriptLocation>& trace);

    // Values of the language.
    virtual SharedPtr<ScriptArgument> createNull() = 0;
    virtual SharedPtr<ScriptArgument> createBool(bool value) = 0;
    virtual SharedPtr<ScriptArgument> createInteger(int value) = 0;
    virtual SharedPtr<ScriptArgument> createInt64(long long value) = 0;
    virtual SharedPtr<ScriptArgument> createDouble(double value) = 0;
    virtual SharedPtr<ScriptArgument> createString(const QString& value) = 0;
    virtual SharedPtr<ScriptArgument> createDateTime(const QDateTime& value) = 0;
    /// By default as text, for a language without a type for bytes.
    virtual SharedPtr<ScriptArgument> createBytes(const QByteArray& value);
    virtual SharedPtr<ScriptArgument> createList(
        const std::vector<SharedPtr<ScriptArgument>>& values) = 0;
    virtual SharedPtr<ScriptArgument> createMap(
        const std::map<QString, SharedPtr<ScriptArgument>>& values) = 0;
    virtual SharedPtr<ScriptArgument> createNative(SharedPtr<NativeScriptObject> object) = 0;
    virtual SharedPtr<ScriptArgument> createObject(SharedPtr<Object> object) = 0;
    /// Takes the data set over.
    virtual SharedPtr<ScriptArgument> createTestDataSet(TestDataSet* dataSet) = 0;
    virtual SharedPtr<ScriptArgument> createContext(SharedPtr<ApplicationContext> context) = 0;
    /// One entry of a stack trace.
    virtual SharedPtr<ScriptArgument> createLocation(const ScriptLocation& location) = 0;

    // Registration in the process-wide tables; a later entry replaces an earlier one.
    virtual void addGlobalFunction(const QString& name, Function function);
    virtual void addStaticMemberFunction(const QString& className, const QString& name,
                                         Function function);
    virtual void addMemberFunction(const QString& className, const QString& name,
                                   Function function);
    virtual void addConstant(const QString& name, int value);

    /// Writes the position of the script frame `ancestorLevel` levels above the calling one, 0 for
    /// the line that made the call; false when there is no such frame.
    virtual bool lineInfoOfFrame(LineInfo& position, int ancestorLevel) const = 0;
    /// The language's own truth test.
    virtual bool isTrue(SharedPtr<ScriptArgument> value) = 0;
    /// How scripts write a name of the library or of an application. By default as it is; a
    /// language whose keywords can't be such names changes these.
    virtual QString scriptName(const QString& name) const;
    /// The source text of the running call's argument and the values in it, for people; empty where
    /// the language can't tell. Only the argument of that parameter is looked at. By default empty.
    virtual QString explainArgument(const char* parameter);
    /// Evaluates script code that is wanted to raise an exception. Gives the text for the passed
    /// case and the text for the failed case; the second is empty when the code did as wanted.
    virtual std::pair<QString, QString> evaluateForException(SharedPtr<ScriptArgument> code) = 0;
    /// The language's equality.
    virtual bool valuesEqual(SharedPtr<ScriptArgument> left, SharedPtr<ScriptArgument> right) = 0;
    /// Evaluates an expression to its truth; an error lands in `*error`.
    virtual bool evaluateCondition(const QString& expression, QString* error) = 0;
    /// Runs script text in this context; false on an error, which then stands in errorMessage().
    virtual bool evaluate(const QString& text, const QString& fileName) = 0;
    /// The step actions of a language that runs feature files, null by default.
    virtual Gherkin::ScriptActions* gherkinScriptActions(const QString& name);

    void setArguments(const std::vector<SharedPtr<ScriptArgument>>& arguments);
    void clearArguments();
    int argumentCount() const { return static_cast<int>(m_arguments.size()); }
    /// Null for an index past the end, and for an optional argument that was left out though others
    /// behind it were given. The reference is good until the call ends.
    const SharedPtr<ScriptArgument>& argument(int index) const {
        // One that is negative is past the end as well.
        const auto place = static_cast<std::size_t>(index);
        return place < m_arguments.size() ? m_arguments[place] : s_noArgument;
    }
    /// Whether the script gave arguments by name: each then stands at the place of its parameter,
    /// also of a function that otherwise tells its forms by the number of arguments.
    bool hasNamedArguments() const { return m_hasNamedArguments; }

    QString errorMessage() const { return m_errorMessage; }
    bool hasError() const { return (m_state & ErrorStored) && !m_errorMessage.isEmpty(); }
    ErrorType errorType() const { return m_errorType; }
    /// Whether the error is that of setSkip().
    bool isSkip() const { return m_isSkip; }
    DebuggerFrame errorFrame() const { return m_errorFrame; }

    /// The result sink of the test case, null when there is none: results are then dropped.
    TestResult* testResult() const { return m_testResult; }

    static ScriptContext* current() { return s_current; }
    static void setCurrent(ScriptContext* context) { s_current = context; }

    /// 0 when the function ran and set no error, 1 when it set an error, 2 when there is no such
    /// function; the last leaves the error as it was.
    int tryGlobalCall(const QString& name);
    int tryCall(const QString& className, const QString& name);
    static bool hasGlobalFunction(const QString& name);
    static bool hasConstant(const QString& name);
    /// Defined only for a name for which hasConstant() holds.
    static int constantValue(const QString& name);

    /// Parameters and help text of a function of the tables, keyed by its name, or by class name,
    /// "::" and name. Empty for a function that was registered without.
    static FunctionDescription functionDescription(const QString& key);
    static void describeFunction(const QString& key, const FunctionDescription& description);

    // Runs a native function: takes the runner's remote object model for the time of the call and
    // clears the error first. Nothing is caught; an exception passes through.
    /// Returns whether an error is set.
    bool execute(Function function);
    /// Returns what the function returned.
    bool execute(bool (*function)(ScriptContext*));
    bool execute(bool (*function)(SharedPtr<NativeScriptObject>, ScriptContext*),
                 SharedPtr<NativeScriptObject> object);
    /// Returns the new object.
    SharedPtr<NativeScriptObject> execute(
        SharedPtr<NativeScriptObject> (*function)(ScriptContext*));

    void setNullResult() { setPlainResult(PlainResult::Null, 0); }
    void setBoolResult(bool value) { setPlainResult(PlainResult::Bool, value); }
    void setInt64Result(long long value) { setPlainResult(PlainResult::Integer, value); }
    void setIntegerResult(int value) { setInt64Result(value); }
    /// A language may have a shorter way to the same.
    virtual void setStringResult(const QString& value) { setResult(createString(value)); }
    void setDoubleResult(double value) { setResult(createDouble(value)); }
    void setDateTimeResult(const QDateTime& value) { setResult(createDateTime(value)); }
    // A null object or context is the language's null.
    void setObjectResult(SharedPtr<Object> object) {
        setResult(object ? createObject(object) : createNull());
    }
    void setTestDataSetResult(TestDataSet* dataSet) { setResult(createTestDataSet(dataSet)); }
    void setContextResult(SharedPtr<ApplicationContext> context) {
        setResult(context ? createContext(context) : createNull());
    }
    void setListResult(const QStringList& values);
    /// A null object stays an entry.
    void setObjectListResult(const ObjectList& objects);
    /// Every value as text.
    void setMapResult(const QMap<QString, QVariant>& values);

    /// The position of the calling script line.
    LineInfo lineInfo() const;
    /// The position that results carry: the fixated one if there is one.
    LineInfo lineInfoForResult() const;
    /// The call stack that a result carries: the fixated position alone, the debugger's stack when
    /// the full one is wanted and there is a debugger, else the calling line.
    std::vector<LineInfo> callStackForResult(bool wantFullStack) const;
    const std::deque<LineInfo>& fixatedResultContexts() const { return m_fixatedResultContexts; }
    /// Ends what an exception has left open.
    void dropFixatedResultContexts() { m_fixatedResultContexts.clear(); }

    // The script functions test.fixateResultContext and test.restoreResultContext.
    void fixateResultContext();
    void restoreResultContext();

protected:
    /// What there is of a call, as bits: nearly all calls begin and end without.
    enum State : unsigned char {
        Running = 1,      ///< a call has begun; for a plug-in, whose contexts are reused
        HasResult = 2,    ///< m_plainResult or what setResult() has; for a plug-in
        ErrorStored = 4,  ///< by setError() since the error was forgotten, also without a text
    };
    unsigned char m_state = 0;
    /// As setError() with an empty message.
    void forgetError() {
        if (m_state & ErrorStored) [[unlikely]]
            clearStoredError();
    }

    /// A result that needs no wrapper of the language.
    struct PlainResult {
        enum Kind : unsigned char { None, Null, Bool, Integer };
        Kind kind = None;
        /// Of a Bool and of an Integer.
        long long value = 0;
    };
    /// The result as a script value.
    SharedPtr<ScriptArgument> create(const PlainResult& result);

    /// A plug-in binds its context to the result sink here.
    TestResult* m_testResult = nullptr;
    bool m_hasNamedArguments = false;
    /// Whether plain results are left in m_plainResult, instead of given to setResult(). Who sets
    /// this looks there first, and clears it in setResult() and behind a call.
    bool m_keepsPlainResults = false;
    PlainResult m_plainResult;

    /// A plug-in whose contexts are reused moves the arguments in without a copy.
    std::vector<SharedPtr<ScriptArgument>>& argumentStorage() { return m_arguments; }

private:
    friend class Execution;

    int call(Function function);
    void setPlainResult(PlainResult::Kind kind, long long value) {
        if (m_keepsPlainResults) [[likely]] {
            // One by one: a copy of both at once would wait for each to be written.
            m_plainResult.kind = kind;
            m_plainResult.value = value;
            m_state |= HasResult;
        } else {
            setResult(create({kind, value}));
        }
    }
    [[gnu::cold]] void clearStoredError();

    static ScriptContext* s_current;
    static const SharedPtr<ScriptArgument> s_noArgument;

    std::vector<SharedPtr<ScriptArgument>> m_arguments;
    QString m_errorMessage;
    ErrorType m_errorType = GeneralError;
    bool m_isSkip = false;
    DebuggerFrame m_errorFrame;
    std::deque<LineInfo> m_fixatedResultContexts;

public:
    /// Fills the tables with all functions of the library. Called on the first context of the
    /// process; calling it again changes nothing.
    void initFunctions();
};

}  // namespace Tamrix
