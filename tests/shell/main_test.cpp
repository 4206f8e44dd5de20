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

namespace {

class MainTest : public testsupport::DbTest {
protected:
    void SetUp() override {
        DbTest::SetUp();
        shelltest::resetGlobals();
        // Our own instance name, so a client or another test run never gets in the way.
        vb::releaseInstanceLock();
        setInstanceKey(QStringLiteral("OrvaneCG-test-") +
                       QUuid::createUuid().toString(QUuid::WithoutBraces));
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
    return dir + u'/' + key + QStringLiteral(".lock");
}

TEST_F(MainTest, SecondInstanceIsRefusedAndEnds) {
    QLockFile other(lockPath(instanceKey()));
    other.setStaleLockTime(0);
    ASSERT_TRUE(other.tryLock(0));
    store(QStringLiteral("PROVIDER=MSDASQL;DSN=x;"));
    EXPECT_THROW(Main(), vb::ProcessEnded);
    ASSERT_EQ(boxes().calls().size(), 1u);
    EXPECT_EQ(boxes().last().prompt, QStringLiteral("程序已经运行，不能再次装载。"));
    EXPECT_EQ(boxes().last().flags, 64);
    EXPECT_EQ(boxes().last().title, QStringLiteral("操作提示"));
    EXPECT_EQ(testsupport::processEnds(), 1);
    EXPECT_FALSE(vb::FormRegistry::exists<BMLoginFrm>());
    EXPECT_TRUE(gConnStr.isEmpty()); // ended before the profile was read
}

// Nothing stored and a stored "NotExsists" are the same: the dialog, then the login.
TEST_F(MainTest, NoProfileOpensTheDialogAndThenTheLogin) {
    for (bool literal : {false, true}) {
        SCOPED_TRACE(literal ? "stored NotExsists" : "nothing stored");
        shelltest::resetGlobals();
        vb::releaseInstanceLock();
        if (literal)
            store(kNoProfile);
        else
            vb::DeleteSetting(kSettingApp, kSettingSection, kSettingKey);
        QStringList order;
        {
            ModalScript script;
            script
                .on<frmODBC>([&](frmODBC& f) {
                    order << f.caption();
                    shelltest::click(f.ctl<QPushButton>(QStringLiteral("CmdCancel")));
                })
                .on<BMLoginFrm>([&](BMLoginFrm& f) {
                    order << f.caption();
                    shelltest::click(f.ctl<QPushButton>(QStringLiteral("cmdExit")));
                });
            Main();
        }
        EXPECT_EQ(order, (QStringList{QStringLiteral("请设置要连接的数据库信息"),
                                      QStringLiteral("Orvane图书馆管理系统-------采购子系统")}));
        EXPECT_EQ(gConnStr, kNoProfile);
        EXPECT_TRUE(gServer.isEmpty());
        EXPECT_TRUE(gDatabase.isEmpty());
        EXPECT_FALSE(vb::form<BMLoginFrm>().isLoaded());
        EXPECT_TRUE(boxes().calls().empty());
    }
}

TEST_F(MainTest, StoredProfileGoesStraightToTheLoginWithTheNamesCut) {
    struct Case {
        const char* profile;
        const char* server;
        const char* database;
    };
    const Case cases[] = {
        {"PROVIDER=MSDASQL;Driver=SQL Server;Server=h;UID=u;PWD=p;Database=d;", "h", "d"},
        // Found anywhere in the item, cut by length.
        {"PROVIDER=MSDASQL;XServer=abc;UID=u;", "=abc", ""},
        {"PROVIDER=MSDASQL;DSN=Orvane;UID=u;PWD=p;", "", ""},
        {"PROVIDER=MSDASQL;DSN=Orvane;UID=u;PWD=p;Database=lib;", "", "lib"},
        // A later item of the same kind wins.
        {"Server=one;Server=two;Database=a;Database=b", "two", "b"},
        // An empty value is no default: it is split and goes on to the login.
        {"", "", ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.profile);
        shelltest::resetGlobals();
        vb::releaseInstanceLock();
        store(QString::fromUtf8(c.profile));
        bool loginCame = false;
        {
            ModalScript script;
            script.on<BMLoginFrm>([&](BMLoginFrm& f) {
                loginCame = true;
                shelltest::click(f.ctl<QPushButton>(QStringLiteral("cmdExit")));
            });
            Main();
        }
        EXPECT_TRUE(loginCame);
        EXPECT_FALSE(vb::FormRegistry::exists<frmODBC>());
        EXPECT_EQ(gConnStr, QString::fromUtf8(c.profile));
        EXPECT_EQ(gServer, QString::fromUtf8(c.server));
        EXPECT_EQ(gDatabase, QString::fromUtf8(c.database));
    }
}

} // namespace
