#include "browser_filter_form.h"
#include "browser_buttons_p.h"
#include "qx_ado_browser.h"
#include "controls/buttons.h"
#include "controls/edit.h"
#include "controls/form_manager.h"
#include "controls/label.h"
#include "core/messages.h"
#include "platform/widgets.h"

#include <QHBoxLayout>

namespace Kesh {

namespace {
constexpr int LabelLeft = 8;
constexpr int LabelWidth = 100;
constexpr int EditLeft = 116;
constexpr int RowHeight = 24;
constexpr int ToolBarHeight = 40;
constexpr int FormWidth = EditLeft + 205 + 12;  // the edit's fixed-size step 2 is 205 wide
} // namespace

TFormAdoBrowserFilter::TFormAdoBrowserFilter(QWidget* AOwner, TQxAdoBrowser* Browser)
    : QDialog(AOwner, Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowCloseButtonHint)
    , Fx(nullptr)
    , ToolBar(new QWidget(this))
    , m_browser(Browser)
{
    setObjectName(QStringLiteral("FormAdoBrowserFilter"));
    ToolBar->setObjectName(QStringLiteral("ToolBar"));
    btnOk = NewBrowserButton(ToolBar, "btnOk", "browser_ok", QStringLiteral("موافق"), QStringLiteral("OK"),
                             QStringLiteral("ENTER"), QStringLiteral("ENTER"), QKeySequence(Qt::Key_F10));
    btnCancel = NewBrowserButton(ToolBar, "btnCancel", "browser_cancel", QStringLiteral("إلغاء"),
                                 QStringLiteral("Cancel"), QStringLiteral("ESCAPE"), QStringLiteral("ESCAPE"),
                                 QKeySequence(Qt::Key_Escape));
    btnOk->SetHintA(QStringLiteral("[F10] تطبيق"));
    btnOk->SetHintE(QStringLiteral("[F10] Apply"));
    auto* Row = new QHBoxLayout(ToolBar);
    Row->setContentsMargins(6, 4, 6, 4);
    Row->addStretch(1);
    Row->addWidget(btnOk);
    Row->addWidget(btnCancel);
    for (TQxSpeedButton* Button : {btnOk, btnCancel})
        connect(Button, &QAbstractButton::clicked, this, [this, Button] { Button_Click(Button); });

    Fx = new TQxForm(this, QStringLiteral("Fx"));
    Fx->SetOptions(FoSavePosition);
    Fx->BeforeOpen = [this](QObject* Sender, bool& Cancel) { FxBeforeOpen(Sender, Cancel); };
    BuildControls();
}

TFormAdoBrowserFilter::~TFormAdoBrowserFilter() = default;

void TFormAdoBrowserFilter::FxBeforeOpen(QObject*, bool&)
{
    m_criteria.clear();
    if (QWidget* First = findChild<QWidget*>(QStringLiteral("D1")))
        First->setFocus();
}

void TFormAdoBrowserFilter::BuildControls()
{
    if (m_built || !m_browser)
        return;
    m_built = true;
    Fx->SetCaptionA(QStringLiteral(" فلتر: ") + m_browser->GetCaption_a());
    Fx->SetCaptionE(QStringLiteral(" Filter: ") + m_browser->GetCaption_e());
    const int Count = m_browser->BrowserItems()->Count();
    int Top = 8;
    QWidget* Previous = nullptr;
    for (int n = 1; n <= Count; ++n) {
        const TQxAdoBrowserItem* Item = m_browser->BrowserItems()->Items(n - 1);
        Top = (n - 1) * RowHeight + 8;
        auto* L = new TQxLabel(this);
        L->setObjectName(QStringLiteral("L%1").arg(n));
        L->SetTransparent(true);
        L->SetAlignment(Qt::AlignTrailing | Qt::AlignVCenter);
        L->SetCaptionA(Item->GetCaption_a());
        L->SetCaptionE(Item->GetCaption_e());
        L->setGeometry(LabelLeft, Top, LabelWidth, 21);
        auto* D = new TQxEdit(this);
        D->setObjectName(QStringLiteral("D%1").arg(n));
        D->SetFixedSize(2);
        D->move(EditLeft, Top);
        L->SetFocusControl(D);
        if (Previous)
            setTabOrder(Previous, D);
        Previous = D;
    }
    const int Height = Top + 104;
    setFixedSize(FormWidth, Height);
    ToolBar->setGeometry(0, Height - ToolBarHeight, FormWidth, ToolBarHeight);
    if (Application()->BiDiMode() == bdRightToLeft) {
        SetBiDiModeOf(this, bdRightToLeft);
        MirrorChildren(this);
    }
}

bool TFormAdoBrowserFilter::BuildCriteria()
{
    m_criteria.clear();
    if (!m_browser)
        return true;
    const bool RightToLeft = BiDiModeOf(this) == bdRightToLeft;
    QString Built;
    for (int n = 1; n <= m_browser->BrowserItems()->Count(); ++n) {
        auto* D = findChild<TQxEdit*>(QStringLiteral("D%1").arg(n));
        if (!D)
            RaiseError(QStringLiteral("Unhandled exception: control not found (D%1).").arg(n));
        if (D->IsEmpty())
            continue;
        QString Error;
        const QString Term = m_browser->FilterTerm(n - 1, D->text(), RightToLeft, &Error);
        if (!Error.isEmpty()) {
            ShowError(Error);
            D->setFocus();
            D->selectAll();
            return false;
        }
        if (!Built.isEmpty())
            Built += QStringLiteral(" AND ");
        Built += Term;
    }
    m_criteria = Built;
    return true;
}

void TFormAdoBrowserFilter::Button_Click(QObject* Sender)
{
    if (Sender == btnOk) {
        if (BuildCriteria())
            done(1);
    } else if (Sender == btnCancel) {
        done(2);
    }
}

} // namespace Kesh
