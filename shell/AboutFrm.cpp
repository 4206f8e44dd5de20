#include "shell/AboutFrm.h"

#include "shell/centre.h"
#include "shell/icons.h"

#include <QLabel>
#include <QPushButton>

AboutFrm::AboutFrm() : vb::Form(QStringLiteral("AboutFrm")) {}

void AboutFrm::build(QWidget* w) {
    w->setWindowTitle(QStringLiteral("关于系统"));
    w->setFixedSize(vb::twips(6000), vb::twips(3600));
    shellwin::centreOnScreen(w);

    auto* icon = new QLabel(w);
    icon->setObjectName(QStringLiteral("Image1"));
    icon->setGeometry(vb::twips(300), vb::twips(300), vb::twips(960), vb::twips(960));
    icon->setPixmap(shellicons::pixmap(QStringLiteral("app"), vb::twips(960)));

    auto* title = new QLabel(QStringLiteral("Orvane图书馆管理集成系统V4.1"), w);
    title->setObjectName(QStringLiteral("lblTitle"));
    title->setGeometry(vb::twips(1500), vb::twips(300), vb::twips(4200), vb::twips(420));
    QFont f = title->font();
    f.setPointSize(f.pointSize() + 4);
    f.setBold(true);
    title->setFont(f);

    // The installation's own lines.
    auto* lines = new QLabel(QStringLiteral("图书采购子系统  版本 4.1\n"
                                            "\n"
                                            "本系统由本馆信息技术部负责安装与维护。\n"
                                            "使用中的问题请与系统管理员联系。"),
                             w);
    lines->setObjectName(QStringLiteral("lblDescription"));
    lines->setGeometry(vb::twips(1500), vb::twips(840), vb::twips(4200), vb::twips(1600));
    lines->setAlignment(Qt::AlignLeft | Qt::AlignTop);

    auto* ok = new QPushButton(QStringLiteral("确定"), w);
    ok->setObjectName(QStringLiteral("Command1"));
    ok->setGeometry(vb::twips(4440), vb::twips(2880), vb::twips(1260), vb::twips(420));
    ok->setDefault(true);
    connect(ok, &QPushButton::clicked, this, [this] { Unload(); });
}
