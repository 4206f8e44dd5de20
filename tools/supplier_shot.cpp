// Pictures of the supplier manager and of the query builder over it, on a fresh demo
// database, for the README:
//   ASAN_OPTIONS=detect_leaks=0 xvfb-run -a build/bin/supplier_shot docs
// writes docs/suppliers.png and docs/query-builder.png.

#include "data/globals.h"
#include "platform/flexgrid.h"
#include "platform/form.h"
#include "platform/maskedbox.h"
#include "query/Findfrm.h"
#include "supplier/cgGYSfrm.h"
#include "tools/shot.h"

#include <QApplication>
#include <QComboBox>
#include <QListWidget>
#include <QPushButton>

#include <cstdio>

namespace {

bool shoot(QWidget* w, const QString& path) {
    return shot::save(w, path, "supplier_shot");
}

void condition(Findfrm& f, const QString& field, const QString& fuhao, const QString& value) {
    auto* fields = f.window()->findChild<QListWidget*>(QStringLiteral("LFields"));
    fields->setCurrentRow(
        static_cast<int>(fields->row(fields->findItems(field, Qt::MatchExactly).value(0))));
    auto* op = f.window()->findChild<QComboBox*>(QStringLiteral("cFuhao"));
    op->setCurrentIndex(op->findText(fuhao));
    f.window()->findChild<vb::MaskEdBox*>(QStringLiteral("lSql"))->setTextVb(value);
    f.window()->findChild<QPushButton*>(QStringLiteral("Command3"))->click();
}

} // namespace

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    if (argc != 2) {
        std::fprintf(stderr, "usage: supplier_shot <folder>\n");
        return 2;
    }
    const QString out = QString::fromLocal8Bit(argv[1]);
    const shot::DemoDatabase db("supplier_shot", QStringLiteral("admin"));
    if (!db.ok()) return 1;

    bool ok = true;
    {
        auto& m = vb::form<cgGYSfrm>();
        m.Show(0);
        ok = shoot(m.window(), out + QStringLiteral("/suppliers.png"));
    }
    if (ok) {
        auto& f = vb::form<Findfrm>();
        f.doType = QStringLiteral("cggys");
        f.Load();
        f.Show(0);
        condition(f, QStringLiteral("所在城市"), QStringLiteral("等于"), QStringLiteral("北京"));
        condition(f, QStringLiteral("类型"), QStringLiteral("等于"), QStringLiteral("出版商"));
        f.window()->findChild<QPushButton*>(QStringLiteral("Command1_0"))->click();
        condition(f, QStringLiteral("单位名称"), QStringLiteral("包含"), QStringLiteral("书店"));
        condition(f, QStringLiteral("所在城市"), QStringLiteral("不等于"), QStringLiteral("上海"));
        f.window()->findChild<QPushButton*>(QStringLiteral("Command1_0"))->click();
        auto* order = f.window()->findChild<QComboBox*>(QStringLiteral("cOrderby"));
        order->setCurrentIndex(order->findText(QStringLiteral("单位名称")));
        f.Label3_Click(0);
        order->setCurrentIndex(order->findText(QStringLiteral("所在城市")));
        f.Label3_Click(1);
        ok = shoot(f.window(), out + QStringLiteral("/query-builder.png"));
    }
    vb::FormRegistry::destroyAll();
    return ok ? 0 : 1;
}
