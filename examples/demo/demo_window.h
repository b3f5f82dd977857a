// The demo's main window: one tab per page and the language switch.
#pragma once
#include <QMainWindow>
#include <QVector>

class DemoPage;
class QPushButton;
class QTabWidget;

class DemoWindow : public QMainWindow
{
    Q_OBJECT
public:
    explicit DemoWindow(QWidget* Parent = nullptr);
    const QVector<DemoPage*>& Pages() const { return m_pages; }
    QTabWidget* Tabs() const { return m_tabs; }
    /// Switches the whole application between Arabic and English.
    void ToggleLanguage();

private:
    void AddPage(DemoPage* Page);
    void Retranslate();

    QTabWidget* m_tabs;
    QPushButton* m_language;
    QVector<DemoPage*> m_pages;
};
