#include "db_buttons.h"

#include "db_guard_p.h"
#include "platform/data/client_dataset.h"
#include "platform/data/dataset.h"
#include "platform/widgets.h"
#include <QPointer>

namespace Kesh {

// ---- TQxdbButtonDataLink

TQxdbButtonDataLink::TQxdbButtonDataLink(TQxdbBitBtn* Button) : m_bitBtn(Button) {}
TQxdbButtonDataLink::TQxdbButtonDataLink(TQxdbIconButton* Button) : m_iconButton(Button) {}
TQxdbButtonDataLink::TQxdbButtonDataLink(TQxdbSpeedButton* Button) : m_speedButton(Button) {}

TQxdbButtonDataLink::~TQxdbButtonDataLink()
{
    m_bitBtn = nullptr;
    m_iconButton = nullptr;
    m_speedButton = nullptr;
}

TxDataButton* TQxdbButtonDataLink::Button() const
{
    if (m_bitBtn)
        return m_bitBtn;
    if (m_iconButton)
        return m_iconButton;
    return m_speedButton;
}

void TQxdbButtonDataLink::ActiveChanged()
{
    if (TxDataButton* B = Button())
        B->ActiveChanged();
}

void TQxdbButtonDataLink::DataSetChanged()
{
    if (TxDataButton* B = Button())
        B->DataChanged();
}

void TQxdbButtonDataLink::EditingChanged()
{
    if (TxDataButton* B = Button())
        B->EditingChanged();
}

// ---- TxDataButton

TxDataButton::TxDataButton(QWidget* Self, TLoadable* Loading, std::unique_ptr<TQxdbButtonDataLink> Link)
    : m_self(Self), m_loading(Loading), m_link(std::move(Link))
{
}

TxDataButton::~TxDataButton()
{
    // The link must not call back into a button that is being destroyed.
    m_link->SetDataSource(nullptr);
}

TDataSource* TxDataButton::GetDataSource() const { return m_link->DataSource(); }

void TxDataButton::SetDataSource(TDataSource* Value)
{
    m_link->SetDataSource(Value);
    if (!m_loading->IsLoading())
        ActiveChanged();
}

void TxDataButton::SetAction(TxActionType Value)
{
    m_action = Value;
    switch (Value) {
    case atSave: case atCancel:
        m_enabledWhen = txEditing;
        break;
    case atAdd: case atEdit: case atCloseForm: case atFirst: case atPrior: case atNext: case atLast: case atRefresh:
        m_enabledWhen = txBrowsing;
        break;
    case atDelete:
        m_enabledWhen = txBrowsingNotEmpty;
        break;
    case atApplyUpdates:
        m_enabledWhen = txAllways;
        break;
    case atUserOnClick:
        break;
    }
    if (!m_loading->IsLoading() && m_link->Active())
        ActiveChanged();
}

void TxDataButton::SetEnabledWhen(TxEnabledWhenType Value)
{
    m_enabledWhen = Value;
    if (!m_loading->IsLoading() && m_link->Active())
        ActiveChanged();
}

void TxDataButton::ActiveChanged()
{
    if (IsDesigning(m_self))
        return;  // a button being designed stays as drawn
    if (m_link->Active()) {
        DataChanged();
        EditingChanged();
    } else {
        m_self->setEnabled(false);
    }
}

namespace {

bool NotEmpty(const TDataLink& Link) { return !(Link.Bof() && Link.Eof()); }

bool CanModify(const TDataLink& Link) { return Link.DataSet() && Link.DataSet()->CanModify(); }

} // namespace

void TxDataButton::DataChanged()
{
    if (IsDesigning(m_self))
        return;  // a button being designed stays as drawn
    const TDataLink& L = *m_link;
    bool On = L.Active();
    switch (m_enabledWhen) {
    case txAllways: case txBrowsing: break;
    case txEditing: On = On && CanModify(L) && L.Editing(); break;
    case txBrowsingNotEmpty: On = On && NotEmpty(L); break;
    }
    m_self->setEnabled(On);
}

void TxDataButton::EditingChanged()
{
    if (IsDesigning(m_self))
        return;  // a button being designed stays as drawn
    const TDataLink& L = *m_link;
    bool On = L.Active();
    switch (m_enabledWhen) {
    case txAllways: break;
    case txEditing: On = On && CanModify(L) && L.Editing(); break;
    case txBrowsing: On = On && !L.Editing(); break;
    case txBrowsingNotEmpty: On = On && !L.Editing() && NotEmpty(L); break;
    }
    m_self->setEnabled(On);
}

void TxDataButton::MoveFocusAway()
{
    // A windowed control that takes the focus for a moment: the focused data control loses
    // it and writes its pending text into its field. The focus then goes back, so the user
    // keeps working where he was.
    QWidget* Window = m_self->window();
    if (!Window || Window == m_self)
        return;
    const QPointer<QWidget> Focused = Window->focusWidget();
    {
        QWidget Temporary(Window);
        Temporary.setFocusPolicy(Qt::StrongFocus);
        Temporary.setGeometry(0, 0, 0, 0);
        Temporary.show();
        Temporary.setFocus(Qt::OtherFocusReason);
    }
    if (Focused && Focused != m_self && Focused->isVisible() && Focused->isEnabled())
        Focused->setFocus(Qt::OtherFocusReason);
}

void TxDataButton::RunAction(const std::function<void()>& BaseClick)
{
    Guarded(m_self, [&] {
        MoveFocusAway();
        Act(BaseClick);
    });
}

void TxDataButton::Act(const std::function<void()>& BaseClick)
{
    TDataSet* Ds = m_link->DataSet();
    bool Apply = true;
    switch (m_action) {
    case atUserOnClick: BaseClick(); break;
    case atSave: if (Ds) Ds->Post(); break;
    case atCancel:
        Apply = false;
        try {
            if (Ds)
                Ds->Cancel();
        } catch (...) {  // a refused cancel is not the user's concern
        }
        break;
    case atAdd: Apply = false; if (Ds) Ds->Insert(); break;
    case atEdit: Apply = false; if (Ds) Ds->Edit(); break;
    case atDelete: if (Ds) Ds->Delete(); break;
    case atCloseForm:
        Apply = false;
        if (QWidget* Window = m_self->window(); Window && Window != m_self)
            Window->close();
        break;
    case atFirst: if (Ds) Ds->First(); break;
    case atPrior: if (Ds) Ds->Prior(); break;
    case atNext: if (Ds) Ds->Next(); break;
    case atLast: if (Ds) Ds->Last(); break;
    case atRefresh: Apply = false; if (Ds) Ds->Refresh(); break;
    case atApplyUpdates:
        Apply = false;
        if (auto* Client = qobject_cast<TClientDataSet*>(Ds))
            Client->ApplyUpdates(0);
        break;
    }
    if (Apply)
        ApplyStep();
}

void TxDataButton::ApplyStep()
{
    if (!m_applyUpdates)
        return;
    if (auto* Client = qobject_cast<TClientDataSet*>(m_link->DataSet()))
        Client->ApplyUpdates(0);
}

// ---- the three buttons

TQxdbBitBtn::TQxdbBitBtn(QWidget* Parent)
    : TQxBitBtn(Parent), TxDataButton(this, this, std::make_unique<TQxdbButtonDataLink>(this))
{
}

TQxdbBitBtn::~TQxdbBitBtn() = default;

void TQxdbBitBtn::Click()
{
    RunAction([this] { TQxBitBtn::Click(); });
}

void TQxdbBitBtn::Loaded()
{
    TQxBitBtn::Loaded();
    ActiveChanged();
}

TQxdbSpeedButton::TQxdbSpeedButton(QWidget* Parent)
    : TQxSpeedButton(Parent), TxDataButton(this, this, std::make_unique<TQxdbButtonDataLink>(this))
{
}

TQxdbSpeedButton::~TQxdbSpeedButton() = default;

void TQxdbSpeedButton::Click()
{
    RunAction([this] { TQxSpeedButton::Click(); });
}

void TQxdbSpeedButton::Loaded()
{
    TQxSpeedButton::Loaded();
    ActiveChanged();
}

TQxdbIconButton::TQxdbIconButton(QWidget* Parent)
    : TQxIconButton(Parent), TxDataButton(this, this, std::make_unique<TQxdbButtonDataLink>(this))
{
}

TQxdbIconButton::~TQxdbIconButton() = default;

void TQxdbIconButton::Click()
{
    RunAction([this] { TQxIconButton::Click(); });
}

void TQxdbIconButton::Loaded()
{
    TQxIconButton::Loaded();
    ActiveChanged();
}

} // namespace Kesh
