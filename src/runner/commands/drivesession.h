#pragma once

#include <json/json.h>

#include <QString>

#include "base/outcome.h"

namespace Tamrix {

/// A session that stays between commands, as a process of its own that listens at a local socket:
/// "tamrixrunner mcp --listen".
class DriveSession {
public:
    /// Connects to the session of this name. Of kind NotFound when there is none.
    static Outcome<DriveSession> connect(const QString& name);
    /// The same, and starts it first when there is none; `display` is for a new one.
    static Outcome<DriveSession> connectOrStart(const QString& name, const QString& display);
    ~DriveSession();
    DriveSession(DriveSession&& other) noexcept;
    DriveSession& operator=(DriveSession&&) = delete;

    /// Calls a tool and waits for its result, as the protocol has it.
    Outcome<Json::Value> call(const QString& tool, const Json::Value& arguments);
    /// Ends the session with the programs that it has started, and waits for that.
    Outcome<> stop();

private:
    explicit DriveSession(int descriptor) : m_descriptor(descriptor) {}

    int m_descriptor;
};

}  // namespace Tamrix
