#include "runner/suites/suite.h"

#include <dirent.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <algorithm>
#include <memory>
#include <numeric>
#include <vector>

#include "base/textescape.h"
#include "interpreter/bridge/scriptlanguage.h"
#include "runner/suites/naturalorder.h"

namespace Tamrix {

namespace {

/// What the cases share; never a case itself, even with a script in it.
const QLatin1String sharedFolderName("shared");

/// What a case without a script runs.
const QLatin1String featureSuffix(".feature");

/// A link that leads nowhere counts: its case fails to be read, where it would be missed silently.
bool isScript(const QFileInfo& file) {
    return file.isFile() || (file.isSymLink() && !file.exists());
}

/// The script of a test case folder, or else its feature file; an empty text when there is neither.
/// With scripts in several languages, the first one in the order of the languages counts.
QString findScript(const QString& directory) {
    for (const ScriptLanguageInformation* language : ScriptLanguageInformation::knownLanguages()) {
        const QFileInfo file(directory + QLatin1String("/test.") + language->suffix);
        if (isScript(file))
            return file.absoluteFilePath();
    }
    const QFileInfo feature(directory + QLatin1String("/test") + featureSuffix);
    return isScript(feature) ? feature.absoluteFilePath() : QString();
}

/// The names of the folders in a folder, without hidden ones. Qt leaves out those whose names are
/// not UTF-8.
QStringList folderNames(const QDir& folder) {
    QStringList names;
    const std::unique_ptr<DIR, int (*)(DIR*)> listing(
        ::opendir(QFile::encodeName(folder.path()).constData()), ::closedir);
    while (const dirent* const entry = listing ? ::readdir(listing.get()) : nullptr) {
        const QString name = QFile::decodeName(entry->d_name);
        if (!name.startsWith(QLatin1Char('.')) && QFileInfo(folder.filePath(name)).isDir())
            names.append(name);
    }
    return names;
}

Outcome<QList<SuiteCase>> findCases(const QDir& suite) {
    QStringList names = folderNames(suite);
    std::sort(names.begin(), names.end(), naturallyBefore);

    QList<SuiteCase> cases;
    for (const QString& name : names) {
        if (name == sharedFolderName)
            continue;
        const QString directory = suite.absoluteFilePath(name);
        // Whether there is a script in it can't be known.
        if (!QFileInfo(directory).isExecutable())
            return fail(FailureKind::Failed,
                        QStringLiteral("the folder '%1' can't be read").arg(directory));
        const QString script = findScript(directory);
        if (!script.isEmpty())
            cases.append({name, directory, script});
    }
    return cases;
}

int indexOf(const QList<SuiteCase>& cases, const QString& name) {
    const auto found = std::find_if(cases.begin(), cases.end(),
                                    [&](const SuiteCase& each) { return each.name == name; });
    return found == cases.end() ? -1 : static_cast<int>(found - cases.begin());
}

/// The same for a name as it is displayed.
int indexOfDisplayName(const QList<SuiteCase>& cases, const QString& name) {
    const auto found = std::find_if(cases.begin(), cases.end(), [&](const SuiteCase& each) {
        return displayName(each) == name;
    });
    return found == cases.end() ? -1 : static_cast<int>(found - cases.begin());
}

/// Moves the listed cases to the front, in the order of the list.
Outcome<> applyOrder(const SuiteConfig& config, QList<SuiteCase>& cases) {
    int position = 0;
    for (const SuiteConfig::ListedCase& listed : config.cases) {
        const int index = indexOf(cases, listed.name);
        if (index < 0) {
            return fail(FailureKind::NotFound,
                        QStringLiteral("%1:%2: the suite has no test case '%3'")
                            .arg(config.fileName, QString::number(listed.line), listed.name));
        }
        cases.move(index, position++);
    }
    return {};
}

/// The number of single-character changes that turn one text into the other.
int editDistance(const QString& from, const QString& to) {
    std::vector<int> row(static_cast<size_t>(to.size()) + 1);
    std::iota(row.begin(), row.end(), 0);
    for (int i = 0; i < from.size(); ++i) {
        int diagonal = row[0];
        row[0] = i + 1;
        for (int j = 0; j < to.size(); ++j) {
            const auto column = static_cast<size_t>(j);
            const int changed = diagonal + (from.at(i) == to.at(j) ? 0 : 1);
            diagonal = row[column + 1];
            row[column + 1] = std::min({changed, diagonal + 1, row[column] + 1});
        }
    }
    return row.back();
}

/// Up to three case names that may be meant by `name`, the nearest first.
QStringList nearestNames(const QList<SuiteCase>& cases, const QString& name) {
    const QString wanted = name.toCaseFolded();
    std::vector<std::pair<int, QString>> ranked;
    for (const SuiteCase& each : cases) {
        const QString candidate = each.name.toCaseFolded();
        const int distance = candidate.contains(wanted) ? 0 : editDistance(wanted, candidate);
        if (distance <= std::max(2, wanted.size() / 2))
            ranked.emplace_back(distance, each.name);
    }
    std::stable_sort(ranked.begin(), ranked.end(),
                     [](const auto& left, const auto& right) { return left.first < right.first; });
    QStringList names;
    for (size_t i = 0; i < ranked.size() && i < 3; ++i)
        names.append(QLatin1Char('\'') + ranked[i].second + QLatin1Char('\''));
    return names;
}

}  // namespace

bool isFeatureCase(const SuiteCase& testCase) {
    return testCase.script.endsWith(featureSuffix);
}

QString displayName(const SuiteCase& testCase) {
    QString name = escapedForTerminal(testCase.name);
    return name.replace(QLatin1Char('\n'), QLatin1String("\\n"))
        .replace(QLatin1Char('\t'), QLatin1String("\\t"));
}

Outcome<Suite> loadSuite(const QString& path) {
    const QFileInfo info(QDir::cleanPath(QDir::current().absoluteFilePath(path)));
    if (!info.isDir()) {
        return info.exists() ? fail(FailureKind::BadArgument,
                                    QStringLiteral("'%1' is not a folder").arg(path))
                             : fail(FailureKind::NotFound,
                                    QStringLiteral("there is no suite '%1'").arg(path));
    }
    Suite suite;
    suite.directory = info.absoluteFilePath();
    suite.name = info.fileName();
    if (!info.isReadable() || !info.isExecutable())
        return fail(FailureKind::Failed, QStringLiteral("the suite '%1' can't be read").arg(path));
    const Outcome<SuiteConfig> config = readSuiteConfig(suite.directory);
    if (!config)
        return fail(config.error());
    suite.config = *config;
    const Outcome<QList<SuiteCase>> cases = findCases(QDir(suite.directory));
    if (!cases)
        return fail(cases.error());
    suite.cases = *cases;
    const Outcome<> ordered = applyOrder(suite.config, suite.cases);
    if (!ordered)
        return fail(ordered.error());
    if (suite.cases.isEmpty()) {
        return fail(FailureKind::NotFound,
                    QStringLiteral("the suite '%1' has no test case: no folder in it holds a "
                                   "script named \"test\" (for example test.py)")
                        .arg(path));
    }
    return suite;
}

Outcome<QList<SuiteCase>> selectCases(const Suite& suite, const QStringList& names) {
    if (names.isEmpty())
        return suite.cases;
    QStringList wanted;
    for (QString name : names) {
        // A shell's completion puts a slash behind a folder's name.
        while (name.size() > 1 && name.endsWith(QLatin1Char('/')))
            name.chop(1);
        const int escaped = indexOfDisplayName(suite.cases, name);
        if (indexOf(suite.cases, name) < 0 && escaped >= 0)
            name = suite.cases.at(escaped).name;
        if (indexOf(suite.cases, name) < 0) {
            const QStringList near = nearestNames(suite.cases, name);
            QString text =
                QStringLiteral("the suite '%1' has no test case '%2'").arg(suite.name, name);
            if (!near.isEmpty())
                text += QStringLiteral("; did you mean %1?").arg(near.join(QLatin1String(" or ")));
            return fail(FailureKind::NotFound, text);
        }
        wanted.append(name);
    }
    QList<SuiteCase> selected;
    for (const SuiteCase& each : suite.cases) {
        if (wanted.contains(each.name))
            selected.append(each);
    }
    return selected;
}

}  // namespace Tamrix
