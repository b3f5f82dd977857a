// Kesh Sales — the items: a grid with footer totals of stock and stock value, a card of
// data-aware controls with the data-aware tool bar and the item's picture, and quick
// look-up through the record browser (F4).
#pragma once
#include "list_form.h"
#include <QHash>
#include <QPair>
#include <memory>

namespace Ui {
class ItemsForm;
}

namespace Demo {

class TItemsForm : public TListForm
{
    Q_OBJECT

public:
    explicit TItemsForm(TDemoContext& Context, QWidget* Parent = nullptr);
    ~TItemsForm() override;


    /// Puts the picture of FileName on the current item (in edit mode, not posted);
    /// false, with the reason shown, for a file that is no picture.
    bool LoadPicture(const QString& FileName);
    /// Takes the picture off the current item (in edit mode, not posted).
    void ClearPicture();
    /// Deletes the items selected in the grid after one question; items that invoices use
    /// are kept, and the user is told so. Returns how many went.
    int DeleteSelected();

private:
    Kesh::TDataSet* CreateItems();
    void ReadUnits();
    void AskPicture();

    std::unique_ptr<Ui::ItemsForm> m_ui;
    /// Unit names by key, Arabic then English, for the grid's unit column.
    QHash<QString, QPair<QString, QString>> m_units;
};

} // namespace Demo
