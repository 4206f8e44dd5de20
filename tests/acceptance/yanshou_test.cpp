// Acceptance as a librarian does it: the source named in the dialog (picker and search),
// rows chosen and edited in the grid, the voucher checked and written, and a fault made to
// strike one statement of a five-row voucher.

#include "acceptance/YanShoudofrm.h"
#include "supplier/gysListfrm.h"
#include "tests/acceptance/acceptancetest.h"

namespace {

const QString kChosen = QStringLiteral("√");
const QString kNot = QStringLiteral("×");
const QString kOReilly = QStringLiteral("O'Reilly书店");

class Acceptance : public AcceptanceDb {
protected:
    YanShoudofrm& dlg() { return vb::form<YanShoudofrm>(); }
    YanShoufrm& frm() { return vb::form<YanShoufrm>(); }
    YanShouAddfrm& voucher() { return vb::form<YanShouAddfrm>(); }
    vb::FlexGrid* grid() { return frm().Grid1(); }

    // Names the source and searches, as the user does.
    void search(const QString& source) {
        if (!dlg().isVisible()) {
            dlg().Show(0);
            ASSERT_TRUE(QTest::qWaitForWindowActive(dlg().window()));
        }
        QApplication::setActiveWindow(dlg().window());
        typeAndLeave(dlg().Text1(), source);
        click(dlg(), QStringLiteral("Command1_0"));
        if (frm().isLoaded()) QApplication::setActiveWindow(frm().window());
    }
    void edit(int row, int col, const QString& text) {
        editCell(grid(), frm().Text1(), row, col, text);
    }
    bool editorOpensOn(int row, int col) {
        grid()->setRow(row);
        grid()->setCol(col);
        Q_EMIT grid()->DblClick();
        settle();
        const bool open = frm().Text1()->isVisible();
        if (open) {
            grid()->setFocus();
            settle();
        }
        return open;
    }
    QString row(int id, const QString& cols) {
        return q(QStringLiteral("SELECT %1 FROM cgk WHERE cgkid=%2").arg(cols).arg(id));
    }
};

TEST_F(Acceptance, TheSourceIsFoundAndRowsAreChosenEditedAndTotalled) {
    for (int i = 1; i <= 4; ++i)
        order(i, QStringLiteral("新华书店"), QStringLiteral("书%1").arg(i), i + 1,
              QStringLiteral("10.5"), QStringLiteral("2004-03-0%1").arg(i));
    order(5, QStringLiteral("新华书店"), QStringLiteral("赠书"), 0, QStringLiteral("8"),
          QStringLiteral("2004-03-09"));
    order(6, kOReilly, QStringLiteral("Qt编程"), 3, QStringLiteral("45.5"),
          QStringLiteral("2004-03-02"));
    order(7, kOReilly, QStringLiteral("C++语言"), 2, QStringLiteral("60"),
          QStringLiteral("2004-01-15"));
    accepted(8, QStringLiteral("新华书店北京"), QStringLiteral("B1"), 2, 2);

    dlg().Show(0);
    ASSERT_TRUE(QTest::qWaitForWindowActive(dlg().window()));

    // "新华" is part of a source: the picker has it (the accepted source's name not), the
    // search does not.
    typeAndLeave(dlg().Text1(), QStringLiteral("  新华 "));
    EXPECT_EQ(dlg().Text1()->text(), QStringLiteral("新华"));
    click(dlg(), QStringLiteral("Command2"));
    auto& list = vb::form<gysListfrm>();
    ASSERT_EQ(list.listCount(), 1);
    EXPECT_EQ(list.Grid1()->TextMatrix(1, 0), QStringLiteral("新华书店"));
    list.Unload();
    boxes().clear();
    click(dlg(), QStringLiteral("Command1_0"));
    EXPECT_EQ(shown(), QStringLiteral("没有符合该条件的采购预定资料存在,取消该操作。#64"));
    EXPECT_EQ(dlg().Text1()->text(), QStringLiteral("新华"));
    EXPECT_FALSE(frm().isLoaded());

    // The whole name with its quote finds both orders, oldest first.
    search(kOReilly);
    ASSERT_TRUE(frm().isLoaded());
    EXPECT_EQ(gridColumns(grid(), {0, 1, 2, 4, 8}),
              QStringLiteral("7,6|2004/01/15,2004/03/02|×,×|0,0|60,45.5"));

    search(QStringLiteral("新华书店"));
    ASSERT_EQ(grid()->Rows(), 6);

    // Space over rows 3..1 (either order) chooses them with their ordered counts.
    press(grid(), 3, 1, Qt::Key_Space);
    EXPECT_EQ(gridColumns(grid(), {2, 4}), QStringLiteral("√,√,√,×,×|2,3,4,0,0"));
    // Counts are edited as the leading number, in its plain form; letters never get in.
    edit(2, 4, QStringLiteral("1x"));
    edit(3, 8, QStringLiteral("12.50"));
    EXPECT_EQ(grid()->TextMatrix(2, 4) + u'|' + grid()->TextMatrix(3, 8), QStringLiteral("1|12.5"));
    // Space over all: row 4 joins, the edited count of row 2 stays.
    press(grid(), 1, 4, Qt::Key_Space);
    EXPECT_EQ(gridColumn(grid(), 4), cells("2,1,4,5,0"));
    // Delete over 4..3 resets both; the edited price stays.
    press(grid(), 4, 3, Qt::Key_Delete);
    EXPECT_EQ(gridColumns(grid(), {2, 4}), QStringLiteral("√,√,×,×,×|2,1,0,0,0"));
    EXPECT_EQ(grid()->TextMatrix(3, 8), QStringLiteral("12.5"));

    // No editor on an unchosen row, on column 3, on the header row.
    EXPECT_EQ(QList<bool>({editorOpensOn(3, 4), editorOpensOn(1, 3), editorOpensOn(0, 4),
                           editorOpensOn(1, 8)}),
              QList<bool>({false, false, false, true}));

    // A count emptied, zeroed or a lone point unchooses; a price of zero does not.
    for (const QString& zero : {QString(), QStringLiteral("0"), QStringLiteral(".")}) {
        press(grid(), 1, 1, Qt::Key_Space);
        ASSERT_EQ(grid()->TextMatrix(1, 2), kChosen);
        edit(1, 4, zero);
        EXPECT_EQ(grid()->TextMatrix(1, 4) + grid()->TextMatrix(1, 2), u'0' + kNot)
            << zero.toStdString();
    }
    press(grid(), 1, 1, Qt::Key_Space);
    edit(1, 8, QStringLiteral("0"));
    EXPECT_EQ(grid()->TextMatrix(1, 8) + grid()->TextMatrix(1, 2), u'0' + kChosen);

    press(grid(), 1, 5, Qt::Key_Delete);
    boxes().clear();
    // 2.5 and 1.5 copies: the cells keep them, each running sum rounds half to even
    // (2.5 -> 2, then 2 + 1.5 = 3.5 -> 4), the amount is exact.
    press(grid(), 1, 2, Qt::Key_Space); // row 1 price 0, count 2; row 2 count 3
    edit(1, 4, QStringLiteral("2.5"));
    edit(1, 8, QStringLiteral("10"));
    edit(2, 4, QStringLiteral("1.5"));
    EXPECT_EQ(grid()->TextMatrix(1, 4), QStringLiteral("2.5"));
    QString seen;
    whileModal(
        [&] {
            seen = voucher().caption() + u'|' + texts(voucher(), {2, 0});
            voucher().Command1_Click(1);
        },
        [this] { click(frm(), QStringLiteral("Command1_1")); });
    // 2.5*10 + 1.5*10.5
    EXPECT_EQ(seen, QStringLiteral("采购验收--种类:2;采购册数:5;验收册数:4|40.75|新华书店"));
    EXPECT_EQ(grid()->TextMatrix(1, 4), QStringLiteral("2.5")); // cancel leaves the grid

    // The fractional count goes into the statement as it stands.
    acceptVoucher(QStringLiteral("P-01"), QString(), QStringLiteral("FP9"), QString());
    EXPECT_TRUE(boxes().calls().empty()) << boxes().last().prompt.toStdString();
    EXPECT_EQ(row(1, QStringLiteral("yscount||'/'||ysprice||'/'||status")),
              QStringLiteral("2.5/10.0/1"));
    EXPECT_EQ(row(2, QStringLiteral("yscount||'/'||ysjine")), QStringLiteral("1.5/40.75"));
}

TEST_F(Acceptance, TheVoucherChecksWritesAndEmptiesTheGrid) {
    for (int i = 1; i <= 8; ++i)
        order(i, QStringLiteral("人民文学出版社"), QStringLiteral("书%1").arg(i), 2,
              QStringLiteral("15"), QStringLiteral("2004-02-%1").arg(10 + i));
    search(QStringLiteral("人民文学出版社"));

    // The checks in their order, each with the focus on its field; the amount is formatted
    // on leaving and letters are refused.
    press(grid(), 1, 1, Qt::Key_Space);
    QStringList seen;
    whileModal(
        [&] {
            QApplication::setActiveWindow(voucher().window());
            settle();
            EXPECT_EQ(texts(voucher(), {1, 2}), QStringLiteral("|30.00"));
            auto tryConfirm = [&] {
                boxes().clear();
                click(voucher(), QStringLiteral("Command1_0"));
                seen << boxes().last().prompt + u'@' + focusName();
            };
            typeAndLeave(voucher().Text1(2), QString());
            tryConfirm();
            typeAndLeave(voucher().Text1(1), QStringLiteral("  B-07 "));
            tryConfirm();
            typeAndLeave(voucher().Text1(2), QStringLiteral("abc"));
            EXPECT_EQ(boxes().last().prompt + voucher().Text1(2)->text(),
                      QStringLiteral("无效数字格式，取消该操作。"));
            typeAndLeave(voucher().Text1(2), QStringLiteral("12"));
            EXPECT_EQ(voucher().Text1(2)->text(), QStringLiteral("12.00"));
            tryConfirm();
            voucher().Command1_Click(1);
        },
        [this] { click(frm(), QStringLiteral("Command1_1")); });
    EXPECT_EQ(seen, (QStringList{
                        QStringLiteral("验收'批号'不能为空，取消该操作。@Text1_1"),
                        QStringLiteral("验收'金额'不能为空，取消该操作。@Text1_2"),
                        QStringLiteral("验收'发票号'或'收据号'不能为空，取消该操作。@Text1_3")}));
    EXPECT_EQ(q(QStringLiteral("SELECT count(*) FROM cgk WHERE status=1")), QStringLiteral("0"));

    // Invoice only, receipt only, both: each voucher takes the top row (row 1 stands blank
    // and stops 验收 until the grid is read again); the amount typed over the proposal.
    struct Case {
        QString fp, sj, stored;
    };
    const Case cases[] = {
        {QStringLiteral("FP-1"), QString(), QStringLiteral("FP-1/NULL")},
        {QString(), QStringLiteral("SJ-2"), QStringLiteral("NULL/SJ-2")},
        {QStringLiteral("FP-3"), QStringLiteral("SJ-3"), QStringLiteral("FP-3/SJ-3")},
    };
    for (int i = 0; i < 3; ++i) {
        if (i > 0) search(QStringLiteral("人民文学出版社"));
        ASSERT_EQ(grid()->TextMatrix(1, 0), QString::number(i + 1));
        press(grid(), 1, 1, Qt::Key_Space);
        acceptVoucher(QStringLiteral("B-07"), QStringLiteral("99.5"), cases[i].fp, cases[i].sj);
        EXPECT_EQ(row(i + 1, QStringLiteral("ifnull(fpcode,'NULL')||'/'||ifnull(sjcode,'NULL')||"
                                            "'/'||ysjine||'/'||batch||'/'||ysname||'/'||status||"
                                            "'/'||(ysdate=date('now','localtime'))")),
                  cases[i].stored + QStringLiteral("/99.5/B-07/验收员乙/1/1"));
        EXPECT_EQ(grid()->TextMatrix(1, 0) + grid()->TextMatrix(1, 5), QString());
        EXPECT_EQ(grid()->Rows(), 2 + 8 - i - 1);
    }
    // With row 1 blank, 验收 stops at once, and the blank row opens no editor.
    press(grid(), 2, 3, Qt::Key_Space);
    click(frm(), QStringLiteral("Command1_1"));
    EXPECT_FALSE(voucher().isLoaded());
    EXPECT_FALSE(editorOpensOn(1, 4));

    // All the rest chosen: written, the grid form closes, the dialog comes back.
    search(QStringLiteral("人民文学出版社"));
    press(grid(), 1, grid()->Rows() - 1, Qt::Key_Space);
    acceptVoucher(QStringLiteral("B-09"), QString(), QString(), QStringLiteral("S"));
    settle();
    EXPECT_FALSE(frm().isLoaded());
    EXPECT_TRUE(dlg().isVisible());
    EXPECT_EQ(q(QStringLiteral("SELECT count(*) FROM cgk WHERE status=0")), QStringLiteral("0"));
}

// The third of five updates fails: the two before it are rolled back.
TEST_F(Acceptance, AFailureInTheVoucherWritesNothing) {
    for (int i = 1; i <= 5; ++i)
        order(i, QStringLiteral("新华书店"), QStringLiteral("书%1").arg(i), 3,
              QStringLiteral("20"));
    const QString before = dump();
    armFault(3);
    search(QStringLiteral("新华书店"));
    press(grid(), 1, 5, Qt::Key_Space);
    acceptVoucher(QStringLiteral("B1"), QString(), QStringLiteral("F"), QString());
    EXPECT_EQ(shown(), QStringLiteral("采购验收操作失败，取消该操作。#16"));
    EXPECT_EQ(dump(), before);
    // The rows walked before the failure are gone from the grid until the next search.
    EXPECT_EQ(grid()->Rows(), 1 + 5 - 2);
    EXPECT_FALSE(voucher().isLoaded());
    search(QStringLiteral("新华书店"));
    EXPECT_EQ(grid()->Rows(), 6);
}

} // namespace
