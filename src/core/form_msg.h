// Kesh for Qt — TKeshFormMsg: the small modal form behind the message routines.
#pragma once
#include "platform/kesh_global.h"
#include <QDialog>

class QLabel;
class QPushButton;

namespace Kesh {

/// The message form: one 64×64 icon, the text, and the buttons Ok, Cancel, Yes and No,
/// laid out for the application's language and sized to the text.
///
/// The constructor does the whole layout; the caller hides the buttons it does not need,
/// places the rest in `Toolbar`, sets the caption and calls exec(). exec() gives 1 for Ok
/// and Yes, 2 for Cancel and No, and QDialog's 0 (Rejected) when the form is closed another
/// way (Escape). The components are public, under the names they carry as objectName.
class KESH_EXPORT TKeshFormMsg : public QDialog
{
    Q_OBJECT

public:
    /// The icon kinds passed to the constructor.
    enum TMsgKind { mkQuestion = 0, mkError = 1, mkInformation = 2 };
    Q_ENUM(TMsgKind)

    /// Width and height of every button, and of the icons (square).
    static constexpr int ButtonWidth = 80;
    static constexpr int ButtonHeight = 32;
    static constexpr int IconSize = 64;

    /// Builds the form for Msg with the icon of Kind (1 error, 2 or more information,
    /// anything below 1 question), sized to the text and placed a third from the top.
    TKeshFormMsg(QWidget* AOwner, int Kind, const QString& Msg);
    ~TKeshFormMsg() override;

    /// The shared handler of the four buttons: Ok and Yes end the form with 1, Cancel and No with 2.
    void Button_Click(QObject* Sender);

    QWidget* const P1;          ///< the upper part: the icon and the text
    QLabel* const IcInfo;       ///< information icon
    QLabel* const IcError;      ///< error icon
    QLabel* const IcQuestion;   ///< question icon
    QLabel* const Info;         ///< the message text (plain text, word-wrapped)
    QWidget* const Toolbar;     ///< the bottom strip, 34 px high; its buttons are placed by hand
    QPushButton* const btnOk;
    QPushButton* const btnCancel;
    QPushButton* const btnYes;
    QPushButton* const btnNo;

private:
    void BuildLayout();
    void ApplyLanguage();
    void FitToText(const QString& Msg);
    void LayOutNow();
};

} // namespace Kesh
