#include "plugins/perl/conditionsource.h"

#include <QRegularExpression>
#include <QSet>
#include <QStringList>
#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

#include "base/utf8file.h"
#include "interpreter/language/objectcalls.h"
#include "plugins/perl/caseinterpreter.h"
#include "plugins/perl/conversion.h"
#include "plugins/perl/lexicals.h"
#include "plugins/perl/perlargument.h"
#include "plugins/perl/perltokens.h"
#include "plugins/perl/perlvaluetexts.h"

namespace Tamrix::PerlPlugin {

namespace {

constexpr int mostValues = 20;
using Tokens = std::vector<PerlToken>;

/// Perl may take a later line of a statement on several lines for its own.
constexpr int mostLinesAbove = 5;

/// Arguments of a call as places of tokens: from, to.
using Argument = std::pair<std::size_t, std::size_t>;

/// What stands between the brackets of which `open` is the first, at its commas.
std::vector<Argument> argumentsFrom(const Tokens& tokens, std::size_t open) {
    std::vector<Argument> arguments;
    std::size_t start = open + 1;
    int depth = 0;
    for (std::size_t index = open; index < tokens.size(); ++index) {
        const PerlToken::Kind kind = tokens[index].kind;
        depth += kind == PerlToken::Open ? 1 : kind == PerlToken::Close ? -1 : 0;
        if (depth == 0 || (depth == 1 && kind == PerlToken::Separator)) {
            if (index > start)
                arguments.emplace_back(start, index);
            start = index + 1;
        }
        if (depth == 0)
            return arguments;
    }
    return {};
}

/// The call of a verdict in source.
struct Call {
    QString source;
    Tokens tokens;
    /// The one that the call is about.
    Argument condition;
};

/// The argument of the parameter: by name it stands behind "-name".
Argument conditionOf(const QString& source, const Tokens& tokens,
                     const std::vector<Argument>& arguments, const QString& parameter) {
    for (std::size_t index = 0; index + 1 < arguments.size(); ++index) {
        const int start = tokens[arguments[index].first].start;
        const int end = tokens[arguments[index].second - 1].end;
        if (source.mid(start, end - start) == '-' + parameter)
            return arguments[index + 1];
    }
    return arguments.front();
}

/// The calls of verdicts in the statements at the beginning of the source, as far as they don't end
/// in front of `place`.
std::vector<Call> callsIn(const QString& source, int place, const QString& parameter) {
    static const QSet<QString> s_functions = {"test::verify", "test::xverify"};
    std::vector<Call> calls;
    const Tokens tokens = perlTokens(source);
    for (std::size_t index = 0; index + 1 < tokens.size(); ++index) {
        if (tokens[index].kind != PerlToken::Word ||
            !s_functions.contains(tokens[index].textIn(source)))
            continue;
        const std::vector<Argument> arguments = argumentsFrom(tokens, index + 1);
        if (!arguments.empty() && tokens[arguments.back().second].end > place)
            calls.push_back({source, tokens, conditionOf(source, tokens, arguments, parameter)});
    }
    return calls;
}

/// The call that is running in the frame; nothing when the source is not to be had or can't tell.
std::optional<Call> runningCall(const CodeFrame& frame, SourceFiles& files,
                                const QString& parameter) {
    const QString path = files.path(CopFILE(frame.statement));
    const Outcome<Utf8Text> file = readUtf8File(path);
    if (path.isNull() || !file)
        return std::nullopt;
    const QStringList lines = file->text.split('\n');
    const int line = static_cast<int>(CopLINE(frame.statement)) - 1;
    for (int first = line; first >= std::max(0, line - mostLinesAbove); --first) {
        const QString source = QStringList(lines.mid(first)).join('\n');
        const int place = source.size() - QStringList(lines.mid(line)).join('\n').size();
        const std::vector<Call> calls = callsIn(source, place, parameter);
        if (!calls.empty())
            return calls.size() == 1 ? std::optional(calls.front()) : std::nullopt;
    }
    return std::nullopt;
}

/// Reads variables and what is taken of them, without running code of the script.
class Values {
public:
    Values(pTHX_ CaseInterpreter& interpreter, const CodeFrame& frame)
        : m_interpreter(interpreter), m_perl(aTHX), m_frame(frame), m_lexicals(lexicalsOf(frame)) {}

    /// Null when it is none that can be read.
    SvRef read(const QString& path) {
        static const QRegularExpression s_name(QStringLiteral("^[$@%][\\w:]+"));
        static const QRegularExpression s_step(
            QStringLiteral("(?:->)?(?:(?<open>[\\[{])\\s*(?<item>[^\\]}]*?)\\s*[\\]}]|"
                           "(?<property>\\w+))"));
        QString name = s_name.match(path).captured();
        const QString rest = path.mid(name.size());
        // The first step tells the kind of variable: $h{key} is in %h.
        if (name.startsWith('$') && !rest.isEmpty() && !rest.startsWith("->"))
            name[0] = rest.startsWith('[') ? '@' : '%';
        SvRef value = variable(name);
        for (auto steps = s_step.globalMatch(rest); value && steps.hasNext();) {
            const QRegularExpressionMatch step = steps.next();
            value = step.captured("open").isEmpty()
                        ? property(value.get(), step.captured("property"))
                        : element(value.get(), step.captured("open") == "[", step.captured("item"));
        }
        return value;
    }

private:
    SvRef variable(const QString& name) {
        for (const Lexical& each : m_lexicals) {
            if (each.name == name)
                return each.variable;
        }
        pTHX = m_perl;
        const HV* const package = CopSTASH(m_frame.statement);
        const bool isOfMain = name.mid(1) == "_" || !package;
        const QString whole = name.contains("::") || isOfMain
                                  ? name.mid(1)
                                  : HvNAME_get(package) + ("::" + name.mid(1));
        const QByteArray bytes = whole.toUtf8();
        if (name.startsWith('@'))
            return SvRef::borrow(reinterpret_cast<SV*>(get_av(bytes.constData(), SVf_UTF8)));
        if (name.startsWith('%'))
            return SvRef::borrow(reinterpret_cast<SV*>(get_hv(bytes.constData(), SVf_UTF8)));
        return SvRef::borrow(get_sv(bytes.constData(), SVf_UTF8));
    }

    /// Of an array or a hash, or of what a reference leads to.
    SvRef element(SV* value, bool isIndex, const QString& item) {
        pTHX = m_perl;
        SV* const container = plainTarget(aTHX_ value);
        if (!container || SvTYPE(container) != (isIndex ? SVt_PVAV : SVt_PVHV))
            return {};
        SvRef key;
        if (item.startsWith('$'))
            key = read(item);
        else
            key = toPerl(aTHX_ QString(item).remove('"').remove('\''));
        if (!key || SvROK(key.get()) || SvGMAGICAL(key.get()))
            return {};
        if (isIndex) {
            SV** const place = av_fetch(reinterpret_cast<AV*>(container), SvIV(key.get()), 0);
            return place ? SvRef::borrow(*place) : SvRef();
        }
        HE* const entry = hv_fetch_ent(reinterpret_cast<HV*>(container), key.get(), 0, 0);
        return entry ? SvRef::borrow(HeVAL(entry)) : SvRef();
    }

    /// Where no operator and no tied variable of the script stands in between.
    static SV* plainTarget(pTHX_ SV* value) {
        SV* const target = SvROK(value) ? SvRV(value) : value;
        const bool hasOperators = SvROK(value) && SvAMAGIC(value) &&
                                  (gv_fetchmeth_pvn(SvSTASH(target), "(%{}", 4, -1, 0) ||
                                   gv_fetchmeth_pvn(SvSTASH(target), "(@{}", 4, -1, 0));
        return hasOperators || SvRMAGICAL(target) ? nullptr : target;
    }

    SvRef property(SV* value, const QString& name) {
        const SharedPtr<Object> object = ObjectHolder::unwrap(value);
        if (!object)
            return {};
        const auto member = getMember(&m_interpreter, object, name);
        const auto* const read =
            member ? std::get_if<SharedPtr<ScriptArgument>>(&*member) : nullptr;
        return read ? SvRef::borrow(valueOf(*read)) : SvRef();
    }

    CaseInterpreter& m_interpreter;
    PerlInterpreter* m_perl;
    const CodeFrame& m_frame;
    std::vector<Lexical> m_lexicals;
};

/// The variables of the condition that mean something where it stands: not those in blocks.
QStringList variablesIn(const Call& call) {
    const QString& source = call.source;
    QStringList variables;
    int blockDepth = 0;
    for (std::size_t index = call.condition.first; index < call.condition.second; ++index) {
        const PerlToken& token = call.tokens[index];
        const bool startsBlock = token.kind == PerlToken::Open && source.at(token.start) == '{' &&
                                 call.tokens[index - 1].kind == PerlToken::Word;
        if (startsBlock || (blockDepth > 0 && token.kind == PerlToken::Open))
            ++blockDepth;
        else if (blockDepth > 0 && token.kind == PerlToken::Close)
            --blockDepth;
        if (token.kind != PerlToken::Variable || blockDepth > 0)
            continue;
        // What is taken in a way that can't be read is of another variable: $list[f()].
        const QString text = token.textIn(source);
        const QChar next = token.end < source.size() ? source.at(token.end) : QChar();
        const bool isOther =
            (next == '[' || next == '{') && !text.contains('[') && !text.contains('{');
        if (!isOther)
            variables.append(text);
    }
    variables.removeDuplicates();
    return variables;
}

bool isConstant(const Call& call) {
    const auto first = call.tokens.begin() + static_cast<std::ptrdiff_t>(call.condition.first);
    const auto last = call.tokens.begin() + static_cast<std::ptrdiff_t>(call.condition.second);
    return std::none_of(first, last, [](const PerlToken& token) {
        return token.kind == PerlToken::Variable || token.kind == PerlToken::Word;
    });
}

/// In one line, however it was broken.
QString textOfCondition(const Call& call) {
    const int start = call.tokens[call.condition.first].start;
    const QString text = call.source.mid(start, call.tokens[call.condition.second - 1].end - start);
    return text.contains('\n') ? text.simplified() : text;
}

}  // namespace

QString explainCall(pTHX_ CaseInterpreter& interpreter, const QString& parameter) {
    const std::vector<CodeFrame> frames = runningCode(aTHX);
    if (frames.empty() || !interpreter.files().isScript(CopFILE(frames.front().statement)))
        return {};
    const std::optional<Call> call = runningCall(frames.front(), interpreter.files(), parameter);
    if (!call || isConstant(*call))
        return {};
    QStringList lines{textOfCondition(*call)};
    Values values(aTHX_ interpreter, frames.front());
    for (const QString& variable : variablesIn(*call)) {
        const SvRef value = values.read(variable);
        if (lines.size() > mostValues || !value || SvGMAGICAL(value.get()) ||
            PerlArgument(value).isCallable())
            continue;
        lines.append(variable + ": " + PerlValueTexts().textOf(aTHX_ value.get()));
    }
    return lines.join('\n');
}

}  // namespace Tamrix::PerlPlugin
