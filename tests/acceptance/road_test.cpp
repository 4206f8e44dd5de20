// One title from order to statistics, as a librarian takes it through the frame on the demo
// database: ordered, accepted short, ordered again for the rest, the rest accepted in a
// second batch, the two vouchers printed from the browser, and the source's arrival rate
// and payment read from the amount statistics and from orvane-report.
#include "acceptance/YanShouBDD.h"
#include "acceptance/YanShouBDDfrm.h"
#include "acceptance/YanShouBrowerfrm.h"
#include "acceptance/YanShoudofrm.h"
#include "platform/Menu.h"
#include "purchase/CaiGoufrm.h"
#include "purchase/loadCheckDatafrm.h"
#include "query/reports.h"
#include "query/totalPrintfrm.h"
#include "shell/Mainfrm.h"
#include "shell/routes.h"
#include "tests/acceptance/acceptancetest.h"

#include <QFile>
#include <QProcess>
#include <QRadioButton>

namespace {

const QString kSource = QStringLiteral("灯塔书局");
const QString kIsbn = QStringLiteral("7-5000-0815-6");

class Road : public testsupport::SessionDb {
protected:
    Road() : SessionDb(true) {}
    void SetUp() override {
        SessionDb::SetUp();
        // The source is a known supplier; the demo never buys from it.
        exec(QStringLiteral("INSERT INTO cggys (publisher) VALUES ('%1')").arg(kSource));
        registerRoutes();
        frame().Load();
        frame().Show();
        QApplication::setActiveWindow(frame().window());
    }
    void TearDown() override {
        for (int c = 0; c < Mainfrm::commandCount; ++c)
            if (c != Mainfrm::cmd口令修改 && c != Mainfrm::cmd关于系统)
                Mainfrm::setCommandHandler(static_cast<Mainfrm::Command>(c), {});
        SessionDb::TearDown();
    }
    Mainfrm& frame() { return vb::form<Mainfrm>(); }
    void run(Mainfrm::Command c) {
        frame().runCommand(c);
        settle();
    }
    static void bySource() { findBy(QStringLiteral("采购来源"), kSource); }
    // 验收 on the source's open orders: the only row chosen, `count` copies at `price`,
    // then the voucher with its batch, amount (the proposed one when null) and invoice.
    void accept(const QString& count, const QString& price, const QString& batch,
                const QString& amount, const QString& fp, QString* proposed) {
        run(Mainfrm::cmd验收);
        auto& dlg = vb::form<YanShoudofrm>();
        QApplication::setActiveWindow(dlg.window());
        typeAndLeave(dlg.Text1(), kSource);
        click(dlg, QStringLiteral("Command1_0"));
        auto& frm = vb::form<YanShoufrm>();
        ASSERT_EQ(frm.Grid1()->Rows(), 2); // one open order of the source
        QApplication::setActiveWindow(frm.window());
        press(frm.Grid1(), 1, 1, Qt::Key_Space);
        editCell(frm.Grid1(), frm.Text1(), 1, 4, count);
        editCell(frm.Grid1(), frm.Text1(), 1, 8, price);
        acceptVoucher(batch, amount, fp, QString(), proposed);
    }
    // A report as printed to PDF, its text simplified.
    QString pdfText(vb::DataReport& r) {
        const QString pdf = tempPath() + QStringLiteral("/report.pdf");
        r.exportPdf(pdf);
        QProcess p;
        p.start(QStringLiteral("pdftotext"), {QStringLiteral("-layout"), pdf, QStringLiteral("-")});
        EXPECT_TRUE(p.waitForFinished(30000));
        // The PDF names some ideographs by their radical forms; NFKC folds them back.
        return QString::fromUtf8(p.readAllStandardOutput())
            .normalized(QString::NormalizationForm_KC)
            .simplified();
    }
    // One amount statistic from 采购金额统计 narrowed to the source, as printed.
    QString statistic(int option, vb::DataReport& report) {
        run(Mainfrm::cmd采购金额统计);
        auto& dlg = vb::form<totalPrintfrm>();
        dlg.Option1(option)->setChecked(true);
        whileModal(bySource, [&] { click(dlg, QStringLiteral("Command1_0")); });
        return pdfText(report);
    }
    // The same statistic from the command line, narrowed the same way, as CSV.
    QString reportCsv(const QString& statistic) {
        const QString csv = tempPath() + u'/' + statistic + QStringLiteral(".csv");
        QProcess p;
        p.start(QStringLiteral(ORVANE_REPORT_EXE),
                {QStringLiteral("--db"), dbPath(), QStringLiteral("--where"),
                 QStringLiteral(" Where bookfrom='%1'").arg(kSource), QStringLiteral("--out"), csv,
                 statistic});
        EXPECT_TRUE(p.waitForFinished(60000));
        EXPECT_EQ(p.exitCode(), 0) << p.readAllStandardError().toStdString();
        QFile f(csv);
        EXPECT_TRUE(f.open(QIODevice::ReadOnly));
        return QString::fromUtf8(f.readAll());
    }
};

TEST_F(Road, OneTitleFromOrderToStatistics) {
    const QString today = q(QStringLiteral("SELECT date('now','localtime')"));
    const int id = q(QStringLiteral("SELECT code FROM Global WHERE type='cgkid'")).toInt();

    // 1. The order: 增加, the ISBN found nowhere, a new order with publisher and place.
    run(Mainfrm::cmd采购订单);
    auto& entry = vb::form<CaiGoufrm>();
    ASSERT_TRUE(entry.isVisible());
    whileModal(
        [] {
            auto& check = vb::form<loadCheckDatafrm>();
            check.Option1(1)->setChecked(true);
            check.Text1()->setText(kIsbn);
            check.Command1_Click(0);
        },
        [&] { entry.Command2(0)->click(); });
    QApplication::setActiveWindow(entry.window());
    typeAndLeave(entry.Text1(0), kSource);
    typeAndLeave(entry.Text1(1), QStringLiteral("灯塔守望者手记"));
    typeAndLeave(entry.Text1(2), QStringLiteral("林远"));
    typeAndLeave(entry.Text1(14), QStringLiteral("24"));
    typeAndLeave(entry.Text1(15), QStringLiteral("现购"));
    typeAndLeave(entry.Text1(17), QStringLiteral("5"));
    entry.Command2(2)->click();
    settle();
    EXPECT_TRUE(boxes().calls().empty()) << boxes().last().prompt.toStdString();
    const QString row = QStringLiteral(" FROM cgk WHERE cgkid=%1").arg(id);
    // The publisher and its place come from the ISBN, the order date is today.
    EXPECT_EQ(q(QStringLiteral("SELECT bookfrom||'|'||bookname||'|'||isbn||'|'||publisher||'|'||"
                               "pubplace||'|'||price||'|'||bookcount||'|'||status||'|'||cgff||'|'||"
                               "yddate") +
                row),
              QStringLiteral("灯塔书局|灯塔守望者手记|7-5000-0815-6|中国大百科全书出版社|北京|24.0|"
                             "5|0|现购|") +
                  today);
    EXPECT_EQ(q(QStringLiteral("SELECT code FROM Global WHERE type='cgkid'")).toInt(), id + 1);
    entry.Unload();

    // 2. Three of the five copies come, at 22: batch DT-01, 3 x 22 = 66.
    QString proposed;
    accept(QStringLiteral("3"), QStringLiteral("22"), QStringLiteral("DT-01"), QString(),
           QStringLiteral("FP-1001"), &proposed);
    EXPECT_EQ(proposed, QStringLiteral("66.00"));
    EXPECT_EQ(q(QStringLiteral("SELECT status||'|'||bookcount||'|'||yscount||'|'||ysprice||'|'||"
                               "ysjine||'|'||batch||'|'||fpcode||'|'||ysname||'|'||ysdate") +
                row),
              QStringLiteral("1|5|3|22.0|66.0|DT-01|FP-1001|采购员甲|") + today);
    EXPECT_FALSE(vb::form<YanShoufrm>().isLoaded()); // nothing left open: the grid closes
    vb::form<YanShoudofrm>().Unload();

    // 3. The two missing copies ordered again from batch DT-01.
    run(Mainfrm::cmd补定单);
    auto& bdd = vb::form<YanShouBDDfrm>();
    QApplication::setActiveWindow(bdd.window());
    typeAndLeave(bdd.Text1(0), QStringLiteral("DT-01"));
    click(bdd, QStringLiteral("Command1_0"));
    auto& short_ = vb::form<YanShouBDD>();
    ASSERT_TRUE(short_.isVisible());
    ASSERT_EQ(short_.Grid1()->Rows(), 2);
    EXPECT_EQ(short_.Grid1()->TextMatrix(1, 8), QStringLiteral("2"));
    QApplication::setActiveWindow(short_.window());
    press(short_.Grid1(), 1, 1, Qt::Key_Space);
    boxes().answer(vb::vbYes);
    click(short_, QStringLiteral("Command1_1"));
    const QString again = QStringLiteral(" FROM cgk WHERE cgkid=%1").arg(id + 1);
    EXPECT_EQ(q(QStringLiteral("SELECT bookcount||'|'||yscount||'|'||status") + row),
              QStringLiteral("3|3|1"));
    EXPECT_EQ(q(QStringLiteral("SELECT bookfrom||'|'||bookname||'|'||isbn||'|'||bookcount||'|'||"
                               "status||'|'||cgff||'|'||ifnull(batch,'-')||'|'||yddate") +
                again),
              QStringLiteral("灯塔书局|灯塔守望者手记|7-5000-0815-6|2|0|补定|-|") + today);
    short_.Unload();
    bdd.Unload();

    // 4. One of the two comes in batch DT-02, at 22; half of it paid now: 11.
    boxes().clear();
    accept(QStringLiteral("1"), QStringLiteral("22"), QStringLiteral("DT-02"), QStringLiteral("11"),
           QStringLiteral("FP-1002"), &proposed);
    EXPECT_EQ(proposed, QStringLiteral("22.00"));
    EXPECT_EQ(q(QStringLiteral("SELECT status||'|'||bookcount||'|'||yscount||'|'||ysjine||'|'||"
                               "batch||'|'||fpcode") +
                again),
              QStringLiteral("1|2|1|11.0|DT-02|FP-1002"));
    vb::form<YanShoudofrm>().Unload();

    // 5. The browser: empty until 查找, then the two batches; both vouchers printed.
    run(Mainfrm::cmd查询浏览);
    auto& browser = vb::form<YanShouBrowerfrm>();
    EXPECT_TRUE(browser.Grid1()->TextMatrix(1, 0).isEmpty());
    whileModal(bySource, [&] { browser.Command1_Click(0); });
    EXPECT_EQ(gridColumn(browser.Grid1(), 0),
              (QStringList{QString::number(id), QString::number(id + 1)}));
    const Menu::Picker previous = Menu::setPicker(Menu::pickText(QStringLiteral("验收传票")));
    browser.Command1_Click(3);
    Menu::setPicker(Menu::pickText(QStringLiteral("验收明细")));
    browser.Command1_Click(3);
    Menu::setPicker(previous);
    // On paper the heading's digits carry no text in the PDF (see the report), so the
    // headings are checked by their words and the rows whole.
    const QString voucher = pdfText(vb::form<printYStotal>());
    EXPECT_TRUE(voucher.contains(QStringLiteral("第 DT- 批采购验收传票 采购来源 种类 册数 金额 "
                                                "灯塔书局 1 3 66 第 DT- 批采购验收传票 采购来源 "
                                                "种类 册数 金额 灯塔书局 1 1 22")))
        << voucher.toStdString();
    const QString detail = pdfText(vb::form<printYSmx>());
    EXPECT_TRUE(detail.contains(QStringLiteral("灯塔守望者手记 林远 中国大百科全书出版社 22 3 第")))
        << detail.toStdString();
    EXPECT_TRUE(detail.endsWith(QStringLiteral("灯塔守望者手记 林远 中国大百科全书出版社 22 1")));
    browser.Unload();

    // 6. Arrival rate: one title of one, 4 copies of 5 ordered (3 + 2): 100% and 80%.
    // Payment: 4 copies accepted worth 4 x 22 = 88, paid 66 + 11 = 77: 87.5%, kept in a
    // whole-number column as 87.
    const QString rate = statistic(5, vb::form<printJinELV>());
    EXPECT_TRUE(rate.contains(QStringLiteral("灯塔书局 1 1 100 5 4 80 合计 1 1 100 5 4 80")))
        << rate.toStdString();
    const QString paid = statistic(6, vb::form<printTotalJine>());
    EXPECT_TRUE(paid.contains(QStringLiteral("灯塔书局 1 4 88 77 87 合计 1 4 88 77 87")))
        << paid.toStdString();
    const QString rateCsv = reportCsv(QStringLiteral("tyscount"));
    EXPECT_TRUE(
        rateCsv.contains(QStringLiteral("\r\n灯塔书局,1,1,100,5,4,80\r\n合计,1,1,100,5,4,80")))
        << rateCsv.toStdString();
    const QString paidCsv = reportCsv(QStringLiteral("tjine"));
    EXPECT_TRUE(paidCsv.contains(QStringLiteral("\r\n灯塔书局,1,4,88,77,87\r\n合计,1,4,88,77,87")))
        << paidCsv.toStdString();
}

} // namespace
