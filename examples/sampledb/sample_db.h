// The sample sales database shared by the demo, the application server example and their
// tests: customers, items, invoices with their lines, and the company's settings.
#pragma once
#include <QString>

namespace Kesh {
class TQxAdoConnection;
}

namespace Demo {

/// Setting_id values of the Settings table.
enum TSettingId {
    SetCompanyA = 1,
    SetCompanyE = 2,
    SetCurrencyA = 3,
    SetCurrencyE = 4,
    SetSubUnitA = 5,
    SetSubUnitE = 6,
};

/// Creates the tables and fills them with sample rows when the database has no Customers
/// table yet; otherwise leaves it alone. Works on SQLite and PostgreSQL. InvoiceLines is the
/// number of invoice lines to make (about five to an invoice). Raises EDatabaseError.
void EnsureSampleDatabase(Kesh::TQxAdoConnection* Conn, int InvoiceLines = 100000);

/// The next key of an integer key field (the tables have no auto-increment, so that SQLite
/// and PostgreSQL behave alike): the connection's GetNextID as an int.
int NextId(Kesh::TQxAdoConnection* Conn, const QString& Table, const QString& Field);

/// Makes the tables only (used by EnsureSampleDatabase; handy for tests that fill their own).
void CreateSampleTables(Kesh::TQxAdoConnection* Conn);

} // namespace Demo
