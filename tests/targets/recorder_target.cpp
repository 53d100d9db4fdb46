// What a person uses in a program, for the tests of recordings: each thing in a way that names and
// merges can be wrong about. What happens is written, a line each, to the file that is given.

#include <QtWidgets>

namespace {

QFile* s_log = nullptr;

void log(const QString& entry) {
    s_log->write(entry.toUtf8() + '\n');
    s_log->flush();
}

QAction* addEntry(QMenu* menu, const char* text, const char* shortcut = "") {
    QAction* const action = menu->addAction(QString::fromLatin1(text));
    action->setShortcut(QKeySequence(QString::fromLatin1(shortcut)));
    QObject::connect(action, &QAction::triggered,
                     [action] { log(QStringLiteral("entry ") + action->text().remove(u'&')); });
    return action;
}

QPushButton* addButton(QLayout* layout, const char* text) {
    auto* const button = new QPushButton(QString::fromLatin1(text));
    QObject::connect(button, &QPushButton::clicked,
                     [button] { log(QStringLiteral("button ") + button->text().remove(u'&')); });
    layout->addWidget(button);
    return button;
}

template <typename Widget>
Widget* withName(Widget* widget, const char* name) {
    widget->setObjectName(QString::fromLatin1(name));
    return widget;
}

/// Logs where it is clicked, and has a menu of its own.
class Canvas : public QWidget {
public:
    Canvas() { setMinimumSize(160, 90); }

protected:
    void mousePressEvent(QMouseEvent* event) override {
        log(QStringLiteral("canvas %1,%2").arg(event->pos().x()).arg(event->pos().y()));
    }
    void contextMenuEvent(QContextMenuEvent* event) override {
        QMenu menu;
        addEntry(&menu, "&Erase");
        addEntry(&menu, "&Paint");
        menu.exec(event->globalPos());
    }
};

/// Shows its button while the mouse is over it.
class Hidden : public QFrame {
public:
    Hidden() {
        setObjectName(QStringLiteral("hidden"));
        setFixedSize(200, 40);
        auto* const layout = new QHBoxLayout(this);
        m_button = addButton(layout, "Revealed");
        m_button->hide();
    }

protected:
    bool event(QEvent* event) override {
        if (event->type() == QEvent::Enter || event->type() == QEvent::Leave)
            m_button->setVisible(event->type() == QEvent::Enter);
        return QFrame::event(event);
    }

private:
    QPushButton* m_button;
};

void ask(QWidget* parent) {
    QDialog dialog(parent);
    dialog.setWindowTitle(QStringLiteral("Question"));
    auto* const layout = new QVBoxLayout(&dialog);
    auto* const field = withName(new QLineEdit, "answer");
    layout->addWidget(field);
    auto* const accept = addButton(layout, "Accept");
    QObject::connect(accept, &QPushButton::clicked, &dialog, &QDialog::accept);
    log(QStringLiteral("dialog %1 %2").arg(dialog.exec()).arg(field->text()));
}

/// Shows a window that closes itself when nobody does anything any more.
void notify() {
    auto* const notice = new QLabel(QStringLiteral("Done"));
    notice->setAttribute(Qt::WA_DeleteOnClose);
    notice->setAttribute(Qt::WA_ShowWithoutActivating);
    notice->setWindowTitle(QStringLiteral("Notice"));
    notice->show();
    QTimer::singleShot(60, notice,
                       [notice] { log(QStringLiteral("notice %1").arg(notice->close())); });
}

QWidget* makeFields() {
    auto* const page = new QWidget;
    auto* const form = new QFormLayout(page);
    auto* const name = new QLineEdit;
    auto* const completer = new QCompleter({QStringLiteral("Anna"), QStringLiteral("Berta")}, name);
    name->setCompleter(completer);
    form->addRow(QStringLiteral("&Name:"), name);
    QObject::connect(name, &QLineEdit::editingFinished, [name, told = QString()]() mutable {
        if (name->text() != told)
            log(QStringLiteral("name ") + name->text());
        told = name->text();
    });
    auto* const code = withName(new QLineEdit, "code");
    code->setInputMask(QStringLiteral("99-99"));
    form->addRow(code);
    auto* const secret = new QLineEdit;
    secret->setEchoMode(QLineEdit::Password);
    form->addRow(QStringLiteral("&Password:"), secret);
    QObject::connect(secret, &QLineEdit::returnPressed,
                     [secret] { log(QStringLiteral("password %1").arg(secret->text())); });
    auto* const notes = withName(new QPlainTextEdit(QStringLiteral("first")), "notes");
    notes->setMaximumHeight(60);
    form->addRow(notes);
    QObject::connect(notes, &QPlainTextEdit::textChanged, [notes] {
        log(QStringLiteral("notes ") + notes->toPlainText().replace(u'\n', u'|'));
    });
    auto* const amount = new QSpinBox;
    amount->setSuffix(QStringLiteral(" kg"));
    form->addRow(QStringLiteral("A&mount:"), amount);
    auto* const volume = withName(new QSlider(Qt::Horizontal), "volume");
    form->addRow(volume);
    return page;
}

QWidget* makeChoices() {
    auto* const page = new QWidget;
    auto* const layout = new QVBoxLayout(page);
    auto* const loud = new QCheckBox(QStringLiteral("&Loud"));
    layout->addWidget(loud);
    QObject::connect(loud, &QCheckBox::toggled,
                     [](bool on) { log(QStringLiteral("loud %1").arg(on)); });
    for (const char* const text : {"Red", "Blue"}) {
        auto* const radio = new QRadioButton(QString::fromLatin1(text));
        layout->addWidget(radio);
        QObject::connect(radio, &QRadioButton::toggled, [text](bool on) {
            log(QStringLiteral("%1 %2").arg(QString::fromLatin1(text)).arg(on));
        });
    }
    auto* const size = withName(new QComboBox, "size");
    size->addItems({QStringLiteral("small"), QStringLiteral("large"), QStringLiteral("v1.0")});
    layout->addWidget(size);
    QObject::connect(size, QOverload<int>::of(&QComboBox::activated),
                     [size] { log(QStringLiteral("size ") + size->currentText()); });
    auto* const town = withName(new QComboBox, "town");
    town->setEditable(true);
    town->addItems({QStringLiteral("Bonn"), QStringLiteral("Rome")});
    layout->addWidget(town);
    layout->addWidget(withName(new Canvas, "canvas"));
    layout->addWidget(new Hidden);
    auto* const row = new QHBoxLayout;
    layout->addLayout(row);
    addButton(row, "&Go");
    QObject::connect(addButton(row, "Ask"), &QPushButton::clicked, page, [page] { ask(page); });
    QObject::connect(addButton(row, "Notify"), &QPushButton::clicked, page, notify);
    auto* const more = addButton(row, "More");
    more->setMenu(new QMenu(more));
    addEntry(more->menu(), "&Hide");
    auto* const bold = new QToolButton;
    bold->setToolTip(QStringLiteral("Bold"));
    row->addWidget(bold);
    QObject::connect(bold, &QToolButton::clicked, [] { log(QStringLiteral("bold")); });
    return page;
}

QWidget* makeViews() {
    auto* const page = new QWidget;
    auto* const layout = new QGridLayout(page);
    auto* const list = withName(new QListWidget, "list");
    list->addItems({QStringLiteral("one"), QStringLiteral("two"), QStringLiteral("three")});
    list->item(2)->setCheckState(Qt::Unchecked);
    list->setSelectionMode(QAbstractItemView::ExtendedSelection);
    layout->addWidget(list, 0, 0);
    QObject::connect(list, &QListWidget::itemSelectionChanged, [list] {
        QStringList texts;
        for (const QListWidgetItem* const item : list->selectedItems())
            texts.append(item->text());
        log(QStringLiteral("list ") + texts.join(u'+'));
    });
    QObject::connect(list, &QListWidget::itemChanged, [](const QListWidgetItem* item) {
        log(QStringLiteral("mark %1").arg(item->checkState()));
    });
    QObject::connect(list, &QListWidget::itemDoubleClicked, [](const QListWidgetItem* item) {
        log(QStringLiteral("double ") + item->text());
    });
    auto* const tree = withName(new QTreeWidget, "tree");
    auto* const top = new QTreeWidgetItem(tree, {QStringLiteral("top")});
    new QTreeWidgetItem(top, {QStringLiteral("v1.0")});
    tree->expandAll();
    layout->addWidget(tree, 0, 1);
    QObject::connect(tree, &QTreeWidget::itemClicked, [](const QTreeWidgetItem* item) {
        log(QStringLiteral("tree ") + item->text(0));
    });
    auto* const table = withName(new QTableWidget(2, 2), "table");
    table->setHorizontalHeaderLabels({QStringLiteral("Key"), QStringLiteral("Value")});
    table->setItem(0, 1, new QTableWidgetItem(QStringLiteral("12:30")));
    table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    layout->addWidget(table, 1, 0);
    QObject::connect(table, &QTableWidget::cellClicked, [](int row, int column) {
        log(QStringLiteral("cell %1 %2").arg(row).arg(column));
    });
    QObject::connect(table->horizontalHeader(), &QHeaderView::sectionClicked,
                     [](int section) { log(QStringLiteral("section %1").arg(section)); });
    auto* const target = withName(new QListWidget, "target");
    target->setAcceptDrops(true);
    target->setDragDropMode(QAbstractItemView::DropOnly);
    list->setDragEnabled(true);
    layout->addWidget(target, 1, 1);
    QObject::connect(target->model(), &QAbstractItemModel::rowsInserted,
                     [target] { log(QStringLiteral("dropped %1").arg(target->count())); });
    return page;
}

class Window : public QMainWindow {
public:
    Window() {
        setWindowTitle(QStringLiteral("Notes 12:30"));
        QMenu* const file = menuBar()->addMenu(QStringLiteral("&File"));
        addEntry(file, "&New", "Ctrl+N");
        addEntry(file, "Save &As...");
        addEntry(file->addMenu(QStringLiteral("&Recent")), "v1.0");
        addEntry(file, "&Wrap")->setCheckable(true);
        auto* const tabs = withName(new QTabWidget, "tabs");
        tabs->addTab(makeFields(), QStringLiteral("Fields"));
        tabs->addTab(makeChoices(), QStringLiteral("Choices"));
        tabs->addTab(makeViews(), QStringLiteral("Views"));
        setCentralWidget(tabs);
        resize(500, 420);
    }

protected:
    void closeEvent(QCloseEvent* event) override {
        // What is filled and set shows other values on the way; what it ends with counts.
        log(QStringLiteral("closed: %1, %2, %3, %4")
                .arg(findChild<QLineEdit*>(QStringLiteral("code"))->text(),
                     findChild<QSpinBox*>()->text(),
                     QString::number(findChild<QSlider*>(QStringLiteral("volume"))->value()),
                     findChild<QComboBox*>(QStringLiteral("town"))->currentText()));
        QMainWindow::closeEvent(event);
    }
};

}  // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    QFile file(QString::fromLocal8Bit(argc > 1 ? argv[1] : "/dev/null"));
    if (!file.open(QIODevice::WriteOnly))
        return 1;
    s_log = &file;
    Window window;
    window.move(40, 40);
    window.show();
    return QApplication::exec();
}
