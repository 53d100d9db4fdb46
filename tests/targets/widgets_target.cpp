// Widgets, items, menus and graphics for the tests of what the agent sees.

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QGraphicsProxyWidget>
#include <QGraphicsScene>
#include <QGraphicsSimpleTextItem>
#include <QGraphicsView>
#include <QGridLayout>
#include <QGroupBox>
#include <QHeaderView>
#include <QKeySequence>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMainWindow>
#include <QMenuBar>
#include <QPushButton>
#include <QScrollArea>
#include <QSpinBox>
#include <QTabWidget>
#include <QTableWidget>
#include <QTimer>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace {

class Window : public QMainWindow {
    Q_OBJECT

public:
    enum class Spread { Narrow, Wide };
    Q_ENUM(Spread)
    /// Known to nobody who handles variants.
    struct Odd {};

    Window() {
        setWindowTitle("Targets");
        QMenu* const file = menuBar()->addMenu("&File");
        file->addAction("&Open...");
        file->addMenu("&Recent")->addAction("a.txt");
        auto* const tabs = new QTabWidget;
        tabs->setObjectName("tabs");
        tabs->addTab(makeForm(), "&Form");
        tabs->addTab(makeViews(), "Views");
        setCentralWidget(tabs);
        resize(600, 500);
    }

    Q_INVOKABLE int add(int first, int second) const { return first + second; }
    Q_INVOKABLE QString add(const QString& first, const QString& second) const {
        return first + second;
    }
    Q_INVOKABLE QObject* echo(QObject* object) const { return object; }
    Q_INVOKABLE int openDialog() {
        QDialog dialog(this);
        dialog.setWindowTitle("Modal");
        QPushButton button("Close it", &dialog);
        connect(&button, &QPushButton::clicked, &dialog, &QDialog::accept);
        return dialog.exec();
    }
    Q_INVOKABLE QString spread(Window::Spread spread, int times) const {
        return QString(spread == Spread::Wide ? "wide" : "narrow").repeated(times);
    }
    Q_INVOKABLE void weigh(int weight, Window::Odd /*odd*/) const { Q_UNUSED(weight) }
    Q_INVOKABLE void fail() const { throw 1; }
    // Types with room for some numbers and texts only.
    Q_INVOKABLE QString showFloat(float value) const { return QString::number(value); }
    Q_INVOKABLE QString showShort(short value) const { return QString::number(value); }
    Q_INVOKABLE QString showCharacter(QChar value) const { return value; }
    Q_INVOKABLE QString showKeys(const QKeySequence& value) const { return value.toString(); }

public Q_SLOTS:
    void removeList() {
        delete m_list;
        m_list = nullptr;
    }
    void moveFirstRow() { m_list->insertItem(2, m_list->takeItem(0)); }
    void insertBeforeFirst() { m_list->insertItem(0, "new"); }

private:
    QWidget* makeForm() {
        auto* const page = new QWidget;
        auto* const layout = new QGridLayout(page);
        auto* const name = new QLineEdit("content");
        auto* const label = new QLabel("&Name:");
        label->setBuddy(name);
        layout->addWidget(label, 0, 0);
        layout->addWidget(name, 0, 1);
        // Made from the right to the left: creation is not the order of the screen.
        layout->addWidget(new QPushButton("Twin"), 1, 1);
        layout->addWidget(new QPushButton("Twin"), 1, 0);
        auto* const hidden = new QPushButton("Twin");
        layout->addWidget(hidden, 2, 0);
        hidden->hide();
        auto* const box = new QCheckBox("&Check");
        box->setObjectName("check");
        layout->addWidget(box, 2, 1);
        auto* const off = new QPushButton("Off");
        off->setEnabled(false);
        layout->addWidget(off, 3, 0);
        auto* const spin = new QSpinBox;
        spin->setMaximum(50);
        layout->addWidget(spin, 3, 1);
        auto* const group = new QGroupBox("G&roup");
        auto* const inner = new QVBoxLayout(group);
        inner->addWidget(new QPushButton("Inside"));
        layout->addWidget(group, 4, 0);
        auto* const area = new QScrollArea;
        area->setMaximumHeight(60);
        auto* const tall = new QWidget;
        tall->setMinimumHeight(500);
        auto* const far = new QPushButton("Far", tall);
        far->move(0, 400);
        area->setWidget(tall);
        layout->addWidget(area, 4, 1);
        auto* const outside = new QPushButton("Inside");
        layout->addWidget(outside, 5, 0);
        return page;
    }

    QWidget* makeViews() {
        auto* const page = new QWidget;
        auto* const layout = new QGridLayout(page);
        m_list = new QListWidget;
        m_list->addItems({"one", "two", "three"});
        m_list->item(1)->setCheckState(Qt::Checked);
        m_list->item(2)->setBackground(Qt::yellow);
        layout->addWidget(m_list, 0, 0);
        auto* const tree = new QTreeWidget;
        auto* const top = new QTreeWidgetItem(tree, {"top"});
        new QTreeWidgetItem(top, {"v1.0"});
        layout->addWidget(tree, 0, 1);
        auto* const table = new QTableWidget(2000, 2);
        table->horizontalHeader()->setObjectName("columns");
        table->setHorizontalHeaderLabels({"first", "second"});
        table->setItem(0, 1, new QTableWidgetItem("cell"));
        table->setItem(1900, 0, new QTableWidgetItem("deep"));
        layout->addWidget(table, 1, 0);
        auto* const combo = new QComboBox;
        combo->addItems({"red", "green"});
        layout->addWidget(combo, 2, 0);
        auto* const view = new QGraphicsView;
        auto* const scene = new QGraphicsScene(view);
        scene->addRect(0, 0, 40, 20);
        scene->addSimpleText("drawn");
        scene->addWidget(new QPushButton("embedded"))->setPos(0, 40);
        view->setScene(scene);
        layout->addWidget(view, 1, 1);
        return page;
    }

    QListWidget* m_list = nullptr;
};

}  // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    Window window;
    window.show();
    return QApplication::exec();
}

#include "widgets_target.moc"
