#pragma once
// Shared by the acceptance tests: orders made to measure on a fresh database, a dump of
// every table to prove a failed save left nothing behind, a fault that strikes the k-th
// write on cgk.

#include "acceptance/YanShouAddfrm.h"
#include "acceptance/YanShoufrm.h"
#include "platform/adodb.h"
#include "platform/flexgrid.h"
#include "platform/maskedbox.h"
#include "query/Findfrm.h"
#include "tests/shell/modalscript.h"
#include "tests/support/checks.h"
#include "tests/support/printto.h"
#include "tests/support/testsupport.h"

#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTest>

using namespace testsupport;

// In the query builder: `field` 等于 `value`, then OK.
inline void findBy(const QString& field, const QString& value) {
    auto& f = vb::form<Findfrm>();
    auto* fields = f.ctl<QListWidget>(QStringLiteral("LFields"));
    fields->setCurrentItem(fields->findItems(field, Qt::MatchExactly)[0]);
    f.ctl<QComboBox>(QStringLiteral("cFuhao"))->setCurrentIndex(0);
    f.ctl<vb::MaskEdBox>(QStringLiteral("lSql"))->setTextVb(value);
    QTest::mouseClick(f.ctl<QPushButton>(QStringLiteral("Command3")), Qt::LeftButton);
    QTest::mouseClick(f.ctl<QPushButton>(QStringLiteral("Command1_1")), Qt::LeftButton);
}

// 验收 on the open acceptance grid, and the voucher filled in and confirmed (cancelled if
// refused); `proposed` takes the amount it proposed.
inline void acceptVoucher(const QString& batch, const QString& amount, const QString& fp,
                          const QString& sj, QString* proposed = nullptr) {
    whileModal(
        [&] {
            auto& v = vb::form<YanShouAddfrm>();
            QApplication::setActiveWindow(v.window());
            settle();
            if (proposed) *proposed = v.Text1(2)->text();
            typeAndLeave(v.Text1(1), batch);
            if (!amount.isNull()) typeAndLeave(v.Text1(2), amount);
            typeAndLeave(v.Text1(3), fp);
            typeAndLeave(v.Text1(4), sj);
            click(v, QStringLiteral("Command1_0"));
            if (v.isLoaded()) v.Command1_Click(1);
        },
        [] { click(vb::form<YanShoufrm>(), QStringLiteral("Command1_1")); });
}

// A report grouped by batch, as handed to it: "heading: cell|cell ; ..." per child row.
inline QString byBatch(adodb::Recordset* rs) {
    QStringList out;
    for (rs->MoveFirst(); !rs->EOF_(); rs->MoveNext()) {
        adodb::Recordset* c = rs->child(QStringLiteral("myPrint"));
        for (c->MoveFirst(); !c->EOF_(); c->MoveNext()) {
            QStringList cells;
            for (int i = 1; i < c->fieldCount(); ++i) cells << c->text(i);
            out << rs->text(QStringLiteral("batch")) + QStringLiteral(": ") + cells.join(u'|');
        }
    }
    return out.join(QStringLiteral(" ; "));
}

// The columns' texts below the header, "a,b|c,d", to compare several in one line.
inline QString gridColumns(vb::FlexGrid* g, std::initializer_list<int> cols) {
    QStringList out;
    for (int c : cols) out << gridColumn(g, c).join(u',');
    return out.join(u'|');
}
// Selects rows row..rowSel and presses the key on the grid.
inline void press(vb::FlexGrid* g, int row, int rowSel, Qt::Key k) {
    g->setRow(row);
    g->setRowSel(rowSel);
    g->setFocus();
    settle();
    QTest::keyClick(g, k);
    settle();
}
// Opens the grid's editor on (row, col) with Enter, types over it and leaves with Enter.
inline void editCell(vb::FlexGrid* g, QLineEdit* editor, int row, int col, const QString& text) {
    g->setCol(col);
    press(g, row, row, Qt::Key_Return);
    ASSERT_TRUE(editor->isVisible()) << row << "," << col;
    editor->selectAll();
    QTest::keyClick(editor, Qt::Key_Backspace);
    typeText(editor, text);
    QTest::keyClick(editor, Qt::Key_Return);
    settle();
}

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

    // Every table but the fault's, row by row.
    QString dump() {
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
            out += t + u'\n' +
                   q(QStringLiteral("SELECT group_concat(r, char(10)) FROM (SELECT %1 AS r FROM "
                                    "\"%2\" ORDER BY rowid)")
                         .arg(quoted.join(QStringLiteral("||'|'||")), t)) +
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
};
