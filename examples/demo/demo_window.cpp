#include "demo_window.h"
#include "core_tools_page.h"
#include "database_page.h"
#include "entry_page.h"
#include "items_page.h"
#include "item_card_page.h"
#include "rules_page.h"

#include <Kesh_Controls.h>

#include <QDir>
#include <QHBoxLayout>
#include <QMenuBar>
#include <QPushButton>
#include <QStandardPaths>
#include <QTabWidget>
#include <QVBoxLayout>

using namespace Kesh;

namespace {

// A menu item known to the form manager by its name, with its two captions.
struct TMenuText
{
    const char* Name;
    const char* Arabic;
    const char* English;
};

const TMenuText MenuTexts[] = {
    {"mnuFile", "ملف", "&File"},
    {"mnuExit", "خروج", "E&xit"},
    {"mnuLanguage", "اللغة", "&Language"},
    {"mnuArabic", "العربية", "Arabic"},
    {"mnuEnglish", "الإنجليزية", "English"},
    {"mnuHelp", "مساعدة", "&Help"},
    {"mnuAbout", "حول كيش", "About Kesh"},
};

} // namespace

DemoWindow::DemoWindow(QWidget* Parent) : QMainWindow(Parent)
{
    setObjectName(QStringLiteral("DemoWindow"));
    auto* Central = new QWidget;
    auto* Layout = new QVBoxLayout(Central);
    auto* Bar = new QHBoxLayout;
    m_language = new QPushButton;
    m_language->setObjectName(QStringLiteral("LanguageButton"));
    Bar->addStretch();
    Bar->addWidget(m_language);
    Layout->addLayout(Bar);
    m_tabs = new QTabWidget;
    Layout->addWidget(m_tabs);
    setCentralWidget(Central);
    resize(900, 640);

    const QString DataDir = QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation);
    QDir().mkpath(DataDir);
    const QString DatabaseFile = QDir(DataDir).filePath(QStringLiteral("kesh-demo.db"));
    AddPage(new EntryPage(DatabaseFile));
    AddPage(new CoreToolsPage);
    AddPage(new DatabasePage(DatabaseFile));
    AddPage(new ItemsPage(DatabaseFile));
    AddPage(new RulesPage(DatabaseFile));
    AddPage(new ItemCardPage(DatabaseFile));

    BuildMenus();
    // The manager takes the window's caption, menus and placement (remembered in the
    // settings file under "DemoWindow.QxForm1") and the messages of the dataset rules.
    m_manager = new TQxForm(this, QStringLiteral("QxForm1"));
    m_manager->SetOptions(FoSavePosition | FoSaveSize);
    m_manager->SetCaptionA(QStringLiteral("عرض كيش"));
    m_manager->SetCaptionE(QStringLiteral("Kesh demo"));
    TxBiStrings Messages;
    Messages.Add(RulesPage::MsgLocked, QStringLiteral("هذا الصنف مقفل ولا يمكن تعديله أو حذفه."),
                 QStringLiteral("This item is locked: it can be neither changed nor deleted."), RaError);
    Messages.Add(RulesPage::MsgConfirmDelete, QStringLiteral("سيُحذف الصنف نهائياً."),
                 QStringLiteral("The item will be deleted for good."), RaError);
    m_manager->SetBiStrings(Messages);
    TxBiMenuItems& Items = m_manager->BiMenuItems();
    for (const TMenuText& Text : MenuTexts) {
        Items.AddMenuItem(QString::fromLatin1(Text.Name));
        TxMenuItemRec Rec;
        Rec.CapA = QString::fromUtf8(Text.Arabic);
        Rec.CapE = QString::fromUtf8(Text.English);
        Items.SetMenuItemRec(Items.Count() - 1, Rec);
    }
    Items.UpdateAllMenus();

    connect(m_language, &QPushButton::clicked, this, &DemoWindow::ToggleLanguage);
    connect(Application(), &THostApplication::BiDiModeChanged, this, &DemoWindow::Retranslate);
    Retranslate();
}

void DemoWindow::BuildMenus()
{
    QMenu* File = menuBar()->addMenu(QString());
    File->setObjectName(QStringLiteral("mnuFile"));
    QAction* Exit = File->addAction(QString(), this, &QWidget::close);
    Exit->setObjectName(QStringLiteral("mnuExit"));
    QMenu* Language = menuBar()->addMenu(QString());
    Language->setObjectName(QStringLiteral("mnuLanguage"));
    QAction* Arabic = Language->addAction(QString(), this, [this] { SetLanguage(bdRightToLeft); });
    Arabic->setObjectName(QStringLiteral("mnuArabic"));
    QAction* English = Language->addAction(QString(), this, [this] { SetLanguage(bdLeftToRight); });
    English->setObjectName(QStringLiteral("mnuEnglish"));
    QMenu* Help = menuBar()->addMenu(QString());
    Help->setObjectName(QStringLiteral("mnuHelp"));
    QAction* AboutItem = Help->addAction(QString(), this, &DemoWindow::About);
    AboutItem->setObjectName(QStringLiteral("mnuAbout"));
}

void DemoWindow::AddPage(DemoPage* Page)
{
    m_pages << Page;
    m_tabs->addTab(Page, Page->Title());
}

void DemoWindow::SetLanguage(TBiDiMode Mode)
{
    // The window first, while its direction still differs, then the application, whose
    // direction the dialogs and the pages' texts follow. The manager would hide a form
    // asked for the language it already has: ask only for a change.
    if (Mode != m_manager->GetLanguage())
        m_manager->SetLang(Mode);
    Application()->SetBiDiMode(Mode);
}

void DemoWindow::ToggleLanguage()
{
    SetLanguage(Application()->BiDiMode() == bdRightToLeft ? bdLeftToRight : bdRightToLeft);
}

void DemoWindow::About()
{
    ShowMsg(BiStr(QStringLiteral("كيش: مكونات ثنائية اللغة لتطبيقات قواعد البيانات."),
                  QStringLiteral("Kesh: bilingual components for database applications.")));
}

void DemoWindow::Retranslate()
{
    m_language->setText(BiStr(QStringLiteral("English"), QStringLiteral("عربي")));
    for (int I = 0; I < m_pages.size(); ++I) {
        m_pages[I]->Retranslate();
        m_tabs->setTabText(I, m_pages[I]->Title());
    }
}
