#include "vision/search/imagelookup.h"

#include <atomic>

#include "vision/search/basicimagelookup.h"

namespace Tamrix::Vision {

namespace {

std::atomic<SearchMethod>& currentMethod() {
    static std::atomic<SearchMethod> s_method =
        qgetenv("TAMRIX_IMAGE_SEARCH") == "plain" ? SearchMethod::Plain : SearchMethod::Fast;
    return s_method;
}

}  // namespace

ImageLookupImplementation::Cache::~Cache() = default;

ImageLookupImplementation::~ImageLookupImplementation() = default;

ImageLookupImplementation* ImageLookupImplementation::get() {
    return new BasicImageLookup::Implementation;
}

QImage searchable(const QImage& image) {
    switch (image.format()) {
        case QImage::Format_RGB32:
        case QImage::Format_ARGB32:
        case QImage::Format_ARGB32_Premultiplied:
            return image;
        default:
            return image.convertToFormat(image.hasAlphaChannel() ? QImage::Format_ARGB32
                                                                 : QImage::Format_RGB32);
    }
}

SearchMethod searchMethod() {
    return currentMethod();
}

void setSearchMethod(SearchMethod method) {
    currentMethod() = method;
}

}  // namespace Tamrix::Vision
