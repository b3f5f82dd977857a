// A page of the demo: knows its file name and retranslates itself when the language changes.
#pragma once
#include <QApplication>
#include <QLabel>
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

protected:
    /// QLabel aligns plain text by the text's own direction, so digits and Latin names would
    /// stick to the left of an Arabic form; pin them to the reading side of the application.
    static void AlignToReadingSide(QLabel* Label)
    {
        const Qt::Alignment Side = QApplication::layoutDirection() == Qt::RightToLeft ? Qt::AlignRight : Qt::AlignLeft;
        Label->setAlignment(Side | Qt::AlignAbsolute | Qt::AlignVCenter);
    }
};
