#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "base/export.h"
#include "base/library.h"

// The functions of the Tesseract and Leptonica libraries, as their C interfaces have them. Neither
// library is linked: both are bound at run time, on the first use of the engine.

namespace Tamrix::Tesseract {

// What the libraries keep to themselves.
struct TessBaseAPI;
struct TessPageIterator;
struct TessResultIterator;
/// A monitor of a recognition.
struct ETEXT_DESC;
/// A picture of Leptonica's.
struct Pix;

using TessBool = int;
using TessCancelFunc = bool (*)(void* cancelThis, int words);
using TessProgressFunc = bool (*)(ETEXT_DESC* monitor, int left, int right, int top, int bottom);

/// The pieces of a page, from large to small.
enum TessPageIteratorLevel : int { BlockLevel, ParagraphLevel, LineLevel, WordLevel, SymbolLevel };

// Each function: result, name, parameters. All of them are required, also those that are not
// called, so that an incompatible library is found at once.

#define TAMRIX_TESSERACT_FUNCTIONS(DO)                                                           \
    DO(const char*, TessVersion, ())                                                             \
    DO(void, TessDeleteText, (const char*))                                                      \
    DO(void, TessDeleteTextArray, (char**))                                                      \
    DO(TessBaseAPI*, TessBaseAPICreate, ())                                                      \
    DO(void, TessBaseAPIDelete, (TessBaseAPI*))                                                  \
    DO(int, TessBaseAPIInit3, (TessBaseAPI*, const char* dataPath, const char* language))        \
    DO(int, TessBaseAPIInit4,                                                                    \
       (TessBaseAPI*, const char* dataPath, const char* language, int mode, char** configs,      \
        int configsSize, char** variables, char** values, std::size_t variablesSize,             \
        TessBool setOnlyNonDebugParams))                                                         \
    DO(char**, TessBaseAPIGetAvailableLanguagesAsVector, (const TessBaseAPI*))                   \
    DO(void, TessBaseAPISetPageSegMode, (TessBaseAPI*, int mode))                                \
    DO(void, TessBaseAPISetImage2, (TessBaseAPI*, Pix*))                                         \
    DO(void, TessBaseAPISetSourceResolution, (TessBaseAPI*, int pixelsPerInch))                  \
    DO(Pix*, TessBaseAPIGetThresholdedImage, (TessBaseAPI*))                                     \
    DO(int, TessBaseAPIRecognize, (TessBaseAPI*, ETEXT_DESC*))                                   \
    DO(TessResultIterator*, TessBaseAPIGetIterator, (TessBaseAPI*))                              \
    DO(char*, TessBaseAPIGetUTF8Text, (TessBaseAPI*))                                            \
    DO(void, TessBaseAPIClear, (TessBaseAPI*))                                                   \
    DO(void, TessBaseAPIEnd, (TessBaseAPI*))                                                     \
    DO(void, TessPageIteratorDelete, (TessPageIterator*))                                        \
    DO(TessPageIterator*, TessPageIteratorCopy, (const TessPageIterator*))                       \
    DO(void, TessPageIteratorBegin, (TessPageIterator*))                                         \
    DO(TessBool, TessPageIteratorNext, (TessPageIterator*, TessPageIteratorLevel))               \
    DO(TessBool, TessPageIteratorBoundingBox,                                                    \
       (const TessPageIterator*, TessPageIteratorLevel, int* left, int* top, int* right,         \
        int* bottom))                                                                            \
    DO(int, TessPageIteratorBlockType, (const TessPageIterator*))                                \
    DO(char*, TessResultIteratorGetUTF8Text, (const TessResultIterator*, TessPageIteratorLevel)) \
    DO(TessPageIterator*, TessResultIteratorGetPageIterator, (TessResultIterator*))              \
    DO(TessBool, TessPageIteratorIsAtFinalElement,                                               \
       (const TessPageIterator*, TessPageIteratorLevel level, TessPageIteratorLevel element))    \
    DO(const char*, TessResultIteratorWordFontAttributes,                                        \
       (const TessResultIterator*, TessBool* isBold, TessBool* isItalic, TessBool* isUnderlined, \
        TessBool* isMonospace, TessBool* isSerif, TessBool* isSmallCaps, int* pointSize,         \
        int* fontId))                                                                            \
    DO(TessBool, TessResultIteratorNext, (TessResultIterator*, TessPageIteratorLevel))           \
    DO(void, TessResultIteratorDelete, (TessResultIterator*))                                    \
    DO(TessResultIterator*, TessResultIteratorCopy, (const TessResultIterator*))                 \
    DO(ETEXT_DESC*, TessMonitorCreate, ())                                                       \
    DO(void, TessMonitorDelete, (ETEXT_DESC*))                                                   \
    DO(void, TessMonitorSetCancelFunc, (ETEXT_DESC*, TessCancelFunc))                            \
    DO(void, TessMonitorSetCancelThis, (ETEXT_DESC*, void*))                                     \
    DO(void*, TessMonitorGetCancelThis, (ETEXT_DESC*))                                           \
    DO(void, TessMonitorSetProgressFunc, (ETEXT_DESC*, TessProgressFunc))                        \
    DO(int, TessMonitorGetProgress, (ETEXT_DESC*))                                               \
    DO(TessBool, TessPageIteratorIsAtBeginningOf, (const TessPageIterator*, TessPageIteratorLevel))

#define TAMRIX_LEPTONICA_FUNCTIONS(DO)                                                          \
    DO(Pix*, pixCreateNoInit, (int width, int height, int depth))                               \
    DO(std::uint32_t*, pixGetData, (Pix*))                                                      \
    DO(int, pixGetWpl, (Pix*))                                                                  \
    DO(int, composeRGBAPixel, (int red, int green, int blue, int alpha, std::uint32_t* pixel))  \
    DO(Pix*, pixConvertRGBToGray, (Pix*, float redWeight, float greenWeight, float blueWeight)) \
    DO(Pix*, pixScaleGeneral,                                                                   \
       (Pix*, float scaleX, float scaleY, float sharpeningFraction, int sharpeningWidth))       \
    DO(Pix*, pixUnsharpMasking, (Pix*, int halfWidth, float fraction))                          \
    DO(int, pixOtsuAdaptiveThreshold,                                                           \
       (Pix*, int tileWidth, int tileHeight, int smoothX, int smoothY, float scoreFraction,     \
        Pix** thresholds, Pix** result))                                                        \
    DO(void, pixDestroy, (Pix**))                                                               \
    DO(Pix*, pixInvert, (Pix * target, Pix * source))                                           \
    DO(int, pixWrite, (const char* fileName, Pix*, int format))

#define TAMRIX_DECLARE_FUNCTION(RESULT, NAME, PARAMETERS) RESULT(*NAME) PARAMETERS = nullptr;

/// Tesseract's library. Never unloaded. The constructor throws std::runtime_error when the folder
/// has no such library, when it can't be loaded, or when it lacks a function.
class TAMRIX_EXPORT TesseractModule {
public:
    explicit TesseractModule(const std::string& directory);

    TAMRIX_TESSERACT_FUNCTIONS(TAMRIX_DECLARE_FUNCTION)

private:
    Library::Module m_library;
};

/// Leptonica's, the same.
class TAMRIX_EXPORT LeptonicaModule {
public:
    explicit LeptonicaModule(const std::string& directory);

    TAMRIX_LEPTONICA_FUNCTIONS(TAMRIX_DECLARE_FUNCTION)

private:
    Library::Module m_library;
};

#undef TAMRIX_DECLARE_FUNCTION

// Both are there as soon as an engine was made, for the rest of the process.
extern TAMRIX_EXPORT std::unique_ptr<const LeptonicaModule> leptonica;
extern TAMRIX_EXPORT std::unique_ptr<const TesseractModule> tesseract;

/// Loads both from the folder unless they are there. Throws what the constructors throw; what was
/// loaded until then stays.
TAMRIX_EXPORT void loadLibraries(const std::string& directory);

}  // namespace Tamrix::Tesseract
