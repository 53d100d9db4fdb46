#pragma once

#include <map>
#include <string>
#include <vector>

namespace Tamrix::OCR {

/// What a library that stands for both Tesseract and Leptonica does and was asked for. The library
/// exports `FakeOcrLibraries* fakeOcrLibraries()`.
struct FakeOcrLibraries {
    /// A word, or a symbol, with its box.
    struct Element {
        std::string text;
        int left;
        int top;
        int right;
        int bottom;
        bool endsLine = false;
        /// Of a symbol: the text of its line.
        std::string lineText = {};
    };

    // What it does.
    std::vector<Element> elements;
    std::vector<std::string> languages = {"deu", "eng", "osd"};
    /// The function that fails, as it would for lack of memory or data.
    std::string failing;
    int pointSize = 12;

    // What it was asked for.
    std::string dataPath;
    std::string language;
    int mode = -1;
    std::vector<std::string> configurations;
    std::map<std::string, std::string> variables;
    int segmentation = -1;
    int resolution = -1;
    float scale = 0;
    int pictureWidth = 0;
    std::vector<unsigned> pixels;
    bool isInverted = false;
    std::string decimalPoint;

    // What it has handed out and not got back.
    int apis = 0;
    int monitors = 0;
    int iterators = 0;
    int pictures = 0;
    int texts = 0;

    int handedOut() const { return apis + monitors + iterators + pictures + texts; }
};

}  // namespace Tamrix::OCR
