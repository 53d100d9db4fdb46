#include "interpreter/bridge/testsettingstype.h"

#include "interpreter/bridge/scriptcontext.h"
#include "interpreter/bridge/testsettingstable.h"

namespace Tamrix {

namespace {

constexpr int defaultWaitForObjectTimeout = 20000;

}  // namespace

int TestSettingsType::s_waitForObjectTimeout = defaultWaitForObjectTimeout;
bool TestSettingsType::s_logStacktraceOnLog = false;
bool TestSettingsType::s_logStacktraceOnPass = false;
bool TestSettingsType::s_breakOnFailure = false;
bool TestSettingsType::s_objectNotFoundDebugging = false;
bool TestSettingsType::s_imageNotFoundDebugging = false;
bool TestSettingsType::s_textNotFoundDebugging = false;
VerificationOptions TestSettingsType::s_vpOptions;
Vision::ImageLookupOptions TestSettingsType::s_image;
OCR::Options TestSettingsType::s_ocr = OCR::Options::defaults();
QString TestSettingsType::s_testCaseName;
QMap<QString, QString> TestSettingsType::s_passwords;
QMap<QString, QStringList> TestSettingsType::s_wrappers;
QStringList TestSettingsType::s_defaultWrappers;
SharedPtr<TesseractTestSettings> TestSettingsType::s_tesseract = new TesseractTestSettings(s_ocr);
SharedPtr<OCRSpaceTestSettings> TestSettingsType::s_ocrSpace = new OCRSpaceTestSettings(s_ocr);

char TestSettingsType::s_marker = 0;
char TesseractTestSettings::s_marker = 0;
char OCRSpaceTestSettings::s_marker = 0;

void TestSettingsType::reset() {
    s_waitForObjectTimeout = defaultWaitForObjectTimeout;
    s_logStacktraceOnLog = false;
    s_logStacktraceOnPass = false;
    s_breakOnFailure = false;
    s_objectNotFoundDebugging = false;
    s_imageNotFoundDebugging = false;
    s_textNotFoundDebugging = false;
    s_vpOptions = {};
    s_image = {};
    s_ocr = OCR::Options::defaults();
    s_testCaseName.clear();
    s_passwords.clear();
    s_wrappers.clear();
    s_defaultWrappers.clear();
}

QString TestSettingsType::getPassword(const QString& key, QString* error) {
    error->clear();
    const auto found = s_passwords.constFind(key);
    if (found != s_passwords.constEnd())
        return *found;
    *error = QStringLiteral("No password available for key '%1'").arg(key);
    return {};
}

QStringList TestSettingsType::getAUTWrappers(const QString& application) {
    return s_wrappers.value(application, s_defaultWrappers);
}

bool TestSettingsType::haveAUTWrappers(const QString& application) {
    return s_wrappers.contains(application);
}

void* TestSettingsType::staticTypeId() {
    return &s_marker;
}

void* TesseractTestSettings::staticTypeId() {
    return &s_marker;
}

void* OCRSpaceTestSettings::staticTypeId() {
    return &s_marker;
}

// For scripts

namespace {

bool fail(ScriptContext* context, const QString& message) {
    context->setError(message);
    return false;
}

template <auto* object>
bool nativeProperty(ScriptContext* context) {
    context->setResult(context->createNative(*object));
    return true;
}

bool setWrappersForApplication(ScriptContext* context) {
    if (context->argumentCount() != 2)
        return fail(context, "setWrappersForApplication() takes exactly two arguments");
    const SharedPtr<ScriptArgument> list = context->argument(1);
    if (!list->isList())
        return fail(context, "The wrappers argument needs to be a list");
    QStringList wrappers;
    for (const SharedPtr<ScriptArgument>& wrapper : list->toList())
        wrappers.append(wrapper->toString());
    if (wrappers.isEmpty())
        return fail(context, "The wrappers list cannot be empty");
    TestSettingsType::s_wrappers.insert(context->argument(0)->toString(), wrappers);
    context->setNullResult();
    return true;
}

bool getWrappersForApplication(ScriptContext* context) {
    if (context->argumentCount() != 1)
        return fail(context, "getWrappersForApplication() takes exactly one argument");
    context->setListResult(TestSettingsType::getAUTWrappers(context->argument(0)->toString()));
    return true;
}

bool passwordOfKey(ScriptContext* context) {
    if (context->argumentCount() != 1)
        return fail(context, "getPassword() takes exactly one argument");
    QString error;
    const QString password =
        TestSettingsType::getPassword(context->argument(0)->toString(), &error);
    if (!error.isEmpty())
        return fail(context, error);
    context->setStringResult(password);
    return true;
}

}  // namespace

NativeScriptType TestSettingsType::type() {
    NativeScriptType type(nullptr, nullptr);
    addSettingProperties(type, SettingOwner::TestSettings);
    type.setStaticProperty("tesseract", nativeProperty<&s_tesseract>, nullptr);
    type.setStaticProperty("ocrSpace", nativeProperty<&s_ocrSpace>, nullptr);
    type.setStaticMethod("setWrappersForApplication", setWrappersForApplication,
                         {"application", "wrapperList"}, {},
                         "Sets the list of wrappers for a specific AUT");
    type.setStaticMethod("getWrappersForApplication", getWrappersForApplication, {"application"},
                         {}, "Retrieves the list of wrappers for a specific AUT");
    type.setStaticMethod("getPassword", passwordOfKey, {"key"}, {},
                         "Retrieves the password associated with the specified key");
    return type;
}

NativeScriptType TesseractTestSettings::type() {
    NativeScriptType type(nullptr, nullptr);
    addSettingProperties(type, SettingOwner::Tesseract);
    return type;
}

NativeScriptType OCRSpaceTestSettings::type() {
    NativeScriptType type(nullptr, nullptr);
    addSettingProperties(type, SettingOwner::OcrSpace);
    return type;
}

}  // namespace Tamrix
