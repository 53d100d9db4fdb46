#pragma once

#include <string>

#include "base/export.h"

namespace Tamrix {

/// Thin wrapper over the system's dynamic loading. File paths are UTF-8.
class TAMRIX_EXPORT Library {
public:
    class Module;

    static bool fileExists(const std::string& path);
    static std::string joinFilePath(const std::string& directory, const std::string& name);

    /// The path of the library `name` in `directory`: with ".so" behind it, else also with "lib" in
    /// front; an empty string when neither exists.
    static std::string locate(const std::string& name, const std::string& directory);

    /// Opens the library with lazy binding; `flags` are further flags of dlopen. Null on failure.
    static void* open(const std::string& path, int flags);
    static void close(void* handle);
    static void* resolve(void* handle, const char* symbol);

    /// Why the last operation failed, in UTF-8; reading it clears it. Empty when nothing failed.
    static std::string lastErrorMessage();
};

/// A library that is bound function by function at run time. It stays loaded when the Module goes:
/// what was resolved from it may still be in use.
class TAMRIX_EXPORT Library::Module {
public:
    /// Opens `libraryName` in `directory` with `flags` and returns the handle.
    /// Throws std::runtime_error, with `displayName` or the path in it, when there is no such
    /// library or it can't be opened.
    void* init(const char* displayName, const std::string& libraryName,
               const std::string& directory, int flags);

    /// Binds `symbol` to a typed function pointer. False, with `*function` null, when the library
    /// has no such symbol or none was opened.
    template <typename T>
    bool resolve(const char* symbol, T* function) const {
        *function = m_handle ? reinterpret_cast<T>(Library::resolve(m_handle, symbol)) : nullptr;
        return *function != nullptr;
    }

private:
    void* m_handle = nullptr;
};

}  // namespace Tamrix
