#include "tests/support/testsupport.h"

#include "data/dbinit/dbinit.h"
#include "data/sqlitecompat/orvane_compat.h"
#include "platform/errors.h"
#include "platform/flexgrid.h"
#include "platform/runtime.h"

#include <QApplication>
#include <QInputMethodEvent>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>

#include <sqlite3.h>

#include <optional>

namespace testsupport {

vb::ScriptedMsgBox& boxes() {
    // Installed on first use, by testmain for the run or by a test binary with its own main.
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

// An ADO profile for a SQLite file through the SQLite3 ODBC driver and our extension.
static QString sqliteProfile(const QString& dbPath) {
    return QStringLiteral("PROVIDER=MSDASQL;Driver=SQLite3;Database=%1;LoadExt=%2;")
        .arg(dbPath, QStringLiteral(ORVANE_COMPAT_MODULE));
}

QString querySqlite(const QString& dbPath, const QString& sql) {
    std::optional<QString> first;
    auto take = [](void* out, int, char** values, char**) {
        auto* row = static_cast<std::optional<QString>*>(out);
        if (!*row) *row = values[0] ? QString::fromUtf8(values[0]) : QString();
        return 0;
    };
    sqlite3* db = nullptr;
    char* err = nullptr;
    if (sqlite3_open(dbPath.toUtf8().constData(), &db) != SQLITE_OK) {
        ADD_FAILURE() << "cannot open " << dbPath.toStdString() << ": " << sqlite3_errmsg(db);
    } else {
        orvane_compat_register(db);
        if (sqlite3_exec(db, sql.toUtf8().constData(), take, &first, &err) != SQLITE_OK)
            ADD_FAILURE() << "sqlite: " << (err ? err : "?") << " in " << sql.toStdString();
    }
    sqlite3_free(err);
    sqlite3_close(db);
    return first.value_or(QString());
}
void execSqlite(const QString& dbPath, const QString& sql) {
    querySqlite(dbPath, sql);
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
