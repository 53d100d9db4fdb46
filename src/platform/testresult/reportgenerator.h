#pragma once

#include <QDateTime>
#include <QString>
#include <vector>

#include "base/export.h"
#include "platform/testresult/lineinfo.h"

class QIODevice;

namespace Tamrix {

/// One thing that happened in a run. TestResult makes the entries, report generators read them.
struct TAMRIX_EXPORT ReportEntry {
    enum class Kind {
        SuiteStart,    ///< message: the suite's name, path: its folder
        SuiteEnd,      ///< extra: "finished" or "interrupted"
        CaseStart,     ///< message: the case's name, path: the script file
        CaseEnd,       ///< extra: "finished" or "interrupted"
        SectionStart,  ///< message: title, detail: description, extra: kind, value
        SectionEnd,    ///< message, extra: title and kind of the section that ends
        Result,        ///< type, message, detail, callStack, extra, value, explanation
        /// type: the attachment type's number, message, path, callStack, extra: "result" for one
        /// that belongs to the result that comes next
        Attachment,
        VideoStart,  ///< message, path, callStack
        VideoEnd,    ///< message, path, callStack
        Output,      ///< message: text that the script wrote, extra: "stdout" or "stderr"
        /// What the script did to an application. message: the function, detail: the object and
        /// other arguments, value: how long it took in milliseconds, extra: "failed" or empty,
        /// callStack; the time is that of its end
        Action,
        /// A fact about the run. message: what it is about, detail: the fact
        Environment
    };

    Kind kind = Kind::Result;
    /// A TestResult::ResultType for results and sections, a TestResult::AttachmentType for
    /// attachments.
    int type = 0;
    /// Local time of the event, with milliseconds.
    QDateTime time;
    QString message;
    QString detail;
    /// Innermost position first; empty or a single invalid position when there is none.
    CallStack callStack;
    QString extra;
    int value = -1;
    QString path;
    /// What helps to understand a result, in lines of its own: the difference of two texts, the
    /// values behind a condition. Message and detail say what they say without it.
    QString explanation;
    /// The entry repeats what another one has said already and counts for nothing: the script
    /// error with which a skipped test case comes to its end.
    bool echo = false;
};

/// Receives every entry of a run as it happens. Lives on the script thread.
class TAMRIX_EXPORT ReportGenerator {
public:
    virtual ~ReportGenerator();

    virtual void add(const ReportEntry& entry) = 0;

    /// The run is over or was interrupted: writes what has not been written yet. Called once.
    virtual void finish() {}

    /// What went wrong with writing so far, ready for a person to read; empty when nothing did.
    virtual QString errorText() const { return {}; }

    /// A device to write a video for `targetPath` to, owned by the caller; null with `*error` set
    /// on failure. A report that keeps no videos of its own gives the file at that path.
    virtual QIODevice* openVideo(const QString& targetPath, QString* error);
};

}  // namespace Tamrix
