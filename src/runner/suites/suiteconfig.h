#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

#include "base/outcome.h"
#include "runner/applications/configuredapplication.h"

namespace Tamrix {

/// What a suite's config.xml says. docs/suites.md describes the format. Plain data.
struct SuiteConfig {
    /// A name, and the line where the file has it.
    struct ListedCase {
        QString name;
        int line = 0;
    };

    struct Setting {
        QString name;
        QString value;
    };

    /// The file, empty when the suite has none.
    QString fileName;
    /// The cases whose order the suite fixes.
    QList<ListedCase> cases;
    QList<Setting> settings;
    QList<ConfiguredApplication> applications;
};

/// The largest config.xml that is read, in bytes.
inline constexpr qint64 maximalSuiteConfigSize = 1024 * 1024;

/// Reads the text of a config.xml. `fileName` is for messages. A failure says what is wrong, as
/// FILE:LINE: TEXT.
Outcome<SuiteConfig> parseSuiteConfig(const QByteArray& text, const QString& fileName);

/// Reads `suiteDirectory`/config.xml; a suite without one has an empty configuration. Fails as
/// parseSuiteConfig() does.
Outcome<SuiteConfig> readSuiteConfig(const QString& suiteDirectory);

}  // namespace Tamrix
