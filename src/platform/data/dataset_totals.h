// Kesh for Qt — TDataSetTotals: the sums of some fields over every row of a dataset.
#pragma once
#include "../kesh_global.h"
#include <QObject>
#include <QStringList>
#include <memory>

namespace Kesh {

class TDataSet;

/// Keeps the sum of some fields over every row of a dataset, rows not read yet included,
/// without moving the dataset's cursor or reading its rows.
///
/// A dataset whose rows are all read is summed in memory. An SQL dataset with rows still
/// unread is summed by the server (SUM over its own command), on a connection of its own in
/// a worker thread while the dataset is used; where a second connection cannot see the
/// data (an SQLite database in memory, an open transaction) the sum runs at once on the
/// dataset's connection. Posts and deletes then adjust the sums by the row's old and new
/// values, so they stay right without reading anything again. Integer, currency and decimal
/// values are summed exactly (as decimals); values that have no short decimal form are
/// summed as long doubles.
class KESH_EXPORT TDataSetTotals : public QObject
{
    Q_OBJECT

public:
    explicit TDataSetTotals(QObject* Parent = nullptr);
    ~TDataSetTotals() override;

    TDataSet* DataSet() const;
    /// Follows Value (nullptr: no totals, every Value is 0).
    void SetDataSet(TDataSet* Value);
    QStringList FieldNames() const;
    /// The fields to total, by name; slot i totals FieldNames[i]; an empty or unknown name gives 0.
    void SetFieldNames(const QStringList& Names);
    /// The sum over every row of the dataset (rows not yet read included) of slot Index's
    /// field read as a float, as a walk First … Next summing Field.AsFloat gives; exact for
    /// integer, currency and decimal fields. 0 for an index out of range.
    long double Value(int Index) const;
    /// False while a total is still being computed (in the background); Value then gives
    /// the last known one.
    bool Ready() const;
    /// Recomputes from scratch (unless a sum of the same rows is already running). Opening,
    /// closing and re-reading the dataset recompute by themselves.
    void Recalculate();

Q_SIGNALS:
    /// Some Value changed or the totals became Ready.
    void Changed();

private:
    std::unique_ptr<class TDataSetTotalsPrivate> const d;
};

} // namespace Kesh
