#include "dialogpictures.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QPushButton>
#include <QRadioButton>
#include <QTableWidget>
#include <QVBoxLayout>
#include <memory>

namespace Tamrix::Bench {

namespace {

constexpr const char* fonts[] = {"DejaVu Sans", "DejaVu Serif", "DejaVu Sans Mono"};
constexpr int sizes[] = {8, 9, 10, 11, 12, 14};

QPalette paletteOf(bool isDark) {
    if (!isDark)
        return QPalette(QColor(239, 239, 239));
    QPalette palette(QColor(49, 54, 59));
    palette.setColor(QPalette::Base, QColor(35, 38, 41));
    for (const auto role : {QPalette::Text, QPalette::WindowText, QPalette::ButtonText})
        palette.setColor(role, QColor(239, 240, 241));
    return palette;
}

/// Makes widgets and keeps in mind what is written in them.
class DialogBuilder {
public:
    DialogBuilder(const QFont& font, bool isDark) : m_dialog(std::make_unique<QDialog>()) {
        m_dialog->setFont(font);
        m_dialog->setPalette(paletteOf(isDark));
        auto* const layout = new QVBoxLayout(m_dialog.get());
        layout->addWidget(noted(new QLabel("Settings of the network connection"),
                                "Settings of the network connection"));
        layout->addLayout(form());
        layout->addWidget(choices());
        layout->addWidget(table());
        auto* const buttons = new QDialogButtonBox;
        for (const char* text : {"Save", "Cancel", "Apply", "Help"})
            buttons->addButton(button(text), QDialogButtonBox::ActionRole);
        layout->addWidget(buttons);
    }

    /// What the dialog looks like.
    QImage picture() {
        m_dialog->ensurePolished();
        m_dialog->resize(m_dialog->sizeHint().expandedTo(QSize(420, 0)));
        m_dialog->setAttribute(Qt::WA_DontShowOnScreen);
        m_dialog->show();
        QApplication::processEvents();
        return m_dialog->grab().toImage().convertToFormat(QImage::Format_RGB32);
    }

    /// Behind picture().
    QList<DialogPicture::Text> texts() const {
        QList<DialogPicture::Text> texts;
        for (const auto& [widget, text] : m_written)
            texts.append({QString(text).split(' '),
                          QRect(widget->mapTo(m_dialog.get(), QPoint()), widget->size())});
        for (int row = 0; row < m_table->rowCount(); ++row) {
            for (int column = 0; column < m_table->columnCount(); ++column) {
                const QTableWidgetItem* const item = m_table->item(row, column);
                const QRect place = m_table->visualItemRect(item);
                texts.append({item->text().split(' '), place.translated(m_table->viewport()->mapTo(
                                                           m_dialog.get(), QPoint()))});
            }
        }
        return texts;
    }

private:
    template <typename Widget>
    Widget* noted(Widget* widget, const char* text) {
        m_written.append({widget, text});
        return widget;
    }

    QPushButton* button(const char* text) { return noted(new QPushButton(text), text); }

    QFormLayout* form() {
        auto* const form = new QFormLayout;
        const auto addLine = [&](const char* label, const char* value) {
            form->addRow(noted(new QLabel(label), label), noted(new QLineEdit(value), value));
        };
        addLine("User name:", "margaret.hamilton");
        addLine("Server address:", "files.example.com");
        addLine("Port:", "8443");
        auto* const box = new QComboBox;
        box->addItem("Require encryption");
        form->addRow(noted(new QLabel("Security:"), "Security:"), noted(box, "Require encryption"));
        return form;
    }

    QWidget* choices() {
        auto* const group = new QGroupBox;
        auto* const layout = new QVBoxLayout(group);
        layout->addWidget(noted(new QCheckBox("Remember my password"), "Remember my password"));
        layout->addWidget(noted(new QCheckBox("Connect automatically at start"),
                                "Connect automatically at start"));
        layout->addWidget(
            noted(new QRadioButton("Use the proxy of the system"), "Use the proxy of the system"));
        return group;
    }

    QWidget* table() {
        constexpr const char* cells[3][3] = {{"Invoice", "2026-11-25", "1,250.00"},
                                             {"Reminder", "2026-10-31", "87.95"},
                                             {"Credit note", "2026-09-15", "310.40"}};
        m_table = new QTableWidget(3, 3);
        m_table->horizontalHeader();
        m_table->setFont(m_dialog->font());
        for (int row = 0; row < 3; ++row) {
            for (int column = 0; column < 3; ++column)
                m_table->setItem(row, column, new QTableWidgetItem(cells[row][column]));
        }
        m_table->setHorizontalHeaderLabels({"Kind", "Date", "Amount"});
        m_table->resizeColumnsToContents();
        m_table->setMinimumHeight(m_table->sizeHint().height() / 2);
        return m_table;
    }

    std::unique_ptr<QDialog> m_dialog;
    QList<QPair<QWidget*, const char*>> m_written;
    QTableWidget* m_table = nullptr;
};

}  // namespace

int DialogPicture::wordCount() const {
    int count = 0;
    for (const Text& text : texts)
        count += text.words.size();
    return count;
}

QList<DialogPicture> dialogPictures() {
    QList<DialogPicture> pictures;
    int number = 0;
    for (const int size : sizes) {
        const char* const family = fonts[number++ % std::size(fonts)];
        for (const bool isDark : {false, true}) {
            DialogBuilder builder(QFont(family, size), isDark);
            DialogPicture picture;
            picture.name = QStringLiteral("%1 %2, %3")
                               .arg(QLatin1String(family), QString::number(size),
                                    QLatin1String(isDark ? "dark" : "light"));
            picture.pointSize = size;
            picture.isDark = isDark;
            picture.image = builder.picture();
            picture.texts = builder.texts();
            pictures.append(picture);
        }
    }
    return pictures;
}

QImage screenPicture() {
    QImage screen(1920, 1080, QImage::Format_RGB32);
    screen.fill(QColor(239, 239, 239));
    QPainter painter(&screen);
    DialogBuilder builder(QFont(fonts[0], 10), false);
    const QImage dialog = builder.picture();
    for (int y = 20; y < screen.height(); y += dialog.height() + 20) {
        for (int x = 20; x < screen.width(); x += dialog.width() + 20)
            painter.drawImage(x, y, dialog);
    }
    return screen;
}

}  // namespace Tamrix::Bench
