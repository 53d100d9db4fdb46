// What text recognition reads from outside. The first byte says what the rest is: 0 options in
// JSON, 1 a reply of OCR.Space, 2 a reply of Rekognition, 3 the list of languages of an
// installation.

#include <json/json.h>

#include <QBuffer>
#include <stdexcept>

#include "fuzz/fuzztarget.h"
#include "shared/ocr/options.h"
#include "shared/ocr/rest/ocrspace.h"
#include "shared/ocr/rest/rekognition.h"
#include "shared/ocr/tesseract/languagedata.h"

using namespace Tamrix;
using namespace Tamrix::OCR;

namespace {

void checkOptions(const Options& options) {
    // Free options are written as strings, which are refused.
    Options readable = options;
    readable.options.clear();
    fuzzRequire(Options::fromJson(readable.toJson()).toJson() == readable.toJson(),
                "options are read as they are written");
}

void checkLines(const QList<GenericResult::Line>& lines) {
    const GenericResult result(Vision::SearchRegion(QRect(0, 0, 1000, 1000)), lines);
    result.getText();
    const QList<Word> words = result.getAllWords();
    for (const Word& word : words.mid(0, 10)) {
        for (const Match& match : result.getTextLocations(word.text))
            fuzzRequire(!match.isEmpty(), "a match has words");
    }
}

void read(int form, const QByteArray& bytes) {
    switch (form) {
        case 0:
            checkOptions(Options::fromJson(QString::fromUtf8(bytes)));
            break;
        case 1:
            checkLines(OcrSpace::linesOf(bytes, QRect(10, 10, 500, 500), 3.5));
            break;
        case 2:
            checkLines(Rekognition::linesOf(bytes, QRect(10, 10, 500, 500)));
            break;
        default: {
            QByteArray copy = bytes;
            QBuffer buffer(&copy);
            buffer.open(QIODevice::ReadOnly);
            for (const Language& language : Tesseract::readLanguageMap(&buffer, "file").first)
                fuzzRequire(!language.code.isEmpty(), "a language has a code");
        }
    }
}

}  // namespace

int fuzzTarget(const std::uint8_t* data, std::size_t size) {
    if (size == 0)
        return 0;
    try {
        read(data[0] % 4,
             QByteArray(reinterpret_cast<const char*>(data) + 1, static_cast<int>(size - 1)));
    } catch (const std::exception&) {
        // Its text may be a service's own, and empty.
    }
    return 0;
}
