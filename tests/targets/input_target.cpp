// A program with widgets of every kind that takes input. It writes what happens to them, one entry
// after another, into the property "log" of its main window.

#include <QtWidgets>

namespace {

QMainWindow* s_window = nullptr;

void log(const QString& entry) {
    const QString before = s_window->property("log").toString();
    s_window->setProperty("log", before.isEmpty() ? entry : before + QStringLiteral("|") + entry);
}

/// "Ctrl+Shift+"
QString modifierText(Qt::KeyboardModifiers modifiers) {
    return QKeySequence(static_cast<int>(modifiers)).toString();
}

/// Tells of every mouse and key event.
class EventPad : public QFrame {
public:
    explicit EventPad(QWidget* parent) : QFrame(parent) {
        setObjectName(QStringLiteral("pad"));
        setMinimumSize(160, 60);
        setFrameShape(QFrame::Box);
        setFocusPolicy(Qt::StrongFocus);
        setMouseTracking(true);
    }

protected:
    bool event(QEvent* event) override {
        switch (event->type()) {
            case QEvent::MouseButtonPress:
            case QEvent::MouseButtonRelease:
            case QEvent::MouseButtonDblClick: {
                const auto* const mouse = static_cast<QMouseEvent*>(event);
                const char* const name = event->type() == QEvent::MouseButtonPress     ? "press"
                                         : event->type() == QEvent::MouseButtonRelease ? "release"
                                                                                       : "double";
                log(QStringLiteral("%1%2 %3,%4 %5 %6")
                        .arg(modifierText(mouse->modifiers()), QLatin1String(name))
                        .arg(mouse->pos().x())
                        .arg(mouse->pos().y())
                        .arg(mouse->button())
                        .arg(mouse->buttons()));
                if (event->type() == QEvent::MouseButtonRelease && mouseGrabber() == this)
                    releaseMouse();
                break;
            }
            case QEvent::MouseMove: {
                const auto* const mouse = static_cast<QMouseEvent*>(event);
                setProperty("lastMove", mouse->pos());
                if (mouse->buttons() != Qt::NoButton)
                    setProperty("dragMoves", property("dragMoves").toInt() + 1);
                break;
            }
            case QEvent::Enter:
                log(QStringLiteral("enter"));
                break;
            case QEvent::Leave:
                log(QStringLiteral("leave"));
                break;
            case QEvent::KeyPress:
            case QEvent::KeyRelease: {
                const auto* const key = static_cast<QKeyEvent*>(event);
                const QString combination =
                    QKeySequence(key->key() | static_cast<int>(key->modifiers())).toString();
                log(QStringLiteral("%1 %2 '%3'")
                        .arg(QLatin1String(event->type() == QEvent::KeyPress ? "down" : "up"),
                             QString::number(key->key(), 16) + QStringLiteral("/") +
                                 QString::number(static_cast<int>(key->modifiers()), 16),
                             QString(key->text()).replace(u'\r', u'R')));
                return true;
            }
            case QEvent::Close:
                log(QStringLiteral("close event"));
                break;
            default:
                break;
        }
        return QFrame::event(event);
    }
};

QPushButton* makeButton(const char* text, std::function<void()> act) {
    auto* const button = new QPushButton(QString::fromLatin1(text));
    button->setObjectName(QString::fromLatin1(text).remove(u' '));
    QObject::connect(button, &QPushButton::clicked, s_window, std::move(act));
    return button;
}

void addButtons(QGridLayout* grid) {
    grid->addWidget(makeButton("Plain", [] { log(QStringLiteral("clicked")); }), 0, 0);
    auto* const disabled = makeButton("Disabled", [] { log(QStringLiteral("impossible")); });
    disabled->setEnabled(false);
    grid->addWidget(disabled, 0, 1);
    grid->addWidget(makeButton("Enable Later",
                               [disabled] {
                                   QTimer::singleShot(300, disabled,
                                                      [disabled] { disabled->setEnabled(true); });
                               }),
                    0, 2);
    grid->addWidget(makeButton("Modal",
                               [] {
                                   const int answer =
                                       QMessageBox::question(s_window, QStringLiteral("Really?"),
                                                             QStringLiteral("Sure?"));
                                   log(answer == QMessageBox::Yes ? QStringLiteral("yes")
                                                                  : QStringLiteral("no"));
                               }),
                    1, 0);
    // A window that never shows and is gone after a while.
    grid->addWidget(makeButton("Close Later",
                               [] {
                                   auto* const window = new QWidget(s_window, Qt::Window);
                                   window->setObjectName(QStringLiteral("shortLived"));
                                   QTimer::singleShot(1000, window, &QObject::deleteLater);
                               }),
                    0, 3);
    // What can't be used gives its place to another one, that can.
    auto* const replaced = makeButton("Replaced", [] {});
    replaced->setEnabled(false);
    auto* const rows = new QListWidget;
    rows->setObjectName(QStringLiteral("rows"));
    rows->addItem(QStringLiteral("Only row"));
    rows->setEnabled(false);
    rows->setMaximumHeight(40);
    grid->addWidget(replaced, 3, 3);
    grid->addWidget(rows, 4, 3);
    const auto replace = [grid, replaced, rows] {
        delete replaced;
        grid->addWidget(makeButton("Replaced", [] { log(QStringLiteral("new")); }), 3, 3);
        rows->clear();
        rows->addItem(QStringLiteral("Only row"));
        rows->setEnabled(true);
    };
    grid->addWidget(
        makeButton("Replace Later", [replace] { QTimer::singleShot(300, s_window, replace); }), 1,
        3);
    grid->addWidget(makeButton("Exit", [] { ::_exit(7); }), 1, 1);
    auto* const moving = makeButton("Moving", [] { log(QStringLiteral("caught")); });
    auto* const field = new QWidget;
    field->setMinimumHeight(30);
    moving->setParent(field);
    auto* const animation = new QPropertyAnimation(moving, "pos", moving);
    animation->setObjectName(QStringLiteral("animation"));
    animation->setStartValue(QPoint(0, 0));
    animation->setEndValue(QPoint(100, 0));
    animation->setDuration(1500);
    grid->addWidget(makeButton("Move", [animation] { animation->start(); }), 1, 2);
    grid->addWidget(field, 2, 0, 1, 2);
    auto* const covered = makeButton("Covered", [] { log(QStringLiteral("reached")); });
    grid->addWidget(covered, 2, 2);
    auto* const overlay = new QFrame(covered->parentWidget());
    overlay->setObjectName(QStringLiteral("overlay"));
    overlay->setAutoFillBackground(true);
    QTimer::singleShot(0, overlay, [covered, overlay] {
        overlay->setParent(covered->parentWidget());
        overlay->setGeometry(covered->geometry().adjusted(covered->width() / 4, 0, 0, 0));
        overlay->show();
        overlay->raise();
    });
    auto* const inner = new QTimer(overlay);
    QObject::connect(inner, &QTimer::timeout, overlay, [covered, overlay] {
        overlay->setGeometry(covered->geometry().adjusted(covered->width() / 4, 0, 0, 0));
    });
    inner->start(50);
}

template <typename Widget>
Widget* named(const char* name) {
    auto* const widget = new Widget;
    widget->setObjectName(QString::fromLatin1(name));
    return widget;
}

void addFields(QGridLayout* grid) {
    auto* const line = named<QLineEdit>("line");
    line->setText(QStringLiteral("old"));
    QObject::connect(line, &QLineEdit::returnPressed, s_window,
                     [] { log(QStringLiteral("return")); });
    grid->addWidget(line, 3, 0);
    auto* const readOnly = named<QLineEdit>("readOnly");
    readOnly->setReadOnly(true);
    grid->addWidget(readOnly, 3, 1);
    auto* const spin = named<QSpinBox>("spin");
    spin->setRange(0, 1000);
    spin->setValue(5);
    spin->setSuffix(QStringLiteral(" km"));
    grid->addWidget(spin, 3, 2);
    auto* const text = named<QTextEdit>("textEdit");
    text->setPlainText(QStringLiteral("old text"));
    text->setMaximumHeight(40);
    grid->addWidget(text, 4, 0);
    auto* const plain = named<QPlainTextEdit>("plainEdit");
    plain->setPlainText(QStringLiteral("old text"));
    plain->setMaximumHeight(40);
    grid->addWidget(plain, 4, 1);
    auto* const editable = named<QComboBox>("editable");
    editable->setEditable(true);
    editable->addItems({QStringLiteral("first"), QStringLiteral("second")});
    grid->addWidget(editable, 4, 2);
    auto* const completing = named<QLineEdit>("completing");
    completing->setCompleter(
        new QCompleter({QStringLiteral("alpha"), QStringLiteral("alpine")}, completing));
    grid->addWidget(completing, 10, 0);
    auto* const date = named<QDateEdit>("date");
    date->setCalendarPopup(true);
    grid->addWidget(date, 10, 1);
}

void addChoices(QGridLayout* grid) {
    auto* const combo = named<QComboBox>("combo");
    for (int i = 0; i < 40; ++i)
        combo->addItem(QStringLiteral("Choice %1").arg(i));
    QObject::connect(combo, QOverload<int>::of(&QComboBox::activated), s_window,
                     [](int row) { log(QStringLiteral("activated %1").arg(row)); });
    grid->addWidget(combo, 5, 0);
    auto* const checkBox = named<QCheckBox>("checkBox");
    checkBox->setText(QStringLiteral("Check"));
    grid->addWidget(checkBox, 5, 1);
    auto* const three = named<QCheckBox>("threeStates");
    three->setText(QStringLiteral("Three"));
    three->setTristate(true);
    grid->addWidget(three, 5, 2);
    auto* const radioA = named<QRadioButton>("radioA");
    radioA->setText(QStringLiteral("A"));
    radioA->setChecked(true);
    auto* const radioB = named<QRadioButton>("radioB");
    radioB->setText(QStringLiteral("B"));
    grid->addWidget(radioA, 6, 0);
    grid->addWidget(radioB, 6, 1);
    auto* const toggle = makeButton("Toggle", [] { log(QStringLiteral("toggled")); });
    toggle->setCheckable(true);
    grid->addWidget(toggle, 6, 2);
}

class DragLabel : public QLabel {
public:
    DragLabel() : QLabel(QStringLiteral("Drag me")) {
        setObjectName(QStringLiteral("dragLabel"));
        setAcceptDrops(true);
    }

protected:
    void mousePressEvent(QMouseEvent* event) override { m_start = event->pos(); }
    void mouseMoveEvent(QMouseEvent* event) override {
        if ((event->pos() - m_start).manhattanLength() < QApplication::startDragDistance())
            return;
        QDrag drag(this);
        auto* const data = new QMimeData;
        data->setText(text());
        drag.setMimeData(data);
        log(drag.exec(Qt::CopyAction) == Qt::CopyAction ? QStringLiteral("dragged")
                                                        : QStringLiteral("not dragged"));
    }

private:
    QPoint m_start;
};

class DropLabel : public QLabel {
public:
    DropLabel() : QLabel(QStringLiteral("Drop here")) {
        setObjectName(QStringLiteral("dropLabel"));
        setAcceptDrops(true);
    }

protected:
    void dragEnterEvent(QDragEnterEvent* event) override { event->acceptProposedAction(); }
    void dropEvent(QDropEvent* event) override {
        event->acceptProposedAction();
        log(QStringLiteral("drop ") + event->mimeData()->text());
    }
};

void addOthers(QGridLayout* grid) {
    grid->addWidget(new DragLabel, 9, 0);
    grid->addWidget(new DropLabel, 9, 1);
    auto* const busy = makeButton("Busy", [] {
        auto* const timer = new QTimer(s_window);
        timer->start(0);
    });
    QPixmap red(16, 16);
    red.fill(Qt::red);
    busy->setIcon(red);
    grid->addWidget(busy, 9, 2);
}

void addViews(QGridLayout* grid) {
    auto* const list = named<QListWidget>("list");
    for (int i = 0; i < 100; ++i) {
        auto* const item = new QListWidgetItem(QStringLiteral("Row %1").arg(i), list);
        if (i < 3)
            item->setCheckState(Qt::Unchecked);
    }
    list->setMaximumHeight(90);
    grid->addWidget(list, 7, 0);
    auto* const tree = named<QTreeWidget>("tree");
    for (const char* const name : {"Fruit", "v1.0"}) {
        auto* const top = new QTreeWidgetItem(tree, {QString::fromLatin1(name)});
        for (const char* const child : {"Apple", "Pear"})
            new QTreeWidgetItem(new QTreeWidgetItem(top, {QStringLiteral("Kind")}),
                                {QString::fromLatin1(child)});
    }
    tree->setMaximumHeight(90);
    grid->addWidget(tree, 7, 1);
    auto* const table = named<QTableWidget>("table");
    table->setRowCount(30);
    table->setColumnCount(2);
    for (int row = 0; row < 30; ++row)
        for (int column = 0; column < 2; ++column)
            table->setItem(row, column,
                           new QTableWidgetItem(QStringLiteral("Cell %1-%2").arg(row).arg(column)));
    table->setMaximumHeight(90);
    grid->addWidget(table, 7, 2);
    auto* const tabs = named<QTabWidget>("tabs");
    for (const char* const name : {"One", "Two", "&Three"})
        tabs->addTab(new QLabel(QString::fromLatin1(name)), QString::fromLatin1(name));
    tabs->setMaximumHeight(70);
    grid->addWidget(tabs, 8, 0);
    auto* const area = named<QScrollArea>("area");
    auto* const content = new QWidget;
    auto* const column = new QVBoxLayout(content);
    for (int i = 0; i < 20; ++i)
        column->addWidget(makeButton(qPrintable(QStringLiteral("Deep %1").arg(i)),
                                     [i] { log(QStringLiteral("deep %1").arg(i)); }));
    area->setWidget(content);
    area->setMaximumHeight(70);
    grid->addWidget(area, 8, 1);
    auto* const pad = new EventPad(nullptr);
    grid->addWidget(pad, 8, 2);
    grid->addWidget(makeButton("Grab", [pad] { pad->grabMouse(); }), 2, 3);
}

void addMenus() {
    QMenu* const file = s_window->menuBar()->addMenu(QStringLiteral("&File"));
    QAction* const open =
        file->addAction(QStringLiteral("&Open..."), s_window, [] { log(QStringLiteral("open")); });
    open->setShortcut(QKeySequence(QStringLiteral("Ctrl+O")));
    file->addAction(QStringLiteral("Save"), s_window, [] { log(QStringLiteral("save")); });
    file->addAction(QStringLiteral("Save &As..."), s_window,
                    [] { log(QStringLiteral("save as")); });
    file->addAction(QStringLiteral("v1.0"), s_window, [] { log(QStringLiteral("v1.0")); });
    QMenu* const recent = file->addMenu(QStringLiteral("Recent"));
    recent->setObjectName(QStringLiteral("recent"));
    // Filled when it opens.
    QObject::connect(recent, &QMenu::aboutToShow, recent, [recent] {
        if (recent->isEmpty())
            recent->addAction(QStringLiteral("a.txt"), s_window,
                              [] { log(QStringLiteral("a.txt")); });
    });
    file->addAction(QStringLiteral("Locked"))->setEnabled(false);
    QAction* const bold = file->addAction(QStringLiteral("Bold"));
    bold->setObjectName(QStringLiteral("bold"));
    bold->setCheckable(true);
    file->addAction(QStringLiteral("Ask"), s_window, [] {
        QDialog dialog(s_window);
        dialog.setObjectName(QStringLiteral("dialog"));
        dialog.setWindowTitle(QStringLiteral("A dialog"));
        dialog.resize(200, 100);
        log(dialog.exec() == QDialog::Accepted ? QStringLiteral("accepted")
                                               : QStringLiteral("rejected"));
    });
    s_window->menuBar()->addMenu(QStringLiteral("Other"))->addAction(QStringLiteral("Nothing"));
}

}  // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    QApplication::setStyle(QStringLiteral("fusion"));
    QMainWindow window;
    s_window = &window;
    window.setObjectName(QStringLiteral("main"));
    window.setWindowTitle(QStringLiteral("Input"));
    auto* const center = new QWidget;
    auto* const grid = new QGridLayout(center);
    addButtons(grid);
    addFields(grid);
    addChoices(grid);
    addViews(grid);
    addOthers(grid);
    addMenus();
    window.setCentralWidget(center);
    window.show();
    return QApplication::exec();
}
