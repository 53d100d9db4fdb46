#pragma once

#include <QByteArray>
#include <memory>
#include <new>

#include "shared/ocr/tesseract/libraries.h"

// Owners of what the libraries hand out. Only after loadLibraries().

namespace Tamrix::Tesseract {

struct FreeHandle {
    void operator()(TessBaseAPI* api) const { tesseract->TessBaseAPIDelete(api); }
    void operator()(ETEXT_DESC* monitor) const { tesseract->TessMonitorDelete(monitor); }
    void operator()(TessResultIterator* iterator) const {
        tesseract->TessResultIteratorDelete(iterator);
    }
    void operator()(Pix* pix) const { leptonica->pixDestroy(&pix); }
    void operator()(char* text) const { tesseract->TessDeleteText(text); }
    void operator()(char** texts) const { tesseract->TessDeleteTextArray(texts); }
};

using ApiHandle = std::unique_ptr<TessBaseAPI, FreeHandle>;
using MonitorHandle = std::unique_ptr<ETEXT_DESC, FreeHandle>;
using IteratorHandle = std::unique_ptr<TessResultIterator, FreeHandle>;
using PixHandle = std::unique_ptr<Pix, FreeHandle>;
using TextHandle = std::unique_ptr<char, FreeHandle>;

/// A text that ends at a null pointer.
struct FreeTexts {
    void operator()(char** texts) const { FreeHandle()(texts); }
};
using TextArrayHandle = std::unique_ptr<char*[], FreeTexts>;

/// Throws std::bad_alloc for a null pointer, which is what the libraries give when they have no
/// memory left.
template <typename T>
std::unique_ptr<T, FreeHandle> owned(T* pointer) {
    if (!pointer)
        throw std::bad_alloc();
    return std::unique_ptr<T, FreeHandle>(pointer);
}

}  // namespace Tamrix::Tesseract
