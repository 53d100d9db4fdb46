#pragma once

#include <QImage>
#include <QSize>

/// A desktop as screenshots show it: a wallpaper with a gradient, windows with menus, tool bars,
/// texts, tables and widgets. The same for the same size, as far as fonts are the same. RGB32.
/// Needs a QGuiApplication (the offscreen platform will do).
QImage drawDesktopPicture(QSize size);
