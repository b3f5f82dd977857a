// Kesh for Qt — the record browser's filter dialog: one box per column, joined into one
// SQL condition when the user confirms.
#pragma once
#include "platform/kesh_global.h"
#include <QDialog>
#include <QPointer>

namespace Kesh {

class TQxAdoBrowser;
class TQxForm;
class TQxSpeedButton;

/// The filter dialog of TAdoBrowserForm: a label "L<n>" and a box "D<n>" per browser column
/// (n from 1). OK builds Criteria from the filled boxes and closes with 1; a value that is
/// not one of its column's type is refused with a message, the dialog stays open and
/// Criteria stays empty. Cancel closes with 2.
class KESH_EXPORT TFormAdoBrowserFilter : public QDialog
{
    Q_OBJECT

public:
    TFormAdoBrowserFilter(QWidget* AOwner, TQxAdoBrowser* Browser);
    ~TFormAdoBrowserFilter() override;

    /// Titles, and the label and box of every column; mirrored under right to left.
    void BuildControls();
    /// Criteria from the filled boxes ("(Name Like '%x%') AND (Qty = 5)"); false, after a
    /// message, at the first value its column cannot take.
    bool BuildCriteria();
    void Button_Click(QObject* Sender);

    TQxAdoBrowser* Browser() const { return m_browser; }
    /// The condition built on OK; empty when nothing was filled.
    QString Criteria() const { return m_criteria; }

    TQxForm* Fx;
    QWidget* ToolBar;
    TQxSpeedButton* btnOk;
    TQxSpeedButton* btnCancel;

private:
    void FxBeforeOpen(QObject* Sender, bool& Cancel);

    QPointer<TQxAdoBrowser> m_browser;
    QString m_criteria;
    bool m_built = false;
};

} // namespace Kesh
