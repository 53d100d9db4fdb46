#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace Tamrix {

/// What a test case may change of the process and must not leave to the next one: the working
/// directory, the environment, the locale and the mask for new files. The constructor saves it, the
/// destructor restores it. Not while another thread uses any of them.
class ProcessState {
public:
    ProcessState();
    ~ProcessState();
    ProcessState(const ProcessState&) = delete;
    ProcessState& operator=(const ProcessState&) = delete;

private:
    void restoreEnvironment() const;

    /// Open on the directory, so that it is found again although it was renamed.
    int m_directory;
    /// "NAME=VALUE" each, in the order of the process.
    std::vector<std::string> m_environment;
    std::string m_locale;
    mode_t m_fileMask;
};

}  // namespace Tamrix
