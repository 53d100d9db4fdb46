#pragma once

#include "base/export.h"
#include "interpreter/bridge/nativescripttype.h"
#include "shared/ocr/options.h"

namespace Tamrix {

/// Base of the objects in testSettings through which a script sets the options of one recognition
/// engine. What they set goes to a record that is not theirs and must live longer.
class TAMRIX_EXPORT OCRTestSettings : public NativeScriptObject {
public:
    explicit OCRTestSettings(OCR::Options& options) : m_options(options) {}

    /// A copy.
    OCR::Options options() const { return m_options; }
    /// The record that is written to.
    OCR::Options& target() { return m_options; }

private:
    OCR::Options& m_options;
};

/// testSettings.tesseract.
class TAMRIX_EXPORT TesseractTestSettings : public OCRTestSettings {
public:
    using OCRTestSettings::OCRTestSettings;

    static NativeScriptType type();
    static void* staticTypeId();
    void* typeId() const override { return staticTypeId(); }

private:
    static char s_marker;
};

/// testSettings.ocrSpace.
class TAMRIX_EXPORT OCRSpaceTestSettings : public OCRTestSettings {
public:
    using OCRTestSettings::OCRTestSettings;

    static NativeScriptType type();
    static void* staticTypeId();
    void* typeId() const override { return staticTypeId(); }

private:
    static char s_marker;
};

}  // namespace Tamrix
