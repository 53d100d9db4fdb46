#include "plugins/python/pythonrecorder.h"

namespace Tamrix::PythonPlugin {

constexpr RecordingNotation recordingNotation{
    .header = "def main():\n",
    .footer = "",
    .truths = {"False", "True"},
    .property = "\"%1\": %2",
    .import = "import %1\n\n\n",
};

}  // namespace Tamrix::PythonPlugin
