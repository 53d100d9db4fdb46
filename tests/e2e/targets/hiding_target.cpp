// A program that shows less than it has: fields that hide what is entered, and a canvas of which a
// part is scrolled out of sight.

#include <QApplication>
#include <QCheckBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>

namespace {

template <typename Widget>
Widget* withName(Widget* widget, const char* name) {
    widget->setObjectName(QString::fromLatin1(name));
    return widget;
}

/// Tells in a label where the mouse was pressed and where it was released.
class Canvas : public QWidget {
public:
    explicit Canvas(QLabel* label) : m_label(label) { setFixedSize(1000, 800); }

protected:
    void mousePressEvent(QMouseEvent* event) override { m_press = event->pos(); }
    void mouseReleaseEvent(QMouseEvent* event) override {
        m_label->setText(QStringLiteral("from %1,%2 to %3,%4")
                             .arg(QString::number(m_press.x()), QString::number(m_press.y()),
                                  QString::number(event->x()), QString::number(event->y())));
    }

private:
    QLabel* m_label;
    QPoint m_press;
};

/// A control that hands the focus to a field in it.
QWidget* makeVault() {
    auto* const vault = withName(new QWidget, "vault");
    auto* const layout = new QHBoxLayout(vault);
    auto* const field = new QLineEdit;
    field->setEchoMode(QLineEdit::Password);
    layout->addWidget(field);
    vault->setFocusProxy(field);
    return vault;
}

void ask(QWidget* parent) {
    QInputDialog dialog(parent);
    dialog.setTextEchoMode(QLineEdit::Password);
    dialog.setTextValue(QStringLiteral("preset7"));
    dialog.exec();
}

}  // namespace

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    QWidget window;
    auto* const form = new QFormLayout(&window);
    auto* const pin = withName(new QLineEdit, "pin");
    pin->setEchoMode(QLineEdit::Password);
    form->addRow(pin);
    auto* const late = withName(new QLineEdit, "late");
    late->setEchoMode(QLineEdit::PasswordEchoOnEdit);
    form->addRow(late);
    form->addRow(makeVault());
    auto* const reveal = new QCheckBox(QStringLiteral("Reveal"));
    QObject::connect(reveal, &QCheckBox::toggled, pin, [pin](bool on) {
        pin->setEchoMode(on ? QLineEdit::Normal : QLineEdit::Password);
    });
    form->addRow(reveal);
    auto* const echo = new QLabel;
    auto* const tell = new QPushButton(QStringLiteral("Tell"));
    QObject::connect(tell, &QPushButton::clicked, echo,
                     [pin, echo] { echo->setText(QStringLiteral("It is ") + pin->text()); });
    form->addRow(tell, echo);
    auto* const question = new QPushButton(QStringLiteral("Ask"));
    QObject::connect(question, &QPushButton::clicked, &window, [&window] { ask(&window); });
    form->addRow(question);
    form->addRow(withName(new QPlainTextEdit, "notes"));
    auto* const moves = withName(new QLabel, "moves");
    form->addRow(moves);
    auto* const area = new QScrollArea;
    area->setFixedSize(300, 200);
    area->setWidget(withName(new Canvas(moves), "canvas"));
    form->addRow(area);
    window.show();
    area->horizontalScrollBar()->setValue(400);
    area->verticalScrollBar()->setValue(300);
    return QApplication::exec();
}
