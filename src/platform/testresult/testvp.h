#pragma once

#include <QImage>
#include <QString>
#include <functional>

#include "base/export.h"
#include "platform/testresult/testresult.h"
#include "platform/testresult/verificationoptions.h"

namespace Tamrix {

class RunnerInterface;

/// What verdicts and verification points share about screenshots.
class TAMRIX_EXPORT TestVP {
public:
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
};

}  // namespace Tamrix
