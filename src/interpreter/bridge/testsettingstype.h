#pragma once

#include <QMap>
#include <QString>
#include <QStringList>

#include "base/export.h"
#include "base/shared.h"
#include "interpreter/bridge/nativescripttype.h"
#include "interpreter/bridge/ocrtestsettings.h"
#include "platform/testresult/verificationoptions.h"
#include "shared/ocr/options.h"
#include "vision/search/imagelookupoptions.h"

namespace Tamrix {

class TestResult;

/// The settings of a run that verdicts, waits and searches consult; a script sees them as
/// `testSettings`. They are process-wide and belong to the script thread. A change lasts until the
/// next reset(). testsettingstable.h lists what scripts and suites can set.
class TAMRIX_EXPORT TestSettingsType : public NativeScriptObject {
public:
    /// Milliseconds.
    static int s_waitForObjectTimeout;
    static bool s_logStacktraceOnLog;
    static bool s_logStacktraceOnPass;
    static bool s_breakOnFailure;
    static bool s_objectNotFoundDebugging;
    static bool s_imageNotFoundDebugging;
    static bool s_textNotFoundDebugging;
    static QString s_testCaseName;
    static VerificationOptions s_vpOptions;
    /// Below the options of each image search.
    static Vision::ImageLookupOptions s_image;
    /// Below the options of each text recognition.
    static OCR::Options s_ocr;
    // These write to s_ocr.
    static SharedPtr<TesseractTestSettings> s_tesseract;
    static SharedPtr<OCRSpaceTestSettings> s_ocrSpace;
    static QMap<QString, QString> s_passwords;
    /// Wrappers of applications, by name, and those of any other application.
    static QMap<QString, QStringList> s_wrappers;
    static QStringList s_defaultWrappers;

    /// Everything as it is when the process starts.
    static void reset();

    /// Takes passwords and default wrappers, and the settings of a suite, by name as in its
    /// config.xml. A faulty value or an unknown name is a warning in `result`, or on standard error
    /// for null; what was made of a faulty value counts.
    static void initialize(TestResult* result, const QStringList& defaultWrappers,
                           QMap<QString, QString> properties,
                           const QMap<QString, QString>& passwords);

    /// The password of that key. Without one, an empty text comes back and `*error` says so; on
    /// success it is cleared.
    static QString getPassword(const QString& key, QString* error);
    /// The wrappers that were set for the application, else the default ones.
    static QStringList getAUTWrappers(const QString& application);
    static bool haveAUTWrappers(const QString& application);

    static NativeScriptType type();
    static void* staticTypeId();
    void* typeId() const override { return staticTypeId(); }

private:
    static char s_marker;
};

}  // namespace Tamrix
