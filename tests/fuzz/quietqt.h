#pragma once

#include <QtGlobal>

namespace Tamrix::Fuzz {

/// Drops Qt's messages: bad inputs are what a fuzz target is for, and each would be told.
inline void silenceQt() {
    static const QtMessageHandler s_before =
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    Q_UNUSED(s_before)
}

}  // namespace Tamrix::Fuzz
