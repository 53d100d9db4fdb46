#include "shared/ocr/progressreporter.h"

#include "shared/ocr/typedexception.h"

namespace Tamrix::OCR {

void throwIfCancelled(const ProgressReporter* progress) {
    if (progress && progress->isCanceled())
        throw OperationCancelled();
}

}  // namespace Tamrix::OCR
