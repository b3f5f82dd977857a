// Fuzzes the text readers of the integer date and time fields and the classic date/time
// patterns with any UTF-8 text: the fields may only raise EDatabaseError, a value they
// accept shows as text that reads back to the same value, and FormatDateTime never fails.
#include <Kesh.h>
#include <Kesh_dbControls.h>
#include "platform/data/client_dataset.h"

#include <QCoreApplication>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace {

using namespace Kesh;

// One dataset for the whole run, in insert state, with one field of each class.
struct Fields
{
    TClientDataSet Ds;
    TQxDateField* Day = new TQxDateField(&Ds);
    TQxTimeField* At = new TQxTimeField(&Ds);
    Fields()
    {
        Day->SetFieldName(QStringLiteral("Day"));
        At->SetFieldName(QStringLiteral("At"));
        Ds.FieldDefs().Add(QStringLiteral("Day"), ftInteger);
        Ds.FieldDefs().Add(QStringLiteral("At"), ftSmallint);
        Ds.CreateDataSet();
        Ds.Append();
    }
};

Fields& TheFields()
{
    static Fields* Instance = new Fields;
    return *Instance;
}

// Sets Text; on success the field's own text must read back to the same value.
template <class F>
void ReadBack(F* Field, const QString& Text)
{
    try {
        Field->SetAsString(Text);
    } catch (const EDatabaseError&) {
        return;
    }
    const QVariant Value = Field->Value();
    const QString Shown = Field->AsString();
    Field->SetAsString(Shown);
    if (Field->Value() != Value)
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* Data, size_t Size)
{
    if (Size < 1)
        return 0;
    static int Argc = 1;
    static char Name[] = "fuzz_integer_fields";
    static char* Argv[] = {Name, nullptr};
    static QCoreApplication App(Argc, Argv);
    // The first byte picks the language and the clock of the time field.
    Application()->SetBiDiMode(Data[0] & 1 ? bdRightToLeft : bdLeftToRight);
    Fields& F = TheFields();
    F.At->SetFormat24(Data[0] & 2);
    const QString Text = QString::fromUtf8(reinterpret_cast<const char*>(Data + 1), int(Size - 1));
    ReadBack(F.Day, Text);
    ReadBack(F.At, Text);
    try {
        F.Day->StringToDate(Text);
    } catch (const EDatabaseError&) {
    }
    // Any pattern with a value taken from the text's bytes, inside and outside the calendar.
    double Value = 0;
    if (Size >= 9)
        std::memcpy(&Value, Data + 1, sizeof Value);
    (void)FormatDateTime(Text, Value);
    (void)FormatDateTime(Text, 45356.6041666);
    return 0;
}
