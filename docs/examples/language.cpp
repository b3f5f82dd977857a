// A main window under the form manager: bilingual caption and menus, the live language
// switch, remembered placement.
#include <Kesh_Controls.h>
#include <QMainWindow>
#include <QMenuBar>

using namespace Kesh;

//! [switch]
// Switches the whole application: every managed window first, then the application.
void SwitchLanguage(TBiDiMode mode)
{
    for (QWidget* window : QApplication::topLevelWidgets()) {
        auto* manager = window->findChild<TQxForm*>(QString(), Qt::FindDirectChildrenOnly);
        if (!manager || manager->GetLanguage() == mode)
            continue;                              // only a real change (see the pitfalls)
        const bool visible = window->isVisible();
        manager->DoSavePos();                      // the switch places the window again from
        manager->DoSaveSize();                     // the settings file: keep where it is now
        manager->SetLang(mode);                    // caption, menus, mirrored children
        if (visible && !window->isVisible())
            window->show();
    }
    Application()->SetBiDiMode(mode);              // then everything else the library shows
}
//! [switch]

int main(int argc, char** argv)
{
    //! [main]
    TQxApplication app(argc, argv);                // shows library errors, swallows EAbort
    QMainWindow window;
    window.setObjectName(QStringLiteral("MainWindow"));   // names the settings section
    auto* manager = new TQxForm(&window, QStringLiteral("QxForm1"));
    manager->SetCaptionA(QStringLiteral("مبيعات"));
    manager->SetCaptionE(QStringLiteral("Sales"));
    manager->SetOptions(FoAutoCenter | FoSaveSize);  // size kept in the settings file

    QMenu* fileMenu = window.menuBar()->addMenu(QStringLiteral("&File"));
    fileMenu->setObjectName(QStringLiteral("mnuFile"));
    QAction* arabic = fileMenu->addAction(QStringLiteral("العربية"));
    QAction* english = fileMenu->addAction(QStringLiteral("English"));
    QAction* quit = fileMenu->addAction(QStringLiteral("E&xit"));
    quit->setObjectName(QStringLiteral("mnuExit"));
    // Each named item gets its two captions; the manager shows the form's language.
    TxBiMenuItems& items = manager->BiMenuItems();
    items.AddMenuItem(fileMenu->menuAction());
    items.AddMenuItem(quit);
    for (int i = 0; i < items.Count(); ++i) {
        TxMenuItemRec rec = items.GetMenuItemRec(i);
        rec.CapA = rec.ItemName == QLatin1String("mnuFile") ? QStringLiteral("&ملف") : QStringLiteral("&خروج");
        items.SetMenuItemRec(i, rec);
    }
    QObject::connect(arabic, &QAction::triggered, [] { SwitchLanguage(bdRightToLeft); });
    QObject::connect(english, &QAction::triggered, [] { SwitchLanguage(bdLeftToRight); });
    QObject::connect(quit, &QAction::triggered, &window, &QWidget::close);

    window.resize(640, 400);
    window.show();
    SwitchLanguage(bdRightToLeft);                 // start in Arabic
    return app.exec();
    //! [main]
}
