#pragma once

namespace Tamrix::Agent {

class Session;

// Each registers the handlers of a family of requests with the session; called once at the start.

/// LookUp, Expect, FindItem, TopLevelObjects, Children, Parent, RealName, GlobalBounds, Snapshot.
void registerObjectHandlers(Session* session);
/// DescribeClass, ReadProperty, ReadProperties, WriteProperty, Invoke of methods and functions.
void registerPropertyHandlers(Session* session);
/// MouseEvent, KeyEvent, Sync, Quit.
void registerInputHandlers(Session* session);
/// NativeRequest, Highlight, StopHighlight.
void registerPictureHandlers(Session* session);
/// InstallHandler, UninstallHandler, SendEvent.
void registerEventHandlers(Session* session);

}  // namespace Tamrix::Agent
