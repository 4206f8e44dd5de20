// The form as the operator meets it: opened from the frame, classes picked with the mouse.

#include "classify/fenleihelp.h"
#include "classify/fenleireader.h"
#include "fenleitestfile.h"
#include "platform/flexgrid.h"
#include "platform/form.h"
#include "tests/support/testsupport.h"

#include <QFile>
#include <QFileInfo>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

using fenleitest::sampleOutline;
using fenleitest::writeOutline;

namespace {

QStringList column(vb::FlexGrid* g, int col) {
    QStringList out;
    for (int r = 0; r < g->Rows(); ++r) out << g->TextMatrix(r, col);
    return out;
}

// An operator's click on a row's visible cell.
void pick(vb::FlexGrid* g, int row, Qt::KeyboardModifiers mods = {}) {
    const QRect cell = g->cellRect(row, 1);
    ASSERT_TRUE(cell.isValid()) << "row " << row;
    QTest::mouseClick(g->viewport(), Qt::LeftButton, mods, cell.center() - g->viewport()->pos());
}

class FenleiForm : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(dir.isValid());
        classify::setProgramFolder(dir.path());
        path = classify::configPath(dir.path(), classify::fenleiFileName());
    }
    void TearDown() override { classify::setProgramFolder(QString()); }

    // What the frame's 中图法简表 does.
    fenleihelp& open() {
        auto& f = vb::form<fenleihelp>();
        f.Load();
        f.Hide();
        f.Show(0);
        return f;
    }
    vb::FlexGrid* grid1() {
        return vb::form<fenleihelp>().ctl<vb::FlexGrid>(QStringLiteral("Grid1"));
    }
    vb::FlexGrid* grid2() {
        return vb::form<fenleihelp>().ctl<vb::FlexGrid>(QStringLiteral("Grid2"));
    }
    int rowOf(const QString& line) { return static_cast<int>(column(grid1(), 1).indexOf(line)); }
    QString missing() const {
        return QStringLiteral("配置文件【") + path + QStringLiteral("】丢失。");
    }

    QTemporaryDir dir;
    QString path;
};

TEST_F(FenleiForm, DesignOfTheForm) {
    ASSERT_TRUE(writeOutline(path, sampleOutline()));
    auto& f = open();
    const QString caption = QStringLiteral("《中国图书馆分类法》（第四版）");
    EXPECT_EQ(f.caption(), caption);
    auto* frame = f.ctl<QGroupBox>(QStringLiteral("Frame1"));
    EXPECT_EQ(f.ctl<QLabel>(QStringLiteral("Label1"))->text(), caption);
    EXPECT_EQ(f.ctl<QLabel>(QStringLiteral("Label2"))->text(), QStringLiteral("二十二大类目"));
    EXPECT_EQ(f.ctl<QLabel>(QStringLiteral("Label3"))->text(),
              QStringLiteral("相应类目二级以上简表"));
    struct Want {
        vb::FlexGrid* g;
        int width;
    };
    for (const Want& w : {Want{grid1(), 4100}, Want{grid2(), 6800}}) {
        EXPECT_EQ(w.g->parentWidget(), frame);
        EXPECT_EQ(w.g->Cols(), 2);
        EXPECT_EQ(w.g->FixedRows(), 0);
        EXPECT_EQ(w.g->FixedCols(), 0);
        EXPECT_EQ(w.g->ColWidth(0), 0);
        // Set in twips, held in whole pixels.
        EXPECT_EQ(w.g->ColWidth(1), vb::toTwips(vb::twips(w.width)));
        // The text column fits inside the grid, so no line is cut by a scroll to the side.
        EXPECT_LE(vb::twips(w.width), w.g->viewport()->width()) << w.g->objectName().toStdString();
    }
    EXPECT_TRUE(f.isVisible());
    EXPECT_TRUE(testsupport::boxes().calls().empty());
}

TEST_F(FenleiForm, LoadFillsMainClassesAndShowsTheFirstClassAtOnce) {
    ASSERT_TRUE(writeOutline(path, sampleOutline()));
    open();
    const QStringList mains{
        QStringLiteral("A 第一大类"),
        QStringLiteral("   B 第二大类，前有空格"),
        QString(),
        QStringLiteral("T 工业类"),
        QStringLiteral("t 小写的类"),
        QStringLiteral(" [X] 前有空格的方括号行不结束本节]"),
    };
    EXPECT_EQ(column(grid1(), 1), mains);
    EXPECT_EQ(column(grid1(), 0), (QStringList{"0", "1", "2", "3", "4", "5"}));
    EXPECT_EQ(grid1()->Row(), 0);
    EXPECT_EQ(grid1()->RowSel(), 0);
    EXPECT_EQ(column(grid2(), 1), (QStringList{QStringLiteral("A1 第一大类的第一个类"),
                                               QStringLiteral("A3 第一大类的第三个类"),
                                               QStringLiteral("[A8] 第一大类中方括号类目")}));
    EXPECT_EQ(column(grid2(), 0), (QStringList{"0", "1", "2"}));
    EXPECT_TRUE(testsupport::boxes().calls().empty());
}

TEST_F(FenleiForm, PickingAClassShowsItsSecondLevelClasses) {
    ASSERT_TRUE(writeOutline(path, sampleOutline()));
    open();
    struct Case {
        QString mainLine;
        QStringList shown;
    };
    const Case cases[] = {
        // The letter of a line with blanks in front is still found.
        {QStringLiteral("   B 第二大类，前有空格"), {QStringLiteral("B1 第二大类的第一个类")}},
        {QStringLiteral("T 工业类"),
         {QStringLiteral("TB 工业类的第一个类"), QStringLiteral("TP 工业类的第二个类")}},
        // The empty line: nothing to show, one blank row kept.
        {QString(), {QString()}},
    };
    for (const Case& c : cases) {
        const int row = rowOf(c.mainLine);
        ASSERT_GE(row, 1);
        pick(grid1(), row);
        EXPECT_EQ(grid1()->Row(), row);
        EXPECT_EQ(grid1()->RowSel(), row);
        EXPECT_EQ(column(grid2(), 1), c.shown) << c.mainLine.toStdString();
        EXPECT_EQ(grid2()->Row(), 0);
        EXPECT_EQ(grid2()->ColWidth(1), vb::toTwips(vb::twips(6800)));
    }
    EXPECT_TRUE(testsupport::boxes().calls().empty());
}

TEST_F(FenleiForm, ShiftClickStillSelectsOneRow) {
    ASSERT_TRUE(writeOutline(path, sampleOutline()));
    open();
    pick(grid1(), rowOf(QStringLiteral("T 工业类")));
    pick(grid2(), 1, Qt::ShiftModifier);
    EXPECT_EQ(grid2()->Row(), 1);
    EXPECT_EQ(grid2()->RowSel(), 1);
    pick(grid1(), 1, Qt::ShiftModifier);
    EXPECT_EQ(grid1()->Row(), 1);
    EXPECT_EQ(grid1()->RowSel(), 1);
    EXPECT_EQ(column(grid2(), 1), QStringList{QStringLiteral("B1 第二大类的第一个类")});
}

TEST_F(FenleiForm, EveryPickReadsTheFileAgain) {
    ASSERT_TRUE(writeOutline(path, sampleOutline()));
    open();
    const int t = rowOf(QStringLiteral("T 工业类"));
    QStringList edited = sampleOutline();
    edited.insert(edited.indexOf(QStringLiteral("TP 工业类的第二个类")),
                  QStringLiteral("TN 新加的类"));
    ASSERT_TRUE(writeOutline(path, edited));
    pick(grid1(), t);
    EXPECT_EQ(column(grid2(), 1),
              (QStringList{QStringLiteral("TB 工业类的第一个类"), QStringLiteral("TN 新加的类"),
                           QStringLiteral("TP 工业类的第二个类")}));
    // Grid1 was read at load and is not read again.
    EXPECT_EQ(grid1()->Rows(), 6);
}

TEST_F(FenleiForm, MissingFileAtLoad) {
    auto& f = open();
    ASSERT_EQ(testsupport::boxes().calls().size(), 1u);
    const vb::MsgBoxCall& box = testsupport::boxes().last();
    EXPECT_EQ(box.prompt, missing());
    EXPECT_EQ(box.flags, vb::vbInformation);
    EXPECT_EQ(box.title, QStringLiteral("操作提示"));
    for (vb::FlexGrid* g : {grid1(), grid2()}) {
        EXPECT_EQ(g->Rows(), 1);
        EXPECT_EQ(column(g, 1), QStringList{QString()});
    }
    EXPECT_TRUE(f.isVisible());
}

// A file that is there but cannot be opened: no read right, or, for root who reads
// everything, a link to a kernel file that only takes writes. False when neither works.
bool makeUnreadable(const QString& path) {
    if (!writeOutline(path, sampleOutline())) return false;
    QFile::setPermissions(path, QFileDevice::WriteOwner);
    if (QFile probe(path); !probe.open(QIODevice::ReadOnly)) return true;
    QFile::remove(path);
    if (!QFile::link(QStringLiteral("/proc/sys/vm/compact_memory"), path)) return false;
    QFile probe(path);
    return QFileInfo(path).isFile() && !probe.open(QIODevice::ReadOnly);
}

TEST_F(FenleiForm, AFileThatCannotBeOpenedEndsInTheRuntimeBox) {
    if (!makeUnreadable(path)) GTEST_SKIP() << "no way to make an unreadable file here";
    // From the frame's menu, through the event loop: no message of the form's own, the
    // runtime's box, and the end of the program.
    QObject context;
    QMetaObject::invokeMethod(
        &context, [this] { open(); }, Qt::QueuedConnection);
    QCoreApplication::processEvents();
    EXPECT_EQ(testsupport::processEnds(), 1);
    ASSERT_EQ(testsupport::boxes().calls().size(), 1u);
    EXPECT_EQ(testsupport::boxes().last().prompt,
              QStringLiteral("实时错误 '75':\r\n\r\n路径/文件访问错误"));
}

TEST_F(FenleiForm, FileGoneLater) {
    ASSERT_TRUE(writeOutline(path, sampleOutline()));
    open();
    ASSERT_TRUE(QFile::remove(path));
    // Picking the empty row reads nothing, so it says nothing.
    pick(grid1(), rowOf(QString()));
    EXPECT_TRUE(testsupport::boxes().calls().empty());

    pick(grid1(), rowOf(QStringLiteral("   B 第二大类，前有空格")));
    ASSERT_EQ(testsupport::boxes().calls().size(), 1u);
    EXPECT_EQ(testsupport::boxes().last().prompt, missing());
    EXPECT_EQ(testsupport::boxes().last().title, QStringLiteral("操作提示"));
    EXPECT_EQ(grid2()->Rows(), 1);
    EXPECT_EQ(column(grid2(), 1), QStringList{QString()});
    // The main classes stay as they were read.
    EXPECT_EQ(grid1()->Rows(), 6);
}

TEST_F(FenleiForm, AbsentSecondLevelSectionLeavesGrid2EmptyWithoutAWord) {
    ASSERT_TRUE(writeOutline(
        path, {QStringLiteral("[大类表]"), QStringLiteral("A 甲类"), QStringLiteral("B 乙类")}));
    open();
    EXPECT_EQ(grid1()->Rows(), 2);
    pick(grid1(), 1);
    EXPECT_EQ(column(grid2(), 1), QStringList{QString()});
    EXPECT_TRUE(testsupport::boxes().calls().empty());
}

TEST_F(FenleiForm, OpeningAgainBringsTheFormBackAsItWas) {
    ASSERT_TRUE(writeOutline(path, sampleOutline()));
    open();
    const int t = rowOf(QStringLiteral("T 工业类"));
    pick(grid1(), t);
    ASSERT_TRUE(writeOutline(path, {QStringLiteral("[大类表]"), QStringLiteral("Z 新文件")}));
    open();
    EXPECT_EQ(grid1()->Rows(), 6);
    EXPECT_EQ(grid1()->Row(), t);
    EXPECT_EQ(grid2()->TextMatrix(0, 1), QStringLiteral("TB 工业类的第一个类"));
    // Closed and opened again, it loads anew from the file.
    ASSERT_TRUE(vb::form<fenleihelp>().Unload());
    open();
    EXPECT_EQ(column(grid1(), 1), QStringList{QStringLiteral("Z 新文件")});
}

TEST_F(FenleiForm, ShippedOutlineBesideTheProgram) {
    // App.Path itself: the test runs from the folder the build puts fenlei.Qvx in.
    classify::setProgramFolder(QString());
    open();
    EXPECT_TRUE(testsupport::boxes().calls().empty());
    ASSERT_EQ(grid1()->Rows(), 22);
    const int t = rowOf(QStringLiteral("T 工业技术"));
    ASSERT_EQ(t, 17);
    pick(grid1(), t);
    EXPECT_EQ(grid2()->Rows(), 16);
    EXPECT_EQ(grid2()->TextMatrix(0, 1), QStringLiteral("TB 一般工业技术"));
    EXPECT_EQ(grid2()->TextMatrix(15, 1), QStringLiteral("TV 水利工程"));
}

// The grid has no fixed row: the first class is a row like the others, not a heading.
TEST_F(FenleiForm, FirstLineIsAnOrdinaryRow) {
    ASSERT_TRUE(writeOutline(path, sampleOutline()));
    open();
    pick(grid1(), rowOf(QStringLiteral("T 工业类")));
    EXPECT_TRUE(grid1()->horizontalHeader()->isHidden());
    pick(grid1(), 0);
    EXPECT_EQ(grid1()->Row(), 0);
    EXPECT_EQ(grid2()->TextMatrix(0, 1), QStringLiteral("A1 第一大类的第一个类"));
}

} // namespace
