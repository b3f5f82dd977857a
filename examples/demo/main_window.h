// Kesh Sales: the main window. Its form manager gives it the caption, menus and mirroring of
// both languages and remembers its placement; its start panel shows the company and a few
// live figures; the application's forms are registered with it and opened from its menus.
#pragma once
#include "demo_context.h"

#include <platform/application.h>

#include <QKeySequence>
#include <QList>
#include <QMainWindow>
#include <QPointer>
#include <functional>
#include <memory>

class QMenu;
namespace Kesh {
class TQxForm;
}

namespace Demo {

/// A text in both languages.
struct TBiText
{
    QString Arabic;
    QString English;
};

/// Makes a form of the application (a top-level window with its own form manager).
using TFormFactory = std::function<QWidget*(TDemoContext& Context, QWidget* Parent)>;

/// The factory of a form class whose constructor is (TDemoContext&, QWidget* Parent).
template <class TForm>
TFormFactory FormOf()
{
    return [](TDemoContext& Context, QWidget* Parent) -> QWidget* { return new TForm(Context, Parent); };
}

/// One form of the application, opened from its menu item (one window at a time).
struct TFormEntry
{
    QString Name;         ///< short name: its menu item is "act" + Name, its screenshots name + "-ar.png" in lower case
    TBiText Caption;      ///< the menu item's caption
    TFormFactory Create;  ///< makes the form
    /// Optional: saves screenshots of the open form's own dialogs into Folder (files named
    /// "<what>-" + Lang + ".png", Lang "ar" or "en"), printing each file's path; false on a failure.
    std::function<bool(QWidget* Form, const QString& Folder, const QString& Lang)> Shots;
    QAction* Action = nullptr; ///< its menu item
    QPointer<QWidget> Window;  ///< the open form, if any
};

/// The figures of the start panel.
struct TStartFigures
{
    int Customers = 0;
    int Items = 0;
    int Invoices = 0;
    double MonthSales = 0; ///< total of this month's invoices
};

class TMainWindow : public QMainWindow
{
    Q_OBJECT
public:
    explicit TMainWindow(TDemoContext& Context, QWidget* Parent = nullptr);
    ~TMainWindow() override;

    TDemoContext& Context() const;
    Kesh::TQxForm* Manager() const;
    /// The menus "File", "Lists", "Sales", "Tools", "Language" and "Help".
    QMenu* Menu(const QString& Name) const;

    /// Adds a form: a menu item in InMenu (with Keys as its hot key) and a button of the
    /// start panel that open it. A menu stays hidden until it holds an item.
    TFormEntry& RegisterForm(QMenu* InMenu, const QString& Name, const TBiText& Caption, const TFormFactory& Create,
                             const QKeySequence& Keys = QKeySequence());
    const QList<TFormEntry*>& Forms() const;
    /// Opens the registered form Name, or brings it forward when it is open; nullptr for an unknown name.
    QWidget* OpenForm(const QString& Name);
    /// Every open window that a form manager manages, other than this one.
    QList<QWidget*> OpenForms() const;

    /// Switches every open form, this window and the application to Arabic (right to left)
    /// or English.
    void SetLanguage(Kesh::TBiDiMode Mode);

    /// Reads the company name and the figures again.
    void RefreshStart();
    TStartFigures Figures() const;
    /// The company name in the application's language, as the caption shows it.
    QString CompanyName() const;

protected:
    void closeEvent(QCloseEvent* Event) override;
    void changeEvent(QEvent* Event) override;

private:
    void BuildMenus();
    void BuildStartPanel();
    void RegisterForms();
    void ShowFigures();
    void HideEmptyMenus();
    void About();

    std::unique_ptr<class TMainWindowPrivate> const d;
};

} // namespace Demo
