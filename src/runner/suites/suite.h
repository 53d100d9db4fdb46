#pragma once

#include <QList>
#include <QString>
#include <QStringList>

#include "base/outcome.h"
#include "runner/suites/suiteconfig.h"

namespace Tamrix {

/// A test case of a suite: a folder with a script named "test" in a known language, or without one
/// but with a feature file of that name.
struct SuiteCase {
    /// The folder's name.
    QString name;
    /// Absolute paths.
    QString directory;
    QString script;
};

/// Whether the case is a feature file without a script.
bool isFeatureCase(const SuiteCase& testCase);

/// A test suite: a folder of test cases. Plain data, as found when it was loaded.
struct Suite {
    /// The folder's name.
    QString name;
    /// The folder's absolute path; a symbolic link stays what it is.
    QString directory;
    SuiteConfig config;
    /// In the order in which they run: first those that config.xml lists, in its order, then the
    /// others in the natural order of their names.
    QList<SuiteCase> cases;
};

/// The case's name without characters that control a terminal or end a line.
QString displayName(const SuiteCase& testCase);

/// Loads the suite in a folder, which may be given relative to the working directory. Without a
/// folder, with a faulty config.xml and without a test case it fails with one line.
Outcome<Suite> loadSuite(const QString& path);

/// The suite's cases with these names, as they are or as they are displayed, in the suite's order;
/// all of them for no names. Fails for an unknown name.
Outcome<QList<SuiteCase>> selectCases(const Suite& suite, const QStringList& names);

}  // namespace Tamrix
