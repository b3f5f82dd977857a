#include "settings_form.h"
#include "sample_db.h"
#include "ui_settings_form.h"

#include <Kesh.h>
#include <Kesh_AdoDB.h>
#include <Kesh_Controls.h>

#include <QCloseEvent>
#include <QStyle>

using namespace Kesh;

namespace Demo {

namespace {

// One field of the form: its setting's number and stored name, and whether it may be empty.
struct TSettingField
{
    int Id;
    const char* Name;
    bool Required;
};

const TSettingField Fields[] = {
    {SetCompanyA, "Company name (Arabic)", true}, {SetCompanyE, "Company name (English)", true},
    {SetCurrencyA, "Currency name (Arabic)", true}, {SetCurrencyE, "Currency name (English)", true},
    {SetSubUnitA, "Sub-unit name (Arabic)", false}, {SetSubUnitE, "Sub-unit name (English)", false},
};

} // namespace

class TSettingsFormPrivate
{
public:
    TDemoContext& Context;
    Ui::SettingsForm Form;
    TQxEdit* Edits[6] = {};
    QString Stored[6];
    bool Closing = false;

    explicit TSettingsFormPrivate(TDemoContext& C) : Context(C) {}
};

TSettingsForm::TSettingsForm(TDemoContext& Context, QWidget* Parent)
    : QWidget(Parent, Qt::Window), d(new TSettingsFormPrivate(Context))
{
    // Made in Qt Designer (settings_form.ui): captions, widths, hot keys, tab order and the
    // form manager's captions are stored there.
    d->Form.setupUi(this);
    TQxEdit* const Edits[] = {d->Form.edtCompanyA, d->Form.edtCompanyE, d->Form.edtCurrencyA,
                              d->Form.edtCurrencyE, d->Form.edtSubUnitA, d->Form.edtSubUnitE};
    std::copy(std::begin(Edits), std::end(Edits), d->Edits);
    d->Form.bbnSave->setIcon(style()->standardIcon(QStyle::SP_DialogSaveButton));
    d->Form.bbnCancel->setIcon(style()->standardIcon(QStyle::SP_DialogCancelButton));
    connect(d->Form.bbnSave, &QPushButton::clicked, this, [this] {
        if (Save())
            close();
    });
    connect(d->Form.bbnCancel, &QPushButton::clicked, this, &TSettingsForm::Cancel);
    EndLoading(this);
    Load();
}

TSettingsForm::~TSettingsForm() = default;

void TSettingsForm::Load()
{
    TQxAdoConnection* Conn = d->Context.Conn;
    for (int I = 0; I < 6; ++I) {
        d->Stored[I] = Conn ? Conn->ReadSetting(Fields[I].Id, QString()).toString() : QString();
        d->Edits[I]->setText(d->Stored[I]);
    }
}

bool TSettingsForm::Modified() const
{
    for (int I = 0; I < 6; ++I)
        if (d->Edits[I]->text() != d->Stored[I])
            return true;
    return false;
}

bool TSettingsForm::Save()
{
    for (int I = 0; I < 6; ++I) {
        if (Fields[I].Required && d->Edits[I]->text().trimmed().isEmpty()) {
            ShowError(BiStr(QStringLiteral("هذا الاسم مطلوب."), QStringLiteral("This name is required.")), d->Edits[I]);
            return false;
        }
    }
    TQxAdoConnection* Conn = d->Context.Conn;
    if (!Conn || !Conn->Connected()) {
        ShowError(BiStr(QStringLiteral("لا يوجد اتصال بقاعدة البيانات."), QStringLiteral("There is no database connection.")));
        return false;
    }
    try {
        for (int I = 0; I < 6; ++I) {
            const QString Value = d->Edits[I]->text().trimmed();
            Conn->SaveSetting(Fields[I].Id, QLatin1String(Fields[I].Name), Value);
            d->Stored[I] = Value;
            d->Edits[I]->setText(Value);
        }
    } catch (const Exception& E) {
        ShowError(E.Message);
        return false;
    }
    Q_EMIT Saved();
    return true;
}

void TSettingsForm::Cancel()
{
    for (int I = 0; I < 6; ++I)
        d->Edits[I]->setText(d->Stored[I]);
    close();
}

void TSettingsForm::closeEvent(QCloseEvent* Event)
{
    // The form manager has let the close through (this form holds no dataset); the fields
    // are checked here in the same words.
    if (Modified()) {
        Event->ignore();
        ShowError(BiStr(QStringLiteral("من فضلك قم بحفظ أو إهمال التعديلات أولاً."),
                        QStringLiteral("Please save or cancel changes first.")));
        return;
    }
    QWidget::closeEvent(Event);
}

} // namespace Demo
