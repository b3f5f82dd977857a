// Kesh for Qt — the form manager: a form's language, placement, opening and closing;
// bilingual menu captions, a component carrying bilingual messages, and focus recovery.
#pragma once
#include "core/bilingual_strings.h"
#include "platform/application.h"
#include "platform/kesh_global.h"
#include "platform/widgets.h"

#include <QFlags>
#include <QList>
#include <QObject>
#include <QPixmap>
#include <QPointer>
#include <QString>
#include <QStringList>
#include <functional>
#include <memory>

class QAction;
class QCloseEvent;
class QEvent;
class QWidget;

namespace Kesh {

class TReader;
class TWriter;
class TQxForm;

/// The enumerations live in their own namespace only so that moc can register them
/// (Kesh itself carries its Q_NAMESPACE elsewhere); they read as Kesh::FoAutoCenter.
namespace Forms {
Q_NAMESPACE_EXPORT(KESH_EXPORT)

/// One service of the form manager.
enum TxFormOption {
    FoAutoCenter = 0x01,    ///< centre the form at every placement; hook the first activation
    FoSavePosition = 0x02,  ///< remember Left and Top in the settings file
    FoSaveSize = 0x04,      ///< remember Width, Height and the maximized state
    FoRefreshData = 0x08,   ///< refresh the form's unmodified datasets at the first activation
    FoCheckModified = 0x10, ///< refuse to close while a dataset holds unsaved changes
    FoAutoFree = 0x20       ///< delete the form when it closes
};
Q_DECLARE_FLAGS(TxFormOptions, TxFormOption)
Q_FLAG_NS(TxFormOptions)

/// What happens to a form once its close is accepted.
enum TCloseAction { caNone, caHide, caFree, caMinimize };
Q_ENUM_NS(TCloseAction)
} // namespace Forms
using namespace Forms;

/// A plain event: Sender is the object that fires it.
using TNotifyEvent = std::function<void(QObject* Sender)>;
/// Opening or closing hook of a form; setting Cancel stops the opening.
using TxFormOpenCloseEvent = std::function<void(QObject* Sender, bool& Cancel)>;

/// One managed menu item: the live action and its captions in both languages.
struct KESH_EXPORT TxMenuItemRec
{
    QPointer<QAction> MenuItem; ///< the live item; empty until resolved after reading a stream
    QString ItemName;           ///< the item's name, by which it is found again
    QString CapA;               ///< Arabic caption
    QString CapE;               ///< English caption
};

/// The bilingual captions of a form's menu items.
///
/// A menu item is a QAction among the form's descendants, found by its objectName; the
/// action of a QMenu (its title) is found by the menu's objectName too. Misuse (an unknown
/// name, a bad index) is shown with ShowError and changes nothing.
class KESH_EXPORT TxBiMenuItems
{
public:
    explicit TxBiMenuItems(TQxForm* MyForm = nullptr);
    TxBiMenuItems(const TxBiMenuItems&) = delete;
    TxBiMenuItems& operator=(const TxBiMenuItems&) = delete;
    ~TxBiMenuItems();

    /// Records Item (new), or takes its current caption as the current language's caption.
    /// An item without a name is ignored.
    void AddMenuItem(QAction* Item);
    /// As above for the menu item of that name on the form; shows an error when there is none.
    void AddMenuItem(const QString& Name);
    /// Index of the record holding Item, -1 if none.
    int GetMenuItem(const QAction* Item) const;
    /// A copy of record Index; out of range shows an error and gives an empty record.
    TxMenuItemRec GetMenuItemRec(int Index) const;
    /// Replaces the captions of record Index by those of Rec (item and name are kept).
    void SetMenuItemRec(int Index, const TxMenuItemRec& Rec);
    /// Adds every named menu item of the form (separators skipped), then drops the records
    /// whose item is no longer on the form.
    void GetAllMenuItems();
    /// Removes every record.
    void ClearMenuItems();
    /// Finds each record's item again by its name.
    void ResolveMenuItems();
    /// Gives every live item the caption of the form's language.
    void UpdateAllMenus();
    int Count() const { return int(m_items.size()); }
    /// Copies the records of Source.
    void Assign(const TxBiMenuItems& Source);
    TQxForm* MyForm() const { return m_myForm; }

    /// Replaces the records by those read: list begin, count, (name, Arabic, English) per
    /// record, list end. Items are left unresolved. A truncated or malformed stream raises
    /// EReadError and leaves the records unchanged.
    void ReadMenuItems(TReader& Reader);
    /// Writes the records in the form ReadMenuItems reads.
    void WriteMenuItems(TWriter& Writer) const;

private:
    QWidget* Form() const;
    QString ErrorPrefix() const;

    TQxForm* m_myForm;
    QList<TxMenuItemRec> m_items;
};

/// The stored form of the records (the form's "MenuItems" value).
KESH_EXPORT QDataStream& operator<<(QDataStream& Stream, const TxBiMenuItems& Items);
/// Reads records; raises EReadError for a bad stream, leaving Items unchanged.
KESH_EXPORT QDataStream& operator>>(QDataStream& Stream, TxBiMenuItems& Items);

/// The manager of one form: bilingual caption and menus switched with the form's direction,
/// mirroring, remembered placement, first-activation refresh, refusal to close over unsaved
/// changes, free-on-close, a background picture and an opening hook.
///
/// It is a child of the form it manages: a top-level QWidget, QDialog or QMainWindow, or a
/// widget inside a QMdiSubWindow (put it there before creating the manager). Its hooks are
/// installed by Loaded(), which Kesh::EndLoading(form) runs, or else the form's first
/// polish or show; create the manager before the form is shown. Placement is kept in
/// ConfigFile under the section "<form name>.<manager name>" and written when the manager
/// is destroyed, with the form or on its own.
class KESH_EXPORT TQxForm : public QObject, public TLoadable
{
    Q_OBJECT
    Q_PROPERTY(QString Caption_a READ GetCaptionA WRITE SetCaptionA)
    Q_PROPERTY(QString Caption_e READ GetCaptionE WRITE SetCaptionE)
    Q_PROPERTY(Kesh::TBiDiMode Language READ GetLanguage WRITE SetLang)
    Q_PROPERTY(bool LangLocked READ GetLangLocked WRITE SetLangLocked)
    Q_PROPERTY(Kesh::Forms::TxFormOptions Options READ GetOptions WRITE SetOptions)
    Q_PROPERTY(QPixmap Texture READ GetTexture WRITE SetTexture)
    Q_PROPERTY(bool Tile READ GetTile WRITE SetTile)
    Q_PROPERTY(QStringList Strings READ GetStrings WRITE SetStrings)
    Q_PROPERTY(Kesh::TxBiStrings BiStrings READ GetBiStrings WRITE SetBiStrings)

public:
    /// Manages AOwner. A wrong owner, or a form that already has a manager, is refused
    /// through RaiseError (EAbort): the manager is not created.
    explicit TQxForm(QObject* AOwner, const QString& Name = QString());
    ~TQxForm() override;

    QString GetCaptionA() const;
    /// Also the form's caption while the language is Arabic.
    void SetCaptionA(const QString& Value);
    QString GetCaptionE() const;
    /// Also the form's caption while the language is English.
    void SetCaptionE(const QString& Value);
    TBiDiMode GetLanguage() const;
    /// The language switch: direction, caption, menus and mirroring of the form.
    void SetLang(TBiDiMode Value);
    bool GetLangLocked() const;
    /// While set, SetLang does nothing.
    void SetLangLocked(bool Value);
    TxFormOptions GetOptions() const;
    void SetOptions(TxFormOptions Value);
    QPixmap GetTexture() const;
    /// The background picture, stretched over the form or tiled; repaints the form.
    void SetTexture(const QPixmap& Value);
    bool GetTile() const;
    void SetTile(bool Value);
    QStringList GetStrings() const;
    void SetStrings(const QStringList& Value);
    TxBiStrings GetBiStrings() const;
    void SetBiStrings(const TxBiStrings& Value);
    TxBiMenuItems& BiMenuItems();
    const TxBiMenuItems& BiMenuItems() const;
    /// Copies the records of Value.
    void SetBiMenuItems(const TxBiMenuItems& Value);

    /// The managed form.
    QWidget* OwnerForm() const;
    /// True from creation until the form's first activation.
    bool FirstStart() const;
    /// True once BeforeOpen let the form open.
    bool Opened() const;
    /// Item Index of BiStrings in the application's language (as TxBiStrings::GetItem).
    QString GetBiMsg(int Index) const;

    /// Places the form: remembered position and size, or centred (a third from the top).
    void AdjustFormPos();
    /// Writes "Left" and "Top" (with FoSavePosition).
    void DoSavePos();
    /// Writes "Width", "Height" and "Maximized" (with FoSaveSize).
    void DoSaveSize();

    /// Runs at each show until the first activation; Cancel closes the form again.
    TxFormOpenCloseEvent BeforeOpen;
    /// Kept for the application's own use; the manager never fires it.
    TxFormOpenCloseEvent BeforeClose;
    /// After a language switch of the active form; Sender is the manager.
    TNotifyEvent OnLangChange;

protected:
    /// Installs the hooks, places the form and applies the application's language.
    void Loaded() override;

    // The hooks on the form's events. Sender is the form. Where a hook "chains", the
    // event then goes on to the form's own handling.
    /// First activation: refresh (FoRefreshData); returns whether the form's own handling runs.
    virtual bool MyOnActivate(QObject* Sender);
    /// Each show until the first activation: placement and BeforeOpen. Never chains.
    virtual void MyOnShow(QObject* Sender);
    /// Schedules a repaint of the background. Chains.
    virtual void MyOnResize(QObject* Sender);
    /// Refuses (RaiseError) while a dataset holds unsaved changes (FoCheckModified).
    /// Chains when CanClose stays true.
    virtual void MyOnCloseQuery(QObject* Sender, bool& CanClose);
    /// Free-on-close (FoAutoFree). Chains unless Action becomes caNone or caMinimize.
    virtual void MyOnClose(QObject* Sender, TCloseAction& Action);
    /// Paints the background picture; only valid inside the form's paint event. Never chains.
    virtual void MyPaint(QObject* Sender);

    bool eventFilter(QObject* Watched, QEvent* Event) override;

private:
    void WatchFrame();
    bool HandleFormEvent(QEvent* Event);
    bool HandleClose(QCloseEvent* Event);

    std::unique_ptr<class TQxFormPrivate> const d;
};

/// A component that only carries a list of bilingual messages.
class KESH_EXPORT TQxBiDiStrings : public QObject
{
    Q_OBJECT
    Q_PROPERTY(Kesh::TxBiStrings BiStrings READ GetBiStrings WRITE SetBiStrings)

public:
    explicit TQxBiDiStrings(QObject* AOwner = nullptr);
    ~TQxBiDiStrings() override;

    TxBiStrings GetBiStrings() const { return m_biStrings; }
    /// Copies the list.
    void SetBiStrings(const TxBiStrings& Value) { m_biStrings.Assign(Value); }
    /// Item Index in the application's language (as TxBiStrings::GetItem).
    QString GetBiMsg(int Index) const { return m_biStrings.GetItem(Index); }

private:
    TxBiStrings m_biStrings;
};

/// Gives the focus to Control or, failing that, to a nearby control that can take it:
/// the next one in its parent's tab order, or one in the neighbouring containers.
KESH_EXPORT void FocusOnControl(QWidget* Control);

} // namespace Kesh

Q_DECLARE_OPERATORS_FOR_FLAGS(Kesh::Forms::TxFormOptions)
