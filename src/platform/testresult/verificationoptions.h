#pragma once

namespace Tamrix {

/// How verdicts behave: time for repeated tries, screenshots, errors. A plain value.
class VerificationOptions {
public:
    enum Flag {
        SilentVerifications = 1,
        LogScreenshotOnPass = 2,
        LogScreenshotOnFail = 4,
        LogScreenshotOnWarning = 8,
        LogScreenshotOnError = 16,
        ThrowOnFailure = 32
    };

    /// How long a verification point is tried again, in milliseconds.
    void setRetryDuration(int milliseconds) { m_retryDuration = milliseconds; }
    int retryDuration() const { return m_retryDuration; }

    /// How long to wait before a verification point's screenshot is taken, in milliseconds.
    void setScreenshotDelay(int milliseconds) { m_screenshotDelay = milliseconds; }
    int screenshotDelay() const { return m_screenshotDelay; }

    void setFlag(Flag flag, bool on) { m_flags = on ? (m_flags | flag) : (m_flags & ~flag); }
    bool testFlag(Flag flag) const { return (m_flags & flag) != 0; }

private:
    int m_retryDuration = 0;
    int m_screenshotDelay = 0;
    int m_flags = 0;
};

}  // namespace Tamrix
