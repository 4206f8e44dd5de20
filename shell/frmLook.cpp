#include "shell/frmLook.h"

#include "platform/formkit.h"
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

    auto* picture = vb::label(w, QStringLiteral("Image1"), QString(), 120, 120, 6960, 3000);
    picture->setPixmap(shellicons::startPicture(picture->width(), picture->height()));

    auto* title =
        vb::label(w, QStringLiteral("lMain"),
                  QStringLiteral("Orvane图书馆管理集成系统V4.1(专业版)"), 120, 3240, 6960, 600);
    title->setAlignment(Qt::AlignCenter);
    QFont f = title->font();
    f.setPointSize(f.pointSize() + 6);
    f.setBold(true);
    title->setFont(f);
    title->setStyleSheet(QStringLiteral("color: #2b4a6f;"));

    // Kept as a choice on the screen; nothing reads it.
    auto* check = vb::place(new QCheckBox(QStringLiteral("启动时显示"), w),
                            QStringLiteral("Check1"), 240, 4140, 2400, 360);
    check->setChecked(true);

    vb::commandButton(w, QStringLiteral("Command1"), QStringLiteral("确定"), 5760, 4080, 1200, 420,
                      this, [this] { Unload(); });
}
