#pragma once

#include <json/json.h>

#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>
#include <utility>
#include <vector>

namespace Tamrix::Test {

/// What a language calls by names of its own, and the cases that it refuses. Read from
/// languages/SUFFIX.tsv.
struct LanguageFacts {
    /// Common name and own name; an empty one for what has no name in the language.
    QList<std::pair<QString, QString>> names;
    /// Reasons by case.
    QMap<QString, QString> refused;

    static LanguageFacts read(const QString& path);
    /// An expected journal without the names that the language does not have.
    QString withoutMissingNames(QString journal) const;
};

/// The journals of the cases of a run, by their names, in the form of README.md: a line for each
/// entry, with marks for positions. `suite` is the folder that was run.
QMap<QString, QString> caseJournals(const std::vector<Json::Value>& entries, const QString& suite,
                                    const LanguageFacts& facts);

}  // namespace Tamrix::Test
