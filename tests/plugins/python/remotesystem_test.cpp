#include "plugins/python/pythontest.h"

namespace Tamrix {
namespace {

using namespace Test;

class PythonRemoteSystem : public PythonTest {};

TEST_F(PythonRemoteSystem, FailuresAreExceptionsOfTheLibrary) {
    EXPECT_EQ(run(R"py(
import tamrix
assert tamrix.RemoteSystem is RemoteSystem
for arguments, wanted in [
        ((), "Failed to connect to default tamrix server system, received error: not connected"),
        (("lab", 22), "Failed to connect to remote system lab:22, received error: not connected"),
        (("lab",), "Failed to connect to remote system lab:-1, received error: not connected"),
        (("lab", "x"), "remote system port needs to be specified as integral number.")]:
    try:
        RemoteSystem(*arguments)
    except tamrix.Error as error:
        assert str(error) == wanted, error
    else:
        assert False
)py"),
              "");
    // Results and errors stand at the script's own line.
    EXPECT_NE(run("\n\nRemoteSystem()"), "");
    EXPECT_EQ(interpreter->errorLine(), 3);
}

}  // namespace
}  // namespace Tamrix
