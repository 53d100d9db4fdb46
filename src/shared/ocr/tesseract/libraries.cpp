#include "shared/ocr/tesseract/libraries.h"

#include <dlfcn.h>

#include <QString>
#include <stdexcept>

#include "base/environment.h"

namespace Tamrix::Tesseract {

std::unique_ptr<const LeptonicaModule> leptonica;
std::unique_ptr<const TesseractModule> tesseract;

namespace {

template <typename T>
void bind(const Library::Module& library, const char* displayName, const char* symbol,
          T* function) {
    if (!library.resolve(symbol, function))
        throw std::runtime_error(std::string("The library ") + displayName +
                                 " is incompatible: missing the " + symbol + " function");
}

/// One thread is enough for what a test reads, and runs beside each other don't fight for the
/// processor. The library of Tesseract's threads reads the variable when it is loaded; applications
/// that are started later must not find it.
class SingleThreaded {
public:
    SingleThreaded() : m_value(Environment::getVariable(variable())) {
        if (m_value.isNull())
            Environment::setVariable(variable(), QStringLiteral("1"));
    }
    ~SingleThreaded() {
        if (m_value.isNull())
            Environment::unsetVariable(variable());
    }
    SingleThreaded(const SingleThreaded&) = delete;
    SingleThreaded& operator=(const SingleThreaded&) = delete;

private:
    static QString variable() { return QStringLiteral("OMP_THREAD_LIMIT"); }

    QString m_value;
};

}  // namespace

#define TAMRIX_BIND_FUNCTION(RESULT, NAME, PARAMETERS) bind(m_library, displayName, #NAME, &(NAME));

// Global symbols: Tesseract takes the Leptonica that was loaded before it.

LeptonicaModule::LeptonicaModule(const std::string& directory) {
    const char* const displayName = "Leptonica";
    m_library.init(displayName, "leptonica", directory, RTLD_GLOBAL);
    TAMRIX_LEPTONICA_FUNCTIONS(TAMRIX_BIND_FUNCTION)
}

TesseractModule::TesseractModule(const std::string& directory) {
    const char* const displayName = "Tesseract";
    m_library.init(displayName, "tesseract", directory, RTLD_GLOBAL);
    TAMRIX_TESSERACT_FUNCTIONS(TAMRIX_BIND_FUNCTION)
}

#undef TAMRIX_BIND_FUNCTION

void loadLibraries(const std::string& directory) {
    const SingleThreaded singleThreaded;
    if (!leptonica)
        leptonica = std::make_unique<const LeptonicaModule>(directory);
    if (!tesseract)
        tesseract = std::make_unique<const TesseractModule>(directory);
}

}  // namespace Tamrix::Tesseract
