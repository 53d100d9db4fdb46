#include "interpreter/language/languagevariables.h"

#include <QSet>
#include <QStringList>
#include <algorithm>
#include <limits>
#include <utility>

#include "interpreter/bridge/interpreter.h"
#include "interpreter/language/languagedebugger.h"
#include "interpreter/language/valuepath.h"

namespace Tamrix {

namespace {

/// Bindings of one listing.
constexpr int limit = 200;

QString below(const QString& path, const QString& name) {
    return path.isEmpty() ? name : path + '.' + name;
}

}  // namespace

VariableWatcher::VariableBindings LanguageVariables::topLevelBindings() {
    return list(Target());
}

bool LanguageVariables::handlesPath(const QString& path) {
    return find(path).has_value();
}

VariableWatcher::VariableBindings LanguageVariables::languageBindings(const QString& path) {
    const std::optional<Target> target = find(path);
    return target ? list(*target) : VariableBindings();
}

std::optional<LanguageVariables::Target> LanguageVariables::find(const QString& path) {
    QStringList parts = partsOfPath(path.startsWith('+') ? path.mid(1) : path);
    Target target;
    if (const std::optional<int> first = markedNumber(parts.last(), '@')) {
        target.first = *first;
        parts.removeLast();
    }
    target.path = parts.join('.');
    if (parts.isEmpty())
        return target;
    if (const std::optional<int> level = markedNumber(parts.first(), '^')) {
        if (*level >= static_cast<int>(m_debugger.frames().size()))
            return std::nullopt;
        target.level = *level;
        parts.removeFirst();
    }
    bool isVariable = true;
    for (const QString& part : parts) {
        if (isVariable) {
            const std::vector<Member> variables = visibleVariables(target.level);
            const auto variable =
                std::find_if(variables.begin(), variables.end(),
                             [&part](const Member& each) { return each.name == part; });
            target.value = variable != variables.end() ? variable->value : Value();
        } else {
            target.value = m_texts->partNamed(target.value, part);
        }
        isVariable = false;
        // What is below an application's object is not for the language to tell.
        if (!target.value || target.value->isObject())
            return std::nullopt;
    }
    return target;
}

std::vector<LanguageVariables::Member> LanguageVariables::visibleVariables(int level) {
    // A frame of a feature file has none.
    const std::vector<ScriptFrame> frames = m_debugger.frames();
    const auto index = static_cast<std::size_t>(level);
    if (index >= frames.size() || !frames[index].isOfLanguage())
        return {};
    // None runs between two cases.
    const Interpreter* const interpreter = m_debugger.interpreter();
    std::vector<Member> visible;
    QSet<QString> known;
    for (Member& variable : m_debugger.variablesOf(frames[index])) {
        if (known.contains(variable.name) ||
            (interpreter && interpreter->isSelfDefinedVariableName(variable.name)))
            continue;
        known.insert(variable.name);
        visible.push_back(std::move(variable));
    }
    return visible;
}

VariableWatcher::VariableBindings LanguageVariables::list(const Target& target) {
    m_texts->startAnew();
    const int wanted = std::min(target.first, std::numeric_limits<int>::max() - limit) + limit;
    const ValueTexts::Parts parts = target.value
                                        ? m_texts->partsOf(target.value, wanted)
                                        : ValueTexts::partsFrom(visibleVariables(target.level));
    const int end = std::min(wanted, parts.count);
    VariableBindings bindings;
    for (int number = target.first; number < end; ++number) {
        const Member member = parts.at(number);
        bindings.push_back(bind(below(target.path, member.name), member.value));
    }
    if (target.first < end && end < parts.count)
        bindings.push_back({"+" + below(target.path, QStringLiteral("@%1").arg(end)),
                            QStringLiteral("rest"),
                            QStringLiteral("%1 more").arg(parts.count - end)});
    return bindings;
}

Debugger::VariableBinding LanguageVariables::bind(const QString& path, const Value& value) {
    if (value->isObject()) {
        const SharedPtr<Object> object = value->toObject();
        const bool isExpandable = registerTamrixObject("+" + path, object);
        return {isExpandable ? "+" + path : path, object->className(), m_texts->textOf(value)};
    }
    return {m_texts->partsOf(value, 0).count > 0 ? "+" + path : path, value->typeName(),
            m_texts->textOf(value)};
}

}  // namespace Tamrix
