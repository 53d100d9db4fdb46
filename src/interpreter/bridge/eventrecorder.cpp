#include "interpreter/bridge/eventrecorder.h"

namespace Tamrix {

EventRecorder::~EventRecorder() = default;

}  // namespace Tamrix
