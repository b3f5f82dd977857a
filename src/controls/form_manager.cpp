// Kesh for Qt — the form manager, bilingual menu captions and focus recovery.
#include "form_manager.h"
#include "core/conversions.h"
#include "core/messages.h"
#include "core/settings.h"
#include "platform/data/data_source.h"
#include "platform/data/dataset.h"
#include "platform/exceptions.h"
#include "platform/filer.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QDialog>
#include <QKeyEvent>
#include <QLayout>
#include <QGuiApplication>
#include <QMainWindow>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenu>
#include <QPainter>
#include <QScreen>

namespace Kesh {

namespace {

const QString LineBreak = QStringLiteral("\r\n");

// The name a menu item is known by: its own, or for a menu's title action the menu's.
QString NameOf(const QAction* Item)
{
    if (!Item)
        return QString();
    if (!Item->objectName().isEmpty())
        return Item->objectName();
    if (QMenu* Menu = Item->menu<QMenu*>(); Menu && Menu->menuAction() == Item)
        return Menu->objectName();
    return QString();
}

// Component names compare without regard to letter case, as a form's component search does.
QAction* FindMenuItem(const QWidget* Form, const QString& Name)
{
    if (!Form || Name.isEmpty())
        return nullptr;
    for (QAction* Item : Form->findChildren<QAction*>())
        if (NameOf(Item).compare(Name, Qt::CaseInsensitive) == 0)
            return Item;
    return nullptr;
}

bool IsSeparator(const QAction* Item)
{
    return Item->isSeparator() || Item->text() == QLatin1String("-");
}

// The minimum size the program gave the form: the default size of a placement never saved.
// A window's layout sets the window's minimum to its own; that is no constraint of the
// program's, and taking it would open a form with a layout at its smallest (a main window
// one menu bar high) until a size has been saved.
QSize ConstrainedMinimum(const QWidget* Frame)
{
    QSize Minimum = Frame->minimumSize();
    if (const QLayout* Layout = Frame->layout(); Layout && Layout->sizeConstraint() == QLayout::SetDefaultConstraint) {
        const QSize Imposed = Layout->totalMinimumSize();
        if (Minimum.width() == Imposed.width())
            Minimum.setWidth(0);
        if (Minimum.height() == Imposed.height())
            Minimum.setHeight(0);
    }
    return Minimum;
}

QMdiSubWindow* SubWindowOf(const QWidget* Form)
{
    return Form ? qobject_cast<QMdiSubWindow*>(Form->parentWidget()) : nullptr;
}

bool IsFormWidget(const QWidget* Widget)
{
    return Widget->isWindow() || SubWindowOf(Widget);
}

bool IsMdiParent(QWidget* Form)
{
    auto* Main = qobject_cast<QMainWindow*>(Form);
    return Main && qobject_cast<QMdiArea*>(Main->centralWidget());
}

// Runs before the QObject base is built, so a refused manager never joins the form.
QObject* CheckedOwner(QObject* AOwner, const QString& Name)
{
    auto* Form = qobject_cast<QWidget*>(AOwner);
    if (!Form || !IsFormWidget(Form))
        RaiseError(Name + QStringLiteral(".Create") + LineBreak + QStringLiteral("Only Allowed for TForm classes."));
    if (!Form->findChildren<TQxForm*>(Qt::FindDirectChildrenOnly).isEmpty())
        RaiseError(Name + QStringLiteral(".Create") + LineBreak
                   + QStringLiteral("Only one TxForm class is allowed for each form."));
    return AOwner;
}

// Gives a window that was hidden and shown again its activation back. Where the window
// system never took the focus away (the offscreen platform), the window already is the
// focus window and asking again changes nothing, so the widget layer is told directly.
void ReactivateWindow(QWidget* Window)
{
    Window->activateWindow();
#if QT_VERSION < QT_VERSION_CHECK(6, 5, 0)
    if (QApplication::activeWindow() != Window && Window->windowHandle()
        && QGuiApplication::focusWindow() == Window->windowHandle())
        QApplication::setActiveWindow(Window);
#endif
}

} // namespace

// ---------------------------------------------------------------- TxBiMenuItems

TxBiMenuItems::TxBiMenuItems(TQxForm* MyForm) : m_myForm(MyForm) {}

TxBiMenuItems::~TxBiMenuItems() = default;

QWidget* TxBiMenuItems::Form() const
{
    return m_myForm ? m_myForm->OwnerForm() : nullptr;
}

QString TxBiMenuItems::ErrorPrefix() const
{
    return m_myForm ? m_myForm->objectName() : QString();
}

void TxBiMenuItems::AddMenuItem(QAction* Item)
{
    const QString Name = NameOf(Item);
    if (Name.isEmpty())
        return;
    const int Index = GetMenuItem(Item);
    if (Index < 0) {
        m_items.append(TxMenuItemRec{Item, Name, Item->text(), Item->text()});
        return;
    }
    TxMenuItemRec& Rec = m_items[Index];
    const TBiDiMode Language = m_myForm ? m_myForm->GetLanguage() : bdLeftToRight;
    if (Language == bdLeftToRight && Rec.CapE != Item->text())
        Rec.CapE = Item->text();
    else if (Language == bdRightToLeft && Rec.CapA != Item->text())
        Rec.CapA = Item->text();
    Rec.ItemName = Name;
}

void TxBiMenuItems::AddMenuItem(const QString& Name)
{
    if (QAction* Item = FindMenuItem(Form(), Name)) {
        AddMenuItem(Item);
        return;
    }
    ShowError(ErrorPrefix() + QStringLiteral("TxBiMenuItems.AddMenuItem :") + LineBreak
              + QStringLiteral("AddItemByName ('") + Name + QStringLiteral("'): item not found!."));
}

int TxBiMenuItems::GetMenuItem(const QAction* Item) const
{
    if (!Item)
        return -1;
    for (int I = 0; I < m_items.size(); ++I)
        if (m_items[I].MenuItem == Item)
            return I;
    return -1;
}

TxMenuItemRec TxBiMenuItems::GetMenuItemRec(int Index) const
{
    if (Index < 0 || Index >= Count()) {
        ShowError(ErrorPrefix() + QStringLiteral("TxBiMenuItems.GetMenuItemRec") + LineBreak
                  + QStringLiteral("Index out of range."));
        return TxMenuItemRec();
    }
    return m_items[Index];
}

void TxBiMenuItems::SetMenuItemRec(int Index, const TxMenuItemRec& Rec)
{
    if (Index < 0 || Index >= Count()) {
        ShowError(ErrorPrefix() + QStringLiteral("TxBiMenuItems.SetMenuItemRec: ") + LineBreak
                  + QStringLiteral("Index out of range.") + QString::number(Index));
        return;
    }
    m_items[Index].CapA = Rec.CapA;
    m_items[Index].CapE = Rec.CapE;
}

void TxBiMenuItems::GetAllMenuItems()
{
    QWidget* F = Form();
    if (!F)
        return;
    for (QAction* Item : F->findChildren<QAction*>())
        if (!IsSeparator(Item))
            AddMenuItem(Item);
    m_items.removeIf([F](const TxMenuItemRec& Rec) {
        return Rec.ItemName.isEmpty() || !FindMenuItem(F, Rec.ItemName);
    });
}

void TxBiMenuItems::ClearMenuItems()
{
    m_items.clear();
}

void TxBiMenuItems::ResolveMenuItems()
{
    QWidget* F = Form();
    for (TxMenuItemRec& Rec : m_items)
        if (QAction* Item = FindMenuItem(F, Rec.ItemName))
            Rec.MenuItem = Item;
}

void TxBiMenuItems::UpdateAllMenus()
{
    const TBiDiMode Language = m_myForm ? m_myForm->GetLanguage() : bdLeftToRight;
    for (const TxMenuItemRec& Rec : std::as_const(m_items)) {
        if (!Rec.MenuItem)
            continue;
        if (Language == bdLeftToRight)
            Rec.MenuItem->setText(Rec.CapE);
        else if (Language == bdRightToLeft)
            Rec.MenuItem->setText(Rec.CapA);
    }
}

void TxBiMenuItems::Assign(const TxBiMenuItems& Source)
{
    if (&Source != this)
        m_items = Source.m_items;
}

void TxBiMenuItems::ReadMenuItems(TReader& Reader)
{
    // Read aside first, so a bad stream leaves the records as they were; nothing is
    // reserved for the count, so a forged count costs nothing.
    const QString Where = QStringLiteral("TxBiMenuItems.ReadMenuItems") + LineBreak;
    QList<TxMenuItemRec> Items;
    try {
        Reader.ReadListBegin();
        const qint32 Count = Reader.ReadInteger();
        if (Count < 0)
            throw EReadError(QStringLiteral("Invalid record count %1.").arg(Count));
        for (qint32 I = 0; I < Count; ++I) {
            TxMenuItemRec Rec;
            Rec.ItemName = Reader.ReadString();
            Rec.CapA = Reader.ReadString();
            Rec.CapE = Reader.ReadString();
            Items.append(std::move(Rec));
        }
        if (!Reader.EndOfList())
            throw EReadError(QStringLiteral("The list holds more than %1 records.").arg(Count));
        Reader.ReadListEnd();
    } catch (const EReadError& E) {
        throw EReadError(Where + E.Message);
    }
    m_items = std::move(Items);
}

void TxBiMenuItems::WriteMenuItems(TWriter& Writer) const
{
    Writer.WriteListBegin();
    Writer.WriteInteger(Count());
    for (const TxMenuItemRec& Rec : m_items) {
        const QString LiveName = NameOf(Rec.MenuItem);
        Writer.WriteString(LiveName.isEmpty() ? Rec.ItemName : LiveName);
        Writer.WriteString(Rec.CapA);
        Writer.WriteString(Rec.CapE);
    }
    Writer.WriteListEnd();
}

QDataStream& operator<<(QDataStream& Stream, const TxBiMenuItems& Items)
{
    TWriter Writer(Stream);
    Items.WriteMenuItems(Writer);
    return Stream;
}

QDataStream& operator>>(QDataStream& Stream, TxBiMenuItems& Items)
{
    TReader Reader(Stream);
    Items.ReadMenuItems(Reader);
    return Stream;
}

// ---------------------------------------------------------------- TQxForm

class TQxFormPrivate
{
public:
    explicit TQxFormPrivate(TQxForm* Q) : BiMenuItems(Q) {}

    // The widget that carries the placement: the MDI sub-window around the form, or the
    // form itself. Nothing once either is being destroyed.
    QWidget* Frame() const
    {
        if (!Form || FormGone)
            return nullptr;
        if (SubWindow)
            return FrameGone ? nullptr : SubWindow.data();
        return Form;
    }

    // The room the form is placed in: its screen, or the MDI area's viewport.
    QSize Room() const
    {
        QWidget* F = Frame();
        if (!F)
            return QSize();
        if (auto* Sub = qobject_cast<QMdiSubWindow*>(F)) {
            if (QMdiArea* Area = Sub->mdiArea())
                return Area->viewport()->size();
            return Sub->parentWidget() ? Sub->parentWidget()->size() : QSize();
        }
        QScreen* Screen = F->screen() ? F->screen() : QGuiApplication::primaryScreen();
        return Screen ? Screen->geometry().size() : QSize();
    }

    // The last placement read while the widgets were whole; destruction reads it.
    void Remember()
    {
        if (QWidget* F = Frame()) {
            Placement = QRect(F->pos(), F->size());
            Maximized = F->windowState().testFlag(Qt::WindowMaximized);
        }
    }

    bool IsActive() const
    {
        QWidget* F = Frame();
        if (!F)
            return false;
        if (auto* Sub = qobject_cast<QMdiSubWindow*>(F))
            return Sub->mdiArea() && Sub->mdiArea()->activeSubWindow() == Sub && Sub->isActiveWindow();
        return QApplication::activeWindow() == F;
    }

    void Activate()
    {
        QWidget* F = Frame();
        if (auto* Sub = qobject_cast<QMdiSubWindow*>(F); Sub && Sub->mdiArea())
            Sub->mdiArea()->setActiveSubWindow(Sub);
        else if (F)
            ReactivateWindow(F);
    }

    QString Section(const TQxForm* Q) const { return OwnerName + QLatin1Char('.') + Q->objectName(); }

    QPointer<QWidget> Form;
    bool FormGone = false;
    // Kept as a plain widget: it is read while it is being destroyed, when it no longer is
    // a QMdiSubWindow.
    QPointer<QWidget> SubWindow;
    bool FrameGone = false;
    QMetaObject::Connection FrameConnection;
    QString OwnerName;

    QString CaptionA;
    QString CaptionE;
    TBiDiMode Language = bdLeftToRight;
    bool LangLocked = false;
    TxFormOptions Options;
    QPixmap Texture;
    bool Tile = false;
    QStringList Strings;
    TxBiStrings BiStrings;
    TxBiMenuItems BiMenuItems;

    bool FirstStart = true;
    bool Opened = false;
    bool ShowHooked = false;
    bool ActivateHooked = false;
    bool OtherHooksInstalled = false;

    QRect Placement;
    bool Maximized = false;
};

TQxForm::TQxForm(QObject* AOwner, const QString& Name)
    : QObject(CheckedOwner(AOwner, Name)), d(std::make_unique<TQxFormPrivate>(this))
{
    setObjectName(Name);
    auto* Form = static_cast<QWidget*>(AOwner);
    d->Form = Form;
    d->OwnerName = Form->objectName();
    connect(Form, &QObject::objectNameChanged, this, [this](const QString& Value) { d->OwnerName = Value; });
    // A QWidget announces its end before it deletes its children (this manager among
    // them): from then on its geometry is read from what was remembered.
    connect(Form, &QObject::destroyed, this, [this] {
        d->Remember();
        d->FormGone = true;
    });
    d->Options = SubWindowOf(Form) || IsMdiParent(Form) ? TxFormOptions(FoSavePosition | FoSaveSize)
                                                         : TxFormOptions(FoAutoCenter);
    if (BiDiModeOf(Form) == bdRightToLeft) {
        d->Language = bdRightToLeft;
        d->CaptionA = Form->windowTitle();
    } else {
        d->CaptionE = Form->windowTitle();
    }
    Form->installEventFilter(this);
    WatchFrame();
    d->Remember();
}

TQxForm::~TQxForm()
{
    if (QWidget* F = d->FormGone ? nullptr : d->Form.data()) {
        F->removeEventFilter(this);
        d->Remember();
    }
    if (d->SubWindow && !d->FrameGone)
        d->SubWindow->removeEventFilter(this);
    // Nothing may leave a destructor: a file that cannot be written is reported only.
    try {
        DoSavePos();
        DoSaveSize();
    } catch (const EAbort&) {
    } catch (const Exception& E) {
        qWarning("%s", qUtf8Printable(E.Message));
    }
}

void TQxForm::WatchFrame()
{
    QMdiSubWindow* Sub = d->FormGone ? nullptr : SubWindowOf(d->Form);
    if (Sub == d->SubWindow && !d->FrameGone)
        return;
    if (d->SubWindow && !d->FrameGone)
        d->SubWindow->removeEventFilter(this);
    disconnect(d->FrameConnection);
    d->SubWindow = Sub;
    d->FrameGone = false;
    if (!Sub)
        return;
    Sub->installEventFilter(this);
    d->FrameConnection = connect(Sub, &QObject::destroyed, this, [this] {
        d->Remember();
        d->FrameGone = true;
    });
}

QString TQxForm::GetCaptionA() const { return d->CaptionA; }

void TQxForm::SetCaptionA(const QString& Value)
{
    d->CaptionA = Value;
    if (d->Language == bdRightToLeft && d->Form && !d->FormGone)
        d->Form->setWindowTitle(Value);
}

QString TQxForm::GetCaptionE() const { return d->CaptionE; }

void TQxForm::SetCaptionE(const QString& Value)
{
    d->CaptionE = Value;
    if (d->Language == bdLeftToRight && d->Form && !d->FormGone)
        d->Form->setWindowTitle(Value);
}

TBiDiMode TQxForm::GetLanguage() const { return d->Language; }
bool TQxForm::GetLangLocked() const { return d->LangLocked; }
void TQxForm::SetLangLocked(bool Value) { d->LangLocked = Value; }
TxFormOptions TQxForm::GetOptions() const { return d->Options; }
void TQxForm::SetOptions(TxFormOptions Value) { d->Options = Value; }
QPixmap TQxForm::GetTexture() const { return d->Texture; }

void TQxForm::SetTexture(const QPixmap& Value)
{
    d->Texture = Value;
    if (d->Form && !d->FormGone)
        d->Form->update();
}

bool TQxForm::GetTile() const { return d->Tile; }

void TQxForm::SetTile(bool Value)
{
    d->Tile = Value;
    if (d->Form && !d->FormGone)
        d->Form->update();
}

QStringList TQxForm::GetStrings() const { return d->Strings; }
void TQxForm::SetStrings(const QStringList& Value) { d->Strings = Value; }
TxBiStrings TQxForm::GetBiStrings() const { return d->BiStrings; }
void TQxForm::SetBiStrings(const TxBiStrings& Value) { d->BiStrings.Assign(Value); }
TxBiMenuItems& TQxForm::BiMenuItems() { return d->BiMenuItems; }
const TxBiMenuItems& TQxForm::BiMenuItems() const { return d->BiMenuItems; }
void TQxForm::SetBiMenuItems(const TxBiMenuItems& Value) { d->BiMenuItems.Assign(Value); }
QWidget* TQxForm::OwnerForm() const { return d->FormGone ? nullptr : d->Form.data(); }
bool TQxForm::FirstStart() const { return d->FirstStart; }
bool TQxForm::Opened() const { return d->Opened; }
QString TQxForm::GetBiMsg(int Index) const { return d->BiStrings.GetItem(Index); }

void TQxForm::SetLang(TBiDiMode Value)
{
    if (IsLoading() || d->LangLocked)
        return;
    QWidget* Form = OwnerForm();
    QWidget* Frame = d->Frame();
    if (!Form || !Frame)
        return;
    // Activity is read before hiding: a hidden window is never the active one.
    const bool WasVisible = Frame->isVisible();
    const bool WasActive = d->IsActive();
    if (WasVisible)
        Frame->hide();
    const bool ToArabic = Value == bdRightToLeft;
    if (Value == d->Language || (BiDiModeOf(Form) == bdRightToLeft) == ToArabic)
        return;
    d->Language = Value;
    SetBiDiModeOf(Form, ToArabic ? bdRightToLeft : bdLeftToRight);
    Form->setWindowTitle(ToArabic ? d->CaptionA : d->CaptionE);
    d->BiMenuItems.UpdateAllMenus();
    MirrorChildren(Form);
    if (WasVisible) {
        Frame->show();
        if (WasActive)
            d->Activate();
    }
    if (WasActive && OnLangChange)
        OnLangChange(this);
}

void TQxForm::Loaded()
{
    d->BiMenuItems.ResolveMenuItems();
    WatchFrame();
    d->ShowHooked = true;
    if (d->Options.testFlag(FoAutoCenter))
        d->ActivateHooked = true;
    AdjustFormPos();
    d->OtherHooksInstalled = true;
    SetLang(Application()->BiDiMode() == bdRightToLeft ? bdRightToLeft : bdLeftToRight);
}

void TQxForm::AdjustFormPos()
{
    QWidget* Frame = d->Frame();
    if (!Frame)
        return;
    const QString Section = d->Section(this);
    const auto ReadInt = [&Section](const char* Key, int Default) {
        return AsInteger(ReadSetting(Section, QLatin1String(Key), Default).toString());
    };
    int Left = Frame->x(), Top = Frame->y(), Width = Frame->width(), Height = Frame->height();
    if (d->Options.testFlag(FoSaveSize)) {
        // Only a real size replaces the current one; 0 (or a damaged value) keeps it.
        const QSize Minimum = ConstrainedMinimum(Frame);
        if (const int W = ReadInt("Width", Minimum.width()); W > 0)
            Width = W;
        if (const int H = ReadInt("Height", Minimum.height()); H > 0)
            Height = H;
    }
    if (d->Options.testFlag(FoSavePosition)) {
        Left = ReadInt("Left", 0);
        Top = ReadInt("Top", 0);
    }
    if (d->Options.testFlag(FoAutoCenter) || (Left == 0 && Top == 0)) {
        const QSize Room = d->Room();
        Left = (Room.width() - Width) / 2;
        Top = (Room.height() - Height) / 3;
    }
    Frame->move(Left, Top);
    Frame->resize(Width, Height);
    if (d->Options.testFlag(FoSaveSize)
        && AsBoolean(ReadSetting(Section, QStringLiteral("Maximized"), false).toString()))
        Frame->setWindowState(Frame->windowState() | Qt::WindowMaximized);
    d->Remember();
}

void TQxForm::DoSavePos()
{
    if (!d->Options.testFlag(FoSavePosition))
        return;
    d->Remember();
    const QString Section = d->Section(this);
    SaveSetting(Section, QStringLiteral("Left"), d->Placement.x());
    SaveSetting(Section, QStringLiteral("Top"), d->Placement.y());
}

void TQxForm::DoSaveSize()
{
    if (!d->Options.testFlag(FoSaveSize))
        return;
    d->Remember();
    const QString Section = d->Section(this);
    SaveSetting(Section, QStringLiteral("Width"), d->Placement.width());
    SaveSetting(Section, QStringLiteral("Height"), d->Placement.height());
    SaveSetting(Section, QStringLiteral("Maximized"), d->Maximized);
}

bool TQxForm::MyOnActivate(QObject* Sender)
{
    Q_UNUSED(Sender)
    if (!d->FirstStart)
        return false;
    d->FirstStart = false;
    if (d->Options.testFlag(FoRefreshData) && OwnerForm()) {
        for (TDataSet* DataSet : OwnerForm()->findChildren<TDataSet*>()) {
            if (DataSet->Modified())
                continue;
            try {
                DataSet->Refresh();
            } catch (...) {
                // A closed or failing dataset keeps what it shows.
            }
        }
    }
    return true;
}

void TQxForm::MyOnShow(QObject* Sender)
{
    if (!d->FirstStart)
        return;
    AdjustFormPos();
    if (!BeforeOpen)
        return;
    bool Cancel = false;
    BeforeOpen(Sender, Cancel);
    if (!Cancel) {
        d->Opened = true;
        return;
    }
    PostClose(d->Frame());
    while (QGuiApplication::overrideCursor())
        QGuiApplication::restoreOverrideCursor();
}

void TQxForm::MyOnResize(QObject* Sender)
{
    Q_UNUSED(Sender)
    // Painting happens only inside a paint event: ask for one.
    if (QWidget* Form = OwnerForm())
        Form->update();
}

void TQxForm::MyOnCloseQuery(QObject* Sender, bool& CanClose)
{
    Q_UNUSED(Sender)
    QWidget* Form = OwnerForm();
    if (!Form)
        return;
    QString Culprit;
    if (d->Options.testFlag(FoCheckModified)) {
        for (QObject* Child : Form->findChildren<QObject*>()) {
            const auto* DataSet = qobject_cast<TDataSet*>(Child);
            const auto* Source = qobject_cast<TDataSource*>(Child);
            if ((DataSet && DataSet->Modified())
                || (Source && (Source->State() == dsEdit || Source->State() == dsInsert))) {
                Culprit = Child->objectName();
                CanClose = false;
                break;
            }
        }
    }
    if (!CanClose)
        RaiseError(Culprit + LineBreak
                   + (BiDiModeOf(Form) == bdRightToLeft
                          ? QStringLiteral("من فضلك قم بحفظ أو إهمال التعديلات أولاً.")
                          : QStringLiteral("Please save or cancel changes first.")));
}

void TQxForm::MyOnClose(QObject* Sender, TCloseAction& Action)
{
    Q_UNUSED(Sender)
    if (d->Options.testFlag(FoAutoFree))
        Action = caFree;
}

void TQxForm::MyPaint(QObject* Sender)
{
    Q_UNUSED(Sender)
    QWidget* Form = OwnerForm();
    if (!Form || d->Texture.isNull())
        return;
    QPainter Painter(Form);
    const QRect Client = Form->rect();
    if (!d->Tile) {
        Painter.drawPixmap(Client, d->Texture);
        return;
    }
    // One partial tile past each edge, as the row and column loops include the edge.
    const QSize Tile = d->Texture.deviceIndependentSize().toSize();
    if (Tile.isEmpty())
        return;
    for (int X = 0; X <= Client.width(); X += Tile.width())
        for (int Y = 0; Y <= Client.height(); Y += Tile.height())
            Painter.drawPixmap(X, Y, d->Texture);
}

bool TQxForm::HandleClose(QCloseEvent* Event)
{
    QWidget* Form = OwnerForm();
    bool CanClose = true;
    MyOnCloseQuery(Form, CanClose);
    TCloseAction Action = caHide;
    if (CanClose)
        MyOnClose(Form, Action);
    if (!CanClose || Action == caNone) {
        Event->ignore();
        return true;
    }
    if (Action == caMinimize) {
        Event->ignore();
        if (QWidget* Frame = d->Frame())
            Frame->showMinimized();
        return true;
    }
    if (Action == caFree)
        Form->setAttribute(Qt::WA_DeleteOnClose);
    return false;
}

bool TQxForm::HandleFormEvent(QEvent* Event)
{
    QWidget* Form = d->Form;
    switch (Event->type()) {
    case QEvent::Polish:
        if (!IsLoaded())
            Kesh::EndLoading(Form);
        return false;
    case QEvent::Show:
        if (!IsLoaded())
            Kesh::EndLoading(Form);
        d->Remember();
        if (!d->ShowHooked || Event->spontaneous())
            return false;
        MyOnShow(Form);
        // A sub-window follows its widget's show: it must see the event.
        return !SubWindowOf(Form);
    case QEvent::WindowActivate:
        return d->ActivateHooked && !MyOnActivate(Form);
    case QEvent::Paint:
        if (!d->OtherHooksInstalled)
            return false;
        MyPaint(Form);
        return true;
    case QEvent::Resize:
        d->Remember();
        if (d->OtherHooksInstalled)
            MyOnResize(Form);
        return false;
    case QEvent::Move:
    case QEvent::Hide:
    case QEvent::WindowStateChange:
        d->Remember();
        return false;
    case QEvent::ParentChange:
        WatchFrame();
        return false;
    case QEvent::Close:
        return d->OtherHooksInstalled && HandleClose(static_cast<QCloseEvent*>(Event));
    case QEvent::KeyPress:
        // Escape makes a dialog reject() with no close event, past the close checks;
        // close() runs them and then rejects the dialog all the same.
        if (d->OtherHooksInstalled && qobject_cast<QDialog*>(Form)
            && static_cast<QKeyEvent*>(Event)->matches(QKeySequence::Cancel)) {
            Form->close();
            return true;
        }
        return false;
    default:
        return false;
    }
}

bool TQxForm::eventFilter(QObject* Watched, QEvent* Event)
{
    if (d->FormGone || !d->Form)
        return false;
    if (Watched != d->Form) {
        if (Watched == d->SubWindow && !d->FrameGone
            && (Event->type() == QEvent::Move || Event->type() == QEvent::Resize
                || Event->type() == QEvent::WindowStateChange || Event->type() == QEvent::Hide))
            d->Remember();
        return false;
    }
    // No exception may leave an event: a refusal (RaiseError) was already shown, any other
    // library error is shown here; either way the event ends here and a close is refused.
    try {
        return HandleFormEvent(Event);
    } catch (const EAbort&) {
    } catch (const Exception& E) {
        ShowError(E.Message);
    }
    if (Event->type() == QEvent::Close)
        Event->ignore();
    return true;
}

// ---------------------------------------------------------------- TQxBiDiStrings

TQxBiDiStrings::TQxBiDiStrings(QObject* AOwner) : QObject(AOwner) {}

TQxBiDiStrings::~TQxBiDiStrings() = default;

// ---------------------------------------------------------------- FocusOnControl

namespace {

// Not hidden below its window; the window's own visibility does not count, so a form
// can be prepared before it is shown.
bool Showing(const QWidget* W)
{
    return W && (W->isWindow() || W->isVisibleTo(W->window()));
}

bool Qualifies(const QWidget* W)
{
    return W && !W->isWindow() && W->isEnabled() && (W->focusPolicy() & Qt::TabFocus) && Showing(W)
        && Showing(W->parentWidget());
}

// The position of W in its window's tab order.
int TabRank(const QWidget* W)
{
    const QWidget* Window = W->window();
    int Rank = 0;
    for (const QWidget* X = Window->nextInFocusChain(); X && X != Window && Rank < 1000000;
         X = X->nextInFocusChain(), ++Rank)
        if (X == W)
            return Rank;
    return 1000000;
}

QList<QWidget*> ChildControls(const QWidget* Container)
{
    QList<QWidget*> Children;
    for (QWidget* C : Container->findChildren<QWidget*>(Qt::FindDirectChildrenOnly))
        if (!C->isWindow())
            Children << C;
    return Children;
}

// The qualifying child with the lowest tab order (Skip left out), else the first child.
QWidget* FirstChild(const QWidget* Container, const QWidget* Skip)
{
    QWidget* Best = nullptr;
    int BestRank = 999999;
    const QList<QWidget*> Children = ChildControls(Container);
    for (QWidget* C : Children) {
        if (C == Skip || !Qualifies(C))
            continue;
        if (const int Rank = TabRank(C); Rank < BestRank) {
            Best = C;
            BestRank = Rank;
        }
    }
    if (Best)
        return Best;
    for (QWidget* C : Children)
        if (C != Skip)
            return C;
    return nullptr;
}

void FocusFrom(QWidget* Control, int Depth);

// From container P to its neighbours: the first control of P's parent, or inside it.
void Climb(QWidget* P, int Depth)
{
    if (!P || P->isWindow() || !P->parentWidget())
        return;
    QWidget* C = FirstChild(P->parentWidget(), P);
    if (!C)
        return;
    if (!ChildControls(C).isEmpty())
        FocusFrom(FirstChild(C, nullptr), Depth + 1);
    else if (Qualifies(C))
        C->setFocus(Qt::OtherFocusReason);
}

void FocusFrom(QWidget* Control, int Depth)
{
    // Neighbouring containers can send the search back and forth: bound it.
    if (!Control || Depth > 16)
        return;
    QWidget* Candidate = Control;
    for (int Step = 0; Step < 10000; ++Step) {
        if (Qualifies(Candidate)) {
            Candidate->setFocus(Qt::OtherFocusReason);
            return;
        }
        QWidget* Parent = Candidate->parentWidget();
        if (!Parent)
            return;
        if (!Showing(Parent)) {
            Climb(Parent, Depth);
            return;
        }
        Candidate = NextControlIn(Parent, Candidate, true);
        if (Candidate == Control)
            return;
        if (!Candidate) {
            Climb(Control->parentWidget(), Depth);
            return;
        }
    }
}

} // namespace

void FocusOnControl(QWidget* Control)
{
    try {
        FocusFrom(Control, 0);
    } catch (...) {
        // Focusing is a courtesy; it never ends the caller's work.
    }
}

} // namespace Kesh
