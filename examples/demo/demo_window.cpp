#include "demo_window.h"
#include "core_tools_page.h"
#include "database_page.h"

#include <Kesh.h>

#include <QDir>
#include <QHBoxLayout>
#include <QStandardPaths>
#include <QPushButton>
#include <QTabWidget>
#include <QVBoxLayout>

using namespace Kesh;

DemoWindow::DemoWindow(QWidget* Parent) : QMainWindow(Parent)
{
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

    AddPage(new CoreToolsPage);
    const QString DataDir = QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation);
    QDir().mkpath(DataDir);
    AddPage(new DatabasePage(QDir(DataDir).filePath(QStringLiteral("kesh-demo.db"))));

    connect(m_language, &QPushButton::clicked, this, &DemoWindow::ToggleLanguage);
    connect(Application(), &THostApplication::BiDiModeChanged, this, &DemoWindow::Retranslate);
    Retranslate();
    resize(900, 640);
}

void DemoWindow::AddPage(DemoPage* Page)
{
    m_pages << Page;
    m_tabs->addTab(Page, Page->Title());
}

void DemoWindow::ToggleLanguage()
{
    Application()->SetBiDiMode(Application()->BiDiMode() == bdRightToLeft ? bdLeftToRight : bdRightToLeft);
}

void DemoWindow::Retranslate()
{
    setWindowTitle(BiStr(QStringLiteral("عرض كيش"), QStringLiteral("Kesh demo")));
    m_language->setText(BiStr(QStringLiteral("English"), QStringLiteral("عربي")));
    for (int I = 0; I < m_pages.size(); ++I) {
        m_pages[I]->Retranslate();
        m_tabs->setTabText(I, m_pages[I]->Title());
    }
}
