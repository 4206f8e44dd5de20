// The form as the operator meets it: opened from the frame, classes picked with the mouse.
// Which lines a letter takes is the reader's business; here, what the form does with them.

#include "classify/fenleihelp.h"
#include "classify/fenleireader.h"
#include "fenleitestfile.h"
#include "platform/flexgrid.h"
#include "platform/form.h"
#include "tests/support/testsupport.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

using fenleitest::sampleOutline;
using fenleitest::writeOutline;

namespace {

QStringList column(vb::FlexGrid* g) {
    QStringList out;
    for (int r = 0; r < g->Rows(); ++r) out << g->TextMatrix(r, 1);
    return out;
}

// An operator's click on a row's visible cell.
void pick(vb::FlexGrid* g, int row) {
    const QRect cell = g->cellRect(row, 1);
    ASSERT_TRUE(cell.isValid()) << "row " << row;
    QTest::mouseClick(g->viewport(), Qt::LeftButton, {}, cell.center() - g->viewport()->pos());
}

class FenleiForm : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(dir.isValid());
        classify::setProgramFolder(dir.path());
        path = classify::configPath(dir.path(), classify::fenleiFileName());
    }
    void TearDown() override { classify::setProgramFolder(QString()); }

    // What the frame's 中图法简表 (and F2) does.
    void open() {
        auto& f = vb::form<fenleihelp>();
        f.Load();
        f.Hide();
        f.Show(0);
    }
    vb::FlexGrid* grid(int n) {
        return vb::form<fenleihelp>().ctl<vb::FlexGrid>(QStringLiteral("Grid%1").arg(n));
    }
    int rowOf(const QString& line) { return static_cast<int>(column(grid(1)).indexOf(line)); }
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
    open();
    expectMissingBox();
    for (int n : {1, 2}) EXPECT_EQ(column(grid(n)), QStringList{QString()});
    EXPECT_TRUE(vb::form<fenleihelp>().isVisible());
    ASSERT_TRUE(vb::form<fenleihelp>().Unload());

    // Loaded anew: the main classes, the first one current and its classes shown at once.
    ASSERT_TRUE(writeOutline(path, sampleOutline()));
    open();
    EXPECT_EQ(grid(1)->Rows(), 7);
    EXPECT_EQ(grid(1)->Row(), 0);
    EXPECT_EQ(grid(2)->Rows(), 3);
    // The empty line shows one blank row.
    pick(grid(1), rowOf(QString()));
    EXPECT_EQ(column(grid(2)), QStringList{QString()});
    const int t = rowOf(QStringLiteral("T 工业类"));

    // Every pick reads the file again; the main classes were read once, at load.
    QStringList edited = sampleOutline();
    edited.insert(edited.indexOf(QStringLiteral("TP 工业类的第二个类")), "TN 新加的类");
    ASSERT_TRUE(writeOutline(path, edited));
    pick(grid(1), t);
    EXPECT_EQ(column(grid(2)),
              (QStringList{"TB 工业类的第一个类", "TN 新加的类", "TP 工业类的第二个类"}));
    EXPECT_EQ(grid(2)->Row(), 0);
    EXPECT_TRUE(testsupport::boxes().calls().empty());

    // The file gone: the empty row reads nothing and says nothing, a class says so.
    ASSERT_TRUE(QFile::remove(path));
    pick(grid(1), rowOf(QString()));
    EXPECT_TRUE(testsupport::boxes().calls().empty());
    pick(grid(1), 1);
    expectMissingBox();
    EXPECT_EQ(column(grid(2)), QStringList{QString()});
}

TEST_F(FenleiForm, ShippedOutlineBesideTheProgram) {
    // App.Path itself: the test runs from the folder the build puts fenlei.Qvx in.
    classify::setProgramFolder(QString());
    open();
    EXPECT_TRUE(testsupport::boxes().calls().empty());
    EXPECT_EQ(grid(1)->Rows(), 22);
}

} // namespace
