#include "interpreter/language/stepsnippet.h"

#include <string>

#include "platform/gherkin/expressions/generatedexpression.h"

namespace Tamrix {

namespace {

/// Longer names are cut.
constexpr int longestName = 60;

const char* keywordOf(Gherkin::KeywordType type) {
    switch (type) {
        case Gherkin::KeywordType::Context:
            return "given";
        case Gherkin::KeywordType::Action:
            return "when";
        case Gherkin::KeywordType::Outcome:
            return "then";
        case Gherkin::KeywordType::Unknown:
        case Gherkin::KeywordType::Conjunction:
            break;
    }
    return "step";
}

/// The words of the step without its parameters, as a name for a function.
QString functionName(const QString& expression) {
    QString name;
    bool isParameter = false;
    for (const QChar character : expression) {
        if (character == QLatin1Char('{') || character == QLatin1Char('}'))
            isParameter = character == QLatin1Char('{');
        const bool isOfName = character.isLetterOrNumber() || character == QLatin1Char('_');
        if (!isParameter && isOfName)
            name += character.toLower();
        else if (!name.endsWith(QLatin1Char('_')))
            name += QLatin1Char('_');
    }
    name = name.left(longestName);
    while (name.startsWith(QLatin1Char('_')))
        name.remove(0, 1);
    while (name.endsWith(QLatin1Char('_')))
        name.chop(1);
    return name.isEmpty() || name.at(0).isDigit() ? QStringLiteral("step_") + name : name;
}

}  // namespace

StepSnippet stepSnippet(const Gherkin::Step& step, Gherkin::KeywordType type) {
    const Gherkin::GeneratedExpression expression = Gherkin::generateExpression(step.text);
    const QString source = QString::fromStdString(expression.source);
    QStringList parameters;
    for (std::size_t i = 0; i < expression.typeNames.size(); ++i)
        parameters += QStringLiteral("%1_%2").arg(QString::fromStdString(expression.typeNames[i]),
                                                  QString::number(i + 1));
    return {QLatin1String(keywordOf(type)), source, functionName(source), parameters};
}

}  // namespace Tamrix
