#include "base/library.h"

#include <dlfcn.h>
#include <sys/stat.h>

#include <stdexcept>

#include "base/stringconversion.h"

namespace Tamrix {

bool Library::fileExists(const std::string& path) {
    struct stat status;
    return ::stat(utf8ToLocal8Bit(path).c_str(), &status) == 0 && S_ISREG(status.st_mode);
}

std::string Library::joinFilePath(const std::string& directory, const std::string& name) {
    if (directory.empty() || directory.back() == '/')
        return directory + name;
    return directory + "/" + name;
}

std::string Library::locate(const std::string& name, const std::string& directory) {
    for (const char* prefix : {"", "lib"}) {
        const std::string path = joinFilePath(directory, prefix + name + ".so");
        if (fileExists(path))
            return path;
    }
    return {};
}

void* Library::open(const std::string& path, int flags) {
    return ::dlopen(utf8ToLocal8Bit(path).c_str(), flags | RTLD_LAZY);
}

void Library::close(void* handle) {
    ::dlclose(handle);
}

void* Library::resolve(void* handle, const char* symbol) {
    return ::dlsym(handle, symbol);
}

std::string Library::lastErrorMessage() {
    const char* message = ::dlerror();
    return message ? local8BitToUTF8(message) : std::string();
}

void* Library::Module::init(const char* displayName, const std::string& libraryName,
                            const std::string& directory, int flags) {
    const std::string path = Library::locate(libraryName, directory);
    if (path.empty())
        throw std::runtime_error(std::string("Cannot find the ") + displayName + " library in " +
                                 directory);
    m_handle = Library::open(path, flags);
    if (!m_handle)
        throw std::runtime_error("Error loading the '" + path +
                                 "' library: " + Library::lastErrorMessage());
    return m_handle;
}

}  // namespace Tamrix
