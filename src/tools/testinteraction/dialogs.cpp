#include "tools/testinteraction/dialogs.h"

#include <QApplication>
#include <QDialog>
#include <QDialogButtonBox>
#include <QFile>
#include <QIcon>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QStyle>
#include <QVBoxLayout>
#include <cstdio>

namespace Tamrix {

namespace {

/// Of the screen's height; more of a text scrolls.
constexpr double mostOfScreen = 0.6;
constexpr int textWidth = 480;

void print(const QString& text) {
    QFile output;
    output.open(stdout, QIODevice::WriteOnly);
    output.write(text.toUtf8() + '\n');
}

/// A text, in a frame that scrolls when it is long.
QWidget* createText(const QString& text) {
    auto* const label = new QLabel(text);
    label->setObjectName(QStringLiteral("message"));
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    label->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    const int height = label->heightForWidth(textWidth);
    const int most =
        static_cast<int>(QApplication::primaryScreen()->availableSize().height() * mostOfScreen);
    if (height <= most) {
        label->setFixedWidth(textWidth);
        return label;
    }
    auto* const area = new QScrollArea;
    area->setWidget(label);
    area->setWidgetResizable(true);
    area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    area->setMinimumSize(textWidth, most);
    return area;
}

/// A dialog with a text and buttons; what the person fills in stands between.
class InteractionDialog : public QDialog {
public:
    InteractionDialog(const QString& title, const QString& text, QStyle::StandardPixmap icon)
        : QDialog(nullptr, Qt::Dialog | Qt::WindowStaysOnTopHint | Qt::WindowTitleHint |
                               Qt::WindowCloseButtonHint) {
        setWindowTitle(title);
        auto* const head = new QHBoxLayout;
        auto* const picture = new QLabel;
        const int size = style()->pixelMetric(QStyle::PM_MessageBoxIconSize);
        picture->setPixmap(style()->standardIcon(icon).pixmap(size));
        head->addWidget(picture, 0, Qt::AlignTop);
        head->addWidget(createText(text), 1);
        m_layout = new QVBoxLayout(this);
        m_layout->addLayout(head);
    }

    void addField(QWidget* field) {
        m_layout->addWidget(field);
        field->setFocus();
    }

    void addButton(QDialogButtonBox::StandardButton button, Answer answer, bool isDefault) {
        if (!m_buttons) {
            m_buttons = new QDialogButtonBox;
            m_layout->addWidget(m_buttons);
        }
        QPushButton* const widget = m_buttons->addButton(button);
        widget->setDefault(isDefault);
        connect(widget, &QPushButton::clicked, this,
                [this, answer] { done(static_cast<int>(answer)); });
        if (isDefault && !focusWidget())
            widget->setFocus();
    }

    /// Waits for the answer; `closed` is that of a dialog that was closed without one.
    Answer ask(Answer closed) {
        show();
        raise();
        activateWindow();
        const int code = exec();
        return code == QDialog::Rejected ? closed : static_cast<Answer>(code);
    }

private:
    QVBoxLayout* m_layout;
    QDialogButtonBox* m_buttons = nullptr;
};

/// OK and Cancel behind a field; what it holds then is printed.
template <typename TextOf>
Answer askForText(InteractionDialog& dialog, TextOf textOf) {
    dialog.addButton(QDialogButtonBox::Ok, Answer::Ok, true);
    dialog.addButton(QDialogButtonBox::Cancel, Answer::Cancel, false);
    const Answer answer = dialog.ask(Answer::Cancel);
    if (answer == Answer::Ok)
        print(textOf());
    return answer;
}

}  // namespace

Answer showDialog(const QString& title, const TextRequest& request) {
    switch (request.kind) {
        case TextRequest::Kind::Question: {
            InteractionDialog dialog(title, request.text, QStyle::SP_MessageBoxQuestion);
            dialog.addButton(QDialogButtonBox::Yes, Answer::Yes, true);
            dialog.addButton(QDialogButtonBox::No, Answer::No, false);
            return dialog.ask(Answer::Cancel);
        }
        case TextRequest::Kind::Information:
        case TextRequest::Kind::Warning:
            break;
    }
    InteractionDialog dialog(title, request.text,
                             request.kind == TextRequest::Kind::Warning
                                 ? QStyle::SP_MessageBoxWarning
                                 : QStyle::SP_MessageBoxInformation);
    dialog.addButton(QDialogButtonBox::Ok, Answer::Ok, true);
    return dialog.ask(Answer::Ok);
}

Answer showDialog(const QString& title, const InputRequest& request) {
    InteractionDialog dialog(title, request.message, QStyle::SP_MessageBoxQuestion);
    auto* const field = new QLineEdit(request.initialText);
    field->setObjectName(QStringLiteral("input"));
    if (request.isPassword)
        field->setEchoMode(QLineEdit::Password);
    field->selectAll();
    dialog.addField(field);
    return askForText(dialog, [field] { return field->text(); });
}

Answer showDialog(const QString& title, const ChoiceRequest& request) {
    InteractionDialog dialog(title, request.message, QStyle::SP_MessageBoxQuestion);
    auto* const list = new QListWidget;
    list->setObjectName(QStringLiteral("items"));
    list->addItems(request.items);
    list->setCurrentRow(0);
    dialog.addField(list);
    QObject::connect(list, &QListWidget::itemDoubleClicked, &dialog,
                     [&dialog] { dialog.done(static_cast<int>(Answer::Ok)); });
    return askForText(dialog, [list] {
        const QListWidgetItem* const item = list->currentItem();
        return item ? item->text() : QString();
    });
}

}  // namespace Tamrix
