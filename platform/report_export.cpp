// The report's files: PDF of every page, and the report's rows as XLSX and CSV. Each goes
// to a temporary file first and takes the target's name only when complete, so a failed
// export leaves what was there before, or nothing.
#include "platform/report.h"
#include "platform/report_engine.h"

#include "platform/errors.h"
#include "platform/vb.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QPageLayout>
#include <QPainter>
#include <QPdfWriter>
#include <QSaveFile>
#include <QTemporaryDir>

#include <xlsxwriter.h>

namespace vb {

namespace {

// The runtime's "path/file access error".
constexpr int kErrPathFileAccess = 75;

[[noreturn]] void cannotWrite(const QString& path, const QString& why) {
    throw VbError(kErrPathFileAccess,
                  QStringLiteral("不能写入文件 %1：%2").arg(QDir::toNativeSeparators(path), why));
}

void openTarget(QSaveFile& f) {
    // Writes straight into a file that cannot be renamed over would lose the old one on
    // failure; only a file in a writable folder is taken.
    f.setDirectWriteFallback(false);
    if (!f.open(QIODevice::WriteOnly)) cannotWrite(f.fileName(), f.errorString());
}

void commitTarget(QSaveFile& f) {
    if (!f.commit()) cannotWrite(f.fileName(), f.errorString());
}

bool isNumber(const QVariant& v) {
    switch (v.typeId()) {
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Double:
    case QMetaType::Float:
    case QMetaType::Short:
    case QMetaType::UShort:
        return true;
    default:
        return false;
    }
}

QString csvField(const QString& s) {
    const bool quote = s.contains(u',') || s.contains(u'"') || s.contains(u'\n') ||
                       s.contains(u'\r') ||
                       (!s.isEmpty() && (s.front() == u' ' || s.back() == u' '));
    if (!quote) return s;
    QString q = s;
    q.replace(QStringLiteral("\""), QStringLiteral("\"\""));
    return u'"' + q + u'"';
}

// A sheet name Excel takes: at most 31 characters, none of []:*?/\.
QString sheetName(const QString& caption) {
    QString s = caption;
    for (QChar bad : {u'[', u']', u':', u'*', u'?', u'/', u'\\'}) s.replace(bad, u'_');
    s = s.left(31);
    return s.isEmpty() ? QStringLiteral("Sheet1") : s;
}

} // namespace

bool DataReport::printTo(QPagedPaintDevice& device, double dpi) {
    ReportEngine& e = engine();
    QPainter p;
    if (!p.begin(&device)) return false;
    const int pages = e.pageCount();
    for (int i = 0; i < pages; ++i) {
        if (i > 0 && !device.newPage()) {
            p.end();
            return false;
        }
        e.render(p, i, dpi);
    }
    return p.end();
}

void DataReport::exportPdf(const QString& path) {
    Refresh();
    QSaveFile f(path);
    openTarget(f);
    {
        QPdfWriter w(&f);
        w.setTitle(m_layout.caption);
        w.setCreator(QStringLiteral("OrvaneCG"));
        w.setResolution(1440);
        w.setPageLayout(
            QPageLayout(QPageSize(QPageSize::A4),
                        engine().landscape() ? QPageLayout::Landscape : QPageLayout::Portrait,
                        QMarginsF(0, 0, 0, 0)));
        if (!printTo(w, 1440)) {
            f.cancelWriting();
            cannotWrite(path, QStringLiteral("PDF 无法生成"));
        }
    }
    commitTarget(f);
}

void DataReport::exportCsv(const QString& path) {
    Refresh();
    const ReportSheet sh = engine().sheet();
    QString out;
    for (size_t r = 0; r < sh.rows.size(); ++r) {
        const auto& row = sh.rows[r];
        // A title line is one cell; rows and headings keep every column.
        const bool titleLine =
            sh.kinds[r] == ReportSheet::Title || sh.kinds[r] == ReportSheet::GroupTitle;
        const qsizetype last = titleLine ? 1 : static_cast<qsizetype>(row.size());
        for (qsizetype k = 0; k < last; ++k) {
            if (k) out += u',';
            out += csvField(CStr(row[static_cast<size_t>(k)]));
        }
        out += QStringLiteral("\r\n");
    }
    QSaveFile f(path);
    openTarget(f);
    const QByteArray bytes = QByteArray("\xEF\xBB\xBF") + out.toUtf8();
    if (f.write(bytes) != bytes.size()) {
        f.cancelWriting();
        cannotWrite(path, f.errorString());
    }
    commitTarget(f);
}

void DataReport::exportXlsx(const QString& path) {
    Refresh();
    const ReportSheet sh = engine().sheet();
    // libxlsxwriter writes a file by name: it goes into a private folder first.
    QTemporaryDir tmp;
    if (!tmp.isValid()) cannotWrite(path, tmp.errorString());
    const QByteArray tmpFile = QFile::encodeName(tmp.filePath(QStringLiteral("report.xlsx")));
    lxw_workbook* wb = workbook_new(tmpFile.constData());
    if (!wb) cannotWrite(path, QStringLiteral("无法建立工作簿"));
    const QByteArray name = sheetName(m_layout.caption).toUtf8();
    lxw_worksheet* ws = workbook_add_worksheet(wb, name.constData());
    lxw_format* bold = workbook_add_format(wb);
    format_set_bold(bold);
    lxw_format* title = workbook_add_format(wb);
    format_set_bold(title);
    format_set_align(title, LXW_ALIGN_CENTER);
    format_set_font_size(title, 14);
    const auto ncols = static_cast<lxw_col_t>(sh.columnWidths.size());
    for (lxw_col_t c = 0; c < ncols; ++c)
        worksheet_set_column(ws, c, c, sh.columnWidths[c] / 105.0, nullptr);
    for (size_t r = 0; r < sh.rows.size(); ++r) {
        const auto row = static_cast<lxw_row_t>(r);
        const auto& cells = sh.rows[r];
        const ReportSheet::Kind kind = sh.kinds[r];
        if ((kind == ReportSheet::Title || kind == ReportSheet::GroupTitle) && ncols > 1) {
            const QByteArray t = CStr(cells[0]).toUtf8();
            worksheet_merge_range(ws, row, 0, row, ncols - 1, t.constData(),
                                  kind == ReportSheet::Title ? title : bold);
            continue;
        }
        lxw_format* fmt = kind == ReportSheet::Detail ? nullptr : bold;
        for (size_t c = 0; c < cells.size(); ++c) {
            const QVariant& v = cells[c];
            if (v.isNull()) continue;
            const auto col = static_cast<lxw_col_t>(c);
            if (isNumber(v)) {
                worksheet_write_number(ws, row, col, v.toDouble(), fmt);
            } else {
                const QByteArray t = CStr(v).toUtf8();
                if (!t.isEmpty()) worksheet_write_string(ws, row, col, t.constData(), fmt);
            }
        }
    }
    const lxw_error err = workbook_close(wb);
    if (err != LXW_NO_ERROR) cannotWrite(path, QString::fromUtf8(lxw_strerror(err)));
    QFile made(QString::fromLocal8Bit(tmpFile));
    if (!made.open(QIODevice::ReadOnly)) cannotWrite(path, made.errorString());
    const QByteArray bytes = made.readAll();
    QSaveFile f(path);
    openTarget(f);
    if (f.write(bytes) != bytes.size()) {
        f.cancelWriting();
        cannotWrite(path, f.errorString());
    }
    commitTarget(f);
}

} // namespace vb
