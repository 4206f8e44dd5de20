#include "shell/frmLook.h"

#include "shell/Mainfrm.h"
#include "shell/centre.h"
#include "shell/icons.h"

#include <QCheckBox>
#include <QLabel>
#include <QPushButton>

frmLook::frmLook() : vb::Form(QStringLiteral("frmLook")) {}

void frmLook::build(QWidget* w) {
    w->setWindowTitle(QStringLiteral("Orvane图书馆管理集成系统"));
    w->setFixedSize(vb::twips(7200), vb::twips(4800));
    // Above the frame, in its middle, and gone with it.
    if (vb::FormRegistry::exists<Mainfrm>() && vb::form<Mainfrm>().isLoaded()) {
        QWidget* frame = vb::form<Mainfrm>().window();
        w->setParent(frame, Qt::Dialog);
        shellwin::centreOn(w, frame->frameGeometry());
    } else {
        shellwin::centreOnScreen(w);
    }

    auto* picture = new QLabel(w);
    picture->setObjectName(QStringLiteral("Image1"));
    picture->setGeometry(vb::twips(120), vb::twips(120), vb::twips(6960), vb::twips(3000));
    picture->setPixmap(shellicons::startPicture(picture->width(), picture->height()));

    auto* title = new QLabel(QStringLiteral("Orvane图书馆管理集成系统V4.1(专业版)"), w);
    title->setObjectName(QStringLiteral("lMain"));
    title->setAlignment(Qt::AlignCenter);
    title->setGeometry(vb::twips(120), vb::twips(3240), vb::twips(6960), vb::twips(600));
    QFont f = title->font();
    f.setPointSize(f.pointSize() + 6);
    f.setBold(true);
    title->setFont(f);
    title->setStyleSheet(QStringLiteral("color: #2b4a6f;"));

    // Kept as a choice on the screen; nothing reads it.
    auto* check = new QCheckBox(QStringLiteral("启动时显示"), w);
    check->setObjectName(QStringLiteral("Check1"));
    check->setChecked(true);
    check->setGeometry(vb::twips(240), vb::twips(4140), vb::twips(2400), vb::twips(360));

    auto* ok = new QPushButton(QStringLiteral("确定"), w);
    ok->setObjectName(QStringLiteral("Command1"));
    ok->setGeometry(vb::twips(5760), vb::twips(4080), vb::twips(1200), vb::twips(420));
    connect(ok, &QPushButton::clicked, this, [this] { Unload(); });
}
