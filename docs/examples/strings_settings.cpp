// Bilingual strings, bilingual lists, the settings file beside the program and its log.
#include <Kesh.h>
#include <QCoreApplication>
#include <QFile>
#include <QTextStream>

using namespace Kesh;

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    QTextStream out(stdout);

    //! [bistr]
    Application()->SetBiDiMode(bdRightToLeft);     // Arabic
    out << BiStr(QStringLiteral("حفظ"), QStringLiteral("Save")) << ' ';   // حفظ
    out << TxMonthName[LangIndex()][3] << '\n';    // مارس: name tables by language
    Application()->SetBiDiMode(bdLeftToRight);     // English
    out << BiStr(QStringLiteral("حفظ"), QStringLiteral("Save")) << ' ';   // Save
    out << TxMonthName[LangIndex()][3] << '\n';    // March
    //! [bistr]

    //! [bilist]
    TxBiStrings payment;                            // fixed choices: key, Arabic, English
    payment.Add(1, QStringLiteral("نقدا"), QStringLiteral("Cash"), RaError);
    payment.Add(2, QStringLiteral("آجل"), QStringLiteral("Credit"), RaError);
    payment.Add(3, QStringLiteral("بطاقة"), QStringLiteral("Card"), RaError);
    out << payment.GetItem(2) << ' ' << payment.Count() << ' ' << payment.GetNextID() << '\n';
    //! [bilist]

    //! [settings]
    // ConfigFile is the program's path with ".ini"; LogFilename with ".LOG".
    SaveSetting(QStringLiteral("Printing"), QStringLiteral("Copies"), 2);
    int copies = ReadSetting(QStringLiteral("Printing"), QStringLiteral("Copies"), 1).toInt();
    QString printer = ReadSetting(QStringLiteral("Printing"), QStringLiteral("Printer"),
                                  QStringLiteral("default")).toString();   // missing: the default
    out << copies << ' ' << printer << '\n';

    LogStart(QStringLiteral("Month end"));          // indents the lines that follow
    LogAdd(QStringLiteral("invoices posted: 12"));
    LogEnd();
    //! [settings]
    QFile log(LogFilename);
    log.open(QIODevice::ReadOnly);
    out << log.readAll().split('\n').size() - 1 << " log lines\n";
    log.remove();
    QFile::remove(ConfigFile);
    return 0;
}
