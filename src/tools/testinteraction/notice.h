#pragma once

#include "tools/testinteraction/answer.h"
#include "tools/testinteraction/request.h"

namespace Tamrix {

/// Shows a notice until its time is over or somebody clicks it. It does not take the keyboard from
/// what is tested. A picture is shown as large as the screen allows, with its size; its file is
/// removed when it is one that a script has left for this program.
Answer showDialog(const QString& title, const NoticeRequest& request);

}  // namespace Tamrix
