#include "interpreter/language/stepactions.h"

#include "interpreter/language/languagecontext.h"
#include "platform/gherkin/expressions/expressionerror.h"

namespace Tamrix {

namespace {

using Result = Gherkin::LookupAndExecuteStepResult;

/// What the types of the language become; those that are not here stay texts.
enum class Number { Integer, Float, Decimal };
constexpr struct {
    const char* type;
    Number becomes;
} numberTypes[] = {
    {"int", Number::Integer},   {"float", Number::Float},        {"byte", Number::Integer},
    {"short", Number::Integer}, {"long", Number::Integer},       {"biginteger", Number::Integer},
    {"double", Number::Float},  {"bigdecimal", Number::Decimal},
};

Gherkin::StepMatch stepMatch(const StepRegistry::Match& match) {
    Gherkin::StepMatch result{match.definition.source, match.definition.location, {}};
    for (const Gherkin::Argument& argument : match.match.arguments) {
        if (argument.text)
            result.parameters.push_back({argument.range.begin, argument.range.end,
                                         argument.typeName.value_or(std::string())});
    }
    return result;
}

/// A line for each of them.
std::string listed(const std::vector<StepRegistry::Match>& matches) {
    std::string text;
    for (const StepRegistry::Match& match : matches)
        text += (text.empty() ? "" : "\n") + match.definition.source + " at " +
                match.definition.location.fileName + ":" +
                std::to_string(match.definition.location.line);
    return text;
}

}  // namespace

std::optional<ScriptError> StepLanguage::loadFile(const QString& path, const QString& text) {
    return m_interpreter.attempt([&] { m_interpreter.runFile(text, path); });
}

bool StepLanguage::isLoaded(const QString&) {
    return false;
}

void StepLanguage::forgetFiles(const QStringList&) {}

StepLanguage::Value StepLanguage::bigInteger(const QString& text) {
    return m_interpreter.context().createString(text);
}

StepLanguage::Value StepLanguage::bigDecimal(const QString& text) {
    return m_interpreter.context().createDouble(text.toDouble());
}

void StepActions::clear() {
    m_registry.clear();
    m_scopes.clear();
    m_files.clear();
}

LineInfo StepActions::placeOf(const Value& function) {
    LineInfo place = m_language.definitionOf(function);
    if (!place.isValid())
        m_interpreter.context().lineInfoOfFrame(place, 0);
    return place;
}

void StepActions::addStep(std::string_view expression, bool isRegular, const Value& function) {
    const LineInfo place = placeOf(function);
    m_registry.addStep(expression, isRegular, function,
                       {place.fileName().toStdString(), place.lineNumber()});
}

void StepActions::addHook(const HookKind& hook, std::string_view tags, const Value& function) {
    m_registry.addHook(hook.type, hook.order, tags, function, placeOf(function).fileName());
}

StepActions::Value StepActions::tableRows(const Gherkin::Step& step) {
    LanguageContext& context = m_interpreter.context();
    ScriptArgument::List rows;
    for (const std::vector<Gherkin::TableCell>& row : step.table) {
        ScriptArgument::List cells;
        for (const Gherkin::TableCell& cell : row)
            cells.push_back(context.createString(QString::fromStdString(cell.text)));
        rows.push_back(context.createList(cells));
    }
    return context.createList(rows);
}

QString StepActions::prepare(const QString& featureFile) {
    m_featureFile = featureFile;
    m_reloadError.clear();
    m_scopes.leaveAll();
    return m_files.load(featureFile);
}

void StepActions::noticeKeyword(const Gherkin::Step& step) {
    if (step.type != Gherkin::KeywordType::Conjunction)
        m_keywordType = step.type;
}

Result StepActions::lookupAndExecuteStep(const Gherkin::Step& step) {
    noticeKeyword(step);
    Result result;
    result.location = {m_featureFile.toStdString(), step.line};
    std::vector<StepRegistry::Match> matches;
    try {
        matches = m_registry.find(step.text);
    } catch (const Gherkin::ExpressionError& error) {
        result.kind = Result::LookupFailure;
        result.message = error.what();
        return result;
    }
    if (matches.size() == 1)
        return execute(step, matches[0]);
    result.kind = matches.empty() ? Result::NoMatch : Result::SeveralMatches;
    result.message = matches.empty() ? snippet(step) : listed(matches);
    if (matches.empty() && !m_reloadError.isEmpty())
        result.message = m_reloadError.toStdString() + "\n\n" + result.message;
    return result;
}

Result StepActions::execute(const Gherkin::Step& step, const StepRegistry::Match& match) {
    Result result;
    result.match = stepMatch(match);
    result.location = match.definition.location;
    const std::optional<CallArguments> values = arguments(match, &result.message);
    if (!values) {
        result.kind = Result::ArgumentFailure;
        return result;
    }
    LanguageContext& context = m_interpreter.context();
    const Value nothing = context.createNull();
    m_scopes.set("table", step.table.empty() ? nothing : m_language.tableValue(tableRows(step)));
    m_scopes.set("text", step.docString
                             ? context.createString(QString::fromStdString(step.docString->text))
                             : nothing);
    const LanguageInterpreter::CallEnd end = m_interpreter.callBack(match.function, *values);
    m_scopes.set("table", nothing);
    m_scopes.set("text", nothing);
    if (end == LanguageInterpreter::CallEnd::Succeeded)
        return result;
    result.kind =
        end == LanguageInterpreter::CallEnd::Pending ? Result::Pending : Result::ScriptFailure;
    result.message = m_interpreter.errorMessage().toStdString();
    return result;
}

std::optional<CallArguments> StepActions::arguments(const StepRegistry::Match& match,
                                                    std::string* problem) {
    CallArguments values;
    values.positional.push_back(m_language.contextValue());
    for (const Gherkin::Argument& argument : match.match.arguments) {
        QString error;
        const Value value = valueOf(argument, &error);
        if (!value) {
            *problem = "The parameter type '" + argument.typeName.value_or("") + "' refuses '" +
                       argument.text.value_or("") + "': " + error.toStdString();
            return std::nullopt;
        }
        if (argument.groupName.empty())
            values.positional.push_back(value);
        else
            values.named.emplace_back(QString::fromStdString(argument.groupName), value);
    }
    return values;
}

StepActions::Value StepActions::valueOf(const Gherkin::Argument& argument, QString* error) {
    LanguageContext& context = m_interpreter.context();
    const auto text = [&](const std::optional<std::string>& part) {
        return part ? context.createString(QString::fromStdString(*part)) : context.createNull();
    };
    if (!argument.text || !argument.typeName)
        return text(argument.text);
    if (const Value transformer = m_registry.transformer(*argument.typeName)) {
        ScriptArgument::List parts;
        for (const std::optional<std::string>& group : argument.groups)
            parts.push_back(text(group));
        if (parts.empty())
            parts.push_back(text(argument.text));
        return transformer->call(parts, error);
    }
    const QString written = QString::fromStdString(*argument.text);
    for (const auto& row : numberTypes) {
        if (*argument.typeName != row.type)
            continue;
        if (row.becomes == Number::Decimal)
            return m_language.bigDecimal(written);
        if (row.becomes == Number::Float)
            return context.createDouble(written.toDouble());
        bool isSmall = false;
        const qlonglong number = written.toLongLong(&isSmall);
        return isSmall ? context.createInt64(number) : m_language.bigInteger(written);
    }
    return text(argument.text);
}

std::vector<Gherkin::StepMatch> StepActions::findStep(const Gherkin::Step& step) {
    noticeKeyword(step);
    std::vector<Gherkin::StepMatch> found;
    for (const StepRegistry::Match& match : m_registry.find(step.text))
        found.push_back(stepMatch(match));
    return found;
}

std::vector<Gherkin::ScriptActions::Definition> StepActions::definitions() {
    std::vector<Definition> all;
    for (const Gherkin::StepDefinitions::Definition& definition : m_registry.definitions())
        all.push_back({definition.source, definition.location});
    return all;
}

std::string StepActions::snippet(const Gherkin::Step& step) {
    noticeKeyword(step);
    return m_language.snippetText(stepSnippet(step, m_keywordType)).toStdString();
}

void StepActions::reload() {
    m_reloadError = m_files.loadChanged();
}

void StepActions::enterScope(Gherkin::HookType type, const Gherkin::HookSubject& subject) {
    LanguageContext& context = m_interpreter.context();
    const Value title = context.createString(QString::fromStdString(subject.title));
    if (type == Gherkin::StepHook) {
        m_scopes.set("step", title);
        return;
    }
    m_scopes.enter();
    m_scopes.set(type == Gherkin::FeatureHook ? "feature" : "scenario", title);
    ScriptArgument::List tags;
    for (const std::string& tag : subject.tags)
        tags.push_back(context.createString(QString::fromStdString(tag)));
    m_scopes.set("tags", context.createList(tags));
    m_keywordType = Gherkin::KeywordType::Unknown;
}

Gherkin::ExecuteHookResult StepActions::executeHooks(Gherkin::HookType type,
                                                     Gherkin::HookOrder order,
                                                     const Gherkin::HookSubject& subject) {
    if (order == Gherkin::BeforeHook)
        enterScope(type, subject);
    Gherkin::ExecuteHookResult result;
    const CallArguments arguments{{m_language.contextValue()}, {}};
    for (const StepRegistry::Function& function : m_registry.hooks(type, order, subject.tags)) {
        if (m_interpreter.callBack(function, arguments) == LanguageInterpreter::CallEnd::Succeeded)
            continue;
        result.kind = Gherkin::ExecuteHookResult::ScriptFailure;
        if (!result.message.empty())
            result.message += '\n';
        result.message += m_interpreter.errorMessage().toStdString();
        // What cleans up runs all the same.
        if (order == Gherkin::BeforeHook)
            break;
    }
    if (order == Gherkin::AfterHook && type != Gherkin::StepHook)
        m_scopes.leave();
    return result;
}

}  // namespace Tamrix
