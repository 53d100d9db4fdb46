#pragma once

#include <json/forwards.h>

#include <QByteArray>
#include <QImage>
#include <QList>
#include <QRect>
#include <QString>

#include "base/outcome.h"
#include "vision/search/searchregion.h"

namespace Tamrix {

// Files of pictures, for the commands that look for something in them. What fails is a
// std::runtime_error that names the file, in the bytes that file names have.

[[noreturn]] void giveUpOnPicture(const QString& text);

struct Picture {
    QString file;
    QImage image;
};

Picture loadPicture(const QString& file);

/// The value of the option "region"; what is wrong with it is wrong usage.
Outcome<Vision::SearchRegion> readRegionOption(const QString& value);

/// The whole picture unless a region was given, which must not lie outside of it altogether.
Vision::SearchRegion regionToSearch(const Vision::SearchRegion& region, const Picture& picture);

/// Stores the picture with frames around the rectangles.
void storeFramed(const QString& file, const QImage& picture, const QList<QRect>& rectangles);

/// The value as text, indented, with a line feed behind it.
QByteArray jsonText(const Json::Value& value);

}  // namespace Tamrix
