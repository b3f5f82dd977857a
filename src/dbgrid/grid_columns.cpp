// Kesh for Qt — the grid's columns.
#include "grid_columns.h"
#include "db_grid.h"
#include "grid_footer.h"
#include "colors.h"
#include "messages.h"
#include "platform/data/dataset.h"
#include "platform/data/fields.h"
#include "platform/exceptions.h"
#include "platform/filer.h"
#include <QFile>
#include <QFontMetrics>
#include <QPointer>
#include <functional>
#include <utility>

namespace Kesh {

namespace {
// Values a column or title holds only once assigned; unassigned ones are read through defaults.
enum TColumnValue {
    cvColor = 0x1, cvWidth = 0x2, cvFont = 0x4, cvAlignment = 0x8, cvReadOnly = 0x10,
    cvImeMode = 0x20, cvImeName = 0x40, cvTitleColor = 0x80, cvTitleCaption = 0x100,
    cvTitleAlignment = 0x200, cvTitleFont = 0x400
};

TFont TitleCreationFont()
{
    TFont F;  // "Microsoft Sans Serif", 8
    F.SetColor(clPurple);
    return F;
}

Qt::Alignment Horizontal(Qt::Alignment Value)
{
    const Qt::Alignment H = Value & Qt::AlignHorizontal_Mask;
    return H ? H : Qt::AlignLeft;
}
} // namespace

bool IsTotalableType(int FieldType)
{
    switch (FieldType) {
    case ftSmallint: case ftInteger: case ftWord: case ftFloat: case ftCurrency: case ftBCD:
    case ftAutoInc: case ftLargeint:
        return true;
    default:
        return false;
    }
}

// ---------------------------------------------------------------- TQxColumnTitle

struct TQxColumnTitlePrivate
{
    TQxColumn* Column = nullptr;
    Qt::Alignment Alignment = Qt::AlignLeft;
    TColor Color = clBtnFace;
    QString Caption;
    TFont Font = TitleCreationFont();
};

TQxColumnTitle::TQxColumnTitle(TQxColumn* Column) : QObject(Column), d(new TQxColumnTitlePrivate)
{
    d->Column = Column;
    InitBiFonts(d->Font);
    TFont Bold = d->Font;
    Bold.SetStyle(Bold.Style() | fsBold);
    TxBilingual::SetFont_e(Bold);
    SetAlignment(Qt::AlignHCenter);
}

TQxColumnTitle::~TQxColumnTitle() = default;

TQxColumn* TQxColumnTitle::Column() const { return d->Column; }

int AssignedOf(const TQxColumn* Column);

Qt::Alignment TQxColumnTitle::GetAlignment() const
{
    return AssignedOf(d->Column) & cvTitleAlignment ? d->Alignment : Qt::AlignLeft;
}

TColor TQxColumnTitle::GetColor() const { return AssignedOf(d->Column) & cvTitleColor ? d->Color : DefaultColor(); }

TColor TQxColumnTitle::DefaultColor() const
{
    if (!d->Column || !d->Column->Grid())
        return clBtnFace;
    return d->Column->Index() % 2 == 0 ? TColor(0xC8F0FA) : TColor(0xB4DCE6);
}

QString TQxColumnTitle::GetCaption() const
{
    if (AssignedOf(d->Column) & cvTitleCaption)
        return d->Caption;
    if (!d->Column)
        return QString();
    if (TField* F = d->Column->Field())
        return F->DisplayName();
    return d->Column->GetFieldName();
}

TFont TQxColumnTitle::GetFont() const { return d->Font; }

bool TQxColumnTitle::IsAlignmentStored() const { return AssignedOf(d->Column) & cvTitleAlignment; }
bool TQxColumnTitle::IsColorStored() const { return AssignedOf(d->Column) & cvTitleColor; }
bool TQxColumnTitle::IsCaptionStored() const { return AssignedOf(d->Column) & cvTitleCaption; }
bool TQxColumnTitle::IsFontStored() const { return AssignedOf(d->Column) & cvTitleFont; }

TBiDiMode TQxColumnTitle::BiLanguage() const
{
    // Outside a grid no language is shown: a mode that Pick never takes.
    TQxCustomDBGrid* Grid = d->Column ? d->Column->Grid() : nullptr;
    return Grid ? Grid->BiDiMode() : bdRightToLeftNoAlign;
}

void TQxColumnTitle::ShowBiCaption(const QString& Caption) { SetCaption(Caption); }
void TQxColumnTitle::ShowBiFont(const TFont& Font) { SetFont(Font); }
void TQxColumnTitle::BiMemberChanged(bool, bool, const QString&, const TFont&) { ApplyBiCaption(); }
void TQxColumnTitle::SetBiDiCaption() { ApplyBiCaption(); }

void TQxColumnTitle::Changed()
{
    if (d->Column)
        d->Column->Changed(false);
}

void TQxColumnTitle::RestoreDefaults()
{
    if (!d->Column)
        return;
    d->Column->AssignedRef() &= ~(cvTitleColor | cvTitleCaption | cvTitleAlignment | cvTitleFont);
    d->Font = TitleCreationFont();
    Changed();
}

void TQxColumnTitle::Assign(const TQxColumnTitle* Source)
{
    if (!Source || Source == this)
        return;
    const int A = AssignedOf(Source->d->Column);
    if (A & cvTitleAlignment)
        SetAlignment(Source->d->Alignment);
    if (A & cvTitleColor)
        SetColor(Source->d->Color);
    if (A & cvTitleCaption)
        SetCaption(Source->d->Caption);
    if (A & cvTitleFont)
        SetFont(Source->d->Font);
    const TBiCaption& Pair = Source->BiCaption();
    SetCaptionA(Pair.CaptionA);
    SetCaptionE(Pair.CaptionE);
    SetFont_a(Pair.FontA);
    SetFont_e(Pair.FontE);
}

// ---------------------------------------------------------------- TQxColumnField

struct TQxColumnFieldPrivate
{
    TQxColumn* Column = nullptr;
    TBiCaption Names;  // the field names as the pair's captions, with their fonts
    Qt::Alignment AlignA = Qt::AlignLeft;
    Qt::Alignment AlignE = Qt::AlignLeft;
    TxColumnKeyboard Keyboard = kxSystem;
};

TQxColumnField::TQxColumnField(TQxColumn* Column) : QObject(Column), d(new TQxColumnFieldPrivate)
{
    d->Column = Column;
    if (Column)
        d->Names.FontA = d->Names.FontE = Column->GetFont();
}

TQxColumnField::~TQxColumnField() = default;

TQxColumn* TQxColumnField::Column() const { return d->Column; }
Qt::Alignment TQxColumnField::GetAlign_a() const { return d->AlignA; }
Qt::Alignment TQxColumnField::GetAlign_e() const { return d->AlignE; }
QString TQxColumnField::GetFieldName_a() const { return d->Names.CaptionA; }
QString TQxColumnField::GetFieldName_e() const { return d->Names.CaptionE; }
TFont TQxColumnField::GetFont_a() const { return d->Names.FontA; }
TFont TQxColumnField::GetFont_e() const { return d->Names.FontE; }
TxColumnKeyboard TQxColumnField::GetKeyboard() const { return d->Keyboard; }
Qt::Alignment TQxColumnField::AlignOf(TBiDiMode Mode) const { return Mode == bdRightToLeft ? d->AlignA : d->AlignE; }

void TQxColumnField::SetAlign_a(Qt::Alignment Value) { d->AlignA = Horizontal(Value); SetBiDiField(); }
void TQxColumnField::SetAlign_e(Qt::Alignment Value) { d->AlignE = Horizontal(Value); SetBiDiField(); }
void TQxColumnField::SetFieldName_a(const QString& Value) { d->Names.CaptionA = Value; SetBiDiField(); }
void TQxColumnField::SetFieldName_e(const QString& Value) { d->Names.CaptionE = Value; SetBiDiField(); }
void TQxColumnField::SetFont_a(const TFont& Value) { d->Names.FontA = Value; SetBiDiField(); }
void TQxColumnField::SetFont_e(const TFont& Value) { d->Names.FontE = Value; SetBiDiField(); }
void TQxColumnField::SetKeyboard(TxColumnKeyboard Value) { d->Keyboard = Value; }

void TQxColumnField::SetBiDiField()
{
    TQxCustomDBGrid* Grid = d->Column ? d->Column->Grid() : nullptr;
    if (!Grid)
        return;
    // Unlike a caption, only the name keeps its old value when the language's one is empty.
    const TBiDiMode Mode = Grid->BiDiMode() == bdRightToLeft ? bdRightToLeft : bdLeftToRight;
    const QString Name = d->Names.CaptionOf(Mode);
    if (!Name.isEmpty())
        d->Column->SetFieldName(Name);
    d->Column->SetFont(d->Names.FontOf(Mode));
    d->Column->SetAlignment(AlignOf(Mode));
}

void TQxColumnField::Assign(const TQxColumnField* Source)
{
    if (!Source || Source == this)
        return;
    d->Names = Source->d->Names;
    d->AlignA = Source->d->AlignA;
    d->AlignE = Source->d->AlignE;
    d->Keyboard = Source->d->Keyboard;
}

// ---------------------------------------------------------------- TQxColumn

struct TQxColumnPrivate
{
    QPointer<TQxDBGridColumns> Columns;
    int Assigned = 0;
    QString FieldName;
    QPointer<TField> Field;
    Qt::Alignment Alignment = Qt::AlignLeft;
    TColumnButtonStyle ButtonStyle = cbsAuto;
    TColor Color = clWindow;
    int DropDownRows = 7;
    bool Expanded = true;
    TImeMode ImeMode = imDontCare;
    QString ImeName;
    QStringList PickList;
    QPointer<QMenu> PopupMenu;
    bool ReadOnly = false;
    int Width = 64;
    bool Visible = true;
    bool AutoSize = false;
    bool TotalValue = false;
    TFont Font;
    TQxColumnTitle* Title = nullptr;
    TQxColumnField* BiDiField = nullptr;
};

int AssignedOf(const TQxColumn* Column) { return Column ? Column->AssignedRef() : 0; }

TQxColumn::TQxColumn(TQxDBGridColumns* Columns) : QObject(Columns), d(new TQxColumnPrivate)
{
    TQxCustomDBGrid* G = Columns ? Columns->Grid() : nullptr;
    if (G)
        G->BeginLayout();
    d->Columns = Columns;
    d->Font = G ? G->GetFont() : TFont();
    d->Title = new TQxColumnTitle(this);
    d->BiDiField = new TQxColumnField(this);
    if (Columns)
        Columns->Insert(this);
    if (G)
        G->EndLayout();
}

TQxColumn::~TQxColumn()
{
    if (d->Columns)
        d->Columns->Remove(this);
}

int& TQxColumn::AssignedRef() const { return d->Assigned; }

TQxDBGridColumns* TQxColumn::Collection() const { return d->Columns; }
TQxCustomDBGrid* TQxColumn::Grid() const { return d->Columns ? d->Columns->Grid() : nullptr; }

int TQxColumn::Index() const
{
    if (!d->Columns)
        return -1;
    for (int I = 0; I < d->Columns->Count(); ++I)
        if (d->Columns->Items(I) == this)
            return I;
    return -1;
}

void TQxColumn::SetIndex(int Value)
{
    const int From = Index();
    if (From >= 0 && Value != From)
        d->Columns->Move(From, Value);
}

void TQxColumn::Changed(bool Layout)
{
    if (d->Columns)
        d->Columns->Changed(Layout);
}

Qt::Alignment TQxColumn::GetAlignment() const
{
    if (d->Assigned & cvAlignment)
        return d->Alignment;
    return d->Field ? Horizontal(d->Field->Alignment()) : Qt::AlignLeft;
}

void TQxColumn::SetAlignment(Qt::Alignment Value)
{
    const Qt::Alignment H = Horizontal(Value);
    if ((d->Assigned & cvAlignment) && d->Alignment == H)
        return;
    d->Alignment = H;
    d->Assigned |= cvAlignment;
    Changed(false);
}

TColumnButtonStyle TQxColumn::GetButtonStyle() const { return d->ButtonStyle; }
void TQxColumn::SetButtonStyle(TColumnButtonStyle Value) { d->ButtonStyle = Value; Changed(false); }

TColor TQxColumn::GetColor() const { return d->Assigned & cvColor ? d->Color : DefaultColor(); }

TColor TQxColumn::DefaultColor() const
{
    if (!Grid())
        return clWindow;
    return Index() % 2 == 0 ? clWhite : TColor(0xE0E8EC);
}

void TQxColumn::SetColor(TColor Value)
{
    d->Color = Value;
    d->Assigned |= cvColor;
    Changed(false);
}

int TQxColumn::GetDropDownRows() const { return d->DropDownRows; }
void TQxColumn::SetDropDownRows(int Value) { d->DropDownRows = Value; }
bool TQxColumn::GetExpanded() const { return d->Expanded; }
void TQxColumn::SetExpanded(bool Value) { d->Expanded = Value; }

TImeMode TQxColumn::GetImeMode() const
{
    if (d->Assigned & cvImeMode)
        return d->ImeMode;
    return Grid() ? Grid()->GetImeMode() : imDontCare;
}

void TQxColumn::SetImeMode(TImeMode Value) { d->ImeMode = Value; d->Assigned |= cvImeMode; }

QString TQxColumn::GetImeName() const
{
    if (d->Assigned & cvImeName)
        return d->ImeName;
    return Grid() ? Grid()->GetImeName() : QString();
}

void TQxColumn::SetImeName(const QString& Value) { d->ImeName = Value; d->Assigned |= cvImeName; }
QStringList TQxColumn::GetPickList() const { return d->PickList; }
void TQxColumn::SetPickList(const QStringList& Value) { d->PickList = Value; Changed(false); }
QMenu* TQxColumn::GetPopupMenu() const { return d->PopupMenu; }
void TQxColumn::SetPopupMenu(QMenu* Value) { d->PopupMenu = Value; }

bool TQxColumn::GetReadOnly() const
{
    if (d->Assigned & cvReadOnly)
        return d->ReadOnly;
    if (Grid() && Grid()->GetReadOnly())
        return true;
    return d->Field ? d->Field->ReadOnly() : false;
}

void TQxColumn::SetReadOnly(bool Value)
{
    d->ReadOnly = Value;
    d->Assigned |= cvReadOnly;
    Changed(false);
}

TQxColumnTitle* TQxColumn::GetTitle() const { return d->Title; }

int TQxColumn::GetWidth() const { return d->Assigned & cvWidth ? d->Width : DefaultWidth(); }

int TQxColumn::DefaultWidth() const
{
    TQxCustomDBGrid* G = Grid();
    if (!G)
        return 64;
    if (!d->Field)
        return G->DefaultColumnWidth();
    // The width of DisplayWidth zeros in the column's font (Qt's fonts have no overhang).
    const QFontMetrics Metrics(GetFont().Font());
    int W = Metrics.horizontalAdvance(QLatin1Char('0')) * d->Field->DisplayWidth() + 4;
    if (G->GetOptions() & dgTitles) {
        const QFontMetrics TitleMetrics(d->Title->GetFont().Font());
        W = std::max(W, TitleMetrics.horizontalAdvance(d->Title->GetCaption()) + 4);
    }
    return W;
}

void TQxColumn::SetWidth(int Value)
{
    if ((d->Assigned & cvWidth) && d->Width == Value)
        return;
    d->Width = Value;
    d->Assigned |= cvWidth;
    Changed(true);
}

bool TQxColumn::GetVisible() const { return d->Visible; }

void TQxColumn::SetVisible(bool Value)
{
    if (d->Visible == Value)
        return;
    d->Visible = Value;
    Changed(true);
}

TQxColumnField* TQxColumn::GetBiDiField() const { return d->BiDiField; }

void TQxColumn::SetBiDiField(const TQxColumnField* Value)
{
    d->BiDiField->Assign(Value);
    d->BiDiField->SetBiDiField();
}

bool TQxColumn::GetAutoSize() const { return d->AutoSize; }

void TQxColumn::SetAutoSize(bool Value)
{
    d->AutoSize = Value;
    if (TQxCustomDBGrid* G = Grid())
        G->SetupColumnsWidths();
}

bool TQxColumn::GetTotalValue() const { return d->TotalValue; }

void TQxColumn::SetTotalValue(bool Value)
{
    TQxCustomDBGrid* G = Grid();
    if (!Value || !G || G->IsLoading()) {
        d->TotalValue = Value;
        Changed(false);
        return;
    }
    if (!d->Field)
        return;
    if (!IsTotalableType(d->Field->DataType()))
        RaiseError(QStringLiteral("Only the following field types can have total: Smallint, Integer, Word, "
                                  "Float, Currency, BCD, AutoInc and LargeInt."));
    if (!G->GetFooter())
        return;
    d->TotalValue = true;
    Changed(false);
}

QString TQxColumn::GetFieldName() const { return d->FieldName; }

void TQxColumn::SetFieldName(const QString& Value)
{
    d->FieldName = Value;
    BindField();
    Changed(true);
}

void TQxColumn::SetFieldNameOnly(const QString& Value) { d->FieldName = Value; }

void TQxColumn::BindField()
{
    TQxCustomDBGrid* G = Grid();
    TDataSet* Ds = G ? G->DataSet() : nullptr;
    TField* F = nullptr;
    if (Ds && Ds->Active() && !d->FieldName.isEmpty())
        F = Ds->FindField(d->FieldName);
    d->Field = F;
}

TField* TQxColumn::Field() const { return d->Field; }

TFont TQxColumn::GetFont() const
{
    if (d->Assigned & cvFont)
        return d->Font;
    return Grid() ? Grid()->GetFont() : d->Font;
}

void TQxColumn::SetFont(const TFont& Value)
{
    if ((d->Assigned & cvFont) && d->Font == Value)
        return;
    d->Font = Value;
    d->Assigned |= cvFont;
    Changed(false);
}

void TQxColumn::RefreshDefaultFont()
{
    if (!(d->Assigned & cvFont) && Grid())
        d->Font = Grid()->GetFont();
}

void TQxColumn::RestoreDefaults()
{
    d->Assigned = 0;
    d->PickList.clear();
    d->ButtonStyle = cbsAuto;
    d->DropDownRows = 7;
    d->Title->d->Font = TitleCreationFont();
    RefreshDefaultFont();
    Changed(true);
}

void TQxColumn::Assign(const TQxColumn* Source)
{
    if (!Source || Source == this)
        return;
    const int A = Source->d->Assigned;
    SetFieldName(Source->d->FieldName);
    if (A & cvColor)
        SetColor(Source->d->Color);
    if (A & cvWidth)
        SetWidth(Source->d->Width);
    if (A & cvFont)
        SetFont(Source->d->Font);
    if (A & cvAlignment)
        SetAlignment(Source->d->Alignment);
    if (A & cvReadOnly)
        SetReadOnly(Source->d->ReadOnly);
    if (A & cvImeMode)
        SetImeMode(Source->d->ImeMode);
    if (A & cvImeName)
        SetImeName(Source->d->ImeName);
    d->ButtonStyle = Source->d->ButtonStyle;
    d->DropDownRows = Source->d->DropDownRows;
    d->Expanded = Source->d->Expanded;
    d->PickList = Source->d->PickList;
    d->PopupMenu = Source->d->PopupMenu;
    d->Visible = Source->d->Visible;
    d->AutoSize = Source->d->AutoSize;
    d->TotalValue = Source->d->TotalValue;
    d->Title->Assign(Source->d->Title);
    d->BiDiField->Assign(Source->d->BiDiField);
    Changed(true);
}

QString TQxColumn::GetDisplayName() const
{
    const QString Caption = d->Title->GetCaption();
    if (!Caption.isEmpty())
        return Caption;
    return d->FieldName.isEmpty() ? QStringLiteral("TQxColumn") : d->FieldName;
}

bool TQxColumn::IsAlignmentStored() const { return d->Assigned & cvAlignment; }
bool TQxColumn::IsColorStored() const { return d->Assigned & cvColor; }
bool TQxColumn::IsWidthStored() const { return d->Assigned & cvWidth; }
bool TQxColumn::IsFontStored() const { return d->Assigned & cvFont; }
bool TQxColumn::IsReadOnlyStored() const { return d->Assigned & cvReadOnly; }
bool TQxColumn::IsImeModeStored() const { return d->Assigned & cvImeMode; }
bool TQxColumn::IsImeNameStored() const { return d->Assigned & cvImeName; }

// Title setters (they mark the column's assigned set).
void TQxColumnTitle::SetAlignment(Qt::Alignment Value)
{
    d->Alignment = Horizontal(Value);
    if (d->Column)
        d->Column->AssignedRef() |= cvTitleAlignment;
    Changed();
}

void TQxColumnTitle::SetColor(TColor Value)
{
    d->Color = Value;
    if (d->Column)
        d->Column->AssignedRef() |= cvTitleColor;
    Changed();
}

void TQxColumnTitle::SetCaption(const QString& Value)
{
    d->Caption = Value;
    if (d->Column)
        d->Column->AssignedRef() |= cvTitleCaption;
    Changed();
}

void TQxColumnTitle::SetFont(const TFont& Value)
{
    d->Font = Value;
    if (d->Column)
        d->Column->AssignedRef() |= cvTitleFont;
    Changed();
}

// ---------------------------------------------------------------- TQxDBGridColumns

struct TQxDBGridColumnsPrivate
{
    TQxCustomDBGrid* Grid = nullptr;
    QList<TQxColumn*> Items;
    TDBGridColumnsState State = csDefault;
    bool Clearing = false;
};

TQxDBGridColumns::TQxDBGridColumns(TQxCustomDBGrid* Grid) : QObject(nullptr), d(new TQxDBGridColumnsPrivate)
{
    d->Grid = Grid;
}

TQxDBGridColumns::~TQxDBGridColumns()
{
    d->Clearing = true;
    qDeleteAll(std::exchange(d->Items, {}));
}

TQxCustomDBGrid* TQxDBGridColumns::Grid() const { return d->Grid; }
int TQxDBGridColumns::Count() const { return int(d->Items.size()); }
TQxColumn* TQxDBGridColumns::Items(int Index) const { return d->Items.value(Index); }

TQxColumn* TQxDBGridColumns::Add()
{
    d->State = csCustomized;
    return new TQxColumn(this);
}

void TQxDBGridColumns::Insert(TQxColumn* Column)
{
    d->Items << Column;
    Changed(true);
}

void TQxDBGridColumns::Remove(TQxColumn* Column)
{
    if (d->Clearing)
        return;
    d->Items.removeOne(Column);
    Changed(true);
}

void TQxDBGridColumns::Clear()
{
    if (d->Items.isEmpty())
        return;
    d->Clearing = true;
    qDeleteAll(std::exchange(d->Items, {}));
    d->Clearing = false;
    Changed(true);
}

void TQxDBGridColumns::Move(int From, int To)
{
    if (From < 0 || From >= Count() || To < 0 || To >= Count() || From == To)
        return;
    d->Items.move(From, To);
    if (Grid() && Grid()->GetFooter())
        Grid()->GetFooter()->MoveColumn(From, To);  // its label goes along
    Changed(true);
}

void TQxDBGridColumns::Changed(bool Layout)
{
    if (!d->Clearing)
        Q_EMIT ColumnsChanged(Layout);
}

TDBGridColumnsState TQxDBGridColumns::State() const { return d->State; }

void TQxDBGridColumns::SetState(TDBGridColumnsState Value)
{
    if (Value == d->State)
        return;
    d->State = Value;
    if (Value == csDefault)
        RebuildColumns();
}

void TQxDBGridColumns::SetStateOnly(TDBGridColumnsState Value) { d->State = Value; }

void TQxDBGridColumns::RestoreDefaults()
{
    for (TQxColumn* C : std::as_const(d->Items))
        C->RestoreDefaults();
}

void TQxDBGridColumns::RebuildColumns()
{
    if (d->Grid)
        d->Grid->BeginLayout();
    const TDBGridColumnsState Kept = d->State;
    Clear();
    TDataSet* Ds = d->Grid ? d->Grid->DataSet() : nullptr;
    if (Ds && Ds->Active())
        for (TField* F : Ds->Fields())
            (new TQxColumn(this))->SetFieldName(F->FieldName());
    d->State = Kept;
    if (d->Grid)
        d->Grid->EndLayout();
}

// ---- streaming: a list of columns, each a list of (name, value) pairs of its assigned values

namespace {
const QString StreamSignature = QStringLiteral("TQxDBGridColumns");

using TColumnWriter = std::function<void(TWriter&)>;

void WriteInt(TWriter& W, const QString& Name, int Value)
{
    W.WriteString(Name);
    W.WriteInteger(Value);
}

void WriteStr(TWriter& W, const QString& Name, const QString& Value)
{
    W.WriteString(Name);
    W.WriteString(Value);
}

int ReadRanged(TReader& R, int Low, int High, const QString& Name)
{
    const int V = R.ReadInteger();
    if (V < Low || V > High)
        throw EReadError(QStringLiteral("TQxDBGridColumns.LoadFromStream\r\nValue of %1 out of range.").arg(Name));
    return V;
}

TFont ReadFont(TReader& R)
{
    TFont F;
    if (!TryStrToFont(R.ReadString(), F))
        throw EReadError(QStringLiteral("TQxDBGridColumns.LoadFromStream\r\nInvalid font."));
    return F;
}

Qt::Alignment ReadAlign(TReader& R, const QString& Name)
{
    const int V = ReadRanged(R, 0, 0xFFFF, Name);
    return Horizontal(Qt::Alignment(V));
}
} // namespace

void TQxDBGridColumns::SaveToStream(QDataStream& Stream) const
{
    TWriter W(Stream);
    W.WriteString(StreamSignature);
    W.WriteListBegin();
    for (const TQxColumn* C : std::as_const(d->Items)) {
        const TQxColumnPrivate& P = *C->d;
        const TQxColumnTitle* T = P.Title;
        const TQxColumnField* B = P.BiDiField;
        W.WriteListBegin();
        WriteStr(W, QStringLiteral("FieldName"), P.FieldName);
        if (P.Assigned & cvAlignment)
            WriteInt(W, QStringLiteral("Alignment"), int(P.Alignment));
        if (P.ButtonStyle != cbsAuto)
            WriteInt(W, QStringLiteral("ButtonStyle"), P.ButtonStyle);
        if (P.Assigned & cvColor)
            WriteInt(W, QStringLiteral("Color"), qint32(P.Color));
        if (P.DropDownRows != 7)
            WriteInt(W, QStringLiteral("DropDownRows"), P.DropDownRows);
        if (!P.Expanded)
            WriteInt(W, QStringLiteral("Expanded"), 0);
        if (P.Assigned & cvImeMode)
            WriteInt(W, QStringLiteral("ImeMode"), P.ImeMode);
        if (P.Assigned & cvImeName)
            WriteStr(W, QStringLiteral("ImeName"), P.ImeName);
        if (!P.PickList.isEmpty()) {
            W.WriteString(QStringLiteral("PickList"));
            W.WriteListBegin();
            for (const QString& S : P.PickList)
                W.WriteString(S);
            W.WriteListEnd();
        }
        if (P.Assigned & cvReadOnly)
            WriteInt(W, QStringLiteral("Readonly"), P.ReadOnly);
        if (P.Assigned & cvWidth)
            WriteInt(W, QStringLiteral("Width"), P.Width);
        if (!P.Visible)
            WriteInt(W, QStringLiteral("Visible"), 0);
        if (P.Assigned & cvFont)
            WriteStr(W, QStringLiteral("Font"), FontToStr(P.Font));
        if (P.AutoSize)
            WriteInt(W, QStringLiteral("_AutoSize"), 1);
        if (P.TotalValue)
            WriteInt(W, QStringLiteral("_TotalValue"), 1);
        if (P.Assigned & cvTitleAlignment)
            WriteInt(W, QStringLiteral("Title.Alignment"), int(T->d->Alignment));
        if (P.Assigned & cvTitleColor)
            WriteInt(W, QStringLiteral("Title.Color"), qint32(T->d->Color));
        if (P.Assigned & cvTitleCaption)
            WriteStr(W, QStringLiteral("Title.Caption"), T->d->Caption);
        if (P.Assigned & cvTitleFont)
            WriteStr(W, QStringLiteral("Title.Font"), FontToStr(T->d->Font));
        WriteStr(W, QStringLiteral("Title._Caption_a"), T->GetCaption_a());
        WriteStr(W, QStringLiteral("Title._Caption_e"), T->GetCaption_e());
        WriteStr(W, QStringLiteral("Title._Font_a"), FontToStr(T->GetFont_a()));
        WriteStr(W, QStringLiteral("Title._Font_e"), FontToStr(T->GetFont_e()));
        WriteInt(W, QStringLiteral("_BiDiField.Align_a"), int(B->GetAlign_a()));
        WriteInt(W, QStringLiteral("_BiDiField.Align_e"), int(B->GetAlign_e()));
        WriteStr(W, QStringLiteral("_BiDiField.FieldName_a"), B->GetFieldName_a());
        WriteStr(W, QStringLiteral("_BiDiField.FieldName_e"), B->GetFieldName_e());
        WriteStr(W, QStringLiteral("_BiDiField.Font_a"), FontToStr(B->GetFont_a()));
        WriteStr(W, QStringLiteral("_BiDiField.Font_e"), FontToStr(B->GetFont_e()));
        WriteInt(W, QStringLiteral("_BiDiField.Keyboard"), B->GetKeyboard());
        W.WriteListEnd();
    }
    W.WriteListEnd();
}

void TQxDBGridColumns::LoadFromStream(QDataStream& Stream)
{
    TReader R(Stream);
    if (R.ReadString() != StreamSignature)
        throw EReadError(QStringLiteral("TQxDBGridColumns.LoadFromStream\r\nNot a stream of grid columns."));
    // Read everything into free-standing columns first, so a bad stream changes nothing.
    std::vector<std::unique_ptr<TQxColumn>> Read;
    R.ReadListBegin();
    while (!R.EndOfList()) {
        auto C = std::make_unique<TQxColumn>(nullptr);
        TQxColumnPrivate& P = *C->d;
        TQxColumnTitle* T = P.Title;
        TQxColumnField* B = P.BiDiField;
        R.ReadListBegin();
        while (!R.EndOfList()) {
            const QString Name = R.ReadString();
            if (Name == QLatin1String("FieldName")) P.FieldName = R.ReadString();
            else if (Name == QLatin1String("Alignment")) { P.Alignment = ReadAlign(R, Name); P.Assigned |= cvAlignment; }
            else if (Name == QLatin1String("ButtonStyle")) P.ButtonStyle = TColumnButtonStyle(ReadRanged(R, cbsAuto, cbsNone, Name));
            else if (Name == QLatin1String("Color")) { P.Color = TColor(R.ReadInteger()); P.Assigned |= cvColor; }
            else if (Name == QLatin1String("DropDownRows")) P.DropDownRows = ReadRanged(R, 0, 1000, Name);
            else if (Name == QLatin1String("Expanded")) P.Expanded = ReadRanged(R, 0, 1, Name);
            else if (Name == QLatin1String("ImeMode")) { P.ImeMode = TImeMode(ReadRanged(R, imDisable, imHanguel, Name)); P.Assigned |= cvImeMode; }
            else if (Name == QLatin1String("ImeName")) { P.ImeName = R.ReadString(); P.Assigned |= cvImeName; }
            else if (Name == QLatin1String("PickList")) {
                R.ReadListBegin();
                while (!R.EndOfList())
                    P.PickList << R.ReadString();
                R.ReadListEnd();
            }
            else if (Name == QLatin1String("Readonly")) { P.ReadOnly = ReadRanged(R, 0, 1, Name); P.Assigned |= cvReadOnly; }
            else if (Name == QLatin1String("Width")) { P.Width = ReadRanged(R, 0, 100000, Name); P.Assigned |= cvWidth; }
            else if (Name == QLatin1String("Visible")) P.Visible = ReadRanged(R, 0, 1, Name);
            else if (Name == QLatin1String("Font")) { P.Font = ReadFont(R); P.Assigned |= cvFont; }
            else if (Name == QLatin1String("_AutoSize")) P.AutoSize = ReadRanged(R, 0, 1, Name);
            else if (Name == QLatin1String("_TotalValue")) P.TotalValue = ReadRanged(R, 0, 1, Name);
            else if (Name == QLatin1String("Title.Alignment")) { T->d->Alignment = ReadAlign(R, Name); P.Assigned |= cvTitleAlignment; }
            else if (Name == QLatin1String("Title.Color")) { T->d->Color = TColor(R.ReadInteger()); P.Assigned |= cvTitleColor; }
            else if (Name == QLatin1String("Title.Caption")) { T->d->Caption = R.ReadString(); P.Assigned |= cvTitleCaption; }
            else if (Name == QLatin1String("Title.Font")) { T->d->Font = ReadFont(R); P.Assigned |= cvTitleFont; }
            else if (Name == QLatin1String("Title._Caption_a")) T->SetCaptionA(R.ReadString());
            else if (Name == QLatin1String("Title._Caption_e")) T->SetCaptionE(R.ReadString());
            else if (Name == QLatin1String("Title._Font_a")) T->SetFont_a(ReadFont(R));
            else if (Name == QLatin1String("Title._Font_e")) T->SetFont_e(ReadFont(R));
            else if (Name == QLatin1String("_BiDiField.Align_a")) B->d->AlignA = ReadAlign(R, Name);
            else if (Name == QLatin1String("_BiDiField.Align_e")) B->d->AlignE = ReadAlign(R, Name);
            else if (Name == QLatin1String("_BiDiField.FieldName_a")) B->d->Names.CaptionA = R.ReadString();
            else if (Name == QLatin1String("_BiDiField.FieldName_e")) B->d->Names.CaptionE = R.ReadString();
            else if (Name == QLatin1String("_BiDiField.Font_a")) B->d->Names.FontA = ReadFont(R);
            else if (Name == QLatin1String("_BiDiField.Font_e")) B->d->Names.FontE = ReadFont(R);
            else if (Name == QLatin1String("_BiDiField.Keyboard")) B->d->Keyboard = TxColumnKeyboard(ReadRanged(R, kxSystem, kxBiDiMode, Name));
            else
                throw EReadError(QStringLiteral("TQxDBGridColumns.LoadFromStream\r\nUnknown property %1.").arg(Name));
        }
        R.ReadListEnd();
        Read.push_back(std::move(C));
    }
    R.ReadListEnd();

    if (d->Grid)
        d->Grid->BeginLayout();
    Clear();
    d->State = csCustomized;
    for (const auto& C : Read)
        Add()->Assign(C.get());
    if (d->Grid)
        d->Grid->EndLayout();
}

void TQxDBGridColumns::SaveToFile(const QString& FileName) const
{
    QFile File(FileName);
    if (!File.open(QIODevice::WriteOnly | QIODevice::Truncate))
        throw Exception(QStringLiteral("TQxDBGridColumns.SaveToFile\r\nCannot create file \"%1\". %2")
                            .arg(FileName, File.errorString()));
    QDataStream Stream(&File);
    SaveToStream(Stream);
}

void TQxDBGridColumns::LoadFromFile(const QString& FileName)
{
    QFile File(FileName);
    if (!File.open(QIODevice::ReadOnly))
        throw Exception(QStringLiteral("TQxDBGridColumns.LoadFromFile\r\nCannot open file \"%1\". %2")
                            .arg(FileName, File.errorString()));
    QDataStream Stream(&File);
    LoadFromStream(Stream);
}

} // namespace Kesh
