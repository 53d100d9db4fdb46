#include "platform/objectmodel/display/keysyms.h"

#include <xkbcommon/xkbcommon-keysyms.h>
#include <xkbcommon/xkbcommon.h>

#include <QChar>
#include <Qt>

namespace Tamrix::Display {

namespace {

/// Keys that give no character.
constexpr struct {
    int code;
    quint32 keySym;
} namedKeys[] = {
    {Qt::Key_Escape, XKB_KEY_Escape},
    {Qt::Key_Tab, XKB_KEY_Tab},
    {Qt::Key_Backtab, XKB_KEY_ISO_Left_Tab},
    {Qt::Key_Backspace, XKB_KEY_BackSpace},
    {Qt::Key_Return, XKB_KEY_Return},
    {Qt::Key_Enter, XKB_KEY_KP_Enter},
    {Qt::Key_Insert, XKB_KEY_Insert},
    {Qt::Key_Delete, XKB_KEY_Delete},
    {Qt::Key_Pause, XKB_KEY_Pause},
    {Qt::Key_Print, XKB_KEY_Print},
    {Qt::Key_SysReq, XKB_KEY_Sys_Req},
    {Qt::Key_Clear, XKB_KEY_Clear},
    {Qt::Key_Home, XKB_KEY_Home},
    {Qt::Key_End, XKB_KEY_End},
    {Qt::Key_Left, XKB_KEY_Left},
    {Qt::Key_Up, XKB_KEY_Up},
    {Qt::Key_Right, XKB_KEY_Right},
    {Qt::Key_Down, XKB_KEY_Down},
    {Qt::Key_PageUp, XKB_KEY_Page_Up},
    {Qt::Key_PageDown, XKB_KEY_Page_Down},
    {Qt::Key_Shift, XKB_KEY_Shift_L},
    {Qt::Key_Control, XKB_KEY_Control_L},
    {Qt::Key_Meta, XKB_KEY_Super_L},
    {Qt::Key_Alt, XKB_KEY_Alt_L},
    {Qt::Key_AltGr, XKB_KEY_ISO_Level3_Shift},
    {Qt::Key_Super_L, XKB_KEY_Super_L},
    {Qt::Key_Super_R, XKB_KEY_Super_R},
    {Qt::Key_CapsLock, XKB_KEY_Caps_Lock},
    {Qt::Key_NumLock, XKB_KEY_Num_Lock},
    {Qt::Key_ScrollLock, XKB_KEY_Scroll_Lock},
    {Qt::Key_Menu, XKB_KEY_Menu},
    {Qt::Key_Help, XKB_KEY_Help},
    {Qt::Key_Undo, XKB_KEY_Undo},
    {Qt::Key_Redo, XKB_KEY_Redo},
    {Qt::Key_Find, XKB_KEY_Find},
    {Qt::Key_Cancel, XKB_KEY_Cancel},
    {Qt::Key_Multi_key, XKB_KEY_Multi_key},
};

constexpr int highestCharacter = 0x10ffff;

}  // namespace

quint32 keySymOfCharacter(uint character) {
    return xkb_utf32_to_keysym(character);
}

Outcome<quint32> keySymOf(const Wire::Key& key) {
    for (const auto& [code, keySym] : namedKeys) {
        if (code == key.code)
            return keySym;
    }
    if (key.code >= Qt::Key_F1 && key.code <= Qt::Key_F35)
        return static_cast<quint32>(XKB_KEY_F1 + (key.code - Qt::Key_F1));
    // What a key is called by is its upper-case letter.
    quint32 keySym = XKB_KEY_NoSymbol;
    if (key.code > 0 && key.code <= highestCharacter)
        keySym = keySymOfCharacter(QChar::toLower(static_cast<uint>(key.code)));
    if (keySym == XKB_KEY_NoSymbol) {
        return fail(FailureKind::BadArgument,
                    QStringLiteral("X keyboards have no key of the number 0x%1").arg(key.code, 0, 16));
    }
    return keySym;
}

}  // namespace Tamrix::Display
