// The form as the operator meets it: opened from the frame, classes picked with the mouse.
// Which lines a letter takes is the reader's business; here, what the form does with them.

#include "classify/fenleihelp.h"
#include "classify/fenleireader.h"
#include "fenleitestfile.h"
#include "platform/flexgrid.h"
#include "platform/form.h"
#include "tests/support/testsupport.h"

#include <QFile>
#include <QFileInfo>
#include <QGroupBox>
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
    vb::FlexGrid* grid(int n) {
        return vb::form<fenleihelp>().ctl<vb::FlexGrid>(QStringLiteral("Grid%1").arg(n));
    }
    int rowOf(const QString& line) { return static_cast<int>(column(grid(1), 1).indexOf(line)); }
    void expectMissingBox() {
        ASSERT_EQ(testsupport::boxes().calls().size(), 1u);
        const auto& box = testsupport::boxes().last();
        EXPECT_EQ(box.title + u'|' + box.prompt,
                  QStringLiteral("操作提示|配置文件【") + path + QStringLiteral("】丢失。"));
        EXPECT_EQ(box.flags, vb::vbInformation);
        testsupport::boxes().clear();
    }

    QTemporaryDir dir;
    QString path;
};

TEST_F(FenleiForm, AnOperatorPicksClassesWhileTheFileChanges) {
    ASSERT_TRUE(writeOutline(path, sampleOutline()));
    auto& f = open();
    EXPECT_EQ(f.caption() + u'|' + f.ctl<QLabel>(QStringLiteral("Label2"))->text() + u'|' +
                  f.ctl<QLabel>(QStringLiteral("Label3"))->text(),
              QStringLiteral("《中国图书馆分类法》（第四版）|二十二大类目|相应类目二级以上简表"));
    for (auto [n, width] : {std::pair{1, 4100}, std::pair{2, 6800}}) {
        vb::FlexGrid* g = grid(n);
        EXPECT_EQ(g->parentWidget(), f.ctl<QGroupBox>(QStringLiteral("Frame1")));
        // No fixed row or column: the first class is a row like the others.
        EXPECT_EQ(g->FixedRows() + g->FixedCols() + g->ColWidth(0), 0);
        EXPECT_EQ(g->ColWidth(1), vb::toTwips(vb::twips(width)));
        // The text column fits inside the grid, so no line is cut by a scroll to the side.
        EXPECT_LE(vb::twips(width), g->viewport()->width()) << n;
    }
    // Loaded: the main classes with their row numbers, the first one's classes at once.
    EXPECT_EQ(column(grid(1), 0), (QStringList{"0", "1", "2", "3", "4", "5"}));
    EXPECT_EQ(grid(1)->Row(), 0);
    EXPECT_EQ(column(grid(2), 0), (QStringList{"0", "1", "2"})); // A's three classes

    // The letter of a line with blanks in front is found; the empty line shows one blank
    // row; a shift-click still selects one row.
    pick(grid(1), rowOf(QStringLiteral("   B 第二大类，前有空格")));
    EXPECT_EQ(column(grid(2), 1), QStringList{"B1 第二大类的第一个类"});
    pick(grid(1), rowOf(QString()));
    EXPECT_EQ(column(grid(2), 1), QStringList{QString()});
    const int t = rowOf(QStringLiteral("T 工业类"));
    pick(grid(1), t, Qt::ShiftModifier);
    pick(grid(2), 1, Qt::ShiftModifier);
    EXPECT_EQ((std::vector{grid(1)->Row(), grid(1)->RowSel(), grid(2)->Row(), grid(2)->RowSel()}),
              (std::vector{t, t, 1, 1}));

    // Every pick reads the file again; the main classes were read once, at load.
    QStringList edited = sampleOutline();
    edited.insert(edited.indexOf(QStringLiteral("TP 工业类的第二个类")), "TN 新加的类");
    ASSERT_TRUE(writeOutline(path, edited));
    pick(grid(1), t);
    EXPECT_EQ(column(grid(2), 1),
              (QStringList{"TB 工业类的第一个类", "TN 新加的类", "TP 工业类的第二个类"}));
    EXPECT_EQ(grid(2)->Row(), 0);
    pick(grid(1), 0);
    EXPECT_EQ(grid(2)->TextMatrix(0, 1), QStringLiteral("A1 第一大类的第一个类"));
    EXPECT_TRUE(testsupport::boxes().calls().empty());

    // Opened again, the form comes back as it was, whatever the file holds now.
    pick(grid(1), t);
    ASSERT_TRUE(writeOutline(path, {"[大类表]", "Z 新文件"}));
    open();
    EXPECT_EQ(grid(1)->Rows(), 6);
    EXPECT_EQ(grid(1)->Row(), t);
    // The file gone: the empty row reads nothing and says nothing, a class says so.
    ASSERT_TRUE(QFile::remove(path));
    pick(grid(1), rowOf(QString()));
    EXPECT_TRUE(testsupport::boxes().calls().empty());
    pick(grid(1), 1);
    expectMissingBox();
    EXPECT_EQ(column(grid(2), 1), QStringList{QString()});
    EXPECT_EQ(grid(1)->Rows(), 6);
    // Closed and opened again, it loads anew: an absent second section is no fault.
    ASSERT_TRUE(writeOutline(path, {"[大类表]", "Z 新文件", "Y 另一类"}));
    ASSERT_TRUE(vb::form<fenleihelp>().Unload());
    open();
    EXPECT_EQ(column(grid(1), 1), (QStringList{"Z 新文件", "Y 另一类"}));
    pick(grid(1), 1);
    EXPECT_EQ(column(grid(2), 1), QStringList{QString()});
    EXPECT_TRUE(testsupport::boxes().calls().empty());
}

TEST_F(FenleiForm, MissingFileAtLoad) {
    auto& f = open();
    expectMissingBox();
    for (int n : {1, 2}) EXPECT_EQ(column(grid(n), 1), QStringList{QString()});
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

TEST_F(FenleiForm, ShippedOutlineBesideTheProgram) {
    // App.Path itself: the test runs from the folder the build puts fenlei.Qvx in.
    classify::setProgramFolder(QString());
    open();
    EXPECT_TRUE(testsupport::boxes().calls().empty());
    ASSERT_EQ(grid(1)->Rows(), 22);
    pick(grid(1), rowOf(QStringLiteral("T 工业技术")));
    EXPECT_EQ(grid(2)->TextMatrix(0, 1), QStringLiteral("TB 一般工业技术"));
}

} // namespace
