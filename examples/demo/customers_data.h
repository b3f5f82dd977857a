// Kesh Sales — the customers the lists and the invoices work on.
#pragma once
#include <QObject>

namespace Kesh {
class TDataSet;
} // namespace Kesh

namespace Demo {

struct TDemoContext;

/// The customers ordered by Cust_id, closed, with persistent fields: Joined an integer date,
/// the amounts shown as "#,##0.00". Rows are read as the user scrolls to them. In local
/// mode an SQL dataset on the context's connection that asks before a delete (message 1 of
/// its owner's form manager); Owner should be the form that shows it. With a server in the
/// context a client dataset of its provider "Customers" instead, which sends each posted or
/// deleted row at once; a new customer without a number gets it from the server. Changes the
/// server did not take keep the form from closing until the user lets them go.
Kesh::TDataSet* CreateCustomersDataSet(TDemoContext& Context, QObject* Owner);

/// The persistent fields of Customers on DataSet (closed, without fields), whatever its kind.
void AddCustomerFields(Kesh::TDataSet* DataSet);

} // namespace Demo
