// "tamrixrunner features": the features of a suite, and whether their steps have definitions.

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include "base/textescape.h"
#include "runner/commands/command.h"
#include "runner/suites/featurecheck.h"
#include "runner/suites/featurelist.h"

namespace Tamrix {

namespace {

struct FeaturesSettings {
    QString suite;
    QStringList cases;
    bool checks = false;
    bool isJson = false;
};

Outcome<> readArguments(const CommandArguments& arguments, FeaturesSettings& settings) {
    settings.suite = arguments.own.constFirst();
    settings.cases = arguments.own.mid(1);
    return {};
}

QString withTags(const QString& text, const QStringList& tags) {
    return tags.isEmpty() ? text : text + QLatin1Char(' ') + tags.join(QLatin1Char(' '));
}

QString relativePath(const Suite& suite, const QString& file) {
    const QString folder = suite.directory + QLatin1Char('/');
    return file.startsWith(folder) ? file.mid(folder.size()) : file;
}

QString placeText(const Suite& suite, const FeatureProblem& problem) {
    QString place = relativePath(suite, problem.file);
    if (problem.line > 0)
        place += QStringLiteral(":%1").arg(problem.line);
    if (problem.column > 0)
        place += QStringLiteral(":%1").arg(problem.column);
    return place;
}

QString problemText(const Suite& suite, const FeatureProblem& problem) {
    QString text =
        QStringLiteral("%1: %2\n").arg(placeText(suite, problem), problem.text.trimmed());
    for (const QString& line : problem.snippet.split(QLatin1Char('\n'), Qt::SkipEmptyParts))
        text += QStringLiteral("    %1\n").arg(line);
    return text;
}

QString featureText(const Suite& suite, const ListedFeature& feature) {
    QString text =
        withTags(QStringLiteral("%1: %2: %3")
                     .arg(relativePath(suite, feature.file), feature.keyword, feature.name),
                 feature.tags) +
        QLatin1Char('\n');
    QString rule;
    for (const ListedScenario& scenario : feature.scenarios) {
        if (scenario.rule != rule)
            text += QStringLiteral("  (%1)\n").arg(scenario.rule);
        rule = scenario.rule;
        QString line = QStringLiteral("  %1: %2: %3")
                           .arg(QString::number(scenario.line), scenario.keyword, scenario.name);
        if (scenario.rows >= 0)
            line += scenario.rows == 1 ? QStringLiteral(" (1 row)")
                                       : QStringLiteral(" (%1 rows)").arg(scenario.rows);
        text += withTags(line, scenario.tags) + QLatin1Char('\n');
    }
    return text;
}

QJsonObject problemObject(const FeatureProblem& problem) {
    QJsonObject object{{QStringLiteral("file"), problem.file},
                       {QStringLiteral("line"), problem.line},
                       {QStringLiteral("column"), problem.column},
                       {QStringLiteral("text"), problem.text}};
    if (!problem.snippet.isEmpty())
        object.insert(QStringLiteral("snippet"), problem.snippet);
    return object;
}

QJsonArray problemArray(const std::vector<FeatureProblem>& problems) {
    QJsonArray array;
    for (const FeatureProblem& problem : problems)
        array.append(problemObject(problem));
    return array;
}

QJsonObject featureObject(const ListedFeature& feature) {
    QJsonArray scenarios;
    for (const ListedScenario& scenario : feature.scenarios) {
        QJsonObject object{{QStringLiteral("keyword"), scenario.keyword},
                           {QStringLiteral("name"), scenario.name},
                           {QStringLiteral("line"), scenario.line},
                           {QStringLiteral("tags"), QJsonArray::fromStringList(scenario.tags)}};
        if (scenario.rows >= 0)
            object.insert(QStringLiteral("rows"), scenario.rows);
        if (!scenario.rule.isEmpty())
            object.insert(QStringLiteral("rule"), scenario.rule);
        scenarios.append(object);
    }
    return {{QStringLiteral("case"), feature.caseName},
            {QStringLiteral("file"), feature.file},
            {QStringLiteral("keyword"), feature.keyword},
            {QStringLiteral("name"), feature.name},
            {QStringLiteral("language"), feature.language},
            {QStringLiteral("tags"), QJsonArray::fromStringList(feature.tags)},
            {QStringLiteral("scenarios"), scenarios}};
}

QString jsonText(const std::vector<ListedFeature>& features, const FeatureCheck& check) {
    QJsonArray list;
    for (const ListedFeature& feature : features)
        list.append(featureObject(feature));
    const QJsonObject document{{QStringLiteral("features"), list},
                               {QStringLiteral("problems"), problemArray(check.problems)},
                               {QStringLiteral("unused"), problemArray(check.unused)}};
    return QString::fromUtf8(QJsonDocument(document).toJson());
}

QString plainText(const FeaturesSettings& settings, const Suite& suite,
                  const std::vector<ListedFeature>& features, const FeatureCheck& check) {
    QString text;
    for (const ListedFeature& feature : features) {
        if (!settings.checks && !feature.name.isNull())
            text += featureText(suite, feature);
    }
    for (const FeatureProblem& problem : check.problems)
        text += problemText(suite, problem);
    for (const FeatureProblem& problem : check.unused)
        text += QStringLiteral("unused: ") + problemText(suite, problem);
    if (settings.checks)
        text += QStringLiteral("%1 feature files, %2 problems, %3 unused step definitions\n")
                    .arg(QString::number(features.size()), QString::number(check.problems.size()),
                         QString::number(check.unused.size()));
    return escapedForTerminal(text);
}

int showFeatures(const FeaturesSettings& settings) {
    const Outcome<Suite> suite = loadSuite(settings.suite);
    if (!suite)
        return failWith(suite.error().text);
    const Outcome<QList<SuiteCase>> cases = selectCases(*suite, settings.cases);
    if (!cases)
        return failWith(cases.error().text);
    const std::vector<ListedFeature> features = listFeatures(*cases);
    FeatureCheck check;
    if (settings.checks)
        check = checkFeatures(*suite, *cases, features);
    // What can't be read comes first: its steps were not looked up.
    std::vector<FeatureProblem> faulty;
    for (const ListedFeature& feature : features)
        faulty.insert(faulty.end(), feature.problems.begin(), feature.problems.end());
    check.problems.insert(check.problems.begin(), faulty.begin(), faulty.end());
    const int shown = show(settings.isJson ? jsonText(features, check)
                                           : plainText(settings, *suite, features, check));
    return shown == ExitSuccess && !check.problems.empty() ? int(ExitFailure) : shown;
}

}  // namespace

Command featuresCommand() {
    return makeCommand<FeaturesSettings>(
        {{"features", "SUITE [CASE...]",
          "Lists the features and scenarios of the suite's test cases, with their tags.", 1,
          CommandSyntax::anyNumber},
         {{"check", nullptr,
           "Reads all feature files and looks every step up instead: tells what is wrong in them, "
           "steps without or with several definitions, and definitions that no step uses.",
           nullptr, setTo(&FeaturesSettings::checks, true)},
          {"json", nullptr, "Writes JSON.", nullptr, setTo(&FeaturesSettings::isJson, true)}},
         {},
         readArguments,
         showFeatures});
}

}  // namespace Tamrix
