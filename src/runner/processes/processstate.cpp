#include "runner/processes/processstate.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <QtGlobal>

#include <algorithm>
#include <cerrno>
#include <clocale>
#include <cstdlib>
#include <cstring>

namespace Tamrix {

namespace {

std::vector<std::string> environmentEntries() {
    std::vector<std::string> entries;
    for (char** entry = environ; entry && *entry; ++entry)
        entries.emplace_back(*entry);
    return entries;
}

mode_t currentFileMask() {
    // The mask can only be read by setting it.
    const mode_t mask = ::umask(0);
    ::umask(mask);
    return mask;
}

}  // namespace

ProcessState::ProcessState()
    : m_directory(::open(".", O_PATH | O_DIRECTORY | O_CLOEXEC)),
      m_environment(environmentEntries()),
      m_locale(std::setlocale(LC_ALL, nullptr)),
      m_fileMask(currentFileMask()) {}

ProcessState::~ProcessState() {
    if (m_directory >= 0) {
        if (::fchdir(m_directory) != 0)
            qWarning("Can't return to the working directory: %s", std::strerror(errno));
        ::close(m_directory);
    }
    restoreEnvironment();
    std::setlocale(LC_ALL, m_locale.c_str());
    ::umask(m_fileMask);
}

void ProcessState::restoreEnvironment() const {
    if (environmentEntries() == m_environment)
        return;
    ::clearenv();
    for (const std::string& entry : m_environment) {
        const size_t separator = entry.find('=');
        if (separator != std::string::npos)
            ::setenv(entry.substr(0, separator).c_str(), entry.c_str() + separator + 1, 1);
    }
}

}  // namespace Tamrix
