#include "plugins/tcl/conditionsource.h"

#include <QSet>
#include <QStringList>
#include <algorithm>
#include <iterator>
#include <string>
#include <vector>

#include "interpreter/language/objectcalls.h"
#include "plugins/tcl/commandbody.h"
#include "plugins/tcl/conversion.h"
#include "plugins/tcl/tclargument.h"
#include "plugins/tcl/tcldebugger.h"
#include "plugins/tcl/tclinterpreter.h"
#include "plugins/tcl/tclvaluetexts.h"

namespace Tamrix::TclPlugin {

namespace {

constexpr int mostValues = 20;

/// Commands that tell of their arguments and do nothing else; with their subcommands where others
/// do more.
constexpr std::string_view harmlessCommands[] = {
    "concat", "dict exists", "dict get", "dict keys", "dict size", "dict values",
    "format", "info exists", "join",     "lindex",    "list",      "llength",
    "lrange", "lreverse",    "split",    "string"};

/// A word of a command, or a part of one, with the tokens in it.
struct Part {
    Tcl_Token* token;

    std::string_view source() const {
        return {token->start, static_cast<std::size_t>(token->size)};
    }
    int tokenCount() const { return token->numComponents + 1; }
    /// Braces, quotes or nothing around a text without substitutions.
    bool isPlain() const { return token->type == TCL_TOKEN_SIMPLE_WORD; }
    std::string_view plainText() const {
        return isPlain() ? Part{token + 1}.source() : std::string_view();
    }
    /// Within the brackets of a command.
    std::string_view script() const { return source().substr(1, source().size() - 2); }
};

/// A parsed command or expression; empty when it can't be parsed.
class Parsed {
public:
    using Parser = int(Tcl_Interp*, const char*, int, Tcl_Parse*);
    Parsed(Parser* parser, std::string_view source) {
        if (parser(nullptr, source.data(), static_cast<int>(source.size()), &m_parse) != TCL_OK)
            m_parse.numTokens = 0;
    }
    ~Parsed() { Tcl_FreeParse(&m_parse); }
    Parsed(const Parsed&) = delete;
    Parsed& operator=(const Parsed&) = delete;

    Tcl_Token* tokens() const { return m_parse.tokenPtr; }
    int count() const { return m_parse.numTokens; }
    std::vector<Part> words() const {
        std::vector<Part> words;
        for (int index = 0; index < count(); index += words.back().tokenCount())
            words.push_back({tokens() + index});
        return words;
    }

private:
    Tcl_Parse m_parse{};
};

int parseCommand(Tcl_Interp* interp, const char* source, int size, Tcl_Parse* parse) {
    return Tcl_ParseCommand(interp, source, size, 0, parse);
}

/// What stands in `[expr {...}]`; empty for other commands.
std::string_view expressionIn(const std::vector<Part>& words) {
    const bool isExpression = words.size() == 2 && words[0].plainText() == "expr";
    return isExpression ? words[1].plainText() : std::string_view();
}

QString shown(std::string_view source) {
    return fromTclBytes(source).simplified();
}

/// Finds the values in a condition.
class Values {
public:
    explicit Values(TclInterpreter& interpreter) : m_interpreter(interpreter) {}

    /// Adds those in an expression, from left to right.
    void visitExpression(std::string_view source) {
        const Parsed expression(Tcl_ParseExpr, source);
        visit(expression.tokens(), expression.count());
    }
    void visit(Tcl_Token* tokens, int count) {
        for (int index = 0; index < count; ++index) {
            const Part part{tokens + index};
            const int type = part.token->type;
            if (type == TCL_TOKEN_VARIABLE && isHarmless(part.token, part.tokenCount())) {
                add(part);
                // What is within its index stands behind it.
                index += part.token->numComponents;
            } else if (type == TCL_TOKEN_COMMAND && isHarmlessCommand(part)) {
                add(part);
            } else if (type == TCL_TOKEN_COMMAND) {
                visitCommand(part);
            }
        }
    }

    QStringList lines() const { return m_lines; }

private:
    void visitCommand(const Part& command) {
        const Parsed parsed(parseCommand, command.script());
        if (const std::string_view expression = expressionIn(parsed.words()); !expression.empty())
            visitExpression(expression);
        else
            visit(parsed.tokens(), parsed.count());
    }

    bool isHarmless(Tcl_Token* tokens, int count) const {
        return std::all_of(tokens, tokens + count, [this](Tcl_Token& token) {
            return token.type != TCL_TOKEN_COMMAND || isHarmlessCommand({&token});
        });
    }
    bool isHarmlessCommand(const Part& command) const {
        const Parsed parsed(parseCommand, command.script());
        const std::vector<Part> words = parsed.words();
        if (words.size() < 2 || !isHarmless(parsed.tokens(), parsed.count()))
            return false;
        const std::string name(words[0].plainText());
        const std::string whole = name + ' ' + std::string(words[1].plainText());
        const bool isKnown =
            std::any_of(std::begin(harmlessCommands), std::end(harmlessCommands),
                        [&](std::string_view each) { return each == name || each == whole; });
        return isKnown || isProperty(words);
    }
    /// `$object property` or `$object cget -property`.
    bool isProperty(const std::vector<Part>& words) const {
        const TclRef value = evaluate(words[0].token + 1, words[0].token->numComponents);
        const SharedPtr<Object> object =
            value ? m_interpreter.values().get<Object>(value.get()) : SharedPtr<Object>();
        QString name = shown(words[1].plainText());
        if (words.size() == 3 && name == QLatin1String("cget"))
            name = shown(words[2].plainText()).mid(1);
        else if (words.size() != 2)
            return false;
        if (!object || name.isEmpty())
            return false;
        return getProperty(&m_interpreter, object, name).has_value();
    }

    /// Null when it can't be evaluated.
    TclRef evaluate(Tcl_Token* tokens, int count) const {
        Tcl_Interp* const tcl = m_interpreter.tcl();
        if (Tcl_EvalTokensStandard(tcl, tokens, count) != TCL_OK)
            return {};
        return TclRef(Tcl_GetObjResult(tcl));
    }

    void add(const Part& part) {
        const QString text = shown(part.source());
        if (m_seen.contains(text) || m_lines.size() >= mostValues)
            return;
        m_seen.insert(text);
        if (const TclRef value = evaluate(part.token, part.tokenCount()))
            m_lines.append(
                text + ": " +
                TclValueTexts(m_interpreter).textOf(new TclArgument(m_interpreter, value)));
    }

    TclInterpreter& m_interpreter;
    QSet<QString> m_seen;
    QStringList m_lines;
};

/// The number of words in front of the condition; 0 for a call that is none of a verdict.
std::size_t wordsBefore(const std::vector<Part>& words) {
    if (words.empty())
        return 0;
    const std::string_view name = words[0].plainText();
    if (name == "test")
        return 2;
    return name.substr(0, 6) == "test::" || name.substr(0, 8) == "::test::" ? 1 : 0;
}

}  // namespace

QString explainCondition(TclInterpreter& interpreter) {
    const std::vector<QByteArray> commands = runningCommands(interpreter.tcl(), 0);
    const QByteArray source = commands.empty() ? QByteArray() : commands.front();
    const Parsed call(parseCommand, {source.constData(), static_cast<std::size_t>(source.size())});
    const std::vector<Part> words = call.words();
    const std::size_t before = wordsBefore(words);
    // A plain constant tells nothing.
    if (before == 0 || words.size() <= before || words[before].isPlain())
        return {};
    const LanguageDebugger::CatchesErrors catching(interpreter.debugger());
    const TclStateAside aside(interpreter.tcl());
    const Part condition = words[before];
    const Part first{condition.token + 1};
    const bool isCommand =
        condition.token->numComponents == 1 && first.token->type == TCL_TOKEN_COMMAND;
    const std::string_view expression =
        isCommand ? expressionIn(Parsed(parseCommand, first.script()).words()) : std::string_view();
    Values values(interpreter);
    if (expression.empty())
        values.visit(condition.token + 1, condition.token->numComponents);
    else
        values.visitExpression(expression);
    const QString told = shown(expression.empty() ? condition.source() : expression);
    return (QStringList(told) + values.lines()).join('\n');
}

}  // namespace Tamrix::TclPlugin
