#include "desktoppicture.h"

#include <QFont>
#include <QLinearGradient>
#include <QPainter>
#include <QRandomGenerator>
#include <QStringList>
#include <algorithm>

namespace {

const QStringList& words() {
    static const QStringList s_words = {
        "order",   "customer", "invoice", "the",   "amount", "of",      "Total",   "address",
        "is",      "Delivery", "number",  "with",  "a",      "Options", "article", "price",
        "pending", "shipped",  "and",     "2,450", "17.90",  "Search",  "status",  "comment"};
    return s_words;
}

/// Draws windows; what they show follows from the seed.
class Desktop {
public:
    explicit Desktop(QImage* image) : m_painter(image), m_random(20) {
        m_painter.setRenderHint(QPainter::TextAntialiasing);
    }

    void drawWallpaper(const QRect& rect) {
        QLinearGradient gradient(rect.topLeft(), rect.bottomRight());
        gradient.setColorAt(0, QColor(38, 70, 110));
        gradient.setColorAt(1, QColor(92, 140, 150));
        m_painter.fillRect(rect, gradient);
    }

    void drawWindow(const QRect& rect) {
        m_painter.fillRect(rect.adjusted(-1, -1, 1, 1), QColor(120, 120, 120));
        m_painter.fillRect(rect, QColor(239, 239, 239));
        const QRect title(rect.left(), rect.top(), rect.width(), 26);
        m_painter.fillRect(title, QColor(48, 52, 60));
        drawText(title.adjusted(10, 0, -80, 0), phrase(4), Qt::white, 10);
        for (int i = 0; i < 3; ++i)
            drawIcon(QRect(title.right() - 24 * (i + 1), title.top() + 5, 16, 16));
        drawToolBar(QRect(rect.left(), title.bottom() + 1, rect.width(), 36));
        const QRect content = rect.adjusted(8, 70, -8, -30);
        const int split = content.left() + content.width() / 3;
        drawForm(QRect(content.topLeft(), QPoint(split - 8, content.bottom())));
        const QRect right(QPoint(split, content.top()), content.bottomRight());
        if (m_random.bounded(2) == 0)
            drawTable(right);
        else
            drawPage(right);
        drawText(QRect(rect.left() + 8, rect.bottom() - 24, rect.width() - 16, 20), phrase(5),
                 Qt::darkGray, 9);
    }

private:
    void drawToolBar(const QRect& rect) {
        m_painter.fillRect(rect, QColor(228, 228, 230));
        for (int x = rect.left() + 8; x + 28 < rect.right(); x += 34)
            drawIcon(QRect(x, rect.top() + 6, 24, 24));
    }

    void drawForm(const QRect& rect) {
        for (int y = rect.top(); y + 30 < rect.bottom(); y += 34) {
            drawText(QRect(rect.left(), y, rect.width() / 3, 24), phrase(1), Qt::black, 9);
            const QRect field(rect.left() + rect.width() / 3, y, rect.width() * 2 / 3, 24);
            const bool isButton = m_random.bounded(4) == 0;
            m_painter.setPen(QColor(160, 160, 160));
            m_painter.setBrush(isButton ? QColor(225, 225, 225) : QColor(Qt::white));
            if (isButton) {
                m_painter.setRenderHint(QPainter::Antialiasing, true);
                m_painter.drawRoundedRect(field, 4, 4);
                m_painter.setRenderHint(QPainter::Antialiasing, false);
            } else {
                m_painter.drawRect(field);
            }
            drawText(field.adjusted(6, 0, -6, 0), phrase(2), Qt::black, 9);
        }
    }

    void drawTable(const QRect& rect) {
        m_painter.fillRect(rect, Qt::white);
        constexpr int rowHeight = 22;
        constexpr int columnWidth = 110;
        for (int y = rect.top(); y + rowHeight < rect.bottom(); y += rowHeight) {
            if ((y - rect.top()) / rowHeight % 2 == 1)
                m_painter.fillRect(rect.left(), y, rect.width(), rowHeight, QColor(245, 248, 252));
            for (int x = rect.left(); x + columnWidth < rect.right(); x += columnWidth) {
                drawText(QRect(x + 4, y, columnWidth - 8, rowHeight), phrase(2), Qt::black, 9);
                m_painter.fillRect(x, y, 1, rowHeight, QColor(220, 220, 220));
            }
            m_painter.fillRect(rect.left(), y, rect.width(), 1, QColor(220, 220, 220));
        }
    }

    void drawPage(const QRect& rect) {
        m_painter.fillRect(rect, Qt::white);
        for (int y = rect.top() + 10; y + 20 < rect.bottom(); y += 19) {
            // Paragraphs end early and leave plain space behind them.
            if (m_random.bounded(7) != 0)
                drawText(QRect(rect.left() + 12, y, rect.width() - 24, 18), phrase(14), Qt::black,
                         10);
        }
        const QRect picture(rect.right() - 170, rect.bottom() - 130, 160, 120);
        for (int y = 0; y < picture.height(); ++y) {
            for (int x = 0; x < picture.width(); ++x) {
                m_painter.setPen(QColor::fromHsv((x * 2 + y) % 360, 120 + m_random.bounded(60),
                                                 150 + m_random.bounded(60)));
                m_painter.drawPoint(picture.left() + x, picture.top() + y);
            }
        }
    }

    void drawIcon(const QRect& rect) {
        m_painter.setRenderHint(QPainter::Antialiasing, true);
        m_painter.setPen(QPen(QColor::fromHsv(m_random.bounded(360), 180, 120), 1.5));
        m_painter.setBrush(QColor::fromHsv(m_random.bounded(360), 140, 220));
        const QRectF inner = QRectF(rect).adjusted(2, 2, -2, -2);
        switch (m_random.bounded(3)) {
            case 0:
                m_painter.drawEllipse(inner);
                break;
            case 1:
                m_painter.drawRoundedRect(inner, 3, 3);
                break;
            default:
                m_painter.drawPolygon(QPolygonF({inner.bottomLeft(), inner.bottomRight(),
                                                 QPointF(inner.center().x(), inner.top())}));
        }
        m_painter.setRenderHint(QPainter::Antialiasing, false);
    }

    void drawText(const QRect& rect, const QString& text, const QColor& colour, int points) {
        m_painter.setFont(QFont("DejaVu Sans", points));
        m_painter.setPen(colour);
        m_painter.setClipRect(rect);
        m_painter.drawText(rect, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, text);
        m_painter.setClipping(false);
    }

    QString phrase(int count) {
        QStringList phrase;
        for (int i = 0; i < count; ++i)
            phrase.append(words().at(m_random.bounded(words().size())));
        return phrase.join(' ');
    }

    QPainter m_painter;
    QRandomGenerator m_random;
};

}  // namespace

QImage drawDesktopPicture(QSize size) {
    QImage image(size, QImage::Format_RGB32);
    Desktop desktop(&image);
    desktop.drawWallpaper(image.rect());
    // As many windows as there is room for, a little over each other.
    constexpr QSize window(780, 560);
    for (int y = 40; y < size.height() - 100; y += window.height() - 70) {
        for (int x = 30; x < size.width() - 200; x += window.width() - 150) {
            desktop.drawWindow(QRect(QPoint(x, y), window) &
                               image.rect().adjusted(10, 10, -10, -10));
        }
    }
    return image;
}
