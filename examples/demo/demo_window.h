// The demo's main window: one tab per page, a bilingual menu and the language switch. A form
// manager gives it its caption, menus and mirroring in both languages and remembers its
// placement between runs.
#pragma once
#include <platform/application.h>
#include <QMainWindow>
#include <QVector>

class DemoPage;
class QPushButton;
class QTabWidget;
namespace Kesh {
class TQxForm;
}

class DemoWindow : public QMainWindow
{
    Q_OBJECT
public:
    explicit DemoWindow(QWidget* Parent = nullptr);
    const QVector<DemoPage*>& Pages() const { return m_pages; }
    QTabWidget* Tabs() const { return m_tabs; }
    Kesh::TQxForm* Manager() const { return m_manager; }
    /// Switches the window and the whole application to Arabic (right to left) or English.
    void SetLanguage(Kesh::TBiDiMode Mode);
    void ToggleLanguage();

private:
    void AddPage(DemoPage* Page);
    void BuildMenus();
    void Retranslate();
    void About();

    Kesh::TQxForm* m_manager;
    QTabWidget* m_tabs;
    QPushButton* m_language;
    QVector<DemoPage*> m_pages;
};
