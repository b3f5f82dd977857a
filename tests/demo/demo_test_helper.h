// Helpers the demo's form tests share: a form's named child, showing a form, typing.
#pragma once

#include <Kesh_AdoDB.h>

#include <QApplication>
#include <QKeyEvent>
#include <QSqlQuery>
#include <QtTest>

namespace DemoTest {

// The child of Form of that name (made by the form's .ui), which the test needs.
template <class T>
T* W(QWidget& Form, const char* Name)
{
    T* Child = Form.findChild<T*>(QLatin1String(Name));
    if (!Child)
        qFatal("no %s named %s", T::staticMetaObject.className(), Name);
    return Child;
}

// Shows a form as the application does and waits until it is on screen.
inline void ShowForm(QWidget& Form)
{
    Form.show();
    QApplication::setActiveWindow(&Form);
    QVERIFY(QTest::qWaitForWindowActive(&Form));
}

// Key presses of each character of Text, Arabic as well (QTest::keyClicks takes Latin-1 only).
inline void Type(QWidget* Widget, const QString& Text)
{
    for (const QChar C : Text) {
        const int Code = C.isLetterOrNumber() && C.unicode() < 128 ? int(C.toUpper().unicode()) : int(Qt::Key_unknown);
        QKeyEvent Press(QEvent::KeyPress, Code, Qt::NoModifier, QString(C));
        QKeyEvent Release(QEvent::KeyRelease, Code, Qt::NoModifier, QString(C));
        QApplication::sendEvent(Widget, &Press);
        QApplication::sendEvent(Widget, &Release);
    }
}

// Types Text into a data-aware edit as a user does: focus, select all, type.
inline void Retype(QWidget* Edit, const QString& Text)
{
    Edit->setFocus(Qt::TabFocusReason);
    QTest::keyClick(Edit, Qt::Key_A, Qt::ControlModifier);
    Type(Edit, Text);
}

// The first value of the first row of Sql on Conn; invalid when the query fails.
inline QVariant Scalar(const Kesh::TQxAdoConnection& Conn, const QString& Sql)
{
    QSqlQuery Q(Conn.Database());
    if (!Q.exec(Sql) || !Q.next()) {
        qWarning("SQL failed: %s", qPrintable(Sql));
        return QVariant();
    }
    return Q.value(0);
}

} // namespace DemoTest
