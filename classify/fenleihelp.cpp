#include "fenleihelp.h"

#include "platform/errors.h"
#include "platform/flexgrid.h"
#include "platform/formkit.h"
#include "platform/msgbox.h"

#include <QFont>
#include <QGroupBox>
#include <QLabel>

namespace {

const QString kCaption = QStringLiteral("《中国图书馆分类法》（第四版）");
// Width of the text column: the main class names are short, the second-level ones long.
constexpr int kGrid1TextWidth = 4100;
constexpr int kGrid2TextWidth = 6800;
// The runtime's error for a file that exists but cannot be opened.
constexpr int kPathFileAccess = 75;

vb::FlexGrid* makeGrid(QWidget* parent, const QString& name, int left, int top, int width,
                       int height) {
    auto* g = vb::control<vb::FlexGrid>(parent, name, left, top, width, height);
    g->setFixedRows(0);
    g->setFixedCols(0);
    g->setCols(2);
    g->setRows(1);
    return g;
}

} // namespace

fenleihelp::fenleihelp() : vb::Form(QStringLiteral("fenleihelp")) {}

void fenleihelp::build(QWidget* w) {
    w->setWindowTitle(kCaption);
    w->resize(vb::twips(12660), vb::twips(8280));

    auto* frame = vb::control<QGroupBox>(w, QStringLiteral("Frame1"), 120, 60, 12420, 8100);

    auto* title = vb::label(frame, QStringLiteral("Label1"), kCaption, 240, 240, 11940, 480);
    title->setAlignment(Qt::AlignCenter);
    QFont big = title->font();
    big.setPointSize(big.pointSize() + 5);
    big.setBold(true);
    title->setFont(big);

    vb::label(frame, QStringLiteral("Label2"), QStringLiteral("二十二大类目"), 240, 840, 4500, 300);
    vb::label(frame, QStringLiteral("Label3"), QStringLiteral("相应类目二级以上简表"), 4980, 840,
              7200, 300);

    auto* g1 = makeGrid(frame, QStringLiteral("Grid1"), 240, 1200, 4500, 6660);
    auto* g2 = makeGrid(frame, QStringLiteral("Grid2"), 4980, 1200, 7200, 6660);
    connect(g1, &vb::FlexGrid::Click, this, [this] { Grid1_Click(); });
    connect(g2, &vb::FlexGrid::Click, this, [this] { Grid2_Click(); });
}

void fenleihelp::onLoad() {
    configFile = classify::fenleiFileName();
    clearGrid(1);
    clearGrid(2);
    loadDaLei(configFile);
}

vb::FlexGrid* fenleihelp::grid(int which) {
    return ctl<vb::FlexGrid>(which == 1 ? QStringLiteral("Grid1") : QStringLiteral("Grid2"));
}

void fenleihelp::clearGrid(int which) {
    vb::FlexGrid* g = grid(which);
    g->Clear();
    g->setRows(1);
    setGridCols(which);
}

void fenleihelp::setGridCols(int which) {
    vb::FlexGrid* g = grid(which);
    const int textWidth = which == 1 ? kGrid1TextWidth : kGrid2TextWidth;
    vb::resume([&] { g->setColWidth(0, 0); });
    vb::resume([&] { g->setColWidth(1, textWidth); });
    vb::resume([&] { g->setRow(0); });
    vb::resume([&] { g->setCol(0); });
}

void fenleihelp::fillGrid(vb::FlexGrid* g, const QStringList& lines) {
    int counter = 0;
    for (const QString& line : lines) {
        ++counter;
        if (g->Rows() < counter) g->setRows(counter);
        g->setTextMatrix(counter - 1, 0, QString::number(counter - 1));
        g->setTextMatrix(counter - 1, 1, line);
    }
}

bool fenleihelp::checkRead(classify::ReadStatus status, const QString& path) {
    switch (status) {
    case classify::ReadStatus::Ok:
        return true;
    case classify::ReadStatus::Missing:
        vb::MsgBox(classify::missingMessage(path), vb::vbInformation, vb::kMsgTitle);
        return false;
    case classify::ReadStatus::Unreadable:
        // Only a missing file is caught; one that is there but cannot be opened fails
        // as the open statement does, with the runtime's box.
        vb::raise(kPathFileAccess, QStringLiteral("路径/文件访问错误"));
    }
    return false;
}

void fenleihelp::loadDaLei(const QString& fileName) {
    clearGrid(1);
    const QString path = classify::configPath(classify::programFolder(), fileName);
    const classify::SectionRead read = classify::readDaLei(path);
    if (!checkRead(read.status, path)) return;

    vb::FlexGrid* g1 = grid(1);
    fillGrid(g1, read.lines);
    g1->setColWidth(0, 0);
    g1->setColWidth(1, kGrid1TextWidth);
    Grid1_Click();
}

void fenleihelp::Grid1_Click() {
    vb::FlexGrid* g1 = grid(1);
    g1->setRowSel(g1->Row());
    clearGrid(2);

    const QChar letter = classify::classLetter(g1->TextMatrix(g1->Row(), 1));
    if (letter.isNull()) return;

    const QString path = classify::configPath(classify::programFolder(), configFile);
    const classify::SectionRead read = classify::readErJi(path, letter);
    if (!checkRead(read.status, path)) return;

    vb::FlexGrid* g2 = grid(2);
    fillGrid(g2, read.lines);
    g2->setColWidth(0, 0);
    g2->setColWidth(1, kGrid2TextWidth);
}

void fenleihelp::Grid2_Click() {
    vb::FlexGrid* g2 = grid(2);
    g2->setRowSel(g2->Row());
}
