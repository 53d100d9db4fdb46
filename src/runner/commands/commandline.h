#pragma once

#include <QString>
#include <QStringList>

#include "vision/imagelookupoptions.h"
#include "vision/searchregion.h"

namespace Tamrix {

/// What the program was asked to do. Plain data.
struct CommandLine {
    enum class Command {
        Show,        ///< print `text`
        Run,         ///< run `cases` (all for none) of `suite`
        List,        ///< list the cases of `suite`
        Report,      ///< make `reports` from `journal`
        Inspect,     ///< print the objects of `program`
        Attachable,  ///< keep `program` for runs to attach to as `applicationName`
        FindImage,   ///< find `needles` in `haystack`
        Compare,     ///< compare the files `expected` and `actual` as `comparison`
        Data         ///< print the table of `dataFile`
    };

    Command command = Command::Show;
    /// Wrong usage, in one line that says where to read more; empty when all is well.
    QString error;
    /// Help or version, with a line end.
    QString text;

    QString suite;
    QStringList cases;
    QString journal;
    /// FORMAT:PATH each, of known formats; no two have the same path. With a folder for results,
    /// the journal in it stands first.
    QStringList reports;
    /// Absolute, empty when none was given.
    QString resultDirectory;
    bool failFast = false;
    bool recordsActions = true;
    bool verbose = false;
    bool quiet = false;
    QStringList scriptArguments;
    /// Where applications appear: "inherit", "auto" or ":N".
    QString display;
    /// A program and its arguments.
    QStringList program;
    QString applicationName;
    /// What inspect prints.
    enum class TreeFormat { Text, Json, Xml };
    TreeFormat treeFormat = TreeFormat::Text;
    /// Where inspect stores a picture of the screen, empty for nowhere.
    QString screenshotFile;
    /// How long inspect waits before it looks, in seconds.
    double waitSeconds = 1;

    /// Files of pictures.
    QString haystack;
    QStringList needles;
    Vision::ImageLookupOptions searchOptions;
    /// Empty for the whole haystack.
    Vision::SearchRegion searchRegion;
    /// How many occurrences are told.
    int occurrenceLimit = 100;
    /// Whether to find the settings that find the needles.
    bool wantsBest = false;
    /// Whether find-image prints JSON.
    bool printsJson = false;
    /// Where find-image stores the haystack with frames around what it found, empty for nowhere.
    QString annotatedFile;

    enum class Comparison { Text, Json, Xml };
    Comparison comparison = Comparison::Text;
    QString expected;
    QString actual;
    /// NAME=VALUE each, as given.
    QStringList comparisonOptions;

    QString dataFile;
    /// Of a spreadsheet; empty for its first one.
    QString sheet;
    /// What data prints.
    enum class TableFormat { Table, Csv, Json };
    TableFormat tableFormat = TableFormat::Table;
};

/// Whether both paths lead to one file, which need not exist.
bool isSameFile(const QString& left, const QString& right);

/// Reads the program's arguments, the first of which is its own name. Needs a QCoreApplication.
CommandLine parseCommandLine(const QStringList& arguments);

}  // namespace Tamrix
