// Kesh for Qt — amounts written out in Arabic and English words.
//
// Both routines read the whole part of the amount from a 15-character text
// (Value/10000, two decimals, right-aligned, leading blanks written as '0')
// and spell its four three-digit groups. A group's words depend only on its
// digits and its level (in Arabic, apart from the one place where the
// currency name goes), so the group spellers run once for every group value
// on first use (about a millisecond, some 330 KB), and a call only joins ready
// texts: one allocation, no spelling.
#include "number_words.h"

#include "platform/rtl/format_settings.h"
#include "platform/rtl/numbers.h"

#include <cstring>
#include <string>

namespace Kesh {

namespace {

// ---------------------------------------------------------------- amount groups

constexpr int AmountWidth = 15;
constexpr int GroupCount = 4;
constexpr int GroupValues = 1000;

// One three-digit group; level 0 is the units (characters 10-12 of the text),
// level 3 the billions (characters 1-3).
struct Group
{
    int Value;      // of its digits
    bool Blank;     // the text is "000"
    bool TailBlank; // its last two characters are "00"
    bool Digits;    // all three characters are digits
    int H() const { return Value / 100; }
    int D() const { return Value / 10 % 10; }
    int U() const { return Value % 10; }
    int TU() const { return Value % 100; }
};

using Groups = Group[GroupCount];

Group GroupOf(int Value) { return {Value, Value == 0, Value % 100 == 0, true}; }

// An amount that rounds to below 10^12: its text is the whole part padded with
// zeros, so the groups come straight from the integer. Rounding the scaled
// integer half away from zero is what the platform's formatting does.
constexpr qint64 WholeLimit = 1000000000000LL;
constexpr qint64 FastRawLimit = WholeLimit * 10000 - 50;

void GroupsOfWhole(qint64 Raw, Groups& G)
{
    const qint64 Whole = (Raw + 50) / 10000;
    const int High = int(Whole / 1000000); // billions and millions
    const int Low = int(Whole % 1000000);  // thousands and units
    G[0] = GroupOf(Low % 1000);
    G[1] = GroupOf(Low / 1000);
    G[2] = GroupOf(High % 1000);
    G[3] = GroupOf(High / 1000);
}

// Right-aligns Text in the field, or keeps its first 15 characters when it is longer.
void FitAmount(const char* Text, int Length, char (&Field)[AmountWidth])
{
    if (Length >= AmountWidth) {
        std::memcpy(Field, Text, AmountWidth);
    } else {
        const int Pad = AmountWidth - Length;
        std::memset(Field, '0', Pad);
        std::memcpy(Field + Pad, Text, Length);
    }
}

// Below 10^14 the decimal form of Raw/10000 has at most 18 significant digits, so
// the integer rounding still matches the platform's formatting exactly.
constexpr qint64 ExactRawLimit = 1000000000000000000LL;

void AmountFromRaw(qint64 Raw, char (&Field)[AmountWidth])
{
    const quint64 Magnitude = Raw < 0 ? quint64(-Raw) : quint64(Raw);
    quint64 Cents = (Magnitude + 50) / 100;
    const bool Negative = Raw < 0 && Cents != 0; // a zero result carries no sign
    char Text[32];
    int First = sizeof Text;
    Text[--First] = char('0' + Cents % 10);
    Cents /= 10;
    Text[--First] = char('0' + Cents % 10);
    Cents /= 10;
    Text[--First] = '.';
    do {
        Text[--First] = char('0' + Cents % 10);
        Cents /= 10;
    } while (Cents != 0);
    if (Negative)
        Text[--First] = '-';
    FitAmount(Text + First, int(sizeof Text) - First, Field);
}

// Amounts of 10^14 and above: the platform's formatting decides the digits.
void AmountFromFormat(Currency Value, char (&Field)[AmountWidth])
{
    QString Text = FormatFloat(QStringLiteral("0.00"), Value.ToExtended());
    Text.replace(FormatSettings.DecimalSeparator, QLatin1Char('.'));
    const QByteArray Latin = Text.toLatin1();
    FitAmount(Latin.constData(), int(Latin.size()), Field);
}

bool IsDigit(char C) { return C >= '0' && C <= '9'; }

// Out-of-range amounts put a sign or a point among the digits; such a character
// counts as 0, so the words are meaningless but safe.
int DigitValue(char C) { return IsDigit(C) ? C - '0' : 0; }

void GroupsOfText(const char (&Field)[AmountWidth], Groups& G)
{
    for (int Level = 0; Level < GroupCount; ++Level) {
        const char* P = Field + (GroupCount - 1 - Level) * 3;
        const bool TailBlank = P[1] == '0' && P[2] == '0';
        G[Level] = {DigitValue(P[0]) * 100 + DigitValue(P[1]) * 10 + DigitValue(P[2]), P[0] == '0' && TailBlank,
                    TailBlank, IsDigit(P[0]) && IsDigit(P[1]) && IsDigit(P[2])};
    }
}

void CutGroups(Currency Value, Groups& G)
{
    const qint64 Raw = Value.Raw();
    if (Raw >= 0 && Raw < FastRawLimit) {
        GroupsOfWhole(Raw, G);
        return;
    }
    char Field[AmountWidth];
    if (Raw > -ExactRawLimit && Raw < ExactRawLimit)
        AmountFromRaw(Raw, Field);
    else
        AmountFromFormat(Value, Field);
    GroupsOfText(Field, G);
}

// A stretch of one of the texts spelled once.
struct TextRef
{
    quint32 Offset = 0;
    quint32 Size = 0;
};

// ---------------------------------------------------------------- Arabic

// A text of a word table or a caller's name; the tables' lengths are known at compile time.
struct Piece
{
    Piece() = default;
    template <size_t N>
    constexpr Piece(const char16_t (&Text)[N]) : Data(Text), Size(N - 1) {}
    constexpr Piece(const char16_t* Text, qsizetype Length) : Data(Text), Size(Length) {}
    const char16_t* Data;
    qsizetype Size;
};

constexpr Piece ArUnit[10] = {u"", u"واحد", u"إثنان", u"ثلاثة", u"أربعة",
                              u"خمسة", u"ستة", u"سبعة", u"ثمانية", u"تسعة"};
constexpr Piece ArTens[10] = {u"", u"عشرة", u"عشرون", u"ثلاثون", u"أربعون",
                              u"خمسون", u"ستون", u"سبعون", u"ثمانون", u"تسعون"};
constexpr Piece ArHundreds[10] = {u"", u"مائة", u"مائتان", u"ثلاثمائة", u"أربعمائة",
                                  u"خمسمائة", u"ستمائة", u"سبعمائة", u"ثمانمائة", u"تسعمائة"};
// Scale words by level 1..3; the currency name stands at level 0.
constexpr Piece ArSingular[4] = {u"", u"ألف", u"مليون", u"مليار"};
constexpr Piece ArDual[4] = {u"", u"ألفان", u"مليونان", u"ملياران"};
// With their leading blank, as they always follow a count.
constexpr Piece ArPlural[4] = {u"", u" آلاف", u" ملايين", u" مليارات"};
constexpr Piece ArSingularAfter[4] = {u"", u" ألف", u" مليون", u" مليار"};
constexpr Piece ArFeminine = u"ة";

// The four forms of the currency name: singular, dual, plural, singular accusative.
struct CurrencyNames
{
    Piece Form[4];
    bool Feminine;
    bool AnyEmpty;
};

// The caller's names; missing ones are empty.
CurrencyNames NamesOf(const QStringList& Names)
{
    CurrencyNames N;
    for (int I = 0; I < 4; ++I) {
        const QStringView Name = I < Names.size() ? QStringView(Names.at(I)) : QStringView(u"");
        N.Form[I] = Piece(Name.utf16(), Name.size());
    }
    N.AnyEmpty = N.Form[0].Size == 0 || N.Form[1].Size == 0 || N.Form[2].Size == 0 || N.Form[3].Size == 0;
    N.Feminine = false;
    for (qsizetype I = 0; I < N.Form[0].Size && !N.Feminine; ++I)
        N.Feminine = N.Form[0].Data[I] == ArFeminine.Data[0];
    return N;
}

// One group's words, in order, with their total length. The first two slots are kept
// for the hundreds and their "و", which are only known to be needed at the end.
class GroupWords
{
public:
    void Append(Piece Text)
    {
        Q_ASSERT(m_end < Capacity);
        m_items[m_end++] = Text;
        m_length += Text.Size;
    }
    bool IsEmpty() const { return m_length == 0; }
    qsizetype Length() const { return m_length; }
    void Drop() { m_end = m_begin; m_length = 0; }
    void PutFront(Piece Hundreds, Piece Joiner)
    {
        m_items[0] = Hundreds;
        m_items[1] = Joiner;
        m_begin = 0;
        m_length += Hundreds.Size + Joiner.Size;
    }
    int Begin() const { return m_begin; }
    int End() const { return m_end; }
    Piece At(int I) const { return m_items[I]; }

private:
    static constexpr int Capacity = 8; // hundreds, "و", then at most five texts of the tail
    Piece m_items[Capacity];
    int m_begin = 2;
    int m_end = 2;
    qsizetype m_length = 0;
};

// The words of one group without its hundreds (s of the speller).
void SpellArabicTail(const Group& G, int Level, const CurrencyNames& N, GroupWords& S)
{
    const int TU = G.TU();
    if (G.D() == 0) {
        if (G.U() == 1) {
            if (Level == 0) {
                S.Append(N.Form[0]);
                S.Append(u" واحد");
                if (N.Feminine)
                    S.Append(ArFeminine);
            } else {
                S.Append(ArSingular[Level]);
            }
        } else if (G.U() == 2) {
            S.Append(Level == 0 ? N.Form[1] : ArDual[Level]);
        } else if (G.U() >= 3) {
            S.Append(ArUnit[G.U()]);
            if (Level == 0) {
                S.Append(u" ");
                S.Append(N.Form[2]);
            } else {
                S.Append(ArPlural[Level]);
            }
        }
    } else if (G.U() == 0) {
        S.Append(ArTens[G.D()]);
        if (G.D() == 1) { // ten takes the plural, as three to nine do
            if (Level == 0) {
                S.Append(u" ");
                S.Append(N.Form[2]);
            } else {
                S.Append(ArPlural[Level]);
            }
        } else if (Level == 0) {
            S.Append(u" ");
            S.Append(N.Form[3]);
        }
    } else if (TU < 20) {
        S.Append(TU == 11 ? Piece(u"أحد") : TU == 12 ? Piece(u"إثنا") : ArUnit[G.U()]);
        // The teen word keeps its trailing blank, so the name follows two blanks.
        if (Level == 0) {
            S.Append(u" عشر  ");
            S.Append(N.Form[3]);
        } else {
            S.Append(u" عشر ");
        }
    } else {
        S.Append(ArUnit[G.U()]);
        S.Append(u" و");
        S.Append(ArTens[G.D()]);
        if (Level == 0) {
            S.Append(u" ");
            S.Append(N.Form[3]);
        }
    }
}

void SpellArabicGroup(const Group& G, int Level, const CurrencyNames& N, GroupWords& Words)
{
    if (G.Blank)
        return;
    SpellArabicTail(G, Level, N, Words);
    if (G.H() == 0)
        return;
    if (!Words.IsEmpty()) {
        Words.PutFront(ArHundreds[G.H()], u" و");
        return;
    }
    Words.Drop();
    Words.Append(ArHundreds[G.H()]);
    if (Level == 0) {
        Words.Append(u" ");
        Words.Append(N.Form[0]);
    } else {
        Words.Append(ArSingularAfter[Level]);
    }
}

// The joiners that follow a scale group (levels 1..3): after a count of more than
// ten that ends the amount (Count), after one of more than ten before lower groups
// (Tail), and "and" between groups (And). NumberToWords keeps the stored texts, question
// marks and all, because printed forms compare against them; NumberToArabicWords writes
// the Arabic they stand for.
struct ArabicJoiners
{
    Piece Count[4];
    Piece Tail[4];
    Piece And;
};
constexpr ArabicJoiners StoredJoiners = {{u"", u" ??? ", u" ????? ", u" ????? "},
                                         {u"", u" ????? ?", u" ??????? ?", u" ??????? ?"},
                                         u" ?"};
constexpr ArabicJoiners ArabicLetterJoiners = {{u"", u" ألف ", u" مليون ", u" مليار "},
                                               {u"", u" ألفاً و", u" مليوناً و", u" ملياراً و"},
                                               u" و"};

// Every Arabic group spelled once. A scale group never names the currency; it is
// kept with the joiner that follows it before the words of lower groups (its words
// alone are the start of that text). A units group names the currency at most
// once (for names that are not empty), so it is kept as the text before the name,
// which name, the text after it, and whether it ends in "one" (which takes the
// feminine ending after a feminine name). The words of a group depend on its digit
// values only, so a group with a stray sign reads as its digits do.
class ArabicGroupTexts
{
public:
    static const ArabicGroupTexts& Instance(bool ArabicLetters)
    {
        static const ArabicGroupTexts Stored(StoredJoiners);
        static const ArabicGroupTexts Letters(ArabicLetterJoiners);
        return ArabicLetters ? Letters : Stored;
    }

    struct Scale
    {
        Piece Joined; // the words and the joiner before lower groups' words
        Piece Words;
        bool Many; // more than ten: the count joiner and the accusative name follow
    };
    Scale ScaleOf(int Level, int Value) const
    {
        const ScaleRef& S = m_scale[Level - 1][Value];
        const Piece Joined = PieceOf(S.Joined);
        return {Joined, Piece(Joined.Data, S.WordsSize), S.Many};
    }

    struct Units
    {
        Piece Before;
        int Name; // index of the form, -1 for none
        Piece After;
        bool One;
    };
    Units UnitsOf(int Value) const
    {
        const UnitsRef& U = m_units[Value];
        return {PieceOf(U.Before), U.Name, PieceOf(U.After), U.One};
    }

private:
    struct ScaleRef
    {
        TextRef Joined;
        quint32 WordsSize = 0;
        bool Many = false;
    };
    struct UnitsRef
    {
        TextRef Before, After;
        int Name = -1;
        bool One = false;
    };

    explicit ArabicGroupTexts(const ArabicJoiners& Joiners)
    {
        // Stand-ins for the names, told apart by their addresses. They are not empty: an
        // empty name can leave a group's tail empty, which changes the words around it.
        static const char16_t Marks[4][2] = {u"0", u"1", u"2", u"3"};
        const CurrencyNames Marked = {{Piece(Marks[0], 1), Piece(Marks[1], 1), Piece(Marks[2], 1),
                                       Piece(Marks[3], 1)},
                                      false, false};
        for (int Value = 0; Value < GroupValues; ++Value) {
            const Group G = GroupOf(Value);
            for (int Level = 1; Level < GroupCount; ++Level) {
                GroupWords Words;
                SpellArabicGroup(G, Level, Marked, Words);
                ScaleRef& S = m_scale[Level - 1][Value];
                S.Many = G.TU() > 10;
                S.Joined = Store(Words, Words.Begin(), Words.End(),
                                 S.Many ? Joiners.Tail[Level] : Words.IsEmpty() ? Piece(u"") : Joiners.And);
                S.WordsSize = quint32(Words.Length());
            }
            if (Value == 0)
                continue;
            GroupWords Words;
            SpellArabicGroup(G, 0, Marked, Words);
            UnitsRef& U = m_units[Value];
            int NameAt = Words.End();
            for (int I = Words.Begin(); I < Words.End(); ++I)
                for (int Form = 0; Form < 4; ++Form)
                    if (Words.At(I).Data == Marks[Form]) {
                        NameAt = I;
                        U.Name = Form;
                    }
            U.Before = Store(Words, Words.Begin(), NameAt);
            U.After = Store(Words, NameAt < Words.End() ? NameAt + 1 : NameAt, Words.End());
            U.One = G.D() == 0 && G.U() == 1;
        }
        m_text.shrink_to_fit();
    }
    TextRef Store(const GroupWords& Words, int From, int To, Piece Joiner = u"")
    {
        TextRef Ref;
        Ref.Offset = quint32(m_text.size());
        for (int I = From; I < To; ++I)
            m_text.append(Words.At(I).Data, size_t(Words.At(I).Size));
        m_text.append(Joiner.Data, size_t(Joiner.Size));
        Ref.Size = quint32(m_text.size() - Ref.Offset);
        return Ref;
    }
    Piece PieceOf(TextRef Ref) const { return Piece(m_text.data() + Ref.Offset, Ref.Size); }

    std::u16string m_text;
    ScaleRef m_scale[GroupCount - 1][GroupValues];
    UnitsRef m_units[GroupValues];
};

// The result text, built by prepending and reset as the routine climbs the groups.
class Prepended
{
public:
    void Prepend(Piece Text)
    {
        Q_ASSERT(m_first > 0);
        m_items[--m_first] = Text;
        m_length += Text.Size;
    }
    void Prepend(const GroupWords& Words)
    {
        for (int I = Words.End() - 1; I >= Words.Begin(); --I)
            Prepend(Words.At(I));
    }
    void Clear()
    {
        m_first = Capacity;
        m_length = 0;
    }
    bool IsEmpty() const { return m_length == 0; }
    QString Join() const
    {
        QString Result(m_length, Qt::Uninitialized);
        QChar* Out = Result.data();
        for (int I = m_first; I < Capacity; ++I) {
            if (m_items[I].Size > 0)
                std::memcpy(static_cast<void*>(Out), m_items[I].Data, size_t(m_items[I].Size) * sizeof(QChar));
            Out += m_items[I].Size;
        }
        return Result;
    }

private:
    // The units group takes at most 7 texts and each scale group one more, or 3 when
    // the words so far are empty (which makes them the only ones).
    static constexpr int Capacity = 16;
    Piece m_items[Capacity];
    int m_first = Capacity;
    qsizetype m_length = 0;
};

// ---------------------------------------------------------------- English

struct Latin
{
    template <size_t N>
    constexpr Latin(const char (&Text)[N]) : Data(Text), Size(N - 1) {}
    constexpr Latin(const char* Text, int Length) : Data(Text), Size(Length) {}
    const char* Data;
    int Size;
};

constexpr Latin EnOnes[20] = {"", "One", "Two", "Three", "Four", "Five", "Six", "Seven", "Eight", "Nine",
                              "Ten", "Eleven", "Twelve", "Thirteen", "Fourteen", "Fifteen", "Sixteen",
                              "Seventeen", "Eighteen", "Nineteen"};
constexpr Latin EnTens[10] = {"", "", "Twenty", "Thirty", "Fourty", "Fifty", "Sixty", "Seventy", "Eighty",
                              "Ninety"};
constexpr Latin EnScale[4] = {"", "Thousand", "Million", "Billion"};

// Latin-1 text in a fixed buffer; the longest amount (four groups of at most 42
// characters and their joiners) needs under 200 of its places.
class EnglishText
{
public:
    void Add(Latin Text)
    {
        Q_ASSERT(m_length + Text.Size <= int(sizeof m_chars));
        std::memcpy(m_chars + m_length, Text.Data, size_t(Text.Size));
        m_length += Text.Size;
    }
    // The append rule: a blank first when the text from From on is not empty after
    // trimming, even before an empty word.
    void AppendWord(Latin Text, int From)
    {
        if (HasNonBlank(From))
            Add(" ");
        Add(Text);
    }
    int Length() const { return m_length; }
    const char* Data() const { return m_chars; }
    bool HasNonBlank(int From) const
    {
        for (int I = From; I < m_length; ++I)
            if (static_cast<unsigned char>(m_chars[I]) > ' ')
                return true;
        return false;
    }
    QString ToString() const { return QString::fromLatin1(m_chars, m_length); }

private:
    char m_chars[256];
    int m_length = 0;
};

// Writes the group's words at the end of R; they form their own text for the append rule.
void SpellEnglishGroup(const Group& G, int Level, EnglishText& R)
{
    if (G.Blank)
        return;
    const int W = R.Length();
    if (G.H() > 0) {
        R.Add(EnOnes[G.H()]);
        R.Add(" Hundred");
        if (G.H() > 1)
            R.Add("s");
        if (!G.TailBlank)
            R.Add(" And");
    }
    if (G.D() == 0) {
        R.AppendWord(EnOnes[G.U()], W);
    } else if (G.D() == 1) {
        R.AppendWord(EnOnes[10 + G.U()], W);
    } else {
        R.AppendWord(EnTens[G.D()], W);
        R.AppendWord(EnOnes[G.U()], W);
    }
    R.AppendWord(EnScale[Level], W);
    if (Level > 0 && G.Value > 1)
        R.Add("s");
}

// Every English group of digits spelled once, at every level.
class EnglishGroupTexts
{
public:
    static const EnglishGroupTexts& Instance()
    {
        static const EnglishGroupTexts Texts;
        return Texts;
    }
    Latin Words(int Level, int Value) const
    {
        const TextRef Ref = m_groups[Level][Value];
        return Latin(m_text.data() + Ref.Offset, int(Ref.Size));
    }

private:
    EnglishGroupTexts()
    {
        for (int Level = 0; Level < GroupCount; ++Level)
            for (int Value = 1; Value < GroupValues; ++Value) {
                EnglishText W;
                SpellEnglishGroup(GroupOf(Value), Level, W);
                m_groups[Level][Value] = {quint32(m_text.size()), quint32(W.Length())};
                m_text.append(W.Data(), size_t(W.Length()));
            }
        m_text.shrink_to_fit();
    }
    std::string m_text;
    TextRef m_groups[GroupCount][GroupValues];
};

// A stray sign or point among the digits changes the words ("Hundred" without
// "And", a scale word alone), so such a group is spelled afresh.
void AddEnglishGroup(const Group& G, int Level, EnglishText& R)
{
    if (G.Blank)
        return;
    if (G.Digits)
        R.Add(EnglishGroupTexts::Instance().Words(Level, G.Value));
    else
        SpellEnglishGroup(G, Level, R);
}

} // namespace

namespace {

QString ArabicWords(Currency Value, const QStringList& Names, bool ArabicLetters)
{
    Groups G;
    CutGroups(Value, G);
    const CurrencyNames N = NamesOf(Names);
    const ArabicGroupTexts& Texts = ArabicGroupTexts::Instance(ArabicLetters);
    const ArabicJoiners& Joiners = ArabicLetters ? ArabicLetterJoiners : StoredJoiners;

    GroupWords Units;
    if (N.AnyEmpty) {
        SpellArabicGroup(G[0], 0, N, Units); // the ready texts assume every name has letters
    } else if (!G[0].Blank) {
        const ArabicGroupTexts::Units U = Texts.UnitsOf(G[0].Value);
        Units.Append(U.Before);
        if (U.Name >= 0)
            Units.Append(N.Form[U.Name]);
        Units.Append(U.After);
        if (U.One && N.Feminine)
            Units.Append(ArFeminine);
    }
    // Each scale group goes in front of the words so far; when there are none yet, it
    // ends the amount and takes the currency name. Below the billions, an amount
    // with nothing spelled so far is left empty.
    Prepended R;
    R.Prepend(Units);
    bool NothingYet = Units.IsEmpty();
    for (int Level = 1; Level < GroupCount; ++Level) {
        const ArabicGroupTexts::Scale S = Texts.ScaleOf(Level, G[Level].Value);
        if (R.IsEmpty()) {
            R.Clear();
            R.Prepend(N.Form[S.Many ? 3 : 0]);
            R.Prepend(S.Many ? Joiners.Count[Level] : Piece(u" "));
            R.Prepend(S.Words);
        } else {
            R.Prepend(S.Joined);
        }
        NothingYet = NothingYet && G[Level].Value == 0; // the only group value without words
        if (NothingYet && Level < GroupCount - 1)
            R.Clear();
    }
    return R.Join();
}

} // namespace

QString NumberToWords(Currency Value, const QStringList& Names)
{
    return ArabicWords(Value, Names, false);
}

QString NumberToArabicWords(Currency Value, const QStringList& Names)
{
    return ArabicWords(Value, Names, true);
}

QString NumberToWordsE(Currency Value)
{
    Groups G;
    CutGroups(Value, G);
    EnglishText R;
    AddEnglishGroup(G[3], 3, R);
    for (int Level = 2; Level >= 0; --Level) {
        if (!G[Level].Blank && !G[Level + 1].Blank)
            R.Add(" And");
        // The group's words are one word to the append rule of R.
        if (R.HasNonBlank(0))
            R.Add(" ");
        AddEnglishGroup(G[Level], Level, R);
    }
    return R.ToString();
}

} // namespace Kesh
