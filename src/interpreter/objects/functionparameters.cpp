#include "interpreter/objects/functionparameters.h"

#include <QMap>
#include <algorithm>
#include <iterator>
#include <map>

#include "wire/applicationfunctions.h"

namespace Tamrix {

namespace {

const QString s_object = QStringLiteral("object");
const QString s_button = QStringLiteral("button");
const QString s_modifiers = QStringLiteral("modifiers");

}  // namespace

/// The first thing that is wrong is kept, and nothing is taken after it.
class FunctionParameters::Slots {
public:
    explicit Slots(const FunctionParameters& parameters) : m_parameters(parameters) {}

    /// A place is told from a button as the application does it: by two numbers.
    void takePositional(const ScriptArgument::List& values) {
        std::size_t next = 0;
        for (const Group& group : m_parameters.m_groups) {
            const std::size_t end = next + static_cast<std::size_t>(group.names.size());
            bool isHere = end <= values.size();
            for (std::size_t index = next; isHere && group.names.size() > 1 && index < end; ++index)
                isHere = values[index]->isNumber() || values[index]->isNull();
            for (const QString& name : isHere ? group.names : QStringList())
                put(group, name, values[next++]);
        }
        if (next < values.size())
            refuse(QStringLiteral("takes (%1), not %2 arguments without a name")
                       .arg(m_parameters.m_text, QString::number(values.size())));
    }

    void takeNamed(const QString& name, const SharedPtr<ScriptArgument>& value) {
        const auto& groups = m_parameters.m_groups;
        const auto group = std::find_if(groups.begin(), groups.end(), [&](const Group& each) {
            return each.names.contains(name);
        });
        if (group == groups.end())
            refuse("has no argument '" + name + "'");
        else if (m_values.contains(name))
            refuse("got several values for the argument '" + name + "'");
        else
            put(*group, name, value);
    }

    void checkWhole() {
        for (const Group& group : m_parameters.m_groups) {
            const bool isWanted =
                !group.isOptional ||
                std::any_of(group.names.begin(), group.names.end(),
                            [&](const QString& name) { return m_values.contains(name); });
            for (const QString& name : isWanted ? group.names : QStringList()) {
                if (!m_values.contains(name))
                    refuse("needs an argument '" + name + "'");
            }
        }
    }

    /// Modifiers stand behind a button, which is a name where it could be taken for a place.
    void fillButton(ScriptContext& context) {
        if (!m_values.contains(s_modifiers))
            return;
        const SharedPtr<ScriptArgument> button = m_values.value(s_button);
        if (button && !button->isInteger())
            return;
        const long long number =
            button ? button->toInt() : std::begin(Wire::mouseButtonNames)->number;
        const auto* const found =
            std::find_if(std::begin(Wire::mouseButtonNames), std::end(Wire::mouseButtonNames),
                         [&](const auto& entry) { return entry.number == number; });
        if (found == std::end(Wire::mouseButtonNames))
            refuse(button->toString() + " is no mouse button: 1 is left, 2 right, 4 middle");
        else
            m_values.insert(s_button, context.createString(QLatin1String(found->name)));
    }

    /// Empty when nothing is wrong.
    QString problem() const { return m_problem; }

    ScriptArgument::List ordered() const {
        ScriptArgument::List values;
        for (const Group& group : m_parameters.m_groups) {
            for (const QString& name : group.names) {
                if (m_values.contains(name))
                    values.push_back(m_values.value(name));
            }
        }
        return values;
    }

private:
    void refuse(const QString& problem) {
        if (m_problem.isEmpty())
            m_problem = problem;
    }

    void put(const Group& group, const QString& name, const SharedPtr<ScriptArgument>& value) {
        if (!group.isOptional || !value->isNull())
            m_values.insert(name, value);
    }

    const FunctionParameters& m_parameters;
    QMap<QString, SharedPtr<ScriptArgument>> m_values;
    QString m_problem;
};

FunctionParameters::FunctionParameters(const QString& text) : m_text(text) {
    // Behind each "[" stands a group, before the first one parameters that must be given.
    const QStringList parts = text.split('[');
    for (int index = 0; index < parts.size(); ++index) {
        QString part = parts.at(index);
        const QStringList names = part.remove(']').remove(' ').split(',', Qt::SkipEmptyParts);
        if (index > 0) {
            m_groups.push_back({names, true});
        } else {
            for (const QString& name : names)
                m_groups.push_back({{name}, false});
        }
    }
}

const FunctionParameters& FunctionParameters::of(const QString& text) {
    static std::map<QString, FunctionParameters> s_read;
    const auto known = s_read.find(text);
    return known != s_read.end() ? known->second
                                 : s_read.emplace(text, FunctionParameters(text)).first->second;
}

bool FunctionParameters::startWithObject() const {
    return !m_groups.empty() && m_groups.front().names.first() == s_object;
}

ObjectResult<ScriptArgument::List> FunctionParameters::ordered(
    ScriptContext& context, const QString& function, const CallArguments& arguments) const {
    const bool isPlain =
        arguments.named.empty() &&
        std::none_of(arguments.positional.begin(), arguments.positional.end(),
                     [](const SharedPtr<ScriptArgument>& value) { return value->isNull(); });
    // The application knows the forms of its functions by itself.
    if (isPlain)
        return arguments.positional;
    Slots taken(*this);
    taken.takePositional(arguments.positional);
    for (const auto& [name, value] : arguments.named)
        taken.takeNamed(name, value);
    taken.checkWhole();
    taken.fillButton(context);
    if (!taken.problem().isEmpty())
        return objectError(ObjectError::Kind::BadArgument, function + "() " + taken.problem());
    return taken.ordered();
}

}  // namespace Tamrix
