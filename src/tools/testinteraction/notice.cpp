#include "tools/testinteraction/notice.h"

#include <QApplication>
#include <QCloseEvent>
#include <QDir>
#include <QFileInfo>
#include <QImageReader>
#include <QLabel>
#include <QMouseEvent>
#include <QRegularExpression>
#include <QScreen>
#include <QTimer>
#include <QVBoxLayout>
#include <cstdio>

namespace Tamrix {

namespace {

/// How much of the screen a picture may take.
constexpr double mostOfScreen = 0.8;
/// Between a notice and the corner of the screen, and around its contents.
constexpr int margin = 16;
constexpr int mostTextWidth = 420;

/// A window that comes up without the keyboard, and goes with a click.
class Notice : public QWidget {
public:
    explicit Notice(const QString& title)
        : QWidget(nullptr, Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint |
                               Qt::WindowDoesNotAcceptFocus) {
        setAttribute(Qt::WA_ShowWithoutActivating);
        setWindowTitle(title);
        auto* const layout = new QVBoxLayout(this);
        layout->setContentsMargins(margin, margin, margin, margin);
        addText(title)->setEnabled(false);
    }

    QLabel* addText(const QString& text) {
        auto* const label = new QLabel(text);
        label->setTextFormat(Qt::PlainText);
        label->setWordWrap(true);
        label->setMaximumWidth(mostTextWidth);
        layout()->addWidget(label);
        return label;
    }

    void addPicture(const QImage& image, const QSize& most) {
        QImage shown = image;
        if (image.width() > most.width() || image.height() > most.height())
            shown = image.scaled(most, Qt::KeepAspectRatio, Qt::SmoothTransformation);
        auto* const label = new QLabel;
        label->setObjectName(QStringLiteral("picture"));
        label->setPixmap(QPixmap::fromImage(shown));
        layout()->addWidget(label);
        QString size = QStringLiteral("%1 x %2 pixels")
                           .arg(QString::number(image.width()), QString::number(image.height()));
        if (shown.size() != image.size())
            size += QStringLiteral(", shown at %1 %").arg(100 * shown.width() / image.width());
        addText(size)->setObjectName(QStringLiteral("size"));
    }

    /// In the corner where notices are expected.
    void place() {
        adjustSize();
        const QRect screen = QApplication::primaryScreen()->availableGeometry();
        move(screen.right() - width() - margin, screen.bottom() - height() - margin);
    }

protected:
    void mousePressEvent(QMouseEvent*) override { close(); }
    /// A window of this kind is none whose end Qt would take for the program's.
    void closeEvent(QCloseEvent* event) override {
        QWidget::closeEvent(event);
        QApplication::quit();
    }
};

/// Whether a script has left the file for this program, which then removes it.
bool isLeftByScript(const QFileInfo& file) {
    static const QRegularExpression s_name(QStringLiteral("\\AinteractionImage\\w{6}\\z"));
    return s_name.match(file.fileName()).hasMatch() &&
           QFileInfo(file.path()) == QFileInfo(QDir::tempPath());
}

}  // namespace

Answer showDialog(const QString& title, const NoticeRequest& request) {
    Notice notice(title);
    if (!request.text.isEmpty())
        notice.addText(request.text)->setObjectName(QStringLiteral("message"));
    if (!request.imageFile.isEmpty()) {
        QImageReader reader(request.imageFile);
        // Whatever its name says.
        reader.setDecideFormatFromContent(true);
        const QImage image = reader.read();
        if (isLeftByScript(QFileInfo(request.imageFile)))
            QFile::remove(request.imageFile);
        if (image.isNull()) {
            std::fprintf(stderr, "testinteraction: '%s' can't be shown: %s\n",
                         qUtf8Printable(request.imageFile), qUtf8Printable(reader.errorString()));
            return Answer::Failed;
        }
        notice.addPicture(image, QApplication::primaryScreen()->availableSize() * mostOfScreen);
    }
    notice.place();
    notice.show();
    QTimer::singleShot(request.milliseconds, &notice, &QWidget::close);
    QApplication::exec();
    return Answer::Ok;
}

}  // namespace Tamrix
