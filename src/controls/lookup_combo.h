// Kesh for Qt — the look-up combo: Arabic and English captions over hidden keys.
#pragma once
#include "platform/application.h"
#include "platform/kesh_global.h"
#include <QComboBox>
#include <QStringList>
#include <memory>

namespace Kesh {

struct TxLookupComboData;

/// An editable combo box that shows the Arabic or the English captions of its items, by its
/// reading direction, and maps the shown caption to a hidden key (Data) through the
/// parallel list _Values. The program reads and writes the key; the user sees and types the
/// caption. The change notification (OnChange) is Qt's currentTextChanged().
///
/// Keys: Backspace clears the whole choice, Escape restores the text the combo had when it
/// got the focus, Delete empties the text, Space or any plain key opens the list, Enter, Up
/// and Down move to the next or previous control while the list is closed.
class KESH_EXPORT TQxCustomLookupCombo : public QComboBox
{
    Q_OBJECT
    Q_PROPERTY(bool _LimitToList READ GetLimitToList WRITE SetLimitToList)
    Q_PROPERTY(QStringList _Values READ GetValues WRITE SetValues)
    Q_PROPERTY(QStringList _Items_a READ GetItems_a WRITE SetItems_a)
    Q_PROPERTY(QStringList _Items_e READ GetItems_e WRITE SetItems_e)
    Q_PROPERTY(int _FixedSize READ GetFixedSize WRITE SetFixedSize)
    Q_PROPERTY(QString Data READ Data WRITE SetData NOTIFY DataChanged USER true)
    Q_PROPERTY(QString OldText READ OldText)
    Q_PROPERTY(Kesh::TBiDiMode BiDiMode READ GetBiDiMode WRITE SetBiDiMode)

public:
    explicit TQxCustomLookupCombo(QWidget* Parent = nullptr);
    ~TQxCustomLookupCombo() override;

    /// Refuse, on leaving, a text that matches no caption (a beep, and the focus comes back).
    bool GetLimitToList() const;
    void SetLimitToList(bool Value);

    /// The keys: line i is the key of item i.
    QStringList GetValues() const;
    void SetValues(const QStringList& Value);
    /// Arabic captions, shown while the combo is right to left.
    QStringList GetItems_a() const;
    void SetItems_a(const QStringList& Value);
    /// English captions, shown while the combo is left to right.
    QStringList GetItems_e() const;
    void SetItems_e(const QStringList& Value);

    /// Standard width step (1..6: 101, 205, … 621 pixels); any other value leaves the width free.
    int GetFixedSize() const;
    void SetFixedSize(int Value);

    /// The key of the first item whose caption equals the text, ignoring case; empty when
    /// _Values is empty or no caption matches.
    QString Data() const;
    /// Selects the item of key Value (exact match); an unknown key empties the text.
    void SetData(const QString& Value);

    /// True when some caption equals the text, ignoring case.
    bool Matched() const;
    /// True when the text is blank.
    bool IsEmpty() const;
    /// Removes the items, the text and the keys; the caption lists are kept.
    void Clear();
    /// Restores OldText (or clears the choice when it was empty) and closes the list.
    void Undo();
    /// The text when the combo last received the focus.
    QString OldText() const;

    /// The reading direction last applied.
    TBiDiMode GetBiDiMode() const;
    /// Sets the combo's own direction and shows the captions of that language, keeping the key.
    void SetBiDiMode(TBiDiMode Value);

Q_SIGNALS:
    /// The key shown changed.
    void DataChanged(const QString& Data);

protected:
    void keyPressEvent(QKeyEvent* Event) override;
    void focusInEvent(QFocusEvent* Event) override;
    void focusOutEvent(QFocusEvent* Event) override;
    void changeEvent(QEvent* Event) override;
    bool eventFilter(QObject* Watched, QEvent* Event) override;

private:
    void SwitchLanguage(TBiDiMode Mode);
    void ReplaceItems(const QStringList& Items);
    int IndexOfCaption(const QString& Text) const;
    void ShowText(const QString& Text);
    void ClearChoice();
    void CheckDataChanged();
    void Complete(const QString& Typed);
    int IndexOfPrefix(const QString& Typed) const;
    bool HandleKey(QKeyEvent* Event);

    std::unique_ptr<TxLookupComboData> const d;
};

/// The look-up combo ready for forms: everything published.
class KESH_EXPORT TQxFixedDropList : public TQxCustomLookupCombo
{
    Q_OBJECT

public:
    explicit TQxFixedDropList(QWidget* Parent = nullptr);
    ~TQxFixedDropList() override;
};

} // namespace Kesh
