#include "runner/suites/featurelist.h"

#include <QDirIterator>
#include <QFile>

#include "platform/gherkin/parser.h"

namespace Tamrix {

namespace {

QString text(std::string_view view) {
    return QString::fromUtf8(view.data(), static_cast<int>(view.size()));
}

QStringList texts(std::span<const Gherkin::Syntax::Tag> tags) {
    QStringList names;
    for (const Gherkin::Syntax::Tag& tag : tags)
        names += text(tag.name);
    return names;
}

QStringList featureFiles(const QString& directory) {
    QStringList files;
    QDirIterator found(directory, QStringList(QStringLiteral("*.feature")), QDir::Files,
                       QDirIterator::Subdirectories);
    while (found.hasNext())
        files += found.next();
    files.sort();
    return files;
}

void addScenarios(std::span<const Gherkin::Syntax::Scenario> scenarios, const QString& rule,
                  ListedFeature& feature) {
    for (const Gherkin::Syntax::Scenario& scenario : scenarios) {
        ListedScenario listed{text(scenario.keyword),
                              text(scenario.name),
                              scenario.location.line,
                              texts(scenario.tags),
                              -1,
                              rule};
        if (!scenario.examples.empty())
            listed.rows = 0;
        for (const Gherkin::Syntax::Examples& examples : scenario.examples)
            listed.rows += std::max(0, static_cast<int>(examples.table.size()) - 1);
        feature.scenarios.push_back(listed);
    }
}

void read(ListedFeature& feature) {
    QFile file(feature.file);
    if (!file.open(QIODevice::ReadOnly)) {
        feature.problems.push_back({feature.file, 0, 0, file.errorString()});
        return;
    }
    const Gherkin::ParseResult parsed = Gherkin::parse(file.readAll().toStdString());
    for (const Gherkin::ParseError& error : parsed.errors) {
        QString message = QString::fromStdString(error.message);
        if (!error.token.empty())
            message += QStringLiteral(" (got '%1')").arg(QString::fromStdString(error.token));
        feature.problems.push_back(
            {feature.file, error.location.line, error.location.column, message});
    }
    const Gherkin::Syntax::Feature* const found = parsed.document.feature();
    if (!found) {
        if (feature.problems.empty())
            feature.problems.push_back(
                {feature.file, 1, 0, QStringLiteral("the file holds no feature")});
        return;
    }
    feature.keyword = text(found->keyword);
    feature.name = text(found->name);
    feature.language = text(found->language);
    feature.tags = texts(found->tags);
    addScenarios(found->scenarios, QString(), feature);
    for (const Gherkin::Syntax::Rule& rule : found->rules)
        addScenarios(rule.scenarios, text(rule.name), feature);
}

}  // namespace

std::vector<ListedFeature> listFeatures(const QList<SuiteCase>& cases) {
    std::vector<ListedFeature> features;
    for (const SuiteCase& testCase : cases) {
        for (const QString& file : featureFiles(testCase.directory)) {
            ListedFeature feature;
            feature.caseName = testCase.name;
            feature.file = file;
            read(feature);
            features.push_back(std::move(feature));
        }
    }
    return features;
}

}  // namespace Tamrix
