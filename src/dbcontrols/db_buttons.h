// Kesh for Qt — bilingual buttons that act on a dataset (save, cancel, add, edit, delete,
// move, refresh, apply updates, close the form) and enable themselves from its state.
#pragma once
#include "buttons.h"
#include "platform/data/data_source.h"
#include <memory>

namespace Kesh {

/// The enumerations live in their own namespace only so that moc can register them; they
/// read as Kesh::atSave, Kesh::txEditing.
namespace DbButtonTypes {
Q_NAMESPACE_EXPORT(KESH_EXPORT)
/// What a click of a data-aware button does.
enum TxActionType {
    atUserOnClick, atSave, atCancel, atAdd, atEdit, atDelete, atCloseForm,
    atFirst, atPrior, atNext, atLast, atRefresh, atApplyUpdates
};
Q_ENUM_NS(TxActionType)
/// When a data-aware button or panel is enabled ("Allways" is the type's own spelling).
enum TxEnabledWhenType { txAllways, txEditing, txBrowsing, txBrowsingNotEmpty };
Q_ENUM_NS(TxEnabledWhenType)
} // namespace DbButtonTypes
using namespace DbButtonTypes;

class TQxdbBitBtn;
class TQxdbIconButton;
class TQxdbSpeedButton;
class TxDataButton;

/// The link of a data-aware button to its data source: it tells the button of every change
/// of activity, data and edit state.
class KESH_EXPORT TQxdbButtonDataLink : public TDataLink
{
public:
    explicit TQxdbButtonDataLink(TQxdbBitBtn* Button);
    explicit TQxdbButtonDataLink(TQxdbIconButton* Button);
    explicit TQxdbButtonDataLink(TQxdbSpeedButton* Button);
    ~TQxdbButtonDataLink() override;

    TQxdbBitBtn* BitBtn() const { return m_bitBtn; }
    TQxdbIconButton* IconButton() const { return m_iconButton; }
    TQxdbSpeedButton* SpeedButton() const { return m_speedButton; }

protected:
    void ActiveChanged() override;
    void DataSetChanged() override;
    void EditingChanged() override;

private:
    TxDataButton* Button() const;
    TQxdbBitBtn* m_bitBtn = nullptr;
    TQxdbIconButton* m_iconButton = nullptr;
    TQxdbSpeedButton* m_speedButton = nullptr;
};

/// What the three data-aware buttons share: the link, the action, the enabling rule and the
/// click. A click first takes the focus from the window's focused control (so a data-aware
/// edit writes its typed text into its field), then runs the action on the source's dataset,
/// then, for saving and moving actions with _ApplyUpdates, ApplyUpdates(0) of a
/// TClientDataSet. Errors of the action are shown; a silent abort ends it quietly.
class KESH_EXPORT TxDataButton
{
public:
    virtual ~TxDataButton();

    TDataSource* GetDataSource() const;
    /// Attaches the link and re-evaluates the enabled state (unless the button is loading).
    void SetDataSource(TDataSource* Value);
    TxActionType GetDataAction() const { return m_action; }
    /// Stores the action and sets _EnabledWhen by it: save and cancel txEditing; add, edit,
    /// close, the moves and refresh txBrowsing; delete txBrowsingNotEmpty; apply updates
    /// txAllways; atUserOnClick keeps the rule.
    void SetAction(TxActionType Value);
    TxEnabledWhenType GetEnabledWhen() const { return m_enabledWhen; }
    void SetEnabledWhen(TxEnabledWhenType Value);
    bool GetApplyUpdates() const { return m_applyUpdates; }
    void SetApplyUpdates(bool Value) { m_applyUpdates = Value; }
    TQxdbButtonDataLink* DataLink() const { return m_link.get(); }

    /// Enabled follows the link: active gives DataChanged then EditingChanged, inactive disables.
    void ActiveChanged();
    /// On every change of the dataset: txBrowsing needs only an active link here.
    void DataChanged();
    /// On entering or leaving edit or insert: txBrowsing also needs the link not editing.
    void EditingChanged();

protected:
    TxDataButton(QWidget* Self, TLoadable* Loading, std::unique_ptr<TQxdbButtonDataLink> Link);
    /// The click: the focus move, the action (BaseClick for atUserOnClick), the apply step.
    void RunAction(const std::function<void()>& BaseClick);

private:
    void MoveFocusAway();
    void Act(const std::function<void()>& BaseClick);
    void ApplyStep();

    QWidget* const m_self;
    TLoadable* const m_loading;
    std::unique_ptr<TQxdbButtonDataLink> const m_link;
    TxEnabledWhenType m_enabledWhen = txAllways;
    TxActionType m_action = atUserOnClick;
    bool m_applyUpdates = false;
};

// The published properties of every data-aware button, on TxDataButton's accessors.
#define KESH_DB_BUTTON_PROPERTIES                                                                        \
    Q_PROPERTY(Kesh::DbButtonTypes::TxEnabledWhenType _EnabledWhen READ GetEnabledWhen WRITE SetEnabledWhen) \
    Q_PROPERTY(Kesh::DbButtonTypes::TxActionType _DataAction READ GetDataAction WRITE SetAction)       \
    Q_PROPERTY(bool _ApplyUpdates READ GetApplyUpdates WRITE SetApplyUpdates)                          \
    Q_PROPERTY(Kesh::TDataSource* _DataSource READ GetDataSource WRITE SetDataSource)

/// A bit-map button that acts on a dataset.
class KESH_EXPORT TQxdbBitBtn : public TQxBitBtn, public TxDataButton
{
    Q_OBJECT
    KESH_DB_BUTTON_PROPERTIES
public:
    explicit TQxdbBitBtn(QWidget* Parent = nullptr);
    ~TQxdbBitBtn() override;
    void Click() override;
protected:
    void Loaded() override;
};

/// A tool-bar button that acts on a dataset.
class KESH_EXPORT TQxdbSpeedButton : public TQxSpeedButton, public TxDataButton
{
    Q_OBJECT
    KESH_DB_BUTTON_PROPERTIES
public:
    explicit TQxdbSpeedButton(QWidget* Parent = nullptr);
    ~TQxdbSpeedButton() override;
    void Click() override;
protected:
    void Loaded() override;
};

/// An icon button that acts on a dataset.
class KESH_EXPORT TQxdbIconButton : public TQxIconButton, public TxDataButton
{
    Q_OBJECT
    KESH_DB_BUTTON_PROPERTIES
public:
    explicit TQxdbIconButton(QWidget* Parent = nullptr);
    ~TQxdbIconButton() override;
    void Click() override;
protected:
    void Loaded() override;
};

} // namespace Kesh
