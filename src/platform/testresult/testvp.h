#pragma once

#include <QImage>
#include <QString>
#include <functional>
#include <vector>

#include "base/export.h"
#include "platform/testresult/testresult.h"
#include "platform/testresult/verificationoptions.h"
#include "platform/testresult/vpresult.h"

namespace Tamrix {

class ObjectNameResolverInterface;
class RunnerInterface;
class TestDataRecord;

/// A verification point: a stored expectation in a file of a test suite. The statics are what
/// verdicts and verification points share about screenshots. Script thread only.
class TAMRIX_EXPORT TestVP {
public:
    /// `name` is the script's, for results; `path` that of the file.
    TestVP(const QString& name, const QString& path) : m_name(name), m_path(path) {}

    /// Compares what the application shows with what is expected, again and again for the retry
    /// duration of the options until it is the same, and adds the verdict to `result`: Pass or
    /// Fail, or in `xMode`, where a difference is wanted, UnexpectedPass or ExpectedFail. With
    /// renewal a Warning tells what was written to the file. `message` is the comment of the
    /// results, `record` has the values of the columns that the point names.
    ///
    /// `result`, `runner` and `record` may be null. Nothing is added when the file can't be read,
    /// names a column that is not there, or several objects for a resolver that knows one: then
    /// the answer is an error. Defined in the core library, since it asks an application.
    VPResult verify(TestResult* result, const std::vector<LineInfo>& callStack,
                    RunnerInterface* runner, const QString& message,
                    ObjectNameResolverInterface* resolver, const VerificationOptions& options,
                    const TestDataRecord* record, bool xMode) const;

    /// Whether expected values that differ are replaced by those that were found, in the files of
    /// all verification points of the process, off by default. Patterns, columns and objects that
    /// are missing stay failures.
    static void setRenewal(bool on);

    /// What the host of the library provides for screenshots.
    struct ScreenshotServices {
        /// A picture of the desktop as it is now; a null image when there is none to be had.
        std::function<QImage(RunnerInterface*)> grabDesktop;
        /// The folder for pictures of the running test case, beside the report; it need not exist.
        /// An empty text when there is none.
        std::function<QString(RunnerInterface*)> directory;
        /// Keeps in that folder what else shows the moment of a failure, once its picture of the
        /// desktop is stored.
        std::function<void(RunnerInterface*, const QString& directory)> keepMoment;
    };
    static void setScreenshotServices(const ScreenshotServices& services);

    /// Whether the options ask for a screenshot with a result of this type.
    static bool wantLogScreenshotForResult(const VerificationOptions& options,
                                           TestResult::ResultType type);

    /// Stores `image` as a PNG beside the report; a null image asks for a fresh picture of the
    /// desktop. Returns the text that callers append to a message, " (Screenshot in '%1')", or an
    /// empty text when nothing could be stored or `runner` is null.
    static QString logScreenshot(RunnerInterface* runner, TestResult::ResultType type,
                                 const QImage& image);
    /// Stores `picture` there as NAME_NUMBER.png. Returns the path, an empty text when it could not
    /// be stored or `runner` is null.
    static QString storePicture(RunnerInterface* runner, const QString& name,
                                const QImage& picture);

    /// Stores the pictures beside the report and attaches them to the result that comes next. Null
    /// pictures are left out.
    static void attachPictures(TestResult* result, RunnerInterface* runner, const QImage& expected,
                               const QImage& actual, const QImage& difference);

private:
    QString m_name;
    QString m_path;
};

}  // namespace Tamrix
