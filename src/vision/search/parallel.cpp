#include "vision/search/parallel.h"

namespace Tamrix::Vision {

// The destructors are here so that each class exists once, whoever throws and catches it.
Exception::~Exception() = default;
BadImage::~BadImage() = default;
TooMuchTransparency::~TooMuchTransparency() = default;
UnhandledException::~UnhandledException() = default;

const char* TooMuchTransparency::what() const noexcept {
    return "The image has too much transparency";
}

}  // namespace Tamrix::Vision
