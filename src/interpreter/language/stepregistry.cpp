#include "interpreter/language/stepregistry.h"

#include <algorithm>

namespace Tamrix {

const HookKind* hookKind(const QString& name) {
    const auto isThis = [&name](const HookKind& each) {
        const QString own = QString::fromLatin1(each.name);
        return name == own || name.compare(QString(own).remove('_'), Qt::CaseInsensitive) == 0;
    };
    const auto* const found = std::find_if(std::begin(hookKinds), std::end(hookKinds), isThis);
    return found == std::end(hookKinds) ? nullptr : found;
}

void StepRegistry::addStep(std::string_view expression, bool isRegular, const Function& function,
                           const Gherkin::ScriptLocation& location) {
    if (isRegular)
        m_definitions->addRegularExpression(expression, location);
    else
        m_definitions->addExpression(expression, location);
    m_steps.push_back({function});
}

void StepRegistry::addHook(Gherkin::HookType type, Gherkin::HookOrder order, std::string_view tags,
                           const Function& function, const QString& file) {
    m_hooks.push_back({type, order, Gherkin::TagExpression(tags), function, file});
}

void StepRegistry::addParameterType(std::string_view name, std::vector<std::string> patterns,
                                    const Function& transformer) {
    const auto known = m_types.find(std::string(name));
    // A file that is loaded again says the same again.
    if (known != m_types.end() && known->second.patterns == patterns) {
        known->second.transformer = transformer;
        return;
    }
    m_definitions->parameterTypes().add(name, patterns);
    m_types[std::string(name)] = {std::move(patterns), transformer};
}

std::vector<StepRegistry::Match> StepRegistry::find(std::string_view text) const {
    std::vector<Match> matches;
    for (Gherkin::StepDefinitions::Match& match : m_definitions->find(text)) {
        if (!m_steps[match.id].isForgotten)
            matches.push_back(
                {match, m_steps[match.id].function, m_definitions->definition(match.id)});
    }
    return matches;
}

std::vector<Gherkin::StepDefinitions::Definition> StepRegistry::definitions() const {
    std::vector<Gherkin::StepDefinitions::Definition> definitions;
    for (std::size_t id = 0; id < m_steps.size(); ++id) {
        if (!m_steps[id].isForgotten)
            definitions.push_back(m_definitions->definition(id));
    }
    return definitions;
}

std::vector<StepRegistry::Function> StepRegistry::hooks(
    Gherkin::HookType type, Gherkin::HookOrder order, const std::vector<std::string>& tags) const {
    std::vector<Function> functions;
    for (const Hook& hook : m_hooks) {
        if (hook.type == type && hook.order == order && hook.tags.holds(tags))
            functions.push_back(hook.function);
    }
    if (order == Gherkin::AfterHook)
        std::reverse(functions.begin(), functions.end());
    return functions;
}

StepRegistry::Function StepRegistry::transformer(const std::string& typeName) const {
    const auto type = m_types.find(typeName);
    return type == m_types.end() ? Function() : type->second.transformer;
}

void StepRegistry::forget(const QString& file) {
    const std::string name = file.toStdString();
    for (std::size_t id = 0; id < m_steps.size(); ++id) {
        if (m_definitions->definition(id).location.fileName == name)
            m_steps[id] = {Function(), true};
    }
    std::erase_if(m_hooks, [&file](const Hook& hook) { return hook.file == file; });
}

void StepRegistry::clear() {
    m_definitions = std::make_unique<Gherkin::StepDefinitions>();
    m_steps.clear();
    m_hooks.clear();
    m_types.clear();
}

}  // namespace Tamrix
