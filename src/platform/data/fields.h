// Kesh for Qt — TField and its typed descendants: one column of a dataset's current row.
#pragma once
#include "data_types.h"
#include "../rtl/currency.h"
#include "../rtl/datetime.h"
#include <QByteArray>
#include <QMetaType>
#include <QObject>
#include <QString>
#include <QVariant>
#include <functional>
#include <memory>

namespace Kesh {

class TDataSet;
class TField;

using TFieldNotifyEvent = std::function<void(TField*)>;
/// Replaces the text of a field: Text is the result, DisplayText tells display from edit text.
using TFieldGetTextEvent = std::function<void(TField* Sender, QString& Text, bool DisplayText)>;
using TFieldSetTextEvent = std::function<void(TField* Sender, const QString& Text)>;

/// One column of a dataset, read and written at the dataset's active row.
///
/// A field is persistent when it is created in code before the dataset opens
/// (`auto f = new TIntegerField(ds); f->SetFieldName("Id");`): it binds to the column of
/// that name at Open and survives Close. Otherwise the dataset creates one field per
/// column at Open and frees it at Close.
///
/// Reading: the public `AsX()` getters call the protected virtual `GetAsX()`; writing:
/// `SetAsX()` are virtual themselves. Text goes through `GetText`/`SetText`, so a
/// descendant (an integer date shown as d-m-yyyy) overrides those few functions.
/// Writing outside dsEdit/dsInsert raises EDatabaseError "Dataset not in edit or insert mode".
/// A null value reads as a null QVariant of the field's type; AsString of null is "".
class KESH_EXPORT TField : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString FieldName READ FieldName WRITE SetFieldName)
    Q_PROPERTY(QString DisplayLabel READ DisplayLabel WRITE SetDisplayLabel)
    Q_PROPERTY(int DisplayWidth READ DisplayWidth WRITE SetDisplayWidth)
    Q_PROPERTY(QString DisplayFormat READ DisplayFormat WRITE SetDisplayFormat)
    Q_PROPERTY(QString EditFormat READ EditFormat WRITE SetEditFormat)
    Q_PROPERTY(Qt::Alignment Alignment READ Alignment WRITE SetAlignment)
    Q_PROPERTY(bool ReadOnly READ ReadOnly WRITE SetReadOnly)
    Q_PROPERTY(bool Visible READ Visible WRITE SetVisible)
    Q_PROPERTY(bool Required READ Required WRITE SetRequired)
    Q_PROPERTY(int Size READ Size WRITE SetSize)
    Q_PROPERTY(Kesh::DB::TFieldType DataType READ DataType)
    Q_PROPERTY(Kesh::DB::TFieldKind FieldKind READ FieldKind WRITE SetFieldKind)

public:
    /// A TDataSet as Owner also becomes the field's DataSet.
    explicit TField(QObject* Owner = nullptr);
    ~TField() override;

    TDataSet* DataSet() const;
    /// Attaches the field to a closed dataset (EDatabaseError on an open one).
    void SetDataSet(TDataSet* Value);

    QString FieldName() const;
    void SetFieldName(const QString& Value);
    TFieldType DataType() const;
    TFieldKind FieldKind() const;
    void SetFieldKind(TFieldKind Value);
    /// 1-based column of the rows the field is bound to; 0 while unbound.
    int FieldNo() const;
    /// Position in DataSet()->Fields(), or -1.
    int Index() const;
    /// Bytes the value takes in a classic record buffer (4 for an integer); 0 for variable sizes.
    int DataSize() const { return GetDataSize(); }

    int Size() const;
    void SetSize(int Value);
    /// DisplayLabel when set, else FieldName.
    QString DisplayName() const;
    QString DisplayLabel() const;
    void SetDisplayLabel(const QString& Value);
    /// Characters a grid column shows by default.
    int DisplayWidth() const;
    void SetDisplayWidth(int Value);
    /// FormatFloat pattern of numeric fields, date pattern (d, m, yyyy, hh, nn…) of date fields.
    QString DisplayFormat() const;
    void SetDisplayFormat(const QString& Value);
    /// Pattern of the edit text of numeric fields; DisplayFormat's is not used for editing.
    QString EditFormat() const;
    void SetEditFormat(const QString& Value);
    /// Numbers are right aligned, everything else left (leading) aligned.
    Qt::Alignment Alignment() const;
    void SetAlignment(Qt::Alignment Value);
    bool ReadOnly() const;
    void SetReadOnly(bool Value);
    bool Visible() const;
    void SetVisible(bool Value);
    bool Required() const;
    void SetRequired(bool Value);

    /// The dataset can be modified and the field is not read-only.
    bool CanModify() const;
    bool IsNull() const;
    /// Sets the value to null.
    void Clear();

    QString AsString() const { return GetAsString(); }
    virtual void SetAsString(const QString& Value);
    int AsInteger() const { return GetAsInteger(); }
    virtual void SetAsInteger(int Value);
    qint64 AsLargeInt() const { return GetAsLargeInt(); }
    virtual void SetAsLargeInt(qint64 Value);
    double AsFloat() const { return GetAsFloat(); }
    virtual void SetAsFloat(double Value);
    Kesh::Currency AsCurrency() const { return GetAsCurrency(); }
    virtual void SetAsCurrency(Kesh::Currency Value);
    bool AsBoolean() const { return GetAsBoolean(); }
    virtual void SetAsBoolean(bool Value);
    TDateTime AsDateTime() const { return GetAsDateTime(); }
    virtual void SetAsDateTime(TDateTime Value);
    QByteArray AsBytes() const { return GetAsBytes(); }
    virtual void SetAsBytes(const QByteArray& Value);
    /// The value as a QVariant of the field's type; a null QVariant of that type when null.
    QVariant AsVariant() const { return GetAsVariant(); }
    void SetAsVariant(const QVariant& Value) { SetVarValue(Value); }
    QVariant Value() const { return GetAsVariant(); }
    void SetValue(const QVariant& Value) { SetVarValue(Value); }

    /// The edit text (OnGetText, else GetText with DisplayText false).
    QString Text() const;
    /// Sets the value from edit text (OnSetText when assigned); empty text sets null.
    virtual void SetText(const QString& Value);
    /// The text shown in grids and labels (OnGetText, else GetText with DisplayText true).
    virtual QString DisplayText() const;
    /// Whether a typed character can belong to the field's text.
    virtual bool IsValidChar(QChar Ch) const;

    /// The value as last read from the rows (the row's value before the current edit).
    QVariant OldValue() const;
    /// The value being edited (equals Value outside edit and insert).
    QVariant NewValue() const;

    /// Asks the data links of the dataset to focus the control that edits this field.
    void FocusControl();

    TFieldNotifyEvent OnChange;    ///< after a new value is stored
    TFieldNotifyEvent OnValidate;  ///< before a new value is kept; it reads as the field's value; raise to refuse
    TFieldGetTextEvent OnGetText;
    TFieldSetTextEvent OnSetText;

    /// The QMetaType that values of the type are held in (int, qlonglong, double, QString…).
    static QMetaType ValueType(TFieldType Type);
    /// The Value that a field of Type shows for Raw, a value as read from the database.
    static QVariant ValueOf(TFieldType Type, const QVariant& Raw);

protected:
    virtual QString GetAsString() const;
    virtual int GetAsInteger() const;
    virtual qint64 GetAsLargeInt() const;
    virtual double GetAsFloat() const;
    virtual Kesh::Currency GetAsCurrency() const;
    virtual bool GetAsBoolean() const;
    virtual TDateTime GetAsDateTime() const;
    virtual QByteArray GetAsBytes() const;
    virtual QVariant GetAsVariant() const;
    /// Stores a QVariant after converting it to the field's type; invalid or null gives null.
    virtual void SetVarValue(const QVariant& Value);
    /// Text of the value: DisplayText true for display, false for editing. Null gives "".
    virtual void GetText(QString& Text, bool DisplayText) const;
    virtual int GetDataSize() const;

    void SetDataType(TFieldType Value);
    /// The value held in the row or edit buffer, unconverted; a null QVariant when none.
    QVariant RawValue() const;
    /// Checks the state and ReadOnly, runs OnValidate, stores, then OnChange and the links.
    void SetRawValue(const QVariant& Value);
    /// EDatabaseError "Cannot access field 'X' as type T".
    [[noreturn]] void AccessError(const QString& TypeName) const;
    /// EDatabaseError "'Text' is not a valid T value for field 'X'".
    [[noreturn]] void ConvertError(const QString& Text, const QString& TypeName) const;

private:
    friend class TDataSet;
    friend class TDataSetPrivate;
    void Bind(int Column, bool Dynamic);
    bool IsDynamic() const;
    std::unique_ptr<class TFieldPrivate> const d;
};

/// Text of up to Size characters (Size is informational: the database enforces it).
class KESH_EXPORT TStringField : public TField
{
    Q_OBJECT
public:
    explicit TStringField(QObject* Owner = nullptr);
protected:
    int GetDataSize() const override;
};

/// Unicode text; identical to TStringField here, where every string is Unicode.
class KESH_EXPORT TWideStringField : public TStringField
{
    Q_OBJECT
public:
    explicit TWideStringField(QObject* Owner = nullptr);
};

/// A GUID held as its "{xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx}" text.
class KESH_EXPORT TGuidField : public TStringField
{
    Q_OBJECT
public:
    explicit TGuidField(QObject* Owner = nullptr);
protected:
    /// Refuses text that is not a GUID.
    void SetVarValue(const QVariant& Value) override;
};

/// Base of the numbers: right aligned, DisplayFormat/EditFormat through FormatFloat.
class KESH_EXPORT TNumericField : public TField
{
    Q_OBJECT
public:
    explicit TNumericField(QObject* Owner = nullptr);
    /// Digits, signs, the decimal separator and the exponent letter.
    bool IsValidChar(QChar Ch) const override;
protected:
    /// The pattern GetText uses: DisplayFormat for display, EditFormat (empty) for editing.
    QString TextFormat(bool DisplayText) const;
    /// The whole number Value stands for (text parsed, floating point rounded half to even);
    /// raises for a value that is not one.
    qint64 IntegerOf(const QVariant& Value) const;
};

/// 32-bit integer within MinValue..MaxValue (both 0: the type's own range).
class KESH_EXPORT TIntegerField : public TNumericField
{
    Q_OBJECT
    Q_PROPERTY(int MinValue READ MinValue WRITE SetMinValue)
    Q_PROPERTY(int MaxValue READ MaxValue WRITE SetMaxValue)
public:
    explicit TIntegerField(QObject* Owner = nullptr);
    int MinValue() const { return m_minValue; }
    void SetMinValue(int Value) { m_minValue = Value; }
    int MaxValue() const { return m_maxValue; }
    void SetMaxValue(int Value) { m_maxValue = Value; }
protected:
    /// Text is read with TryStrToInt; out-of-range values raise the range error.
    void SetVarValue(const QVariant& Value) override;
    void GetText(QString& Text, bool DisplayText) const override;
    int GetDataSize() const override { return 4; }
    /// EDatabaseError "V is not a valid value for field 'X'. The allowed range is A to B".
    void CheckRange(qint64 Value) const;
    /// The type's own limits (Smallint and Word narrow them).
    void SetTypeRange(qint64 Min, qint64 Max) { m_typeMin = Min; m_typeMax = Max; }
private:
    int m_minValue = 0;
    int m_maxValue = 0;
    qint64 m_typeMin;
    qint64 m_typeMax;
};

/// 16-bit signed integer (-32768..32767).
class KESH_EXPORT TSmallintField : public TIntegerField
{
    Q_OBJECT
public:
    explicit TSmallintField(QObject* Owner = nullptr);
protected:
    int GetDataSize() const override { return 2; }
};

/// 16-bit unsigned integer (0..65535).
class KESH_EXPORT TWordField : public TIntegerField
{
    Q_OBJECT
public:
    explicit TWordField(QObject* Owner = nullptr);
protected:
    int GetDataSize() const override { return 2; }
};

/// An integer key the server fills in when a row is inserted.
class KESH_EXPORT TAutoIncField : public TIntegerField
{
    Q_OBJECT
public:
    explicit TAutoIncField(QObject* Owner = nullptr);
};

/// 64-bit integer.
class KESH_EXPORT TLargeintField : public TNumericField
{
    Q_OBJECT
public:
    explicit TLargeintField(QObject* Owner = nullptr);
protected:
    void SetVarValue(const QVariant& Value) override;
    void GetText(QString& Text, bool DisplayText) const override;
    int GetDataSize() const override { return 8; }
};

/// Double; text with up to Precision (15) significant digits.
class KESH_EXPORT TFloatField : public TNumericField
{
    Q_OBJECT
    Q_PROPERTY(bool Currency READ Currency WRITE SetCurrency)
    Q_PROPERTY(int Precision READ Precision WRITE SetPrecision)
public:
    explicit TFloatField(QObject* Owner = nullptr);
    /// Without a DisplayFormat the display text is money: "#,##0.00".
    bool Currency() const { return m_currency; }
    void SetCurrency(bool Value) { m_currency = Value; }
    int Precision() const { return m_precision; }
    void SetPrecision(int Value) { m_precision = Value; }
protected:
    /// Text is read with TryStrToFloat (FormatSettings' decimal separator).
    void SetVarValue(const QVariant& Value) override;
    void GetText(QString& Text, bool DisplayText) const override;
    int GetDataSize() const override { return 8; }
private:
    bool m_currency = false;
    int m_precision = 15;
};

/// A money amount (a float field with Currency set).
class KESH_EXPORT TCurrencyField : public TFloatField
{
    Q_OBJECT
public:
    explicit TCurrencyField(QObject* Owner = nullptr);
};

/// A fixed-point decimal; values are rounded to four decimals as Currency is.
class KESH_EXPORT TBCDField : public TFloatField
{
    Q_OBJECT
public:
    explicit TBCDField(QObject* Owner = nullptr);
protected:
    void SetVarValue(const QVariant& Value) override;
};

/// A decimal of any precision, held as a double here.
class KESH_EXPORT TFMTBCDField : public TFloatField
{
    Q_OBJECT
public:
    explicit TFMTBCDField(QObject* Owner = nullptr);
};

/// True/False; text from DisplayValues ("True;False" unless set).
class KESH_EXPORT TBooleanField : public TField
{
    Q_OBJECT
    Q_PROPERTY(QString DisplayValues READ DisplayValues WRITE SetDisplayValues)
public:
    explicit TBooleanField(QObject* Owner = nullptr);
    QString DisplayValues() const { return m_displayValues; }
    void SetDisplayValues(const QString& Value) { m_displayValues = Value; }
protected:
    QString GetAsString() const override;
    /// Text: the DisplayValues texts, "True"/"False" or a prefix of them, in any case.
    void SetVarValue(const QVariant& Value) override;
    void GetText(QString& Text, bool DisplayText) const override;
    int GetDataSize() const override { return 2; }
private:
    QString TrueText() const;
    QString FalseText() const;
    QString m_displayValues;
};

/// Date and time. Text without DisplayFormat is ISO 8601 ("2024-03-05 14:30:00"; the time
/// is left out at midnight); DisplayFormat takes the classic patterns (d-m-yyyy, hh:nn).
class KESH_EXPORT TDateTimeField : public TField
{
    Q_OBJECT
public:
    explicit TDateTimeField(QObject* Owner = nullptr);
protected:
    QString GetAsString() const override;
    /// Accepts QDate/QTime/QDateTime, a TDateTime number, or ISO or locale text.
    void SetVarValue(const QVariant& Value) override;
    void GetText(QString& Text, bool DisplayText) const override;
    int GetDataSize() const override { return 8; }
    /// Text of a value without a format (ISO 8601 for this type).
    virtual QString DefaultText(TDateTime Value) const;
};

/// Date only ("2024-03-05").
class KESH_EXPORT TDateField : public TDateTimeField
{
    Q_OBJECT
public:
    explicit TDateField(QObject* Owner = nullptr);
protected:
    QString DefaultText(TDateTime Value) const override;
    int GetDataSize() const override { return 4; }
};

/// Time of day only ("14:30:00").
class KESH_EXPORT TTimeField : public TDateTimeField
{
    Q_OBJECT
public:
    explicit TTimeField(QObject* Owner = nullptr);
protected:
    QString DefaultText(TDateTime Value) const override;
    int GetDataSize() const override { return 4; }
};

/// An SQL time stamp; behaves as TDateTimeField, milliseconds kept.
class KESH_EXPORT TSQLTimeStampField : public TDateTimeField
{
    Q_OBJECT
public:
    explicit TSQLTimeStampField(QObject* Owner = nullptr);
protected:
    int GetDataSize() const override { return 16; }
};

/// Raw bytes of a fixed size (ftBytes); AsString and Text are hexadecimal.
class KESH_EXPORT TBytesField : public TField
{
    Q_OBJECT
public:
    explicit TBytesField(QObject* Owner = nullptr);
protected:
    QString GetAsString() const override;
    /// Text is read as hexadecimal.
    void SetVarValue(const QVariant& Value) override;
};

/// Raw bytes of a variable size up to Size.
class KESH_EXPORT TVarBytesField : public TBytesField
{
    Q_OBJECT
public:
    explicit TVarBytesField(QObject* Owner = nullptr);
};

/// Binary large object. AsString is the bytes read as UTF-8; the display text is "(BLOB)"
/// ("(blob)" when null), as grids show it.
class KESH_EXPORT TBlobField : public TField
{
    Q_OBJECT
public:
    explicit TBlobField(QObject* Owner = nullptr);
protected:
    QString GetAsString() const override;
    void SetVarValue(const QVariant& Value) override;
    void GetText(QString& Text, bool DisplayText) const override;
};

/// A picture held as bytes.
class KESH_EXPORT TGraphicField : public TBlobField
{
    Q_OBJECT
public:
    explicit TGraphicField(QObject* Owner = nullptr);
};

/// Long text; display text "(MEMO)" as in the classic grids, AsString the text itself.
class KESH_EXPORT TMemoField : public TBlobField
{
    Q_OBJECT
public:
    explicit TMemoField(QObject* Owner = nullptr);
protected:
    QString GetAsString() const override;
    void SetVarValue(const QVariant& Value) override;
};

/// Long Unicode text.
class KESH_EXPORT TWideMemoField : public TMemoField
{
    Q_OBJECT
public:
    explicit TWideMemoField(QObject* Owner = nullptr);
};

/// A new field of the class that holds Type (TIntegerField for ftInteger…), or nullptr for
/// types without a field class (ftADT, ftCursor…).
KESH_EXPORT TField* CreateFieldOfType(TFieldType Type, QObject* Owner = nullptr);

} // namespace Kesh
