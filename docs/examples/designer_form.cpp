// A form made in Qt Designer (designer_form.ui): Kesh widgets from the plugin's widget box,
// data sources named in the .ui file and bound when the form ends its building, the form
// manager configured by QxForm_* properties.
#include "ui_designer_form.h"
#include <Kesh_AdoDB.h>
#include <Kesh_Controls.h>
#include <Kesh_dbGrid.h>

using namespace Kesh;

//! [form]
class CustomerCard : public QWidget
{
public:
    explicit CustomerCard(TQxAdoConnection* db)
    {
        auto* customers = new TADOQuery(this);     // datasets and sources are made in code,
        customers->SetConnection(db);              // as children of the form, and named
        customers->SetSQL({QStringLiteral("SELECT Cust_id, Name_a, Name_e, Phone FROM Customers ORDER BY Cust_id")});
        auto* source = new TDataSource(this);
        source->setObjectName(QStringLiteral("dsCustomers"));
        source->SetDataSet(customers);
        ui.setupUi(this);                          // the widgets of the .ui file
        EndLoading(this);                          // binds every ...Name, makes the TQxForm
        customers->Open();
    }
    TQxForm* Manager() const { return findChild<TQxForm*>(); }

private:
    Ui::CustomerCard ui;
};
//! [form]

int main(int argc, char** argv)
{
    TQxApplication app(argc, argv);
    TQxAdoConnection db;
    db.SetConnectionString(QStringLiteral("Driver=QSQLITE;Database=:memory:"));
    db.Open();
    db.Exec(QStringLiteral(
        "CREATE TABLE Customers (Cust_id INTEGER PRIMARY KEY, Name_a VARCHAR(80), Name_e VARCHAR(80), Phone VARCHAR(20));"
        "INSERT INTO Customers VALUES (1, 'مؤسسة النور', 'Al Noor Est.', '011 555 0101');"
        "INSERT INTO Customers VALUES (2, 'شركة الأمل', 'Al Amal Co.', '012 555 0202')"));
    CustomerCard card(&db);
    card.show();
    card.Manager()->SetLang(bdRightToLeft);        // QxForm_Caption_a: "العملاء"
    Application()->SetBiDiMode(bdRightToLeft);
    return app.exec();
}
