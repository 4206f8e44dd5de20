#include "fenleireader.h"

#include "platform/gbk.h"
#include "platform/runtime.h"
#include "platform/vb.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <functional>

namespace classify {

namespace {

QString& folderOverride() {
    static QString folder;
    return folder;
}

// Scans from the top for `header`, then hands each line of the section to `take` until
// the section's closing line or the end of the file.
SectionRead readSection(const QString& path, const QString& header,
                        const std::function<bool(const QString&)>& take) {
    SectionRead result;
    // A directory of that name is no file, as the legacy Dir() saw it.
    if (!QFileInfo(path).isFile()) {
        result.status = ReadStatus::Missing;
        return result;
    }
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        result.status = ReadStatus::Unreadable;
        return result;
    }
    const QStringList lines = splitLines(file.readAll());
    file.close();

    qsizetype i = 0;
    while (i < lines.size() && vb::Trim(lines[i]) != header) ++i;
    if (i == lines.size()) return result;
    for (++i; i < lines.size(); ++i) {
        const QString& line = lines[i];
        if (endsSection(line)) break;
        if (take(line)) result.lines << line;
    }
    return result;
}

} // namespace

QString fenleiFileName() {
    return QStringLiteral("fenlei.Qvx");
}
QString daLeiHeader() {
    return QStringLiteral("[大类表]");
}
QString erJiHeader() {
    return QStringLiteral("[二级类目表]");
}

QString programFolder() {
    return folderOverride().isEmpty() ? vb::AppPath() : folderOverride();
}

void setProgramFolder(const QString& folder) {
    folderOverride() = folder;
}

QString configPath(const QString& folder, const QString& fileName) {
    QString path = folder;
    if (!path.endsWith(QLatin1Char('/')) && !path.endsWith(QLatin1Char('\\')))
        path += QLatin1Char('/');
    return QDir::toNativeSeparators(path + fileName);
}

QString missingMessage(const QString& path) {
    return QStringLiteral("配置文件【") + path + QStringLiteral("】丢失。");
}

bool endsSection(const QString& line) {
    return line.startsWith(QLatin1Char('[')) && line.endsWith(QLatin1Char(']'));
}

QChar classLetter(const QString& line) {
    const QString t = vb::Trim(line);
    return t.isEmpty() ? QChar() : t.front();
}

bool belongsTo(const QString& line, QChar letter) {
    if (line.isEmpty()) return false;
    if (line.front() == letter) return true;
    return line.size() >= 2 && line[0] == QLatin1Char('[') && line[1] == letter;
}

SectionRead readDaLei(const QString& path) {
    return readSection(path, daLeiHeader(), [](const QString&) { return true; });
}

SectionRead readErJi(const QString& path, QChar letter) {
    return readSection(path, erJiHeader(),
                       [letter](const QString& line) { return belongsTo(line, letter); });
}

QStringList splitLines(const QByteArray& gbkText) {
    // GBK trail bytes are 0x40..0xFE, so a CR or LF byte is always a line break.
    QStringList lines;
    qsizetype start = 0;
    const qsizetype n = gbkText.size();
    for (qsizetype i = 0; i < n; ++i) {
        const char c = gbkText[i];
        if (c != '\r' && c != '\n') continue;
        lines << gbk::decode(gbkText.constData() + start, i - start);
        if (c == '\r' && i + 1 < n && gbkText[i + 1] == '\n') ++i;
        start = i + 1;
    }
    if (start < n) lines << gbk::decode(gbkText.constData() + start, n - start);
    return lines;
}

} // namespace classify
