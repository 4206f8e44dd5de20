// orvane-card: cards, field layouts or record texts of a file of MARC records, or the
// viewer window on the first record.

#include "card/cardcli.h"
#include "card/marcviewer.h"
#include "platform/errors.h"
#include "platform/msgbox.h"
#include "platform/runtime.h"

#include <QFile>

#include <cstdio>

namespace {

int view(int& argc, char** argv, const card::CliOptions& options, QFile& in, QFile& err) {
    // The record first: a missing file is told on the terminal, no window needed.
    QString error;
    const auto raw = card::firstRecord(options, in, &error);
    if (!raw) {
        err.write(QStringLiteral("orvane-card: %1\n").arg(error).toUtf8());
        return 2;
    }
    OrvaneApplication app(argc, argv);
    vb::setAppTitle(QStringLiteral("orvane-card"));
    auto& f = vb::form<frmMarcKaPian>();
    f.MarcShuju = card::recordText(*raw).text();
    f.varSelect = QString();
    try {
        f.Show(1); // returns when "返回" or the close box unloads the form
    } catch (const vb::VbError& e) {
        // The card is built while the form loads, before any event loop runs.
        err.write(QStringLiteral("orvane-card: 第1条记录: 实时错误 '%1': %2\n")
                      .arg(e.number())
                      .arg(e.description())
                      .toUtf8());
        vb::fatalError(e);
    }
    vb::FormRegistry::destroyAll(); // the windows go before the application does
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    QFile in, out, err;
    in.open(stdin, QIODevice::ReadOnly);
    out.open(stdout, QIODevice::WriteOnly);
    err.open(stderr, QIODevice::WriteOnly);

    QStringList args;
    for (int i = 1; i < argc; ++i) args << QString::fromLocal8Bit(argv[i]);
    QString error;
    const auto options = card::parseArguments(args, &error);
    if (!options) {
        err.write(QStringLiteral("orvane-card: %1\n\n%2").arg(error, card::usageText()).toUtf8());
        return 2;
    }
    if (options->help) {
        const QByteArray text = card::usageText().toUtf8();
        if (out.write(text) != text.size() || !out.flush()) {
            err.write(QStringLiteral("orvane-card: 无法写出用法说明: %1\n")
                          .arg(out.errorString())
                          .toUtf8());
            return 2;
        }
        return 0;
    }
    if (options->view) return view(argc, argv, *options, in, err);
    return card::runCardTool(*options, in, out, err);
}
