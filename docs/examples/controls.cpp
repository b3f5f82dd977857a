// A data-entry form of the bilingual controls: edits with typing rules, a time edit, a
// look-up list, labels, a check box that enables its edit, a radio group, a panel and
// buttons with form-wide hot keys.
#include <Kesh_Controls.h>
#include <QGridLayout>

using namespace Kesh;

int main(int argc, char** argv)
{
    TQxApplication app(argc, argv);
    QWidget form;
    form.setObjectName(QStringLiteral("FormOrder"));
    auto* manager = new TQxForm(&form, QStringLiteral("QxForm1"));
    manager->SetCaptionA(QStringLiteral("طلب"));
    manager->SetCaptionE(QStringLiteral("Order"));
    auto* grid = new QGridLayout(&form);

    //! [panel]
    auto* header = new TQxPanel(&form);            // a title band with a gradient
    header->SetCaptionA(QStringLiteral("طلب جديد"));
    header->SetCaptionE(QStringLiteral("New order"));
    header->SetGradFill(true);
    header->setFixedHeight(32);
    grid->addWidget(header, 0, 0, 1, 2);
    //! [panel]

    //! [edits]
    auto* qty = new TQxEdit(&form);
    qty->SetDataEntry(DeInteger);                  // only digits reach the text
    qty->SetFixedSize(1);                          // standard width step 1: 101 pixels
    auto* price = new TQxEdit(&form);
    price->SetDataEntry(DeFloat);                  // digits and the decimal separator;
                                                   // "Incorrect number." when leaving
    auto* delivery = new TQxTimeEdit(&form);       // hhmm, shown "HH:MM" once left
    delivery->SetCheckTime(true);
    delivery->SetAsInteger(1030);
    auto* day = new TQxEditButton(&form);          // "..." button inside the frame
    day->SetPickDate(true);                        // it opens the calendar on an integer date
    day->SetHotKey(QKeySequence(Qt::Key_F3));      // F3 anywhere on the form clicks it
    day->setText(QString::number(DateToInt(Date())));
    //! [edits]

    //! [labels]
    auto* qtyLabel = new TQxLabel(&form);
    qtyLabel->SetCaptionA(QStringLiteral("ال&كمية"));   // Alt+letter focuses FocusControl
    qtyLabel->SetCaptionE(QStringLiteral("&Quantity"));
    qtyLabel->SetFocusControl(qty);
    qtyLabel->SetAutoSize(false);                  // in a layout: let the layout size it
    //! [labels]
    auto addRow = [&](QWidget* control, const char* arabic, const char* english) {
        auto* label = new TQxLabel(&form);
        label->SetCaptionA(QString::fromUtf8(arabic));
        label->SetCaptionE(QString::fromUtf8(english));
        label->SetAutoSize(false);
        label->SetFocusControl(control);
        const int row = grid->rowCount();
        grid->addWidget(label, row, 0);
        grid->addWidget(control, row, 1, Qt::AlignLeft);   // the leading side, mirrored in Arabic
    };

    //! [lookup]
    auto* city = new TQxFixedDropList(&form);      // the user sees captions, code sees keys
    city->SetValues({QStringLiteral("RUH"), QStringLiteral("JED"), QStringLiteral("DMM")});
    city->SetItems_a({QStringLiteral("الرياض"), QStringLiteral("جدة"), QStringLiteral("الدمام")});
    city->SetItems_e({QStringLiteral("Riyadh"), QStringLiteral("Jeddah"), QStringLiteral("Dammam")});
    city->SetLimitToList(true);                    // a text matching no caption is refused
    city->SetData(QStringLiteral("JED"));          // shows Jeddah or جدة
    //! [lookup]

    //! [choices]
    auto* discount = new TQxEdit(&form);
    discount->SetDataEntry(DeInteger);
    auto* hasDiscount = new TQxCheckBox(&form);
    hasDiscount->SetCaptionA(QStringLiteral("خصم"));
    hasDiscount->SetCaptionE(QStringLiteral("Discount"));
    hasDiscount->SetControl(discount);             // discount->isEnabled() == checked, always

    auto* payment = new TQxRadioGroup(&form);
    payment->SetCaptionA(QStringLiteral("الدفع"));
    payment->SetCaptionE(QStringLiteral("Payment"));
    payment->SetItems_a({QStringLiteral("نقدا"), QStringLiteral("آجل"), QStringLiteral("بطاقة")});
    payment->SetItems_e({QStringLiteral("Cash"), QStringLiteral("Credit"), QStringLiteral("Card")});
    payment->SetColumns(3);
    payment->SetItemIndex(0);
    //! [choices]

    //! [buttons]
    auto* save = new TQxBitBtn(&form);
    save->SetCaptionA(QStringLiteral("حفظ"));
    save->SetCaptionE(QStringLiteral("Save"));
    save->SetHintA(QStringLiteral("حفظ الطلب"));
    save->SetHintE(QStringLiteral("Save the order"));
    save->SetHotKey(QKeySequence(Qt::Key_F10));    // F10 from any control of the form
    QObject::connect(save, &QAbstractButton::clicked, [=] {
        if (qty->IsEmpty())
            RaiseError(BiStr(QStringLiteral("أدخل الكمية."), QStringLiteral("Enter the quantity.")), qty);
        const double total = qty->AsInteger() * price->AsFloat();
        ShowMsg(BiStr(QStringLiteral("الإجمالي: "), QStringLiteral("Total: ")) + FormatFloat(QStringLiteral("#,##0.00"), total)
                + QStringLiteral(" (") + city->Data() + QStringLiteral(")"));
    });
    //! [buttons]

    grid->addWidget(qtyLabel, 1, 0);
    grid->addWidget(qty, 1, 1, Qt::AlignLeft);
    addRow(price, "ال&سعر", "&Price");
    addRow(delivery, "وقت التسليم", "Delivery");
    addRow(day, "التاريخ (F3)", "Date (F3)");
    addRow(city, "المدينة", "City");
    grid->addWidget(hasDiscount, grid->rowCount(), 0);
    grid->addWidget(discount, grid->rowCount() - 1, 1, Qt::AlignLeft);
    grid->addWidget(payment, grid->rowCount(), 0, 1, 2);
    grid->addWidget(save, grid->rowCount(), 1, Qt::AlignRight);
    grid->setColumnStretch(1, 1);
    grid->setRowStretch(grid->rowCount(), 1);

    //! [show]
    EndLoading(&form);                             // every component finishes its building
    form.show();
    manager->SetLang(bdRightToLeft);               // the form in Arabic, mirrored
    Application()->SetBiDiMode(bdRightToLeft);     // and everything else
    return app.exec();
    //! [show]
}
