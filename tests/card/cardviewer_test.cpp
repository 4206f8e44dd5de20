// frmMarcKaPian driven as a librarian drives it: opened by a caller with a record and a
// mode, then its buttons pressed in any order.

#include "cardrecords.h"

#include "card/carddriver.h"
#include "card/marcviewer.h"
#include "platform/errors.h"
#include "tests/support/testsupport.h"

#include <QLabel>
#include <QPushButton>
#include <QTest>

#include <gtest/gtest.h>

#include <random>

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

QString cardOf(const QString& marc) {
    return *card::showKapian(marc, [](const QString&) {});
}
QString fieldsOf(const QString& marc) {
    return *card::showZiduan(marc, [](const QString&) {});
}

} // namespace

TEST(CardViewer, DesignAndOpeningModes) {
    const QString marc = workedRecord();
    auto& f = open(marc, QString());
    EXPECT_EQ(f.caption(), QStringLiteral("【灵巧marc编辑器】阅读MARC数据"));
    EXPECT_EQ(f.ctl<QLabel>(QStringLiteral("Label2"))->text(), QStringLiteral("通用MARC阅读器"));
    EXPECT_NE(f.findControl(QStringLiteral("Line1")), nullptr);
    QStringList captions;
    for (int i = 0; i < 4; ++i) {
        auto* b = f.ctl<QPushButton>(QStringLiteral("cmdclick"), i);
        captions << b->text() + u'=' + b->property("Tag").toString();
    }
    EXPECT_EQ(captions, (QStringList{"&B 标准式=标准式", "&K 卡片式=卡片式", "&Z 字段式=字段式",
                                     "&Q 返回=返回"}));
    // Only "标准" exactly opens with the record text.
    for (const QString& mode :
         {QString(), QStringLiteral("标准式"), QStringLiteral("卡片"), QStringLiteral("标准")}) {
        vb::form<frmMarcKaPian>().Unload();
        EXPECT_EQ(text(open(marc, mode)), mode == QStringLiteral("标准") ? marc : cardOf(marc))
            << mode.toStdString();
    }
    EXPECT_TRUE(testsupport::boxes().calls().empty());
}

TEST(CardViewer, ButtonsInAnyOrderGiveTheSameThreeTexts) {
    const QString marc = workedRecord();
    const QString texts[3] = {marc, cardOf(marc), fieldsOf(marc)};
    auto& f = open(marc, QString());
    std::mt19937 rng(6);
    for (int i = 0; i < 30; ++i) {
        const int b = int(rng() % 3);
        press(f, b);
        ASSERT_EQ(text(f), texts[b]) << "press " << i << " of button " << b;
    }
    EXPECT_TRUE(testsupport::boxes().calls().empty());
    // The card text keeps the closing characters; the box shows them, it does not drop them.
    press(f, Kapian);
    EXPECT_TRUE(text(f).contains(QChar(30)));
    EXPECT_TRUE(text1(f)->toPlainText().contains(QStringLiteral("·—第2版,张三修订¶")));
}

TEST(CardViewer, ReturnUnloadsAndTheRecordEndsWithTheForm) {
    auto& f = vb::form<frmMarcKaPian>();
    // The close box ends them the same way: the form unloads itself, Qt's close is refused.
    for (bool viaButton : {true, false}) {
        open(workedRecord(), QStringLiteral("标准"));
        viaButton ? press(f, Fanhui) : void(f.window()->close());
        EXPECT_FALSE(f.isLoaded());
        EXPECT_EQ(f.MarcShuju + f.varSelect, QString());
    }
    // The fields belong to the caller: it sets them again for the next record.
    f.MarcShuju = record({{"200", "␟a甲书␞"}});
    f.varSelect = QString();
    f.Show(0);
    EXPECT_TRUE(text(f).contains(QStringLiteral("甲书")));
}

TEST(CardViewer, CardMessagesComeAgainOnEachPressAndEnabledIsSetByTwoButtons) {
    auto& f = open(record({{"200", "␟f某著␟a书␞"}}), QString());
    EXPECT_EQ(testsupport::boxes().prompts(), QStringList{"本条记录缺少题名，无法正常显示！"});
    text1(f)->setEnabled(false);
    press(f, Ziduan);
    EXPECT_FALSE(text1(f)->isEnabled());
    press(f, Kapian);
    EXPECT_TRUE(text1(f)->isEnabled());
    EXPECT_EQ(testsupport::boxes().prompts().size(), 2);
    // An OK box with the runtime's own title, not one of the program's.
    EXPECT_EQ(testsupport::boxes().last().flags, 0);
    EXPECT_EQ(testsupport::boxes().last().title, vb::appTitle());
    EXPECT_TRUE(text(f).contains(QStringLiteral("书")));
    text1(f)->setEnabled(false);
    press(f, Biaozhun);
    EXPECT_TRUE(text1(f)->isEnabled());
}

TEST(CardViewer, RefusedDirectoryKeepsTheTextBefore) {
    // Opened as "标准", a defective record opens without complaint...
    const QString bad = in(QStringLiteral("00100nam0 2200037   450 20000090000␞  ␟a甲␞"));
    auto& f = open(bad, QStringLiteral("标准"));
    EXPECT_TRUE(testsupport::boxes().calls().empty());
    // ...and each layout that reads it shows the box and leaves the text as it was.
    for (int b : {Kapian, Ziduan}) {
        press(f, b);
        EXPECT_EQ(testsupport::boxes().last().prompt,
                  QStringLiteral("地址目次区数据出现错误，校验失败！"));
        EXPECT_EQ(text(f), bad);
    }
    EXPECT_EQ(testsupport::boxes().calls().size(), 2u);
}

TEST(CardViewer, RuntimeFailureOfAButtonEndsWithTheErrorBox) {
    const QString bad = QStringLiteral("00100nam0 22xxxxx   450 ");
    auto& f = open(bad, QStringLiteral("标准"));
    // The handler lets the failure out. (The Click is raised by its signal: a failure
    // thrown through Qt's widget code itself cannot be unwound cleanly under the leak
    // checker.)
    auto* k = f.ctl<QPushButton>(QStringLiteral("cmdclick"), Kapian);
    try {
        Q_EMIT k->clicked();
        FAIL() << "no failure";
    } catch (const vb::VbError& e) {
        EXPECT_EQ(e.number(), vb::errTypeMismatch);
    }
    // From the event loop it reaches the runtime's box, which ends the program.
    testsupport::boxes().clear();
    auto* z = f.ctl<QPushButton>(QStringLiteral("cmdclick"), Ziduan);
    QObject context;
    QMetaObject::invokeMethod(
        &context, [z] { Q_EMIT z->clicked(); }, Qt::QueuedConnection);
    QCoreApplication::processEvents();
    EXPECT_EQ(testsupport::processEnds(), 1);
    ASSERT_EQ(testsupport::boxes().calls().size(), 1u);
    EXPECT_EQ(testsupport::boxes().last().prompt,
              QStringLiteral("实时错误 '13':\r\n\r\n类型不匹配"));
}

TEST(CardViewer, EmptyRecordFailsWhenTheCardLoads) {
    auto& f = vb::form<frmMarcKaPian>();
    // Setting the public fields does not load the form.
    f.MarcShuju = QString();
    f.varSelect = QString();
    ASSERT_FALSE(f.isLoaded());
    try {
        f.Load();
        FAIL() << "no failure";
    } catch (const vb::VbError& e) {
        EXPECT_EQ(e.number(), vb::errTypeMismatch);
    }
}
