#include "platform/report.h"
#include "platform/report_engine.h"

#include "platform/errors.h"
#include "platform/msgbox.h"

#include <QComboBox>
#include <QFileDialog>
#include <QFontDatabase>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QPrintDialog>
#include <QPrinter>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QSignalBlocker>
#include <QSpinBox>
#include <QTimer>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>

namespace vb {

namespace {

QString& pinnedFamily() {
    static QString f;
    return f;
}

DataReport::SaveFileChooser& saveChooser() {
    static DataReport::SaveFileChooser c;
    return c;
}

} // namespace

QString DataReport::fontFamily() {
    if (!pinnedFamily().isEmpty()) return pinnedFamily();
    // Named one by one rather than left to the font matcher, which picks differently on
    // each machine: 宋体 itself, then the Song (serif) face of Noto CJK, then its sans.
    static const QString chosen = [] {
        const QStringList installed = QFontDatabase::families();
        for (const char16_t* f : {u"SimSun", u"宋体", u"Noto Serif CJK SC", u"Noto Sans CJK SC"}) {
            const QString name = QString::fromUtf16(f);
            if (installed.contains(name, Qt::CaseInsensitive)) return name;
        }
        return QStringLiteral("Noto Serif CJK SC");
    }();
    return chosen;
}

void DataReport::setFontFamily(const QString& family) {
    pinnedFamily() = family;
}

DataReport::SaveFileChooser DataReport::setSaveFileChooser(SaveFileChooser chooser) {
    SaveFileChooser previous = std::move(saveChooser());
    saveChooser() = std::move(chooser);
    return previous;
}

// ---- the preview -----------------------------------------------------------------------

// One page at a time, drawn when it is looked at.
class PageView : public QWidget {
public:
    PageView(DataReport& r, QWidget* parent) : QWidget(parent), m_report(r) {
        setObjectName(QStringLiteral("pageView"));
    }
    int page = 0;
    double zoom = 1.0; // 1.0: 96 dpi
    void fitSize(int paperW, int paperH) {
        setFixedSize(static_cast<int>(paperW / 15.0 * zoom),
                     static_cast<int>(paperH / 15.0 * zoom));
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter p(this);
        p.setRenderHint(QPainter::Antialiasing);
        p.setRenderHint(QPainter::TextAntialiasing);
        p.fillRect(rect(), Qt::white);
        m_report.renderPage(p, page, 96.0 * zoom);
    }

private:
    DataReport& m_report;
};

class PreviewPane : public QWidget {
public:
    PreviewPane(DataReport& r, QWidget* parent) : QWidget(parent), m_report(r) {
        auto* box = new QVBoxLayout(this);
        box->setContentsMargins(0, 0, 0, 0);
        box->setSpacing(2);
        auto* bar = new QHBoxLayout;
        bar->setContentsMargins(4, 4, 4, 0);
        auto button = [&](const char* name, const QString& text, const QString& tip) {
            auto* b = new QPushButton(text, this);
            b->setObjectName(QString::fromLatin1(name));
            b->setToolTip(tip);
            b->setAutoDefault(false);
            bar->addWidget(b);
            return b;
        };
        cmdFirst = button("cmdFirst", QStringLiteral("|<"), QStringLiteral("第一页"));
        cmdPrev = button("cmdPrev", QStringLiteral("<"), QStringLiteral("上一页 (PgUp)"));
        txtPage = new QSpinBox(this);
        txtPage->setObjectName(QStringLiteral("txtPage"));
        txtPage->setMinimum(1);
        txtPage->setMaximum(1);
        txtPage->setKeyboardTracking(false);
        bar->addWidget(txtPage);
        lblPages = new QLabel(this);
        lblPages->setObjectName(QStringLiteral("lblPages"));
        bar->addWidget(lblPages);
        cmdNext = button("cmdNext", QStringLiteral(">"), QStringLiteral("下一页 (PgDn)"));
        cmdLast = button("cmdLast", QStringLiteral(">|"), QStringLiteral("最后一页"));
        bar->addSpacing(12);
        cboZoom = new QComboBox(this);
        cboZoom->setObjectName(QStringLiteral("cboZoom"));
        cboZoom->addItems({QStringLiteral("整页"), QStringLiteral("页宽"), QStringLiteral("50%"),
                           QStringLiteral("75%"), QStringLiteral("100%"), QStringLiteral("150%"),
                           QStringLiteral("200%")});
        cboZoom->setCurrentIndex(1);
        bar->addWidget(cboZoom);
        cboOrient = new QComboBox(this);
        cboOrient->setObjectName(QStringLiteral("cboOrient"));
        cboOrient->addItems({QStringLiteral("纵向"), QStringLiteral("横向")});
        bar->addWidget(cboOrient);
        bar->addSpacing(12);
        cmdPrint = button("cmdPrint", QStringLiteral("打印..."), QStringLiteral("打印报表"));
        cmdPdf = button("cmdPdf", QStringLiteral("PDF..."), QStringLiteral("保存为 PDF"));
        cmdXlsx = button("cmdXlsx", QStringLiteral("XLSX..."), QStringLiteral("导出到 Excel"));
        cmdCsv = button("cmdCsv", QStringLiteral("CSV..."), QStringLiteral("导出到 CSV"));
        bar->addStretch(1);
        cmdClose = button("cmdClose", QStringLiteral("关闭"), QStringLiteral("关闭预览"));
        box->addLayout(bar);

        scroll = new QScrollArea(this);
        scroll->setObjectName(QStringLiteral("pageScroll"));
        scroll->setAlignment(Qt::AlignHCenter | Qt::AlignTop);
        scroll->setBackgroundRole(QPalette::Dark);
        view = new PageView(r, scroll);
        scroll->setWidget(view);
        box->addWidget(scroll, 1);

        connect(cmdFirst, &QPushButton::clicked, this, [this] { goTo(0); });
        connect(cmdPrev, &QPushButton::clicked, this, [this] { goTo(view->page - 1); });
        connect(cmdNext, &QPushButton::clicked, this, [this] { goTo(view->page + 1); });
        connect(cmdLast, &QPushButton::clicked, this, [this] { goTo(m_report.pageCount() - 1); });
        connect(txtPage, &QSpinBox::valueChanged, this, [this](int v) { goTo(v - 1); });
        connect(cboZoom, &QComboBox::currentIndexChanged, this, [this] { applyZoom(); });
        connect(cboOrient, &QComboBox::currentIndexChanged, this, [this](int i) {
            m_report.landscape = i == 1;
            m_report.Refresh();
        });
        connect(cmdPrint, &QPushButton::clicked, this, [this] { m_report.printPreview(); });
        connect(cmdPdf, &QPushButton::clicked, this, [this] { m_report.saveAs(0); });
        connect(cmdXlsx, &QPushButton::clicked, this, [this] { m_report.saveAs(1); });
        connect(cmdCsv, &QPushButton::clicked, this, [this] { m_report.saveAs(2); });
        connect(cmdClose, &QPushButton::clicked, this, [this] { m_report.Unload(); });
        // The rest of the pages are counted a slice at a time between the user's events,
        // so the first page shows at once and the page count follows.
        counter.setInterval(0);
        connect(&counter, &QTimer::timeout, this, [this] {
            if (m_report.engine().layoutSome(2000)) counter.stop();
            updatePages();
        });
    }

    // Data or orientation changed: back to the first page.
    void reset() {
        QSignalBlocker b(cboOrient);
        cboOrient->setCurrentIndex(m_report.landscape ? 1 : 0);
        view->page = 0;
        applyZoom();
        updatePages();
        if (!m_report.engine().done()) counter.start();
    }

    void goTo(int page) {
        ReportEngine& e = m_report.engine();
        if (page < 0 || !e.ensurePage(page)) return;
        view->page = page;
        updatePages();
        view->update();
        scroll->verticalScrollBar()->setValue(0);
    }

    void updatePages() {
        ReportEngine& e = m_report.engine();
        const int known = std::max(1, e.pagesLaidOut());
        {
            QSignalBlocker b(txtPage);
            txtPage->setMaximum(e.done() ? known : std::max(known, view->page + 1) + 1);
            txtPage->setValue(view->page + 1);
        }
        lblPages->setText(e.done() ? QStringLiteral("/ %1").arg(known)
                                   : QStringLiteral("/ %1+").arg(known));
        cmdFirst->setEnabled(view->page > 0);
        cmdPrev->setEnabled(view->page > 0);
        const bool more = !e.done() || view->page + 1 < known;
        cmdNext->setEnabled(more);
        cmdLast->setEnabled(more);
    }

    void applyZoom() {
        ReportEngine& e = m_report.engine();
        const double pw = e.paperWidth() / 15.0;
        const double ph = e.paperHeight() / 15.0;
        const QSize room = scroll->viewport()->size() - QSize(8, 8);
        switch (cboZoom->currentIndex()) {
        case 0:
            view->zoom = std::min(room.width() / pw, room.height() / ph);
            break;
        case 1:
            view->zoom = room.width() / pw;
            break;
        default: {
            static const double fixed[] = {0.5, 0.75, 1.0, 1.5, 2.0};
            view->zoom = fixed[cboZoom->currentIndex() - 2];
        }
        }
        view->zoom = std::max(0.1, view->zoom);
        view->fitSize(e.paperWidth(), e.paperHeight());
        view->update();
    }

    bool pageKey(QKeyEvent* k) {
        if (k->key() == Qt::Key_PageDown)
            goTo(view->page + 1);
        else if (k->key() == Qt::Key_PageUp)
            goTo(view->page - 1);
        else
            return false;
        return true;
    }

    QPushButton *cmdFirst, *cmdPrev, *cmdNext, *cmdLast, *cmdPrint, *cmdPdf, *cmdXlsx, *cmdCsv,
        *cmdClose;
    QSpinBox* txtPage;
    QLabel* lblPages;
    QComboBox *cboZoom, *cboOrient;
    QScrollArea* scroll;
    PageView* view;
    QTimer counter;

protected:
    void resizeEvent(QResizeEvent* e) override {
        QWidget::resizeEvent(e);
        if (cboZoom->currentIndex() < 2) applyZoom();
    }
    void keyPressEvent(QKeyEvent* k) override {
        if (!pageKey(k)) QWidget::keyPressEvent(k);
    }

private:
    DataReport& m_report;
};

// ---- the report object -----------------------------------------------------------------

DataReport::DataReport(const QString& name) : DataReport(name, ReportLayout{}) {}

DataReport::DataReport(const QString& name, ReportLayout layout)
    : Form(name), m_layout(std::move(layout)) {}

DataReport::~DataReport() = default;

ReportEngine& DataReport::engine() {
    if (!m_engine) m_engine = std::make_unique<ReportEngine>(m_layout);
    return *m_engine;
}

void DataReport::build(QWidget* w) {
    w->setWindowTitle(m_layout.caption);
    w->resize(960, 680);
    auto* box = new QVBoxLayout(w);
    box->setContentsMargins(0, 0, 0, 0);
    m_pane = new PreviewPane(*this, w);
    box->addWidget(m_pane);
    // The pages are laid out when the preview opens, if the caller did not refresh.
    if (!m_refreshed && DataSource) {
        Refresh();
    } else {
        m_pane->reset();
    }
}

void DataReport::onUnload() {
    m_pane = nullptr;
}

void DataReport::Refresh() {
    ReportEngine& e = engine();
    e.setLandscape(landscape);
    e.setData(DataSource, Title, printDate.isValid() ? printDate : QDate::currentDate(), name());
    m_refreshed = true;
    if (m_pane) m_pane->reset();
}

int DataReport::pageCount() {
    ReportEngine& e = engine();
    if (!e.hasData() && DataSource) Refresh();
    return e.pageCount();
}

int DataReport::pagesLaidOut() const {
    return m_engine ? m_engine->pagesLaidOut() : 0;
}

QString DataReport::bandDump() {
    if (!engine().hasData()) Refresh();
    return engine().bandDump();
}

void DataReport::renderPage(QPainter& p, int page, double dpi) {
    ReportEngine& e = engine();
    if (!e.hasData()) return;
    e.render(p, page, dpi);
}

void DataReport::saveAs(int kind) {
    static const char16_t* const captions[] = {u"保存为 PDF", u"导出到 Excel", u"导出到 CSV"};
    static const char16_t* const filters[] = {u"PDF 文件 (*.pdf)", u"Excel 工作簿 (*.xlsx)",
                                              u"CSV 文件 (*.csv)"};
    static const char* const suffixes[] = {".pdf", ".xlsx", ".csv"};
    const QString caption = QString::fromUtf16(captions[kind]);
    const QString filter = QString::fromUtf16(filters[kind]);
    QString path = saveChooser()
                       ? saveChooser()(caption, filter)
                       : QFileDialog::getSaveFileName(
                             window(), caption,
                             m_layout.caption + QString::fromLatin1(suffixes[kind]), filter);
    if (path.isEmpty()) return;
    if (!path.endsWith(QString::fromLatin1(suffixes[kind]), Qt::CaseInsensitive))
        path += QString::fromLatin1(suffixes[kind]);
    try {
        if (kind == 0)
            exportPdf(path);
        else if (kind == 1)
            exportXlsx(path);
        else
            exportCsv(path);
    } catch (const VbError& e) {
        MsgBox(e.description(), vbCritical, kMsgTitle);
    }
}

void DataReport::printPreview() {
    // The printer dialog starts on the default printer, which 打印机设置 of the frame sets.
    QPrinter printer(QPrinter::HighResolution);
    printer.setFullPage(true);
    printer.setPageLayout(QPageLayout(QPageSize(QPageSize::A4),
                                      landscape ? QPageLayout::Landscape : QPageLayout::Portrait,
                                      QMarginsF(0, 0, 0, 0)));
    printer.setDocName(m_layout.caption);
    QPrintDialog dlg(&printer, window());
    dlg.setObjectName(QStringLiteral("cmPrint"));
    if (dlg.exec() != QDialog::Accepted) return;
    const bool turned = printer.pageLayout().orientation() == QPageLayout::Landscape;
    if (turned != landscape) {
        landscape = turned;
        Refresh();
    }
    if (!printTo(printer, printer.resolution()))
        MsgBox(QStringLiteral("打印机 %1 不能打印这份报表。").arg(printer.printerName()),
               vbCritical, kMsgTitle);
}

} // namespace vb
