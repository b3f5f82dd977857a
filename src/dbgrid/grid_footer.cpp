// Kesh for Qt — the footer of a grid.
#include "grid_footer.h"
#include "db_grid.h"
#include "label.h"
#include "platform/data/dataset.h"
#include "platform/data/dataset_totals.h"
#include "platform/data/fields.h"
#include "platform/rtl/numbers.h"
#include "platform/widgets.h"
#include <QFrame>
#include <QHeaderView>
#include <QPainter>
#include <QScrollBar>
#include <utility>

namespace Kesh {

struct TQxdbGridFooterPrivate
{
    QPointer<TQxCustomDBGrid> Grid;
    QList<TQxLabel*> Labels;
    QList<QFrame*> Separators;
    bool Painting = false;
    bool Separator = false;
    TDataSetTotals Totals;
};

TQxdbGridFooter::TQxdbGridFooter(QWidget* Parent) : TQxCustomPanel(Parent), d(new TQxdbGridFooterPrivate)
{
    setFixedHeight(21);
    SetColorFrom(0xF0FFFF);
    SetColorTo(0xCAD0D4);
    SetCaption(QString());
    connect(&d->Totals, &TDataSetTotals::Changed, this, &TQxdbGridFooter::ShowTotals);
}

TQxdbGridFooter::~TQxdbGridFooter()
{
    if (d->Grid && d->Grid->GetFooter() == this)
        d->Grid->SetGridFooter(nullptr);
}

TQxCustomDBGrid* TQxdbGridFooter::Grid() const { return d->Grid; }
bool TQxdbGridFooter::GetSeparator() const { return d->Separator; }
TQxLabel* TQxdbGridFooter::Labels(int I) const { return d->Labels.value(I); }
int TQxdbGridFooter::LabelCount() const { return int(d->Labels.size()); }
QWidget* TQxdbGridFooter::Separators(int I) const { return d->Separators.value(I); }
bool TQxdbGridFooter::TotalsReady() const { return d->Totals.Ready(); }

void TQxdbGridFooter::SetGrid(TQxCustomDBGrid* Grid)
{
    d->Grid = Grid;
    d->Totals.SetDataSet(Grid ? Grid->DataSet() : nullptr);
}

void TQxdbGridFooter::SetSeparator(bool Value)
{
    d->Separator = Value;
    for (QFrame* F : std::as_const(d->Separators))
        F->setFixedWidth(Value ? 4 : 0);
    update();
    PlaceLabels();
}

void TQxdbGridFooter::RemoveColumns()
{
    qDeleteAll(std::exchange(d->Labels, {}));
    qDeleteAll(std::exchange(d->Separators, {}));
}

void TQxdbGridFooter::BuildColumns()
{
    RemoveColumns();
    if (!d->Grid)
        return;
    TQxDBGridColumns* Columns = d->Grid->GetColumns();
    for (int I = 0; I < Columns->Count(); ++I) {
        auto* L = new TQxLabel(this);
        L->SetLayout(tlCenter);
        L->SetRectangle(false);
        L->SetTransparent(true);
        L->setGeometry(0, 0, Columns->Items(I)->GetWidth(), height());
        if (IsDesigning(this))  // the form's author sees which field each label totals
            L->SetCaption(Columns->Items(I)->GetFieldName());
        L->show();
        d->Labels << L;
        auto* Sep = new QFrame(this);
        Sep->setFrameStyle(QFrame::VLine | QFrame::Sunken);
        Sep->setFixedWidth(d->Separator ? 4 : 0);
        Sep->setVisible(d->Separator);
        d->Separators << Sep;
    }
    DoPaint();
}

// A column moved: its label (with what it shows) goes along.
void TQxdbGridFooter::MoveColumn(int From, int To)
{
    if (From < 0 || To < 0 || From >= d->Labels.size() || To >= d->Labels.size())
        return;
    d->Labels.move(From, To);
    d->Separators.move(From, To);
}

void TQxdbGridFooter::CalcColumnsTotal()
{
    if (!d->Grid)
        return;
    TDataSet* Ds = d->Grid->DataSet();
    d->Totals.SetDataSet(Ds);
    QStringList Names;
    TQxDBGridColumns* Columns = d->Grid->GetColumns();
    for (int I = 0; I < Columns->Count(); ++I)
        Names << (Columns->Items(I)->GetTotalValue() ? Columns->Items(I)->GetFieldName() : QString());
    if (Names != d->Totals.FieldNames())
        d->Totals.SetFieldNames(Names);  // recomputes, then Changed shows them
    ShowTotals();
}

void TQxdbGridFooter::ShowTotals()
{
    if (!d->Grid)
        return;
    TDataSet* Ds = d->Grid->DataSet();
    // Totals change only while browsing: an edit or insert keeps what the labels show.
    if (!Ds || Ds->State() != dsBrowse)
        return;
    TQxDBGridColumns* Columns = d->Grid->GetColumns();
    for (int I = 0; I < d->Labels.size() && I < Columns->Count(); ++I) {
        TQxColumn* C = Columns->Items(I);
        if (!C->GetTotalValue())
            continue;
        TField* F = C->Field();
        const QString Format = F && IsTotalableType(F->DataType()) ? F->DisplayFormat() : QString();
        const long double Total = d->Totals.Value(I);
        d->Labels[I]->SetCaption(Format.isEmpty() ? FloatToStr(Total) : FormatFloat(Format, Total));
    }
}

void TQxdbGridFooter::DoPaint()
{
    if (!d->Grid)
        return;
    if (!IsManagedByLayout(this) && parentWidget() == d->Grid->parentWidget()) {
        const QRect G = d->Grid->geometry();
        setGeometry(G.left(), G.bottom() + 1, G.width(), height());
    }
    const bool Rtl = d->Grid->BiDiMode() == bdRightToLeft;
    TQxDBGridColumns* Columns = d->Grid->GetColumns();
    const bool Active = d->Grid->DataSet() && d->Grid->DataSet()->Active();
    for (int I = 0; I < d->Labels.size() && I < Columns->Count(); ++I) {
        TQxColumnField* B = Columns->Items(I)->GetBiDiField();
        d->Labels[I]->SetFont(Rtl ? B->GetFont_a() : B->GetFont_e());
        if (!Active) {
            // Without data: the field names while a form is designed, nothing at run time.
            const bool Designing = IsDesigning(this);
            d->Labels[I]->SetCaptionA(Designing ? B->GetFieldName_a() : QString());
            d->Labels[I]->SetCaptionE(Designing ? B->GetFieldName_e() : QString());
            if (!Designing)
                d->Labels[I]->SetCaption(QString());
        }
    }
    PlaceLabels();
    update();
}

void TQxdbGridFooter::PlaceLabels()
{
    if (!d->Grid || d->Painting)
        return;
    d->Painting = true;
    QHeaderView* Header = d->Grid->horizontalHeader();
    TQxDBGridColumns* Columns = d->Grid->GetColumns();
    const TBiDiMode Mode = d->Grid->BiDiMode() == bdRightToLeft ? bdRightToLeft : bdLeftToRight;
    for (int I = 0; I < d->Labels.size(); ++I) {
        TQxLabel* L = d->Labels[I];
        TQxColumn* C = Columns->Items(I);
        if (!C || Header->isSectionHidden(I) || I >= Header->count()) {
            L->hide();
            d->Separators[I]->hide();
            continue;
        }
        // The title cell's left edge as seen on screen, in the footer's coordinates (the
        // header mirrors itself under right to left, so no formula is needed here).
        const int CellLeft = d->Grid->mapTo(d->Grid->window(), QPoint(Header->x() + Header->sectionViewportPosition(I), 0)).x()
                             - mapTo(window(), QPoint(0, 0)).x();
        const int Width = Header->sectionSize(I);
        L->setGeometry(CellLeft + 1, 0, std::max(Width - 4, 0), height());
        L->SetFont(GetFont());
        // The label mirrors its own alignment under right to left (left becomes right).
        L->SetBiDiMode(Mode);
        L->SetAlignment(C->GetBiDiField()->AlignOf(Mode));
        L->SetTextStyle(GetTextStyle());
        L->SetTextShade(GetTextShade());
        L->SetTextShadowPos(GetTextShadowPos());
        L->setVisible(CellLeft + Width > 0 && CellLeft < width());
        QFrame* Sep = d->Separators[I];
        Sep->setGeometry(CellLeft + 1 - 3, 0, d->Separator ? 4 : 0, height());
        Sep->setVisible(d->Separator && L->isVisible());
    }
    d->Painting = false;
}

void TQxdbGridFooter::paintEvent(QPaintEvent* Event) { TQxCustomPanel::paintEvent(Event); }

} // namespace Kesh
