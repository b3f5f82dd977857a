// Kesh for Qt — the grid's columns: bilingual titles, bilingual field bindings, and the
// collection that the grid owns.
#pragma once
#include "grid_types.h"
#include "bi_caption.h"
#include <QMenu>
#include <QObject>
#include <QPointer>
#include <QStringList>
#include <memory>

class QDataStream;

namespace Kesh {

class TQxColumn;
class TQxCustomDBGrid;
class TQxDBGridColumns;

/// A column's title: the caption (bilingual through _Caption_a/_Caption_e, picked by the
/// grid's direction), its font, alignment and colour.
class KESH_EXPORT TQxColumnTitle : public QObject, public TxBilingual
{
    Q_OBJECT
    Q_PROPERTY(Qt::Alignment Alignment READ GetAlignment WRITE SetAlignment)
    Q_PROPERTY(quint32 Color READ GetColor WRITE SetColor)
    Q_PROPERTY(QString _Caption_a READ GetCaption_a WRITE SetCaptionA)
    Q_PROPERTY(QString _Caption_e READ GetCaption_e WRITE SetCaptionE)
    Q_PROPERTY(Kesh::TFont _Font_a READ GetFont_a WRITE SetFont_a)
    Q_PROPERTY(Kesh::TFont _Font_e READ GetFont_e WRITE SetFont_e)
    Q_PROPERTY(QString Caption READ GetCaption WRITE SetCaption)
    Q_PROPERTY(Kesh::TFont Font READ GetFont WRITE SetFont)

public:
    /// Centred; font "Microsoft Sans Serif" 8 in purple, _Font_e the same in bold.
    explicit TQxColumnTitle(TQxColumn* Column);
    ~TQxColumnTitle() override;
    TQxColumn* Column() const;

    /// Left unless assigned (a new title is assigned centred).
    Qt::Alignment GetAlignment() const;
    void SetAlignment(Qt::Alignment Value);
    /// 0xC8F0FA and 0xB4DCE6 alternating by column index unless assigned; clBtnFace outside a grid.
    TColor GetColor() const;
    void SetColor(TColor Value);
    TColor DefaultColor() const;
    /// The field's DisplayName (the column's FieldName without a field) unless assigned.
    QString GetCaption() const;
    void SetCaption(const QString& Value);
    TFont GetFont() const;
    void SetFont(const TFont& Value);
    /// Shows the caption and font of the grid's language (a language whose caption is empty
    /// leaves both alone).
    void SetBiDiCaption();
    /// Every value back to unassigned.
    void RestoreDefaults();
    void Assign(const TQxColumnTitle* Source);
    bool IsAlignmentStored() const;
    bool IsColorStored() const;
    bool IsCaptionStored() const;
    bool IsFontStored() const;

protected:
    TBiDiMode BiLanguage() const override;
    void ShowBiCaption(const QString& Caption) override;
    void ShowBiFont(const TFont& Font) override;
    void BiMemberChanged(bool Arabic, bool Caption, const QString& Text, const TFont& Font) override;

private:
    friend class TQxColumn;
    friend class TQxDBGridColumns;
    void Changed();
    std::unique_ptr<struct TQxColumnTitlePrivate> const d;
};

/// A column's binding in both languages: the field name, font and alignment of each, and the
/// keyboard layout the column selects.
class KESH_EXPORT TQxColumnField : public QObject
{
    Q_OBJECT
    Q_PROPERTY(Qt::Alignment Align_a READ GetAlign_a WRITE SetAlign_a)
    Q_PROPERTY(Qt::Alignment Align_e READ GetAlign_e WRITE SetAlign_e)
    Q_PROPERTY(QString FieldName_a READ GetFieldName_a WRITE SetFieldName_a)
    Q_PROPERTY(QString FieldName_e READ GetFieldName_e WRITE SetFieldName_e)
    Q_PROPERTY(Kesh::TFont Font_a READ GetFont_a WRITE SetFont_a)
    Q_PROPERTY(Kesh::TFont Font_e READ GetFont_e WRITE SetFont_e)
    Q_PROPERTY(Kesh::GridTypes::TxColumnKeyboard Keyboard READ GetKeyboard WRITE SetKeyboard)

public:
    /// A binding of Column (nullptr: a free-standing value, as a copy to assign from).
    explicit TQxColumnField(TQxColumn* Column = nullptr);
    ~TQxColumnField() override;
    TQxColumn* Column() const;

    Qt::Alignment GetAlign_a() const;
    void SetAlign_a(Qt::Alignment Value);
    Qt::Alignment GetAlign_e() const;
    void SetAlign_e(Qt::Alignment Value);
    QString GetFieldName_a() const;
    void SetFieldName_a(const QString& Value);
    QString GetFieldName_e() const;
    void SetFieldName_e(const QString& Value);
    TFont GetFont_a() const;
    void SetFont_a(const TFont& Value);
    TFont GetFont_e() const;
    void SetFont_e(const TFont& Value);
    TxColumnKeyboard GetKeyboard() const;
    void SetKeyboard(TxColumnKeyboard Value);
    /// The alignment of the language of Mode.
    Qt::Alignment AlignOf(TBiDiMode Mode) const;

    /// Applies the binding of the grid's language to the column: its field name (unless
    /// empty), its font and its alignment. Only for a binding of a column in a grid.
    void SetBiDiField();
    /// Copies every member of Source (without applying).
    void Assign(const TQxColumnField* Source);

private:
    friend class TQxDBGridColumns;
    std::unique_ptr<struct TQxColumnFieldPrivate> const d;
};

/// One column of the grid: its field, look, editing rules and totals flag.
class KESH_EXPORT TQxColumn : public QObject
{
    Q_OBJECT
    Q_PROPERTY(Qt::Alignment Alignment READ GetAlignment WRITE SetAlignment)
    Q_PROPERTY(Kesh::GridTypes::TColumnButtonStyle ButtonStyle READ GetButtonStyle WRITE SetButtonStyle)
    Q_PROPERTY(quint32 Color READ GetColor WRITE SetColor)
    Q_PROPERTY(int DropDownRows READ GetDropDownRows WRITE SetDropDownRows)
    Q_PROPERTY(bool Expanded READ GetExpanded WRITE SetExpanded)
    Q_PROPERTY(Kesh::GridTypes::TImeMode ImeMode READ GetImeMode WRITE SetImeMode)
    Q_PROPERTY(QString ImeName READ GetImeName WRITE SetImeName)
    Q_PROPERTY(QStringList PickList READ GetPickList WRITE SetPickList)
    Q_PROPERTY(QMenu* PopupMenu READ GetPopupMenu WRITE SetPopupMenu)
    Q_PROPERTY(bool Readonly READ GetReadOnly WRITE SetReadOnly)
    Q_PROPERTY(Kesh::TQxColumnTitle* Title READ GetTitle)
    Q_PROPERTY(int Width READ GetWidth WRITE SetWidth)
    Q_PROPERTY(bool Visible READ GetVisible WRITE SetVisible)
    Q_PROPERTY(Kesh::TQxColumnField* _BiDiField READ GetBiDiField)
    Q_PROPERTY(bool _AutoSize READ GetAutoSize WRITE SetAutoSize)
    Q_PROPERTY(bool _TotalValue READ GetTotalValue WRITE SetTotalValue)
    Q_PROPERTY(QString FieldName READ GetFieldName WRITE SetFieldName)
    Q_PROPERTY(Kesh::TFont Font READ GetFont WRITE SetFont)

public:
    /// A column of Columns (added at its end), or a free-standing one (nullptr).
    explicit TQxColumn(TQxDBGridColumns* Columns = nullptr);
    ~TQxColumn() override;

    TQxDBGridColumns* Collection() const;
    TQxCustomDBGrid* Grid() const;
    /// Position in the collection; -1 outside one.
    int Index() const;
    /// Moves the column to Value in its collection.
    void SetIndex(int Value);

    /// The field's alignment unless assigned (left without a field).
    Qt::Alignment GetAlignment() const;
    void SetAlignment(Qt::Alignment Value);
    TColumnButtonStyle GetButtonStyle() const;
    void SetButtonStyle(TColumnButtonStyle Value);
    /// White and 0xE0E8EC alternating by index unless assigned; clWindow outside a grid.
    TColor GetColor() const;
    void SetColor(TColor Value);
    TColor DefaultColor() const;
    int GetDropDownRows() const;
    void SetDropDownRows(int Value);
    bool GetExpanded() const;
    void SetExpanded(bool Value);
    TImeMode GetImeMode() const;
    void SetImeMode(TImeMode Value);
    QString GetImeName() const;
    void SetImeName(const QString& Value);
    QStringList GetPickList() const;
    void SetPickList(const QStringList& Value);
    QMenu* GetPopupMenu() const;
    void SetPopupMenu(QMenu* Value);
    /// True in a read-only grid, else the field's ReadOnly (false without a field), unless assigned.
    bool GetReadOnly() const;
    void SetReadOnly(bool Value);
    TQxColumnTitle* GetTitle() const;
    /// Measured from the field's DisplayWidth unless assigned (Algorithms of the grid).
    int GetWidth() const;
    void SetWidth(int Value);
    int DefaultWidth() const;
    bool GetVisible() const;
    void SetVisible(bool Value);
    /// Visible (there are no nested fields, so no parent column can hide it).
    bool GetShowing() const { return GetVisible(); }
    TQxColumnField* GetBiDiField() const;
    /// Copies Value into the binding and applies it.
    void SetBiDiField(const TQxColumnField* Value);
    bool GetAutoSize() const;
    /// Shares the grid's free width among the auto-size columns again.
    void SetAutoSize(bool Value);
    bool GetTotalValue() const;
    /// True only on a bound field of a totalable type in a grid with a footer; a field of
    /// another type is refused with a message (Abort).
    void SetTotalValue(bool Value);

    QString GetFieldName() const;
    /// Stores the name and binds the dataset's field of that name (or none).
    void SetFieldName(const QString& Value);
    /// The bound field, or nullptr.
    TField* Field() const;
    /// The grid's font unless assigned.
    TFont GetFont() const;
    void SetFont(const TFont& Value);
    /// Takes the grid's font again when the font is not assigned.
    void RefreshDefaultFont();

    /// Every value back to unassigned (the title's too).
    void RestoreDefaults();
    /// Copies every assigned value, the title, the field name and the added properties.
    void Assign(const TQxColumn* Source);
    /// The title caption, else the field name, else the class name.
    QString GetDisplayName() const;
    /// No nested fields: always nullptr, depth 0, not expandable.
    TQxColumn* GetParentColumn() const { return nullptr; }
    int Depth() const { return 0; }
    bool GetExpandable() const { return false; }

    bool IsAlignmentStored() const;
    bool IsColorStored() const;
    bool IsWidthStored() const;
    bool IsFontStored() const;
    bool IsReadOnlyStored() const;
    bool IsImeModeStored() const;
    bool IsImeNameStored() const;

private:
    friend class TQxDBGridColumns;
    friend class TQxColumnTitle;
    friend class TQxColumnField;
    friend class TQxCustomDBGrid;
    friend int AssignedOf(const TQxColumn* Column);
    void Changed(bool Layout);
    /// The set of assigned values (the title's included).
    int& AssignedRef() const;
    void BindField();
    void SetFieldNameOnly(const QString& Value);
    std::unique_ptr<struct TQxColumnPrivate> const d;
};

/// The grid's columns.
class KESH_EXPORT TQxDBGridColumns : public QObject
{
    Q_OBJECT
    Q_PROPERTY(Kesh::GridTypes::TDBGridColumnsState State READ State WRITE SetState)

public:
    explicit TQxDBGridColumns(TQxCustomDBGrid* Grid = nullptr);
    ~TQxDBGridColumns() override;

    TQxCustomDBGrid* Grid() const;
    int Count() const;
    TQxColumn* Items(int Index) const;
    TQxColumn* operator[](int Index) const { return Items(Index); }
    /// A new column at the end; the state becomes csCustomized.
    TQxColumn* Add();
    void Clear();
    /// Moves the column at From to To.
    void Move(int From, int To);
    /// csDefault: columns made from the dataset's fields; csCustomized: the user's.
    TDBGridColumnsState State() const;
    /// Setting csDefault drops the user's columns and builds them from the fields again.
    void SetState(TDBGridColumnsState Value);
    /// Every column back to unassigned values.
    void RestoreDefaults();
    /// One column per field of the grid's dataset (none without one).
    void RebuildColumns();

    /// The columns in the library's tagged stream format (assigned values only).
    void SaveToStream(QDataStream& Stream) const;
    /// Replaces the columns by a stream SaveToStream wrote; EReadError (nothing changed)
    /// on a stream that is truncated or not in that format.
    void LoadFromStream(QDataStream& Stream);
    void SaveToFile(const QString& FileName) const;
    void LoadFromFile(const QString& FileName);
    /// The columns as JSON, one object per column with the members of the stream format
    /// ("FieldName", "Width", "Title._Caption_a" …); empty while the state is csDefault.
    QString GetText() const;
    /// Replaces the columns by such text (empty text: csDefault); EReadError (nothing
    /// changed) on text that is not JSON of that shape or names an unknown member.
    void SetText(const QString& Text);

Q_SIGNALS:
    /// Columns were added, removed, moved or changed (Layout: their width or order).
    void ColumnsChanged(bool Layout);

private:
    friend class TQxColumn;
    friend class TQxCustomDBGrid;
    void Insert(TQxColumn* Column);
    void Remove(TQxColumn* Column);
    void Changed(bool Layout);
    void SetStateOnly(TDBGridColumnsState Value);
    std::unique_ptr<struct TQxDBGridColumnsPrivate> const d;
};

/// True for the field types whose values a footer can total.
KESH_EXPORT bool IsTotalableType(int FieldType);

} // namespace Kesh
