// frmMarcKaPian opened by a caller with a record and a mode, then its buttons pressed in
// any order; what each layout reads is the reader's business.

#include "cardrecords.h"

#include "card/marcviewer.h"
#include "tests/support/testsupport.h"

#include <QPushButton>
#include <QTest>

#include <gtest/gtest.h>

using namespace cardtest;

namespace {

enum Button { Biaozhun = 0, Kapian = 1, Ziduan = 2, Fanhui = 3 };

frmMarcKaPian& open(const QString& marc, const QString& mode) {
    auto& f = vb::form<frmMarcKaPian>();
    f.MarcShuju = marc;
    f.varSelect = mode;
    f.Show(0);
    return f;
}

MarcTextBox* text1(frmMarcKaPian& f) {
    return f.ctl<MarcTextBox>(QStringLiteral("Text1"));
}
QString text(frmMarcKaPian& f) {
    return text1(f)->text();
}

void press(frmMarcKaPian& f, int i) {
    QTest::mouseClick(f.ctl<QPushButton>(QStringLiteral("cmdclick"), i), Qt::LeftButton);
}

} // namespace

TEST(CardViewer, OpeningModesAndButtonsInAnyOrder) {
    const QString marc = workedRecord();
    const QString texts[3] = {marc, *run(true, marc).text, *run(false, marc).text};
    // Only "标准" exactly opens with the record text.
    for (const QString& mode :
         {QString(), QStringLiteral("标准式"), QStringLiteral("卡片"), QStringLiteral("标准")}) {
        vb::form<frmMarcKaPian>().Unload();
        EXPECT_EQ(text(open(marc, mode)), texts[mode == QStringLiteral("标准") ? 0 : 1])
            << mode.toStdString();
    }
    auto& f = vb::form<frmMarcKaPian>();
    // From the record text, every change of layout and one press twice.
    for (int b : {Ziduan, Ziduan, Kapian, Biaozhun, Kapian, Ziduan, Biaozhun}) {
        press(f, b);
        ASSERT_EQ(text(f), texts[b]) << "button " << b;
    }
    EXPECT_TRUE(testsupport::boxes().calls().empty());
    // The card text keeps the closing characters; the box shows them, it does not drop them.
    press(f, Kapian);
    EXPECT_TRUE(text1(f)->toPlainText().contains(QStringLiteral("·—第2版,张三修订¶")));
    // Return, or the close box (Qt's close refused, the form unloads itself), ends the form
    // and the record with it.
    for (bool viaButton : {true, false}) {
        open(marc, QStringLiteral("标准"));
        viaButton ? press(f, Fanhui) : void(f.window()->close());
        EXPECT_FALSE(f.isLoaded());
        EXPECT_EQ(f.MarcShuju + f.varSelect, QString());
    }
}

TEST(CardViewer, MessagesAndARefusedRecord) {
    auto& f = open(record({{"200", "␟f某著␟a书␞"}}), QString());
    EXPECT_EQ(testsupport::boxes().prompts(), QStringList{"本条记录缺少题名，无法正常显示！"});
    press(f, Kapian);
    EXPECT_EQ(testsupport::boxes().prompts().size(), 2); // again on each press
    // Opened as "标准", a refused record opens without complaint; each layout that reads it
    // shows the box and leaves the text as it was.
    f.Unload();
    testsupport::boxes().clear();
    const QString bad = in(QStringLiteral("00100nam0 2200037   450 20000090000␞  ␟a甲␞"));
    open(bad, QStringLiteral("标准"));
    EXPECT_TRUE(testsupport::boxes().calls().empty());
    for (int b : {Kapian, Ziduan}) {
        press(f, b);
        EXPECT_EQ(testsupport::boxes().last().prompt,
                  QStringLiteral("地址目次区数据出现错误，校验失败！"));
        EXPECT_EQ(text(f), bad);
    }
    EXPECT_EQ(testsupport::boxes().calls().size(), 2u);
}
