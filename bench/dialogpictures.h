#pragma once

#include <QImage>
#include <QList>
#include <QRect>
#include <QString>
#include <QStringList>

namespace Tamrix::Bench {

/// A dialog as a toolkit paints it, and what is written where.
struct DialogPicture {
    /// A piece of text and the widget that it is in.
    struct Text {
        QStringList words;
        QRect place;
    };

    QString name;
    int pointSize = 0;
    bool isDark = false;
    QImage image;
    QList<Text> texts;

    int wordCount() const;
};

/// Twelve dialogs: six sizes, each light and dark, in three fonts. Needs a QApplication.
QList<DialogPicture> dialogPictures();

/// A screen of 1920x1080 pixels that is full of dialogs.
QImage screenPicture();

}  // namespace Tamrix::Bench
