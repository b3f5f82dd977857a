// A page of the demo: knows its file name and retranslates itself when the language changes.
#pragma once
#include <QWidget>

class DemoPage : public QWidget
{
    Q_OBJECT
public:
    using QWidget::QWidget;
    /// Short name used for screenshot files.
    virtual QString PageName() const = 0;
    /// Caption of the page's tab in the current language.
    virtual QString Title() const = 0;
    /// Sets every caption for the current language.
    virtual void Retranslate() = 0;
};
