#include "plugins/python/pythonrecorder.h"

namespace Tamrix::PythonPlugin {

constexpr RecordingNotation recordingNotation{
    .header = "def main():\n",
    .footer = "",
    .truths = {"False", "True"},
    .property = "\"%1\": %2",
    .importingHeader = "import %1\n\n\ndef main():\n",
};

}  // namespace Tamrix::PythonPlugin
