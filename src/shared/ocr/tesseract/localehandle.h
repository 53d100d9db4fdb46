#pragma once

#include <clocale>

#include "base/export.h"

namespace Tamrix::Tesseract {

/// A locale of the C library.
class TAMRIX_EXPORT LocaleHandle {
public:
    /// Of all categories. Null, as seen by get(), when there is no such locale.
    explicit LocaleHandle(const char* name);
    ~LocaleHandle();
    LocaleHandle(const LocaleHandle&) = delete;
    LocaleHandle& operator=(const LocaleHandle&) = delete;

    locale_t get() const { return m_locale; }

    /// The locale "C", made at the start of the process.
    static const LocaleHandle C;

private:
    locale_t m_locale;
};

/// Gives the calling thread another locale for its lifetime; other threads keep theirs. Throws
/// std::runtime_error when that can't be done.
class TAMRIX_EXPORT LocaleOverride {
public:
    explicit LocaleOverride(const LocaleHandle& locale);
    ~LocaleOverride();
    LocaleOverride(const LocaleOverride&) = delete;
    LocaleOverride& operator=(const LocaleOverride&) = delete;

private:
    locale_t m_previous;
};

}  // namespace Tamrix::Tesseract
