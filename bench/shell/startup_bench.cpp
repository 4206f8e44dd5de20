// Start-up to the login window: each iteration starts a fresh process running the client's
// own start and timed until the login window first paints, libraries and fonts included.
//   bench_shell_startup [--benchmark_...]     offscreen unless a display is given
#include "platform/runtime.h"
#include "shell/modMain.h"
#include "shell/routes.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QProcess>
#include <QSettings>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>

namespace {

QString self;

// The child: what orvanecg's main does, plus a watch for the first paint of the login.
class LoginWatch : public QObject {
protected:
    bool eventFilter(QObject* o, QEvent* e) override {
        if (e->type() == QEvent::Paint && o->objectName() == QLatin1String("BMLoginFrm")) {
            std::printf("login\n");
            std::fflush(stdout);
            std::_Exit(0);
        }
        return QObject::eventFilter(o, e);
    }
};

int child(int argc, char** argv) {
    OrvaneApplication app(argc, argv);
    app.setQuitOnLastWindowClosed(false);
    LoginWatch watch;
    app.installEventFilter(&watch);
    registerRoutes();
    Main();
    return 1; // the login never painted
}

void BM_StartupToLogin(benchmark::State& state) {
    QTemporaryDir home;
    const QString config = home.path() + QStringLiteral("/config");
    {
        // A stored profile: Main goes straight to the login (no connection is made there).
        QSettings s(config + QStringLiteral("/OrvaneCG/Orvane文献系统.ini"), QSettings::IniFormat);
        s.setValue(QStringLiteral("Setting/OrvanePass"),
                   QStringLiteral("PROVIDER=MSDASQL;DSN=OrvaneBench;UID=u;PWD=;"));
    }
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("XDG_CONFIG_HOME"), config);
    if (!env.contains(QStringLiteral("DISPLAY")) &&
        !env.contains(QStringLiteral("QT_QPA_PLATFORM")))
        env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    for (auto _ : state) {
        QProcess p;
        p.setProcessEnvironment(env);
        QElapsedTimer t;
        t.start();
        p.start(self, {QStringLiteral("--child")});
        QByteArray out;
        while (!out.contains("login") && p.waitForReadyRead(10000))
            out += p.readAllStandardOutput();
        const double seconds = t.nsecsElapsed() / 1e9;
        p.waitForFinished(5000);
        if (!out.contains("login")) {
            state.SkipWithError("the login window did not come up");
            break;
        }
        state.SetIterationTime(seconds);
    }
}
BENCHMARK(BM_StartupToLogin)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(10);

} // namespace

int main(int argc, char** argv) {
    if (argc > 1 && std::string(argv[1]) == "--child") return child(argc, argv);
    QCoreApplication app(argc, argv);
    self = QCoreApplication::applicationFilePath();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
