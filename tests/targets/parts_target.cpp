// Docks, tool bars, menus and a scene, whose parts are seen, named and reached in several ways.
// What happens is written, one entry after another, into the property "log" of the main window.

#include <QtWidgets>

namespace {

QMainWindow* s_window = nullptr;

void log(const QString& entry) {
    const QString before = s_window->property("log").toString();
    s_window->setProperty("log", before.isEmpty() ? entry : before + QStringLiteral("|") + entry);
}

QAction* makeAction(const char* text) {
    auto* const action = new QAction(QString::fromLatin1(text), s_window);
    QObject::connect(action, &QAction::triggered, s_window,
                     [action] { log(action->text().remove(u'&')); });
    return action;
}

void addDocks() {
    QDockWidget* first = nullptr;
    for (const char* const title : {"&Layers", "&History"}) {
        auto* const dock = new QDockWidget(QString::fromLatin1(title));
        dock->setWidget(new QPushButton(QStringLiteral("In ") + dock->windowTitle().remove(u'&')));
        s_window->addDockWidget(Qt::LeftDockWidgetArea, dock);
        if (first != nullptr)
            s_window->tabifyDockWidget(first, dock);
        first = dock;
    }
}

/// Actions at home in a menu, which tool bars and another menu show as well.
void addActions() {
    QMenu* const edit = s_window->menuBar()->addMenu(QStringLiteral("&Edit"));
    QToolBar* const bar = s_window->addToolBar(QStringLiteral("Bar"));
    for (const char* const text : {"&Cut", "&Paste"}) {
        QAction* const action = makeAction(text);
        edit->addAction(action);
        bar->addAction(action);
        // One that differs by its place only.
        s_window->addToolBar(QStringLiteral("Other"))->addAction(makeAction(text));
    }
    auto* const context = new QMenu(s_window);
    context->setObjectName(QStringLiteral("context"));
    context->addActions(edit->actions());
    auto* const open = new QPushButton(QStringLiteral("Open"));
    QObject::connect(open, &QPushButton::clicked, context, [context, open] {
        context->popup(open->mapToGlobal(open->rect().bottomLeft()));
    });
    bar->addWidget(open);
    auto* const bold = new QToolButton;
    bold->setToolTip(QStringLiteral("Bold"));
    bar->addWidget(bold);
    auto* const copy = new QToolButton;
    copy->setIcon(QIcon::fromTheme(QStringLiteral("edit-copy")));
    bar->addWidget(copy);
    bar->addWidget(new QToolButton);
}

QWidget* makePages() {
    auto* const tabs = new QTabWidget;
    auto* const scene = new QGraphicsScene(tabs);
    QGraphicsItem* const disc = scene->addEllipse(0, 0, 100, 100);
    disc->setFlag(QGraphicsItem::ItemIsSelectable);
    scene->addRect(40, 40, 20, 20)->setBrush(Qt::red);
    scene->addRect(0, 0, 1e300, 10)->setVisible(false);
    tabs->addTab(new QGraphicsView(scene), QStringLiteral("&Scene"));
    tabs->addTab(new QPushButton(QStringLiteral("Deep")), QStringLiteral("&Page"));
    return tabs;
}

/// A theme of one icon, so that the test hangs on none of the machine's.
void makeTheme(const QString& folder) {
    QDir(folder).mkpath(QStringLiteral("test/icons"));
    QFile index(folder + QStringLiteral("/test/index.theme"));
    if (!index.open(QIODevice::WriteOnly))
        return;
    index.write("[Icon Theme]\nName=Test\nDirectories=icons\n[icons]\nSize=16\n");
    QPixmap icon(16, 16);
    icon.fill(Qt::blue);
    icon.save(folder + QStringLiteral("/test/icons/edit-copy.png"));
    QIcon::setThemeSearchPaths({folder});
    QIcon::setThemeName(QStringLiteral("test"));
}

}  // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    const QTemporaryDir themes;
    makeTheme(themes.path());
    QMainWindow window;
    s_window = &window;
    window.setObjectName(QStringLiteral("main"));
    window.setProperty("log", QString());
    window.setProperty("realPoint", QPointF(0.25, -1e300));
    window.setProperty("realSize", QSizeF(qInf(), qQNaN()));
    window.setProperty("realRect", QRectF(0.5, 1, 2.25, 3));
    addDocks();
    addActions();
    window.setCentralWidget(makePages());
    window.resize(700, 400);
    window.show();
    return QApplication::exec();
}
