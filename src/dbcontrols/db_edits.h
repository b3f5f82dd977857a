// Kesh for Qt — the data-aware edit, edit with a button and text: a field's value in the
// library's data-entry edits and labels.
#pragma once
#include "edit.h"
#include "label.h"
#include "field_binding.h"
#include <memory>

namespace Kesh {

/// What the data-aware edits share, over the edit class Base (TQxEdit or TQxEditButton).
///
/// The edit shows its field's display text, and its edit text while it has the focus. Typing
/// puts the dataset in edit mode (the data source's AutoEdit); the typed text is written into
/// the field when the focus leaves, on Enter, and when the dataset asks its controls
/// (UpdateRecord, which Post runs first), so a button's Post never loses it. Escape drops the
/// typed text and shows the field's value again. The edit is read-only while the field, the
/// link (Readonly) or the dataset cannot be modified. _DataEntry follows the field's type
/// (whole numbers, decimal numbers, anything), and the field's IsValidChar filters typing.
/// A text of "#Error#" (what the typed setters show for a value they cannot show) is never
/// written into the field. Errors of the field are shown; the typed text stays.
template <class Base>
class KESH_EXPORT TxDataEdit : public Base, public TxFieldBinding
{
public:
    explicit TxDataEdit(QWidget* Parent = nullptr);
    ~TxDataEdit() override;

    /// The control's value: the text it shows. Setting it is as typing it.
    QString Data() const { return this->text(); }
    void SetData(const QString& Value);

protected:
    /// The final class emits its change signal.
    virtual void NotifyDataChanged(const QString& Value) = 0;

    bool AcceptsChar(QChar C) const override;
    /// Writes the typed text into the field, then fires Exit.
    void DoExit() override;
    void keyPressEvent(QKeyEvent* Event) override;
    void focusInEvent(QFocusEvent* Event) override;
    void changeEvent(QEvent* Event) override;
    void BindingChanged() override;
    /// The edit is read-only also when the field is.
    void ReadOnlyChanged() override;

private:
    void ShowField();
    void FollowField();
    bool BeginEditing();
    bool WriteField();
    bool Refused(const QKeyEvent* Event) const;

    bool m_showing = false;
};

extern template class KESH_EXPORT TxDataEdit<TQxEdit>;
extern template class KESH_EXPORT TxDataEdit<TQxEditButton>;

// The published properties of the data-aware edits, on TxDataEdit's accessors.
#define KESH_DB_EDIT_PROPERTIES                                                            \
    KESH_FIELD_BINDING_PROPERTIES(DataField, DataSource)                                    \
    Q_PROPERTY(bool Readonly READ GetReadOnly WRITE SetReadOnly)                            \
    Q_PROPERTY(QString Data READ Data WRITE SetData NOTIFY DataChanged USER true)

/// The data-entry edit bound to a field.
class KESH_EXPORT TQxdbEdit : public TxDataEdit<TQxEdit>
{
    Q_OBJECT
    KESH_DB_EDIT_PROPERTIES
public:
    explicit TQxdbEdit(QWidget* Parent = nullptr);
    ~TQxdbEdit() override;
Q_SIGNALS:
    /// The shown text changed (by the user, by code or by the field).
    void DataChanged(const QString& Data);
protected:
    void NotifyDataChanged(const QString& Value) override { emit DataChanged(Value); }
};

/// The edit with a button, bound to a field. Its button runs ButtonClicked: on an integer
/// date field (TQxDateField) that is PickDate; an _OnButtonClick assigned by the program
/// replaces it.
class KESH_EXPORT TQxdbEditButton : public TxDataEdit<TQxEditButton>
{
    Q_OBJECT
    KESH_DB_EDIT_PROPERTIES
public:
    explicit TQxdbEditButton(QWidget* Parent = nullptr);
    ~TQxdbEditButton() override;
Q_SIGNALS:
    void DataChanged(const QString& Data);
protected:
    void NotifyDataChanged(const QString& Value) override { emit DataChanged(Value); }
    /// What the button does when the program gave no _OnButtonClick.
    virtual void ButtonClicked();
    /// Lets the user choose the date of an integer date field in the calendar picker and
    /// writes it into the field.
    virtual void PickDate();
};

/// A bilingual label showing its field's display text (the label's Arabic and English fonts
/// follow the language; the text follows the field, also when the language changes how the
/// field shows itself).
class KESH_EXPORT TQxdbText : public TQxCustomLabel, public TxFieldBinding
{
    Q_OBJECT
    KESH_FIELD_BINDING_PROPERTIES(DataField, DataSource)
    Q_PROPERTY(QString Data READ Data NOTIFY DataChanged USER true)
public:
    explicit TQxdbText(QWidget* Parent = nullptr);
    ~TQxdbText() override;

    /// The text shown: the field's display text, empty without a field.
    QString Data() const;

Q_SIGNALS:
    void DataChanged(const QString& Data);

protected:
    void changeEvent(QEvent* Event) override;
    void BindingChanged() override { ShowField(); }

private:
    void ShowField();
    QString m_data;
};

} // namespace Kesh
