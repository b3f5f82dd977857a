// Kesh for Qt — choices bound to a field: check box, radio group and fixed drop list.
#pragma once
#include "check_box.h"
#include "lookup_combo.h"
#include "radio_group.h"
#include "field_binding.h"
#include <memory>

namespace Kesh {

/// A bilingual check box bound to a field. A Boolean field is read and written as a
/// Boolean. Any other field is checked when its text matches ValueChecked, unchecked
/// otherwise (also when it matches neither list); the lists hold values separated by ";",
/// matched without regard to case, and checking writes the first value of ValueChecked
/// (unchecking the first of ValueUnchecked). A click toggles only when the dataset can be
/// put in edit mode; the value is written when the record is written and when the focus
/// leaves the box.
class KESH_EXPORT TQxdbCheckBox : public TQxCheckBox, public TxFieldBinding
{
    Q_OBJECT
    KESH_FIELD_BINDING_PROPERTIES(DataField, DataSource)
    Q_PROPERTY(bool Readonly READ GetReadOnly WRITE SetReadOnly)
    Q_PROPERTY(QString ValueChecked READ GetValueChecked WRITE SetValueChecked)
    Q_PROPERTY(QString ValueUnchecked READ GetValueUnchecked WRITE SetValueUnchecked)
public:
    explicit TQxdbCheckBox(QWidget* Parent = nullptr);
    ~TQxdbCheckBox() override;

    /// "True" unless set; setting a list reads the field again.
    QString GetValueChecked() const;
    void SetValueChecked(const QString& Value);
    /// "False" unless set.
    QString GetValueUnchecked() const;
    void SetValueUnchecked(const QString& Value);

    /// Whether Value is one of the ";"-separated values of List, ignoring case.
    static bool ValueMatches(const QString& Value, const QString& List);

protected:
    void nextCheckState() override;
    void focusOutEvent(QFocusEvent* Event) override;
    void BindingChanged() override { FieldDataChange(); }
    void DataFieldChanged(const QString& Value) override;

private:
    void FieldDataChange();
    void UpdateData();
    std::unique_ptr<struct TQxdbCheckBoxPrivate> const d;
};

/// A bilingual radio group bound to a field: each button stands for a value (Values[i], or
/// the button's text when that is empty), and the group's Value is the field's edit text.
/// Choosing a button puts the dataset in edit mode first (refused: the choice goes back).
/// Values are compared exactly; a value no button has clears the selection. Enter moves to
/// the next control, Backspace and Space start editing, Escape shows the field's value again.
class KESH_EXPORT TQxdbRadioGroup : public TQxRadioGroup, public TxFieldBinding
{
    Q_OBJECT
    KESH_FIELD_BINDING_PROPERTIES(DataField, DataSource)
    Q_PROPERTY(bool Readonly READ GetReadOnly WRITE SetReadOnly)
    Q_PROPERTY(QStringList Values READ GetValues WRITE SetValues)
    Q_PROPERTY(QString Value READ GetValue WRITE SetValue NOTIFY ValueChanged USER true)
public:
    explicit TQxdbRadioGroup(QWidget* Parent = nullptr);
    ~TQxdbRadioGroup() override;

    QStringList GetValues() const;
    void SetValues(const QStringList& Value);

    /// The current value; setting it selects the first button of that value.
    QString GetValue() const;
    void SetValue(const QString& Value);
    /// Values[Index] when it exists and is not empty, else the button's text, else "".
    QString GetButtonValue(int Index) const;

    /// Runs after every change of Value (the classic OnChange).
    std::function<void(QObject*)> OnChange;

Q_SIGNALS:
    void ValueChanged(const QString& Value);

protected:
    bool eventFilter(QObject* Watched, QEvent* Event) override;
    void childEvent(QChildEvent* Event) override;
    void keyPressEvent(QKeyEvent* Event) override;
    void BindingChanged() override { DataLink()->Reset(); }

private:
    void Chosen(int Index);
    void Select(const QString& Value);
    void FocusNextControl();
    bool HandleKey(QKeyEvent* Event);
    std::unique_ptr<struct TQxdbRadioGroupPrivate> const d;
};

/// A fixed drop list bound to a field: it selects the entry whose key (_Values) equals the
/// field's text, and a choice writes the entry's key into the field (a Boolean field takes
/// the keys "-1"/"0", or "True"/"False"). A choice that the dataset cannot take goes back.
class KESH_EXPORT TQxdbFixedDropList : public TQxCustomLookupCombo, public TxFieldBinding
{
    Q_OBJECT
    KESH_FIELD_BINDING_PROPERTIES(_DataField, _DataSource)
public:
    explicit TQxdbFixedDropList(QWidget* Parent = nullptr);
    ~TQxdbFixedDropList() override;

protected:
    void BindingChanged() override { FieldDataChange(); }

private:
    void FieldDataChange();
    void Change();
    bool m_updating = false;
};

} // namespace Kesh
