#include "shared/ocr/options.h"

namespace Tamrix::OCR {

TesseractOptions TesseractOptions::defaults() {
    TesseractOptions options;
    options.mode = DefaultMode;
    options.psm = SingleBlock;
    options.flavor = QString();
    options.language = QString();
    options.preprocessing = QStringLiteral("default");
    options.postprocessing = QStringLiteral("default");
    return options;
}

Options Options::defaults() {
    Options options;
    options.tesseract = TesseractOptions::defaults();
    options.ocrSpace.language = QStringLiteral("English");
    options.language = QString();
    return options;
}

TesseractOptions stack(const TesseractOptions& a, const TesseractOptions& b) {
    TesseractOptions result;
    result.mode = stack(a.mode, b.mode);
    result.psm = stack(a.psm, b.psm);
    result.flavor = stack(a.flavor, b.flavor);
    result.language = stack(a.language, b.language);
    result.preprocessing = stack(a.preprocessing, b.preprocessing);
    result.postprocessing = stack(a.postprocessing, b.postprocessing);
    return result;
}

OCRSpaceOptions stack(const OCRSpaceOptions& a, const OCRSpaceOptions& b) {
    OCRSpaceOptions result;
    result.language = stack(a.language, b.language);
    return result;
}

Options stack(const Options& a, const Options& b) {
    Options result;
    result.tesseract = stack(a.tesseract, b.tesseract);
    result.ocrSpace = stack(a.ocrSpace, b.ocrSpace);
    result.scaleFactor = stack(a.scaleFactor, b.scaleFactor);
    result.language = stack(a.language, b.language);
    result.profiles = a.profiles + b.profiles;
    result.options = a.options;
    for (auto it = b.options.cbegin(); it != b.options.cend(); ++it)
        result.options.insert(it.key(), it.value());
    return result;
}

}  // namespace Tamrix::OCR
