#pragma once

#include <gtest/gtest.h>

#include <QTemporaryDir>
#include <memory>

#include "dap/server.h"
#include "support/dapclient.h"
#include "support/simulatedscript.h"

namespace Tamrix::Test {

/// Bytes in memory, for the two ends of a stream.
struct MemoryStream : ByteReader, ByteWriter {
    State read(QByteArray* bytes) override {
        bytes->append(std::exchange(toServer, {}));
        return isClosed ? State::Ended : State::Open;
    }
    bool write(const QByteArray& bytes) override {
        toClient += bytes;
        return true;
    }

    QByteArray toServer;
    QByteArray toClient;
    bool isClosed = false;
};

/// A client and a server in one process, with a simulated script.
class FakeSession : public testing::Test {
protected:
    FakeSession() { EXPECT_TRUE(folder.isValid()); }

    /// Launches the suite with break points and lets the script go on.
    void start(const QJsonArray& breakPoints = {}, const QJsonObject& more = {},
               const QJsonArray& filters = {}) {
        QJsonObject arguments = more;
        arguments["suite"] = folder.path();
        client.launch(arguments);
        client.setBreakPoints(file, breakPoints);
        client.body("setExceptionBreakpoints", {{"filters", filters}});
        client.body("configurationDone");
    }

    QTemporaryDir folder;
    /// Of the script; it is not there, so that it has the path that it is given.
    const QString file = "/suite/case/test.py";
    SimulatedScript script;
    MemoryStream stream;
    Dap::Server server{stream, stream, "tamrixrunner", script.starter()};
    DapClient client{{[this](const QByteArray& bytes) { stream.toServer += bytes; },
                      [this] {
                          // What has not come after some turns will not.
                          for (int turn = 0; turn < 100 && stream.toClient.isEmpty(); ++turn) {
                              if (!server.serve(1) && stream.toClient.isEmpty())
                                  break;
                          }
                          return std::exchange(stream.toClient, {});
                      }}};
};

}  // namespace Tamrix::Test
