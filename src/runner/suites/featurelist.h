#pragma once

#include <QString>
#include <QStringList>
#include <vector>

#include "runner/suites/suite.h"

namespace Tamrix {

/// Something that is wrong at a place of a file. Lines and columns are from 1; 0 where unknown.
struct FeatureProblem {
    QString file;
    int line = 0;
    int column = 0;
    QString text;
    /// Code that would put it right; may be empty.
    QString snippet = QString();
};

struct ListedScenario {
    QString keyword;
    QString name;
    int line = 0;
    /// Without those that are inherited, with "@".
    QStringList tags;
    /// The rows of an outline's examples; -1 for a plain scenario.
    int rows = -1;
    /// The name of the rule that it stands in; empty for none.
    QString rule;
};

/// A feature file of a test case.
struct ListedFeature {
    QString caseName;
    QString file;
    QString keyword;
    QString name;
    QString language;
    QStringList tags;
    std::vector<ListedScenario> scenarios;
    /// All that is wrong with its text.
    std::vector<FeatureProblem> problems;
};

/// The feature files in the folders of the cases and below them, in the order of the cases and of
/// the files' names.
std::vector<ListedFeature> listFeatures(const QList<SuiteCase>& cases);

}  // namespace Tamrix
