#pragma once

#include <QAbstractNativeEventFilter>
#include <QByteArray>
#include <QObject>
#include <optional>

#include "agent/core/qtversion.h"

class QWindow;

namespace Tamrix::Agent {

/// Which windows the window system asks to close: as a person does with their frame. When a program
/// closes one itself, Qt 6 sends it the same event, but no message came just before. Only X11
/// tells. Works while something is recorded; GUI thread only.
class CloseRequests : public QObject, public QAbstractNativeEventFilter {
public:
    void start();
    void stop();

    /// Whether the event of closing that the window gets now may have been asked for, once a
    /// request; none where the window system does not tell.
    std::optional<bool> take(const QWindow& window);

    bool nativeEventFilter(const QByteArray& type, void* message, NativeResult* result) override;

private:
    /// The window that was sent a message, which need not be to close, since the program last had
    /// nothing to do: what it asks for is done by then. 0 for none.
    quint32 m_told = 0;
};

}  // namespace Tamrix::Agent
