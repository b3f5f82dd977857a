// Kesh Sales — the customers: a grid with footer totals, a card of data-aware controls with
// the data-aware tool bar, and quick look-up through the record browser (F4).
#pragma once
#include "list_form.h"
#include <QHash>
#include <QPair>
#include <memory>

namespace Ui {
class CustomersForm;
}

namespace Demo {

class TCustomersForm : public TListForm
{
    Q_OBJECT

public:
    explicit TCustomersForm(TDemoContext& Context, QWidget* Parent = nullptr);
    ~TCustomersForm() override;


private:
    void ReadCities();
    void PrepareFields(Kesh::TDataSet* Ds);

    std::unique_ptr<Ui::CustomersForm> m_ui;
    /// City names by key, Arabic then English, for the grid's city column.
    QHash<int, QPair<QString, QString>> m_cities;
};

} // namespace Demo
