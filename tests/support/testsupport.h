#pragma once
// What every test of the project shares: the scripted message boxes, the recorded process
// end, a temporary settings store, and fresh databases reached through the real ODBC path.

#include "data/globals.h"
#include "platform/form.h"
#include "platform/msgbox.h"

#include <QString>
#include <QStringList>
#include <QTemporaryDir>

class QLineEdit;
class QWidget;
namespace vb {
class FlexGrid;
}

#include <gtest/gtest.h>

#include <memory>
#include <utility>

namespace testsupport {

// The scripted boxes installed for the whole run (cleared before each test).
vb::ScriptedMsgBox& boxes();
// How many times App::end ran since the test began.
int processEnds();

// Runs statements directly on a SQLite file (with the compat functions registered), for
// fixtures that need tables the database tool does not make. Fails the test on error.
void execSqlite(const QString& dbPath, const QString& sql);
// First column of the first row as text ("" when there is none), straight from SQLite.
QString querySqlite(const QString& dbPath, const QString& sql);

// Lets queued events run (the queued Tab of SendKeys, deferred deletes, focus changes).
void settle();
// Types as a user does: ASCII through the keyboard, Chinese committed by the input method.
void typeText(QWidget* w, const QString& text);
// Gives the field the focus, replaces its text by typing (Backspace for ""), leaves with Tab.
void typeAndLeave(QLineEdit* field, const QString& text);
// Clicks the form's push button of that name with the mouse and lets the events run.
void click(vb::Form& form, const QString& button);
// The texts of one grid column below the header row.
QStringList gridColumn(vb::FlexGrid* grid, int col);
// "a,b,c" as a list, to compare a column in one line.
inline QStringList cells(const char* csv) {
    return QString::fromUtf8(csv).split(u',');
}

// A test with its own temporary folder, settings store and (on demand) database.
class DbTest : public ::testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;
    // A fresh database made by the database tool (with demo rows when asked), stored as
    // the connection profile; returns the profile.
    QString makeDatabase(bool demo = false);
    QString dbPath() const { return m_dbPath; }
    QString profile() const { return m_profile; }
    QString tempPath() const { return m_dir ? m_dir->path() : QString(); }

private:
    std::unique_ptr<QTemporaryDir> m_dir;
    QString m_dbPath;
    QString m_profile;
};

// The state every form test starts from: a fresh database (the demo rows when asked) stored
// as the profile and in gConnStr, and an operator logged in. Every form is destroyed after
// the test, so no form carries a window or a connection into the next one.
// Header-only: a test that does not use it need not link the data library.
class SessionDb : public DbTest {
protected:
    explicit SessionDb(bool demo = false, QString user = QStringLiteral("采购员甲"))
        : m_demo(demo), m_user(std::move(user)) {}
    void SetUp() override {
        DbTest::SetUp();
        gConnStr = makeDatabase(m_demo);
        gUserName = m_user;
    }
    void TearDown() override {
        vb::FormRegistry::destroyAll();
        DbTest::TearDown();
    }
    QString q(const QString& sql) const { return querySqlite(dbPath(), sql); }
    void exec(const QString& sql) const { execSqlite(dbPath(), sql); }

private:
    bool m_demo;
    QString m_user;
};

} // namespace testsupport
