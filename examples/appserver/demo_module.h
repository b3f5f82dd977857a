// Kesh Sales application server — what each worker serves: the sample database's
// customers (every column, to read and edit), its cities and its items.
#pragma once
#include <Kesh_AdoDB.h>
#include "platform/remote/provider.h"

namespace Demo {

/// One module per worker: its own connection and a provider list with the queries
/// "Customers", "Cities" and "Items". A customer inserted without a number gets the next
/// one here; the number and the row as stored go back to the client.
class TDemoModule : public Kesh::TRemoteDataModule
{
public:
    explicit TDemoModule(const QString& ConnectionString);
};

/// Opens the database of ConnectionString and fills it with the sample rows when it has
/// none (EnsureSampleDatabase). Raises EDatabaseError.
void CreateServerDatabase(const QString& ConnectionString, int InvoiceLines = 100000);

} // namespace Demo
