// orvane-report: runs one statistic without the window, for the month-end run from cron or
// a script. The same generator code as the query builder's OK; the paper message and the
// "nothing found" message go to stderr instead of a box, and the report goes to a file.
//
//   orvane-report [--db FILE.db | --dsn NAME] [--where " Where ..."] [--order " Order By ..."]
//                 --out FILE.pdf|.xlsx|.csv NAME
//
// Exit 0 done (also when nothing was found: the message says so and no file is written),
// 1 a statement or the file failed (the database's message on stderr), 2 bad usage.
#include "data/globals.h"
#include "platform/errors.h"
#include "platform/msgbox.h"
#include "platform/report.h"
#include "platform/runtime.h"
#include "query/tongji.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QFileInfo>

#include <cstdio>
#include <memory>
#include <optional>

namespace {

void err(const QString& text) {
    std::fputs(text.toUtf8().constData(), stderr);
    std::fputc('\n', stderr);
}

const char* const kUsage =
    "usage: orvane-report [--db FILE.db | --dsn NAME] [--where \" Where ...\"]\n"
    "                     [--order \" Order By ...\"] --out FILE.pdf|FILE.xlsx|FILE.csv NAME\n"
    "NAME: print totalmx totaltotal tlagclass tcgff tzdcode tbookfrom tclasscode tyscount "
    "tjine\n"
    "Without --db or --dsn the stored connection profile is used.\n";

int usage(const QString& why) {
    if (!why.isEmpty()) err(QStringLiteral("orvane-report: ") + why);
    std::fputs(kUsage, stderr);
    return 2;
}

// The boxes of a run, on stderr.
class StderrBoxes : public vb::MsgBoxProvider {
public:
    int show(const vb::MsgBoxCall& call) override {
        err(call.prompt);
        return 1; // OK
    }
};

// A clause given by hand: it must begin with its keyword; the leading blank the builder
// puts before it is added when missing.
std::optional<QString> clause(const QString& given, const QString& keyword) {
    const QString t = given.trimmed();
    if (t.isEmpty()) return QString();
    const QStringList words = t.split(u' ', Qt::SkipEmptyParts);
    const QStringList key = keyword.split(u' ');
    for (qsizetype i = 0; i < key.size(); ++i)
        if (i >= words.size() || words[i].compare(key[i], Qt::CaseInsensitive) != 0)
            return std::nullopt;
    return given.startsWith(u' ') ? given : u' ' + given;
}

} // namespace

int main(int argc, char** argv) {
    // No window is ever shown; reports are laid out off screen.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);

    QCommandLineParser p;
    const QCommandLineOption db(QStringLiteral("db"), QString(), QStringLiteral("FILE"));
    const QCommandLineOption dsn(QStringLiteral("dsn"), QString(), QStringLiteral("NAME"));
    const QCommandLineOption where(QStringLiteral("where"), QString(), QStringLiteral("CLAUSE"));
    const QCommandLineOption order(QStringLiteral("order"), QString(), QStringLiteral("CLAUSE"));
    const QCommandLineOption out(QStringLiteral("out"), QString(), QStringLiteral("FILE"));
    const QCommandLineOption help(QStringList{QStringLiteral("h"), QStringLiteral("help")});
    p.addOptions({db, dsn, where, order, out, help});
    p.addPositionalArgument(QStringLiteral("NAME"), QString());
    if (!p.parse(QCoreApplication::arguments())) return usage(p.errorText());
    if (p.isSet(help)) {
        std::fputs(kUsage, stdout);
        return 0;
    }
    const QStringList names = p.positionalArguments();
    if (names.size() != 1) return usage(QStringLiteral("one statistic NAME is needed"));
    const QString printType = names.first();
    if (!tongji::isPrintType(printType))
        return usage(QStringLiteral("unknown statistic: ") + printType);
    if (p.isSet(db) && p.isSet(dsn))
        return usage(QStringLiteral("--db and --dsn exclude each other"));
    if (!p.isSet(out)) return usage(QStringLiteral("--out FILE is needed"));
    const QString outPath = p.value(out);
    const QString ext = QFileInfo(outPath).suffix().toLower();
    if (ext != QLatin1String("pdf") && ext != QLatin1String("xlsx") && ext != QLatin1String("csv"))
        return usage(QStringLiteral("--out must end in .pdf, .xlsx or .csv"));
    const auto whereClause = clause(p.value(where), QStringLiteral("Where"));
    if (!whereClause) return usage(QStringLiteral("--where must begin with Where"));
    const auto orderClause = clause(p.value(order), QStringLiteral("Order By"));
    if (!orderClause) return usage(QStringLiteral("--order must begin with Order By"));

    if (p.isSet(db)) {
        const QString file = p.value(db);
        if (!QFileInfo(file).isFile()) {
            err(QStringLiteral("orvane-report: no database file ") + file);
            return 1;
        }
#ifdef Q_OS_WIN
        const QString libExt = QStringLiteral(".dll");
#else
        const QString libExt = QStringLiteral(".so");
#endif
        gConnStr = QStringLiteral("PROVIDER=MSDASQL;Driver=SQLite3;Database=%1;LoadExt=%2;")
                       .arg(QFileInfo(file).absoluteFilePath(),
                            vb::AppPath() + QStringLiteral("/liborvane_sqlite_compat") + libExt);
    } else if (p.isSet(dsn)) {
        gConnStr = QStringLiteral("PROVIDER=MSDASQL;DSN=%1;").arg(p.value(dsn));
    } else {
        gConnStr = vb::GetSetting(kSettingApp, kSettingSection, kSettingKey, kNoProfile);
        if (gConnStr == kNoProfile) {
            err(QStringLiteral("orvane-report: no stored connection profile; give --db or --dsn"));
            return 2;
        }
    }

    vb::setMsgBoxProvider(std::make_shared<StderrBoxes>());
    std::optional<QString> writeError;
    try {
        tongji::run(printType, *whereClause, *orderClause, [&](vb::DataReport& r) {
            try {
                r.Refresh();
                if (ext == QLatin1String("pdf"))
                    r.exportPdf(outPath);
                else if (ext == QLatin1String("xlsx"))
                    r.exportXlsx(outPath);
                else
                    r.exportCsv(outPath);
            } catch (const vb::VbError& e) {
                writeError = e.description();
            }
        });
    } catch (const vb::VbError& e) {
        err(e.description());
        return 1;
    }
    if (writeError) {
        err(QStringLiteral("orvane-report: ") + outPath + QStringLiteral(": ") + *writeError);
        return 1;
    }
    return 0;
}
