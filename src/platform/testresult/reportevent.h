#pragma once

#include <QDateTime>
#include <QString>
#include <variant>
#include <vector>

#include "platform/testresult/lineinfo.h"

// What can happen in a run: one struct for each event. A further event is a struct here, a member
// of ReportEvent, and a row of the journal in journalentry.cpp; reports that visit every event then
// do not compile until they say what they make of it.

namespace Tamrix {

struct SuiteStarted {
    QString name;
    QString folder;

    bool operator==(const SuiteStarted& other) const = default;
};

struct SuiteEnded {
    bool isInterrupted = false;

    bool operator==(const SuiteEnded& other) const = default;
};

struct CaseStarted {
    QString name;
    QString script;
    /// Counted from 1: a case that did not pass may run again in the same run.
    int attempt = 1;

    bool operator==(const CaseStarted& other) const = default;
};

struct CaseEnded {
    bool isInterrupted = false;

    bool operator==(const CaseEnded& other) const = default;
};

/// Sections nest, and never reach beyond their case. The parts of a feature (its scenarios, rows of
/// examples, steps) are sections of a kind.
struct SectionStarted {
    QString title;
    QString description;
    /// "scenario", "step" and the like; empty for a section that a script opened.
    QString kind;
    /// The index of the scenario or row that the section is; -1 for none.
    int index = -1;
    CallStack callStack;

    bool operator==(const SectionStarted& other) const = default;
};

/// Title and kind are those of the section that ends.
struct SectionEnded {
    QString title;
    QString description;
    QString kind;
    CallStack callStack;

    bool operator==(const SectionEnded& other) const = default;
};

/// What stands in the feature file about the part of it whose section has just started.
struct ItemDescribed {
    /// In the file's language, with the space at its end if it has one.
    QString keyword;
    /// "@smoke @slow"; may be empty.
    QString tags;
    /// The table or the doc string of a step, as a feature file has it; may be empty.
    QString argument;

    bool operator==(const ItemDescribed& other) const = default;
};

/// A part of a step's text that its definition takes as a parameter, in code units.
struct StepParameterRange {
    int begin = 0;
    int end = 0;
    /// "int" and the like; empty for a group of a regular expression.
    QString type;

    bool operator==(const StepParameterRange& other) const = default;
};

/// The definition with which the step has run whose section is open.
struct StepMatched {
    /// Its expression.
    QString definition;
    LineInfo position;
    std::vector<StepParameterRange> parameters;

    bool operator==(const StepMatched& other) const = default;
};

/// A verdict, a message to the log, a warning, an error or a skip.
struct ResultAdded {
    /// A TestResult::ResultType. A journal may hold any number.
    int type = 0;
    QString message;
    QString detail;
    /// Innermost position first; empty or a single invalid position when there is none.
    CallStack callStack;
    QString comment;
    /// Of a skip: what is skipped, such as "testcase" or "scenario".
    QString skipped;
    /// -1 unless the result has a number of its own.
    int value = -1;
    /// What helps to understand a result, in lines of its own: the difference of two texts, the
    /// values behind a condition. Message and detail say what they say without it.
    QString explanation;
    /// The result repeats what another one has said already and counts for nothing: the script
    /// error with which a skipped test case comes to its end.
    bool isEcho = false;

    bool operator==(const ResultAdded& other) const = default;
};

struct FileAttached {
    /// A TestResult::AttachmentType. A journal may hold any number.
    int type = 0;
    QString message;
    QString path;
    CallStack callStack;
    /// The file belongs to the result that comes next.
    bool belongsToResult = false;

    bool operator==(const FileAttached& other) const = default;
};

struct VideoStarted {
    QString message;
    QString path;
    CallStack callStack;

    bool operator==(const VideoStarted& other) const = default;
};

struct VideoEnded {
    QString message;
    QString path;
    CallStack callStack;
    /// Nobody wants the video any more: reports leave it out, and the file is gone.
    bool isDiscarded = false;

    bool operator==(const VideoEnded& other) const = default;
};

enum class OutputStream { StandardOutput, StandardError };

/// Text that the script wrote. It may end anywhere.
struct OutputWritten {
    OutputStream stream = OutputStream::StandardOutput;
    QString text;

    bool operator==(const OutputWritten& other) const = default;
};

/// What the script did to an application; the time of the entry is that of its end.
struct ActionEnded {
    QString function;
    /// The object and the other arguments.
    QString arguments;
    int milliseconds = 0;
    bool hasFailed = false;
    LineInfo position;

    bool operator==(const ActionEnded& other) const = default;
};

/// The name of the fact that tells which part of a suite a run is, as "2/4".
inline constexpr char shardFactName[] = "Shard";

/// The name of the fact that tells where the trace of a run is, a folder with a page.
inline constexpr char traceFactName[] = "Trace";

/// A fact about the run: a version, a display, arguments.
struct EnvironmentFact {
    QString name;
    QString fact;

    bool operator==(const EnvironmentFact& other) const = default;
};

using ReportEvent =
    std::variant<SuiteStarted, SuiteEnded, CaseStarted, CaseEnded, SectionStarted, SectionEnded,
                 ResultAdded, FileAttached, VideoStarted, VideoEnded, OutputWritten, ActionEnded,
                 EnvironmentFact, ItemDescribed, StepMatched>;

/// One thing that happened in a run. TestResult makes the entries, report generators read them.
struct ReportEntry {
    /// Local time of the event, with milliseconds.
    QDateTime time;
    ReportEvent event;

    bool operator==(const ReportEntry& other) const = default;
};

/// The event when it is an `Event`, otherwise null.
template <typename Event>
const Event* eventOf(const ReportEntry& entry) {
    return std::get_if<Event>(&entry.event);
}

}  // namespace Tamrix
