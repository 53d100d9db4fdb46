#pragma once

#include <QList>
#include <QString>
#include <QStringList>

#include "runner/suites/suiteconfig.h"

namespace Tamrix {

/// A test case of a suite: a folder with a script named "test" in a known language.
struct SuiteCase {
    /// The folder's name.
    QString name;
    /// Absolute paths.
    QString directory;
    QString script;
};

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

/// Loads the suite in a folder, which may be given relative to the working directory. On failure
/// (no folder, a faulty config.xml, no test case) `*error` is set to one line and the suite is
/// empty; on success it is left empty.
Suite loadSuite(const QString& path, QString* error);

/// The suite's cases with these names, as they are or as they are displayed, in the suite's order;
/// all of them for no names. An unknown name gives an empty list and sets `*error`.
QList<SuiteCase> selectCases(const Suite& suite, const QStringList& names, QString* error);

}  // namespace Tamrix
