#include "shared/ocr/tesseract/localehandle.h"

#include <stdexcept>

namespace Tamrix::Tesseract {

const LocaleHandle LocaleHandle::C("C");

LocaleHandle::LocaleHandle(const char* name) : m_locale(newlocale(LC_ALL_MASK, name, nullptr)) {}

LocaleHandle::~LocaleHandle() {
    if (m_locale)
        freelocale(m_locale);
}

// Without a locale uselocale() would only ask for the present one.
LocaleOverride::LocaleOverride(const LocaleHandle& locale)
    : m_previous(locale.get() ? uselocale(locale.get()) : nullptr) {
    if (!m_previous)
        throw std::runtime_error("Temporary locale override failed");
}

LocaleOverride::~LocaleOverride() {
    uselocale(m_previous);
}

}  // namespace Tamrix::Tesseract
