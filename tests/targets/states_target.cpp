// A program whose objects get into the states in which a function finds them. The property "state"
// of its main window, "hidden box", brings the object of that name into the state; an empty one
// makes all objects anew. What is done to them stands in the property "log", each thing once.

#include <QtWidgets>

namespace {

class Main : public QWidget {
    Q_OBJECT
    Q_PROPERTY(QString state READ state WRITE setState)
    Q_PROPERTY(QString log MEMBER m_log)

public:
    Main();

    QString state() const { return m_state; }
    void setState(const QString& state);
    void log(const QString& entry) {
        if (!m_log.contains(entry))
            m_log += m_log.isEmpty() ? entry : QStringLiteral("|") + entry;
    }

private:
    void makeAnew();
    void enter(const QString& state, QWidget* widget);

    QString m_state;
    QString m_log;
    QPointer<QWidget> m_stage;
    /// What a state needs besides: it goes with the state.
    QPointer<QWidget> m_beside;
};

/// The window with the objects.
class Stage : public QWidget {
public:
    explicit Stage(Main* main);

protected:
    void closeEvent(QCloseEvent* event) override {
        m_main->log(QStringLiteral("closed"));
        QWidget::closeEvent(event);
    }
    bool eventFilter(QObject* object, QEvent* event) override {
        if (event->type() == QEvent::Enter)
            m_main->log(QStringLiteral("entered"));
        return QWidget::eventFilter(object, event);
    }

private:
    template <typename Widget>
    Widget* add(const char* name, const QRect& place) {
        auto* const widget = new Widget(this);
        widget->setObjectName(QString::fromLatin1(name));
        widget->setGeometry(place);
        return widget;
    }

    Main* m_main;
};

Stage::Stage(Main* main) : m_main(main) {
    setObjectName(QStringLiteral("stage"));
    setWindowTitle(QStringLiteral("Stage"));
    setGeometry(400, 100, 300, 320);
    const auto log = [main](const char* entry) {
        return [main, entry] { main->log(QString::fromLatin1(entry)); };
    };
    auto* const button = add<QPushButton>("button", {10, 40, 120, 30});
    button->setText(QStringLiteral("Push"));
    connect(button, &QPushButton::clicked, this, log("pushed"));
    auto* const spot = add<QFrame>("spot", {150, 40, 120, 30});
    spot->installEventFilter(this);
    auto* const field = add<QLineEdit>("field", {10, 80, 120, 30});
    field->setText(QStringLiteral("old"));
    connect(field, &QLineEdit::textChanged, this, log("edited"));
    auto* const box = add<QCheckBox>("box", {10, 120, 120, 30});
    box->setText(QStringLiteral("Box"));
    connect(box, &QCheckBox::toggled, this, log("toggled"));
    auto* const ticked = add<QCheckBox>("ticked", {150, 120, 120, 30});
    ticked->setText(QStringLiteral("Ticked"));
    ticked->setChecked(true);
    connect(ticked, &QCheckBox::toggled, this, log("toggled"));
    auto* const list = add<QListWidget>("list", {10, 160, 120, 100});
    list->addItems({QStringLiteral("One"), QStringLiteral("Two")});
    connect(list, &QListWidget::itemClicked, this, log("selected"));
    auto* const combo = add<QComboBox>("combo", {150, 160, 120, 30});
    combo->addItems({QStringLiteral("One"), QStringLiteral("Two")});
    connect(combo, QOverload<int>::of(&QComboBox::activated), this, log("selected"));
    auto* const bar = add<QMenuBar>("bar", {0, 0, 300, 30});
    auto* const menu = bar->addMenu(QStringLiteral("Menu"));
    connect(menu->addAction(QStringLiteral("Two")), &QAction::triggered, this, log("selected"));
}

Main::Main() {
    setObjectName(QStringLiteral("main"));
    setWindowTitle(QStringLiteral("Main"));
    setGeometry(20, 100, 300, 320);
    makeAnew();
}

void Main::setState(const QString& state) {
    m_state = state;
    if (state.isEmpty()) {
        makeAnew();
        return;
    }
    const QString name = state.section(u' ', -1);
    enter(state.section(u' ', 0, -2),
          name == m_stage->objectName() ? m_stage.data() : m_stage->findChild<QWidget*>(name));
}

void Main::makeAnew() {
    delete m_beside;
    delete m_stage;
    m_log.clear();
    m_stage = new Stage(this);
    m_stage->show();
}

void Main::enter(const QString& state, QWidget* widget) {
    if (state == QLatin1String("gone")) {
        delete widget;
    } else if (state == QLatin1String("vanishing")) {
        widget->hide();
        QTimer::singleShot(150, widget, [widget] { delete widget; });
    } else if (state == QLatin1String("hidden")) {
        widget->hide();
    } else if (state == QLatin1String("disabled")) {
        widget->setEnabled(false);
    } else if (state == QLatin1String("moving")) {
        auto* const timer = new QTimer(widget);
        connect(timer, &QTimer::timeout, widget,
                [widget] { widget->move(widget->x() == 200 ? 10 : widget->x() + 1, widget->y()); });
        timer->start(4);
    } else if (state == QLatin1String("covered")) {
        auto* const cover = new QFrame(m_stage);
        cover->setObjectName(QStringLiteral("cover"));
        cover->setGeometry(m_stage->rect());
        cover->show();
    } else if (state == QLatin1String("blocked")) {
        m_beside = new QDialog;
        m_beside->setWindowTitle(QStringLiteral("Modal"));
        m_beside->setWindowModality(Qt::ApplicationModal);
        m_beside->setGeometry(20, 500, 100, 100);
        m_beside->show();
    } else if (state == QLatin1String("behind")) {
        m_beside = new QWidget;
        m_beside->setGeometry(m_stage->geometry());
        m_beside->show();
        m_beside->activateWindow();
    } else if (state == QLatin1String("overlaid")) {
        m_beside = new QWidget(nullptr, Qt::WindowStaysOnTopHint);
        m_beside->setWindowTitle(QStringLiteral("Overlay"));
        m_beside->setGeometry(m_stage->geometry());
        m_beside->show();
    }
}

}  // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    Main window;
    window.show();
    return QApplication::exec();
}

#include "states_target.moc"
