#pragma once
// Shared by the acceptance tests: orders made to measure on a fresh database, a dump of
// every table to prove a failed save left nothing behind, and a fault that strikes the k-th
// write on cgk.

#include "platform/flexgrid.h"
#include "tests/support/checks.h"
#include "tests/support/printto.h"
#include "tests/support/testsupport.h"

#include <QApplication>
#include <QFile>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>

class AcceptanceDb : public testsupport::SessionDb {
protected:
    AcceptanceDb() : SessionDb(false, QStringLiteral("验收员乙")) {}
    void SetUp() override {
        SessionDb::SetUp();
        exec(QStringLiteral("DELETE FROM cgk; UPDATE Global SET code='500' WHERE type='cgkid'"));
    }

    // An open order.
    void order(int id, const QString& source, const QString& title, int count, const QString& price,
               const QString& yddate = QStringLiteral("2004-03-01")) {
        exec(QStringLiteral("INSERT INTO cgk (cgkid,bookfrom,bookname,author,isbn,edition,price,"
                            "bookcount,yddate,status,cgff,lagclass,pages) VALUES (%1,'%2','%3',"
                            "'作者%1','7-02-00%1-X','第1版',%4,%5,'%6',0,'直接采购','中文',200)")
                 .arg(id)
                 .arg(QString(source).replace(u'\'', QStringLiteral("''")), title, price)
                 .arg(count)
                 .arg(yddate));
    }
    // An accepted order, short by count - got.
    void accepted(int id, const QString& source, const QString& batch, int count, int got) {
        order(id, source, QStringLiteral("已验收书%1").arg(id), count, QStringLiteral("20"));
        exec(QStringLiteral("UPDATE cgk SET status=1,batch='%1',yscount=%2,ysprice=20,"
                            "ysname='甲',ysdate='2004-04-01',fpcode='F1',ysjine=100 WHERE cgkid=%3")
                 .arg(batch)
                 .arg(got)
                 .arg(id));
    }

    // Every table but the fault's, row by row, optionally without the cgkid counter.
    QString dump(bool withCounter = true) {
        QString out;
        const QStringList tables =
            q(QStringLiteral("SELECT group_concat(name, ',') FROM (SELECT name FROM sqlite_master "
                             "WHERE type='table' AND name<>'fault' ORDER BY name)"))
                .split(u',');
        for (const QString& t : tables) {
            QStringList quoted;
            for (const QString& c :
                 q(QStringLiteral("SELECT group_concat(name, ',') FROM pragma_table_info('%1')")
                       .arg(t))
                     .split(u','))
                quoted << QStringLiteral("quote(\"%1\")").arg(c);
            const QString where =
                !withCounter && t.compare(QStringLiteral("Global"), Qt::CaseInsensitive) == 0
                    ? QStringLiteral(" WHERE type<>'cgkid'")
                    : QString();
            out += t + u'\n' +
                   q(QStringLiteral("SELECT group_concat(r, char(10)) FROM (SELECT %1 AS r FROM "
                                    "\"%2\"%3 ORDER BY rowid)")
                         .arg(quoted.join(QStringLiteral("||'|'||")), t, where)) +
                   u'\n';
        }
        return out;
    }

    // The k-th INSERT or UPDATE on cgk fails (k counted from 1); 0 disarms.
    void armFault(int k) {
        exec(QStringLiteral("DROP TABLE IF EXISTS fault; CREATE TABLE fault(n INTEGER);"
                            "INSERT INTO fault VALUES (%1);"
                            "DROP TRIGGER IF EXISTS fault_u; DROP TRIGGER IF EXISTS fault_i;")
                 .arg(k));
        for (const char* when : {"UPDATE", "INSERT"})
            exec(QStringLiteral("CREATE TRIGGER fault_%1 BEFORE %2 ON cgk BEGIN "
                                "UPDATE fault SET n=n-1; SELECT RAISE(ABORT,'injected fault') "
                                "WHERE (SELECT n FROM fault)=0; END")
                     .arg(QString::fromLatin1(when).left(1).toLower(), QString::fromLatin1(when)));
    }
    // Keeps and brings back the database file between runs of a save.
    void keep() { ASSERT_TRUE(QFile::copy(dbPath(), dbPath() + QStringLiteral(".kept"))); }
    void restore() {
        QFile::remove(dbPath());
        ASSERT_TRUE(QFile::copy(dbPath() + QStringLiteral(".kept"), dbPath()));
    }

    // The columns' texts below the header, "a,b|c,d", to compare several in one line.
    static QString gridColumns(vb::FlexGrid* g, std::initializer_list<int> cols) {
        QStringList out;
        for (int c : cols) out << testsupport::gridColumn(g, c).join(u',');
        return out.join(u'|');
    }
    static void key(vb::FlexGrid* g, Qt::Key k) {
        g->setFocus();
        testsupport::settle();
        QTest::keyClick(g, k);
        testsupport::settle();
    }
    // Selects rows row..rowSel and presses the key on the grid.
    static void press(vb::FlexGrid* g, int row, int rowSel, Qt::Key k) {
        g->setRow(row);
        g->setRowSel(rowSel);
        key(g, k);
    }
};

using testsupport::boxes;
using testsupport::cells;
using testsupport::click;
using testsupport::gridColumn;
using testsupport::settle;
using testsupport::shown;
using testsupport::typeAndLeave;
using testsupport::typeText;
