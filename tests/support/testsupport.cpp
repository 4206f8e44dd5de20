#include "tests/support/testsupport.h"

#include "data/dbinit/dbinit.h"
#include "data/sqlitecompat/orvane_compat.h"
#include "platform/errors.h"
#include "platform/flexgrid.h"
#include "platform/runtime.h"

#include <QApplication>
#include <QDir>
#include <QInputMethodEvent>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>

#include <sqlite3.h>

namespace testsupport {

vb::ScriptedMsgBox& boxes() {
    // testmain installs one provider for the run; reach it through a fresh install when
    // a test binary has its own main.
    static std::shared_ptr<vb::ScriptedMsgBox> box = [] {
        auto b = std::make_shared<vb::ScriptedMsgBox>();
        vb::setMsgBoxProvider(b);
        return b;
    }();
    return *box;
}

int processEnds() {
    return App::endCount();
}

QString compatModule() {
    return QStringLiteral(ORVANE_COMPAT_MODULE);
}

QString sqliteProfile(const QString& dbPath) {
    return QStringLiteral("PROVIDER=MSDASQL;Driver=SQLite3;Database=%1;LoadExt=%2;")
        .arg(dbPath, compatModule());
}

namespace {
sqlite3* openDb(const QString& path) {
    sqlite3* db = nullptr;
    if (sqlite3_open(path.toUtf8().constData(), &db) != SQLITE_OK) {
        ADD_FAILURE() << "cannot open " << path.toStdString() << ": " << sqlite3_errmsg(db);
        sqlite3_close(db);
        return nullptr;
    }
    orvane_compat_register(db);
    return db;
}
} // namespace

void execSqlite(const QString& dbPath, const QString& sql) {
    sqlite3* db = openDb(dbPath);
    if (!db) return;
    char* err = nullptr;
    if (sqlite3_exec(db, sql.toUtf8().constData(), nullptr, nullptr, &err) != SQLITE_OK) {
        ADD_FAILURE() << "sqlite: " << (err ? err : "?") << " in " << sql.toStdString();
        sqlite3_free(err);
    }
    sqlite3_close(db);
}

QString querySqlite(const QString& dbPath, const QString& sql) {
    sqlite3* db = openDb(dbPath);
    if (!db) return QString();
    sqlite3_stmt* st = nullptr;
    QString out;
    if (sqlite3_prepare_v2(db, sql.toUtf8().constData(), -1, &st, nullptr) != SQLITE_OK) {
        ADD_FAILURE() << "sqlite: " << sqlite3_errmsg(db) << " in " << sql.toStdString();
    } else if (sqlite3_step(st) == SQLITE_ROW) {
        const unsigned char* t = sqlite3_column_text(st, 0);
        out = t ? QString::fromUtf8(reinterpret_cast<const char*>(t)) : QString();
    }
    sqlite3_finalize(st);
    sqlite3_close(db);
    return out;
}

void settle() {
    for (int i = 0; i < 3; ++i) QApplication::processEvents();
}

void typeText(QWidget* w, const QString& text) {
    for (QChar c : text) {
        if (c.unicode() < 128) {
            QTest::keyClick(w, static_cast<char>(c.unicode()));
        } else {
            QInputMethodEvent e;
            e.setCommitString(QString(c));
            QApplication::sendEvent(w, &e);
        }
    }
}

void typeAndLeave(QLineEdit* field, const QString& text) {
    field->setFocus();
    settle();
    field->selectAll();
    if (text.isEmpty())
        QTest::keyClick(field, Qt::Key_Backspace);
    else
        typeText(field, text);
    QTest::keyClick(field, Qt::Key_Tab);
    settle();
}

void click(vb::Form& form, const QString& button) {
    QTest::mouseClick(form.ctl<QPushButton>(button), Qt::LeftButton);
    settle();
}

QStringList gridColumn(vb::FlexGrid* grid, int col) {
    QStringList out;
    for (int r = 1; r < grid->Rows(); ++r) out << grid->TextMatrix(r, col);
    return out;
}

void DbTest::SetUp() {
    m_dir = std::make_unique<QTemporaryDir>();
    ASSERT_TRUE(m_dir->isValid());
    vb::setSettingsPath(m_dir->path() + QStringLiteral("/settings"));
}

void DbTest::TearDown() {
    m_dir.reset();
}

QString DbTest::makeEmptyDatabase() {
    m_dbPath = m_dir->path() + QStringLiteral("/empty.db");
    execSqlite(m_dbPath, QStringLiteral("PRAGMA user_version=1"));
    m_profile = sqliteProfile(m_dbPath);
    return m_profile;
}

QString DbTest::makeDatabase(bool demo) {
    m_dbPath = m_dir->path() + QStringLiteral("/orvane.db");
    std::string error;
    if (!orvane::dbinit::createDatabase(m_dbPath.toStdString(), demo, &error))
        ADD_FAILURE() << "database tool: " << error;
    m_profile = sqliteProfile(m_dbPath);
    vb::SaveSetting(QStringLiteral("Orvane文献系统"), QStringLiteral("Setting"),
                    QStringLiteral("OrvanePass"), m_profile);
    return m_profile;
}

} // namespace testsupport
