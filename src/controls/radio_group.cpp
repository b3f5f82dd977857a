// Kesh for Qt — the bilingual radio group.
#include "radio_group.h"
#include "accessibility_p.h"

#include <QButtonGroup>
#include <QGridLayout>
#include <QRadioButton>

namespace Kesh {

struct TQxRadioGroupPrivate
{
    QStringList ItemsA;
    QStringList ItemsE;
    QStringList Items;
    TFont Font;
    int ItemIndex = -1;
    int Columns = 1;
    QButtonGroup* Group = nullptr;
    QGridLayout* Grid = nullptr;
    QList<QRadioButton*> Buttons;
    bool Showing = false;
};

TQxRadioGroup::TQxRadioGroup(QWidget* Parent) : QGroupBox(Parent), d(new TQxRadioGroupPrivate)
{
    d->Font = FontOf(this);
    InitBiFonts(d->Font);
    d->Group = new QButtonGroup(this);
    d->Grid = new QGridLayout(this);
    connect(d->Group, &QButtonGroup::idToggled, this, [this](int Id, bool Checked) {
        // Our own updates of the buttons are not choices.
        if (!Checked || d->Showing || Id == d->ItemIndex)
            return;
        d->ItemIndex = Id;
        emit ItemIndexChanged(Id);
    });
    connect(this, &TQxRadioGroup::ItemIndexChanged, this, [this] { NotifyAccessible(this, QAccessible::ValueChanged); });
}

TQxRadioGroup::~TQxRadioGroup() = default;

QStringList TQxRadioGroup::GetItems() const { return d->Items; }

void TQxRadioGroup::SetItems(const QStringList& Value)
{
    if (d->Items == Value)
        return;
    const bool SameCount = Value.size() == d->Items.size();
    d->Items = Value;
    if (SameCount) {
        // Only the texts change (a language switch): keep the buttons and the focus.
        for (int i = 0; i < d->Buttons.size(); ++i)
            d->Buttons[i]->setText(Value[i]);
        NotifyAccessible(this, QAccessible::ValueChanged);
        return;
    }
    BuildButtons();
    if (d->ItemIndex >= d->Items.size())
        SetItemIndex(d->Items.size() - 1);
    ShowItemIndex();
}

QStringList TQxRadioGroup::GetItems_a() const { return d->ItemsA; }

void TQxRadioGroup::SetItems_a(const QStringList& Value)
{
    d->ItemsA = Value;
    if (BiDiMode() == bdRightToLeft)
        SetItems(Value);
}

QStringList TQxRadioGroup::GetItems_e() const { return d->ItemsE; }

void TQxRadioGroup::SetItems_e(const QStringList& Value)
{
    d->ItemsE = Value;
    if (BiDiMode() != bdRightToLeft)
        SetItems(Value);
}

TFont TQxRadioGroup::GetFont() const { return d->Font; }

void TQxRadioGroup::SetFont(const TFont& Value)
{
    d->Font = Value;
    // The buttons follow their parent's font and palette.
    ApplyFont(this, Value);
}

int TQxRadioGroup::GetItemIndex() const { return d->ItemIndex; }

void TQxRadioGroup::SetItemIndex(int Value)
{
    Value = qBound(-1, Value, int(d->Items.size()) - 1);
    if (Value == d->ItemIndex)
        return;
    d->ItemIndex = Value;
    ShowItemIndex();
    emit ItemIndexChanged(Value);
}

int TQxRadioGroup::GetColumns() const { return d->Columns; }

void TQxRadioGroup::SetColumns(int Value)
{
    Value = qMax(1, Value);
    if (Value != d->Columns) {
        d->Columns = Value;
        PlaceButtons();
    }
}

QRadioButton* TQxRadioGroup::Button(int Index) const
{
    return Index >= 0 && Index < d->Buttons.size() ? d->Buttons[Index] : nullptr;
}

void TQxRadioGroup::Loaded()
{
    BiLoaded();
}

bool TQxRadioGroup::event(QEvent* Event)
{
    if (Event->type() == QEvent::Polish)
        EndLoading();
    return QGroupBox::event(Event);
}

void TQxRadioGroup::changeEvent(QEvent* Event)
{
    QGroupBox::changeEvent(Event);
    if (Event->type() == QEvent::LayoutDirectionChange)
        BiDirectionChanged(IsLoading());
}

void TQxRadioGroup::ApplyBiLanguage()
{
    ApplyBiCaption();
    // As with the title, a language without items leaves the shown ones in place.
    const QStringList& Items = BiDiMode() == bdRightToLeft ? d->ItemsA : d->ItemsE;
    if (!Items.isEmpty())
        SetItems(Items);
}

void TQxRadioGroup::BuildButtons()
{
    qDeleteAll(d->Buttons);
    d->Buttons.clear();
    for (int i = 0; i < d->Items.size(); ++i) {
        auto* Radio = new QRadioButton(d->Items[i], this);
        d->Group->addButton(Radio, i);
        d->Buttons << Radio;
    }
    PlaceButtons();
}

// Items run down the first column, then the next, as in a newspaper.
void TQxRadioGroup::PlaceButtons()
{
    for (QRadioButton* Radio : d->Buttons)
        d->Grid->removeWidget(Radio);
    const int Count = d->Buttons.size();
    const int Columns = qMin(d->Columns, qMax(1, Count));
    const int PerColumn = (Count + Columns - 1) / Columns;
    for (int i = 0; i < Count; ++i)
        d->Grid->addWidget(d->Buttons[i], i % PerColumn, i / PerColumn);
}

void TQxRadioGroup::ShowItemIndex()
{
    d->Showing = true;
    // An exclusive group cannot uncheck its last checked button.
    d->Group->setExclusive(false);
    for (int i = 0; i < d->Buttons.size(); ++i)
        d->Buttons[i]->setChecked(i == d->ItemIndex);
    d->Group->setExclusive(true);
    d->Showing = false;
}

TBiDiMode TQxRadioGroup::BiLanguage() const { return BiDiMode(); }
void TQxRadioGroup::ShowBiCaption(const QString& Caption) { setTitle(Caption); }
void TQxRadioGroup::ShowBiFont(const TFont& Font) { SetFont(Font); }

} // namespace Kesh
