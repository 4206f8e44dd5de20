#include "shell/AboutFrm.h"

#include "platform/formkit.h"
#include "shell/centre.h"
#include "shell/icons.h"

#include <QLabel>
#include <QPushButton>

AboutFrm::AboutFrm() : vb::Form(QStringLiteral("AboutFrm")) {}

void AboutFrm::build(QWidget* w) {
    w->setWindowTitle(QStringLiteral("关于系统"));
    w->setFixedSize(vb::twips(6000), vb::twips(3600));
    shellwin::centreOnScreen(w);

    auto* icon = vb::label(w, QStringLiteral("Image1"), QString(), 300, 300, 960, 960);
    icon->setPixmap(shellicons::pixmap(QStringLiteral("app"), vb::twips(960)));

    auto* title = vb::label(w, QStringLiteral("lblTitle"),
                            QStringLiteral("Orvane图书馆管理集成系统V4.1"), 1500, 300, 4200, 420);
    QFont f = title->font();
    f.setPointSize(f.pointSize() + 4);
    f.setBold(true);
    title->setFont(f);

    // The installation's own lines.
    auto* lines = vb::label(w, QStringLiteral("lblDescription"),
                            QStringLiteral("图书采购子系统  版本 4.1\n"
                                           "\n"
                                           "本系统由本馆信息技术部负责安装与维护。\n"
                                           "使用中的问题请与系统管理员联系。"),
                            1500, 840, 4200, 1600);
    lines->setAlignment(Qt::AlignLeft | Qt::AlignTop);

    auto* ok = vb::commandButton(w, QStringLiteral("Command1"), QStringLiteral("确定"), 4440, 2880,
                                 1260, 420, this, [this] { Unload(); });
    ok->setDefault(true);
}
