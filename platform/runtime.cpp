#include "platform/runtime.h"

#include "platform/errors.h"
#include "platform/form.h"

#include <QDir>
#include <QKeyEvent>
#include <QLockFile>
#include <QSettings>
#include <QStandardPaths>
#include <QWidget>

#include <memory>

namespace vb {
namespace {

QString& settingsDir() {
    static QString dir;
    return dir;
}

std::unique_ptr<QSettings> store(const QString& appName) {
    if (!settingsDir().isEmpty())
        return std::make_unique<QSettings>(settingsDir() + u'/' + appName + QStringLiteral(".ini"),
                                           QSettings::IniFormat);
    // The legacy store is per user, below one vendor key; ours is the user's config folder.
    return std::make_unique<QSettings>(QSettings::IniFormat, QSettings::UserScope,
                                       QStringLiteral("OrvaneCG"), appName);
}

std::unique_ptr<QLockFile>& instanceLock() {
    static std::unique_ptr<QLockFile> lock;
    return lock;
}

} // namespace

QString GetSetting(const QString& appName, const QString& section, const QString& key,
                   const QString& defaultValue) {
    auto s = store(appName);
    s->beginGroup(section);
    if (!s->contains(key)) return defaultValue;
    return s->value(key).toString();
}

void SaveSetting(const QString& appName, const QString& section, const QString& key,
                 const QString& value) {
    auto s = store(appName);
    s->beginGroup(section);
    s->setValue(key, value);
    s->endGroup();
    s->sync();
}

void DeleteSetting(const QString& appName, const QString& section, const QString& key) {
    auto s = store(appName);
    s->beginGroup(section);
    s->remove(key);
    s->endGroup();
    s->sync();
}

void setSettingsPath(const QString& dir) {
    settingsDir() = dir;
}

QString instanceLockPath(const QString& key) {
    QString dir = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
    if (dir.isEmpty()) dir = QDir::tempPath();
    return dir + u'/' + key + QStringLiteral(".lock");
}

bool PrevInstance(const QString& key) {
    if (instanceLock()) return false; // this process holds it already
    auto lock = std::make_unique<QLockFile>(instanceLockPath(key));
    lock->setStaleLockTime(0); // only a live process holds it; a crashed one's lock is stale
    if (!lock->tryLock(0)) return true;
    instanceLock() = std::move(lock);
    return false;
}

void releaseInstanceLock() {
    instanceLock().reset();
}

QString AppPath() {
    QString p = QCoreApplication::applicationDirPath();
    while (p.size() > 1 && p.endsWith(u'/')) p.chop(1);
    return p;
}

void sendTab() {
    // SendKeys puts the key in the queue: it takes effect after the running handler.
    if (QWidget* w = QApplication::focusWidget())
        QCoreApplication::postEvent(
            w, new QKeyEvent(QEvent::KeyPress, Qt::Key_Tab, Qt::NoModifier, QStringLiteral("\t")));
}

} // namespace vb

OrvaneApplication::OrvaneApplication(int& argc, char** argv) : QApplication(argc, argv) {}

OrvaneApplication::~OrvaneApplication() { vb::FormRegistry::destroyAll(); }

bool OrvaneApplication::notify(QObject* receiver, QEvent* event) {
    try {
        return QApplication::notify(receiver, event);
    } catch (const vb::VbError& e) {
        try {
            vb::fatalError(e);
        } catch (const vb::ProcessEnded&) {
            vb::FormRegistry::quitModalLoops();
        }
        return true;
    } catch (const vb::ProcessEnded&) {
        // Only a test's App::end hook gets here: the handler is unwound, and the modal
        // loops that would have died with the process are left.
        vb::FormRegistry::quitModalLoops();
        return true;
    }
}
