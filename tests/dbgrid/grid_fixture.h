// Shared set-up of the grid tests: a client dataset of items shown in a grid on a window.
#pragma once
#include "Kesh_dbGrid.h"
#include "platform/data.h"
#include <QApplication>
#include <QHeaderView>
#include <QImage>
#include <QtTest>
#include <memory>

namespace GridTest {

using namespace Kesh;

/// Id, Name (20), Qty, Price (float), At (time); Rows rows: Id i, Name "Item i", Qty i, Price i * 1.5.
inline std::unique_ptr<TClientDataSet> Items(int Rows)
{
    auto Ds = std::make_unique<TClientDataSet>();
    Ds->FieldDefs().Add(QStringLiteral("Id"), ftInteger);
    Ds->FieldDefs().Add(QStringLiteral("Name"), ftString, 20);
    Ds->FieldDefs().Add(QStringLiteral("Qty"), ftInteger);
    Ds->FieldDefs().Add(QStringLiteral("Price"), ftFloat);
    Ds->FieldDefs().Add(QStringLiteral("At"), ftTime);
    Ds->CreateDataSet();
    for (int I = 1; I <= Rows; ++I) {
        Ds->Append();
        Ds->FieldByName(QStringLiteral("Id"))->SetAsInteger(I);
        Ds->FieldByName(QStringLiteral("Name"))->SetAsString(QStringLiteral("Item %1").arg(I));
        Ds->FieldByName(QStringLiteral("Qty"))->SetAsInteger(I);
        Ds->FieldByName(QStringLiteral("Price"))->SetAsFloat(I * 1.5);
        Ds->Post();
    }
    Ds->First();
    return Ds;
}

/// A window holding a grid over a data source.
struct Form
{
    QWidget Window;
    TDataSource Source;
    TQxdbGrid* Grid;

    explicit Form(TDataSet* DataSet, QSize Size = QSize(520, 300))
    {
        Window.setObjectName(QStringLiteral("ItemsForm"));
        Grid = new TQxdbGrid(&Window);
        Grid->setObjectName(QStringLiteral("Grid1"));
        Grid->setGeometry(10, 10, Size.width(), Size.height());
        Window.resize(Size.width() + 20, Size.height() + 60);
        Source.SetDataSet(DataSet);
        Grid->SetDataSource(&Source);
    }
    bool Show()
    {
        Window.show();
        QApplication::setActiveWindow(&Window);
        Grid->setFocus();
        return QTest::qWaitForWindowExposed(&Window);
    }
    /// Turns an option on or off.
    void Option(TDBGridOptions O, bool On) { Grid->SetOptions(On ? Grid->GetOptions() | O : Grid->GetOptions() & ~O); }
    void RightToLeft(bool On)
    {
        if (On)
            Grid->SetBiDiMode(bdRightToLeft);
    }
    /// The centre of a data cell, in the grid viewport's coordinates.
    QPoint Cell(int Row, int Column) const { return Grid->visualRect(Grid->model()->index(Row, Column)).center(); }
    /// The grid as drawn.
    QImage Image() const { return Grid->grab().toImage(); }
    /// A background pixel of a data cell (its lower left inner corner), in grid coordinates.
    QColor CellColor(int Row, int Column) const
    {
        const QRect R = Grid->visualRect(Grid->model()->index(Row, Column));
        const QPoint P = Grid->viewport()->mapTo(Grid, QPoint(R.left() + 1, R.bottom() - 1));
        return Image().pixelColor(P);
    }
};

/// A "rtl" column with a left-to-right and a right-to-left row.
inline void AddRtlRows()
{
    QTest::addColumn<bool>("rtl");
    QTest::newRow("ltr") << false;
    QTest::newRow("rtl") << true;
}

inline QColor Rgb(quint32 Bgr) { return TColorToQColor(Bgr); }

} // namespace GridTest
