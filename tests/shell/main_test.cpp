// Start-up: the single instance, the stored profile, the names cut out of it, and the
// order of the first windows.
#include "modalscript.h"
#include "shelltest.h"

#include "data/globals.h"
#include "platform/errors.h"
#include "platform/runtime.h"
#include "shell/BMLoginFrm.h"
#include "shell/frmODBC.h"
#include "shell/modMain.h"
#include "tests/support/testsupport.h"

#include <QDir>
#include <QLockFile>
#include <QPushButton>
#include <QStandardPaths>
#include <QUuid>

using testsupport::boxes;
using namespace Qt::StringLiterals;

namespace {

class MainTest : public testsupport::DbTest {
protected:
    void SetUp() override {
        DbTest::SetUp();
        shelltest::resetGlobals();
        // Our own instance name, so a client or another test run never gets in the way.
        vb::releaseInstanceLock();
        setInstanceKey(u"OrvaneCG-test-"_s + QUuid::createUuid().toString(QUuid::WithoutBraces));
    }
    void TearDown() override {
        vb::releaseInstanceLock();
        DbTest::TearDown();
    }
    void store(const QString& v) { vb::SaveSetting(kSettingApp, kSettingSection, kSettingKey, v); }
};

QString lockPath(const QString& key) {
    QString dir = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
    if (dir.isEmpty()) dir = QDir::tempPath();
    return dir + u'/' + key + u".lock"_s;
}

TEST_F(MainTest, SecondInstanceIsRefusedAndEnds) {
    QLockFile other(lockPath(instanceKey()));
    other.setStaleLockTime(0);
    ASSERT_TRUE(other.tryLock(0));
    store(u"PROVIDER=MSDASQL;DSN=x;"_s);
    EXPECT_THROW(Main(), vb::ProcessEnded);
    ASSERT_EQ(boxes().calls().size(), 1u);
    EXPECT_EQ(boxes().last().prompt, u"程序已经运行，不能再次装载。"_s);
    EXPECT_EQ(boxes().last().flags, 64);
    EXPECT_EQ(boxes().last().title, u"操作提示"_s);
    EXPECT_EQ(testsupport::processEnds(), 1);
    EXPECT_FALSE(vb::FormRegistry::exists<BMLoginFrm>());
    EXPECT_TRUE(gConnStr.isEmpty()); // ended before the profile was read
}

// With no profile (nothing stored, or "NotExsists" stored) the dialog comes first, then
// the login; with one, straight the login, with server and database cut out of it.
TEST_F(MainTest, ProfileDecidesTheFirstWindowsAndTheNamesCut) {
    const struct {
        const char* profile; // nullptr: nothing stored
        const char* server;
        const char* database;
    } cases[] = {
        {nullptr, "", ""},
        {"NotExsists", "", ""},
        {"PROVIDER=MSDASQL;Driver=SQL Server;Server=h;UID=u;PWD=p;Database=d;", "h", "d"},
        {"PROVIDER=MSDASQL;XServer=abc;UID=u;", "=abc", ""}, // found anywhere, cut by length
        {"PROVIDER=MSDASQL;DSN=Orvane;UID=u;PWD=p;", "", ""},
        {"PROVIDER=MSDASQL;DSN=Orvane;UID=u;PWD=p;Database=lib;", "", "lib"},
        {"Server=one;Server=two;Database=a;Database=b", "two", "b"}, // the later one wins
        {"", "", ""}, // no default: split, and on to the login
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.profile ? c.profile : "nothing stored");
        shelltest::resetGlobals();
        vb::releaseInstanceLock();
        if (c.profile)
            store(QString::fromUtf8(c.profile));
        else
            vb::DeleteSetting(kSettingApp, kSettingSection, kSettingKey);
        QStringList order;
        {
            ModalScript script;
            if (!c.profile || QString::fromUtf8(c.profile) == kNoProfile)
                script.on<frmODBC>([&](frmODBC& f) {
                    order << f.caption();
                    shelltest::click(f.ctl<QPushButton>(u"CmdCancel"_s));
                });
            script.on<BMLoginFrm>([&](BMLoginFrm& f) {
                order << f.caption();
                shelltest::click(f.ctl<QPushButton>(u"cmdExit"_s));
            });
            Main();
        }
        EXPECT_EQ(order.last(), u"Orvane图书馆管理系统-------采购子系统"_s);
        if (order.size() == 2) {
            EXPECT_EQ(order.first(), u"请设置要连接的数据库信息"_s);
        }
        EXPECT_EQ(gConnStr, c.profile ? QString::fromUtf8(c.profile) : kNoProfile);
        EXPECT_EQ(gServer, QString::fromUtf8(c.server));
        EXPECT_EQ(gDatabase, QString::fromUtf8(c.database));
        EXPECT_FALSE(vb::form<BMLoginFrm>().isLoaded());
        EXPECT_TRUE(boxes().calls().empty());
    }
}

} // namespace
