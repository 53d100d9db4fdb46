#include "interpreter/language/spoiledprocess.h"

namespace Tamrix {

namespace {

bool s_isSpoiled = false;

}  // namespace

void spoilProcess() {
    s_isSpoiled = true;
}

bool isProcessSpoiled() {
    return s_isSpoiled;
}

}  // namespace Tamrix
