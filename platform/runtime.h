#pragma once
// Process services of the legacy runtime: settings store, single instance, App.Path,
// send-Tab, and the application object whose notify() is the runtime's last error trap.

#include <QApplication>
#include <QString>

class QWidget;

namespace vb {

// Per-user settings as GetSetting/SaveSetting: application, section and key as given.
// The organisation is fixed; tests point the store at a temporary folder with
// setSettingsPath().
QString GetSetting(const QString& appName, const QString& section, const QString& key,
                   const QString& defaultValue = QString());
void SaveSetting(const QString& appName, const QString& section, const QString& key,
                 const QString& value);
void DeleteSetting(const QString& appName, const QString& section, const QString& key);
// Use INI files below `dir` instead of the platform store (tests, the demo).
void setSettingsPath(const QString& dir);

// App.PrevInstance: true when another process of this program holds the instance lock.
// The first call takes the lock for this process (kept until it ends). `key` names the
// program; tests use their own key.
bool PrevInstance(const QString& key = QStringLiteral("OrvaneCG"));
QString instanceLockPath(const QString& key);
void releaseInstanceLock();

// App.Path: the folder of the executable, without a trailing separator.
QString AppPath();

// SendKeys "{tab}": moves the focus on from the focused widget as a Tab key would.
void sendTab();

} // namespace vb

// The client's QApplication: a VbError that leaves an event handler ends up here and
// gets the runtime's error box, then the process ends (through App::end).
class OrvaneApplication : public QApplication {
    Q_OBJECT
public:
    OrvaneApplication(int& argc, char** argv);
    // The forms live as long as the process, but their windows must go before the
    // application object does.
    ~OrvaneApplication() override;
    bool notify(QObject* receiver, QEvent* event) override;
};
