// Stands for the Tesseract and Leptonica libraries: counts what it hands out, and fails where it is
// told to.

#include "shared/ocr/fakeocrlibraries.h"

#include <clocale>
#include <cstdint>
#include <cstring>

using Tamrix::OCR::FakeOcrLibraries;

#define EXPORTED extern "C" __attribute__((visibility("default")))

namespace {

FakeOcrLibraries s_state;

bool fails(const char* function) {
    return s_state.failing == function;
}

struct Iterator {
    std::size_t position = 0;
};

struct Picture {
    int width = 0;
    std::vector<std::uint32_t> data;
};

struct Monitor {
    bool (*cancel)(void*, int) = nullptr;
    void* cancelThis = nullptr;
    bool (*progress)(Monitor*, int, int, int, int) = nullptr;
};

int s_api;

char* copied(const std::string& text) {
    ++s_state.texts;
    char* const copy = new char[text.size() + 1];
    std::memcpy(copy, text.c_str(), text.size() + 1);
    return copy;
}

const FakeOcrLibraries::Element& elementAt(const void* iterator) {
    return s_state.elements.at(static_cast<const Iterator*>(iterator)->position);
}

Picture* picture(const char* function, int width, std::vector<std::uint32_t> data) {
    if (fails(function))
        return nullptr;
    ++s_state.pictures;
    return new Picture{width, std::move(data)};
}

}  // namespace

EXPORTED FakeOcrLibraries* fakeOcrLibraries() {
    return &s_state;
}

// Leptonica

EXPORTED void* pixCreateNoInit(int width, int height, int /*depth*/) {
    return picture(__func__, width,
                   std::vector<std::uint32_t>(std::size_t(width) * std::size_t(height)));
}
EXPORTED std::uint32_t* pixGetData(Picture* pix) {
    return pix->data.data();
}
EXPORTED int pixGetWpl(Picture* pix) {
    return pix->width;
}
EXPORTED int composeRGBAPixel(int red, int green, int blue, int alpha, std::uint32_t* pixel) {
    *pixel = std::uint32_t(red) << 24 | std::uint32_t(green) << 16 | std::uint32_t(blue) << 8 |
             std::uint32_t(alpha);
    return 0;
}
EXPORTED void* pixConvertRGBToGray(Picture* pix, float /*red*/, float /*green*/, float /*blue*/) {
    return picture(__func__, pix->width, pix->data);
}
EXPORTED void* pixScaleGeneral(Picture* pix, float scaleX, float /*scaleY*/, float /*fraction*/,
                               int /*width*/) {
    s_state.scale = scaleX;
    return picture(__func__, pix->width, pix->data);
}
EXPORTED void* pixUnsharpMasking(Picture* pix, int /*halfWidth*/, float /*fraction*/) {
    return picture(__func__, pix->width, pix->data);
}
EXPORTED int pixOtsuAdaptiveThreshold() {
    return 0;
}
EXPORTED void pixDestroy(Picture** pix) {
    --s_state.pictures;
    delete *pix;
    *pix = nullptr;
}
EXPORTED void* pixInvert(Picture* target, Picture* /*source*/) {
    s_state.isInverted = true;
    return target;
}
EXPORTED int pixWrite() {
    return 0;
}

// Tesseract

EXPORTED const char* TessVersion() {
    return "fake";
}
EXPORTED void TessDeleteText(const char* text) {
    --s_state.texts;
    delete[] text;
}
EXPORTED void TessDeleteTextArray(char** texts) {
    for (char** text = texts; *text; ++text)
        TessDeleteText(*text);
    --s_state.texts;
    delete[] texts;
}
EXPORTED void* TessBaseAPICreate() {
    if (fails(__func__))
        return nullptr;
    ++s_state.apis;
    return &s_api;
}
EXPORTED void TessBaseAPIDelete(void* /*api*/) {
    --s_state.apis;
}
EXPORTED int TessBaseAPIInit3(void* /*api*/, const char* dataPath, const char* /*language*/) {
    s_state.dataPath = dataPath;
    return fails(__func__) ? -1 : 0;
}
EXPORTED int TessBaseAPIInit4(void* /*api*/, const char* dataPath, const char* language, int mode,
                              char** configurations, int configurationCount, char** variables,
                              char** values, std::size_t variableCount, int /*nonDebug*/) {
    s_state.dataPath = dataPath;
    s_state.language = language;
    s_state.mode = mode;
    s_state.configurations.assign(configurations, configurations + configurationCount);
    s_state.variables.clear();
    for (std::size_t i = 0; i < variableCount; ++i)
        s_state.variables[variables[i]] = values[i];
    s_state.decimalPoint = std::localeconv()->decimal_point;
    return fails(__func__) ? -1 : 0;
}
EXPORTED char** TessBaseAPIGetAvailableLanguagesAsVector(const void* /*api*/) {
    if (fails(__func__))
        return nullptr;
    ++s_state.texts;
    auto** const texts = new char*[s_state.languages.size() + 1];
    char** next = texts;
    for (const std::string& language : s_state.languages)
        *next++ = copied(language);
    *next = nullptr;
    return texts;
}
EXPORTED void TessBaseAPISetPageSegMode(void* /*api*/, int mode) {
    s_state.segmentation = mode;
}
EXPORTED void TessBaseAPISetImage2(void* /*api*/, Picture* pix) {
    s_state.pictureWidth = pix->width;
    s_state.pixels.assign(pix->data.begin(), pix->data.end());
}
EXPORTED void TessBaseAPISetSourceResolution(void* /*api*/, int resolution) {
    s_state.resolution = resolution;
}
EXPORTED void* TessBaseAPIGetThresholdedImage(void* /*api*/) {
    return nullptr;
}
EXPORTED int TessBaseAPIRecognize(void* /*api*/, Monitor* monitor) {
    if (monitor) {
        monitor->progress(monitor, 0, 0, 0, 0);
        if (monitor->cancel(monitor->cancelThis, 1))
            return -1;
    }
    return fails(__func__) ? -1 : 0;
}
EXPORTED void* TessBaseAPIGetIterator(void* /*api*/) {
    if (fails(__func__))
        return nullptr;
    ++s_state.iterators;
    return new Iterator;
}
EXPORTED char* TessBaseAPIGetUTF8Text(void* /*api*/) {
    return nullptr;
}
EXPORTED void TessBaseAPIClear(void* /*api*/) {}
EXPORTED void TessBaseAPIEnd(void* /*api*/) {}
EXPORTED void TessPageIteratorDelete(void* /*iterator*/) {}
EXPORTED void* TessPageIteratorCopy(const void* /*iterator*/) {
    return nullptr;
}
EXPORTED void TessPageIteratorBegin(void* iterator) {
    static_cast<Iterator*>(iterator)->position = 0;
}
EXPORTED int TessPageIteratorNext(void* iterator, int /*level*/) {
    return ++static_cast<Iterator*>(iterator)->position < s_state.elements.size() ? 1 : 0;
}
EXPORTED int TessPageIteratorBoundingBox(const void* iterator, int /*level*/, int* left, int* top,
                                         int* right, int* bottom) {
    const FakeOcrLibraries::Element& element = elementAt(iterator);
    *left = element.left;
    *top = element.top;
    *right = element.right;
    *bottom = element.bottom;
    return fails(__func__) ? 0 : 1;
}
EXPORTED int TessPageIteratorBlockType(const void* /*iterator*/) {
    return 0;
}
EXPORTED char* TessResultIteratorGetUTF8Text(const void* iterator, int level) {
    constexpr int lineLevel = 2;
    const FakeOcrLibraries::Element& element = elementAt(iterator);
    return copied(level == lineLevel ? element.lineText : element.text);
}
EXPORTED void* TessResultIteratorGetPageIterator(void* iterator) {
    return iterator;
}
EXPORTED int TessPageIteratorIsAtFinalElement(const void* iterator, int /*level*/,
                                              int /*element*/) {
    return elementAt(iterator).endsLine ? 1 : 0;
}
EXPORTED const char* TessResultIteratorWordFontAttributes(const void* /*iterator*/, int* /*bold*/,
                                                          int* /*italic*/, int* /*underlined*/,
                                                          int* /*monospace*/, int* /*serif*/,
                                                          int* /*smallCaps*/, int* pointSize,
                                                          int* /*font*/) {
    *pointSize = s_state.pointSize;
    return nullptr;
}
EXPORTED int TessResultIteratorNext(void* iterator, int level) {
    return TessPageIteratorNext(iterator, level);
}
EXPORTED void TessResultIteratorDelete(void* iterator) {
    --s_state.iterators;
    delete static_cast<Iterator*>(iterator);
}
EXPORTED void* TessResultIteratorCopy(const void* /*iterator*/) {
    return nullptr;
}
EXPORTED void* TessMonitorCreate() {
    if (fails(__func__))
        return nullptr;
    ++s_state.monitors;
    return new Monitor;
}
EXPORTED void TessMonitorDelete(Monitor* monitor) {
    --s_state.monitors;
    delete monitor;
}
EXPORTED void TessMonitorSetCancelFunc(Monitor* monitor, bool (*cancel)(void*, int)) {
    monitor->cancel = cancel;
}
EXPORTED void TessMonitorSetCancelThis(Monitor* monitor, void* cancelThis) {
    monitor->cancelThis = cancelThis;
}
EXPORTED void* TessMonitorGetCancelThis(Monitor* monitor) {
    return monitor->cancelThis;
}
EXPORTED void TessMonitorSetProgressFunc(Monitor* monitor,
                                         bool (*progress)(Monitor*, int, int, int, int)) {
    monitor->progress = progress;
}
EXPORTED int TessMonitorGetProgress(Monitor* /*monitor*/) {
    return 40;
}
EXPORTED int TessPageIteratorIsAtBeginningOf(const void* /*iterator*/, int /*level*/) {
    return s_state.elements.empty() ? 0 : 1;
}
