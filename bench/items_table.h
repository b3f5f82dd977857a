// Kesh for Qt benchmarks — the million-row SQLite items table that the grid and totals
// benchmarks read: Item_id, Name_e, Price (REAL), Qty (INTEGER), Amount (NUMERIC).
#pragma once
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QString>

inline void CreateItemsTable(const QString& File, int Rows)
{
    {
        QSqlDatabase Db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("bench-make"));
        Db.setDatabaseName(File);
        Db.open();
        QSqlQuery Q(Db);
        Q.exec(QStringLiteral("CREATE TABLE Items (Item_id INTEGER PRIMARY KEY, Name_e TEXT, Price REAL, Qty INTEGER, "
                              "Amount NUMERIC(14,2))"));
        Db.transaction();
        Q.prepare(QStringLiteral("INSERT INTO Items VALUES (?, ?, ?, ?, ?)"));
        for (int I = 1; I <= Rows; ++I) {
            Q.addBindValue(I);
            Q.addBindValue(QStringLiteral("Item %1").arg(I));
            Q.addBindValue(I * 0.25);
            Q.addBindValue(I % 97);
            Q.addBindValue((I % 100000) / 100.0);
            Q.exec();
        }
        Db.commit();
    }
    QSqlDatabase::removeDatabase(QStringLiteral("bench-make"));
}
