#pragma once
// What the picture tools share: a demo database in a temporary folder with the client's
// connection string on it, and saving a window's picture once it is on the screen.

#include <QString>
#include <QTemporaryDir>

class QWidget;

namespace shot {

// The demo database (orvane-dbinit --demo) in a folder of its own, gone with the object.
// On success gConnStr points at it through the SQLite3 ODBC driver and our compat module,
// and gUserName is `user`.
class DemoDatabase {
public:
    DemoDatabase(const char* tool, const QString& user);
    bool ok() const { return m_ok; }
    QString path() const { return m_dir.path() + QStringLiteral("/orvane.db"); }

private:
    QTemporaryDir m_dir;
    bool m_ok = false;
};

// Waits until `w` is exposed and has painted, then saves its picture to `path`. With
// `captionStrip` a strip with the window title is drawn on top: without a window manager
// there is no title bar, and some captions carry figures worth seeing.
bool save(QWidget* w, const QString& path, const char* tool, bool captionStrip = false);

} // namespace shot
