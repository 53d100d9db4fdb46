// The program that findimage_bench looks at: a desktop over the whole screen, and what a picture
// of it costs in this process.

#include <QApplication>
#include <QElapsedTimer>
#include <QPainter>
#include <QPixmap>
#include <QScreen>
#include <QWidget>
#include <cstring>
#include <vector>

#include "desktoppicture.h"

namespace {

double microseconds(const QElapsedTimer& timer) {
    return static_cast<double>(timer.nsecsElapsed()) / 1000;
}

class PictureTarget : public QWidget {
    Q_OBJECT
public:
    explicit PictureTarget(const QImage& picture) : m_picture(picture) {
        setObjectName("target");
        setWindowFlags(Qt::FramelessWindowHint | Qt::BypassWindowManagerHint);
        setGeometry(QRect(QPoint(0, 0), picture.size()));
    }

    /// What Qt takes for a picture of the screen, in microseconds.
    Q_INVOKABLE double grabTime() {
        QElapsedTimer timer;
        timer.start();
        m_grabbed = QGuiApplication::primaryScreen()->grabWindow(0).toImage();
        return microseconds(timer);
    }

    /// What a copy of these pixels takes, in microseconds.
    Q_INVOKABLE double copyTime() {
        m_copy.resize(static_cast<size_t>(m_grabbed.sizeInBytes()));
        QElapsedTimer timer;
        timer.start();
        std::memcpy(m_copy.data(), m_grabbed.constBits(), m_copy.size());
        return microseconds(timer);
    }

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter(this).drawImage(QPoint(0, 0), m_picture);
    }

private:
    QImage m_picture;
    QImage m_grabbed;
    std::vector<uchar> m_copy;
};

}  // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    PictureTarget target(drawDesktopPicture(QGuiApplication::primaryScreen()->size()));
    target.show();
    return QApplication::exec();
}

#include "picture_target.moc"
