#include "interpreter/language/languagevariables.h"

#include <QStringList>
#include <algorithm>
#include <iterator>
#include <limits>

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
            const std::vector<Member> variables = variablesOf(target.level);
            const auto variable =
                std::find_if(variables.begin(), variables.end(),
                             [&part](const Member& each) { return each.name == part; });
            target.value = variable != variables.end() ? variable->value : Value();
        } else {
            target.value = memberNamed(target.value, part);
        }
        isVariable = false;
        // What is below an application's object is not for the language to tell.
        if (!target.value || target.value->isObject())
            return std::nullopt;
    }
    return target;
}

std::optional<ScriptFrame> LanguageVariables::codeFrame(int level) {
    const std::vector<ScriptFrame> frames = m_debugger.frames();
    const auto index = static_cast<std::size_t>(level);
    return index < frames.size() && frames[index].isOfLanguage() ? std::optional(frames[index])
                                                                 : std::nullopt;
}

LanguageVariables::Value LanguageVariables::memberNamed(const Value& value, const QString& name) {
    // The elements of a list have numbers.
    constexpr int largest = std::numeric_limits<int>::max();
    bool isNumber = false;
    const int number = name.toInt(&isNumber);
    if (isNumber && number >= 0 && number < largest) {
        const Members found = membersOf(value, number, 1);
        if (!found.page.empty() && found.page.front().name == name)
            return found.page.front().value;
    }
    const std::vector<Member> members = membersOf(value, 0, largest).page;
    const auto member = std::find_if(members.begin(), members.end(),
                                     [&name](const Member& each) { return each.name == name; });
    return member != members.end() ? member->value : Value();
}

VariableWatcher::VariableBindings LanguageVariables::list(const Target& target) {
    startListing();
    Members members;
    if (target.value) {
        members = membersOf(target.value, target.first, limit);
    } else {
        std::vector<Member> variables = variablesOf(target.level);
        members.count = static_cast<int>(variables.size());
        const int first = std::min(target.first, members.count);
        const int end = std::min(members.count, first + limit);
        members.page.assign(std::make_move_iterator(variables.begin() + first),
                            std::make_move_iterator(variables.begin() + end));
    }
    VariableBindings bindings;
    for (const Member& member : members.page)
        bindings.push_back(bind(below(target.path, member.name), member.value));
    const int end = target.first + static_cast<int>(members.page.size());
    if (!members.page.empty() && end < members.count)
        bindings.push_back({"+" + below(target.path, QStringLiteral("@%1").arg(end)),
                            QStringLiteral("rest"),
                            QStringLiteral("%1 more").arg(members.count - end)});
    return bindings;
}

Debugger::VariableBinding LanguageVariables::bind(const QString& path, const Value& value) {
    if (value->isObject()) {
        const SharedPtr<Object> object = value->toObject();
        const bool isExpandable = registerTamrixObject("+" + path, object);
        return {isExpandable ? "+" + path : path, object->className(), textOf(value)};
    }
    return {hasMembers(value) ? "+" + path : path, value->typeName(), textOf(value)};
}

}  // namespace Tamrix
