// orvanecg: the acquisitions client.
#include "platform/form.h"
#include "platform/msgbox.h"
#include "platform/runtime.h"
#include "shell/Mainfrm.h"
#include "shell/modMain.h"
#include "shell/routes.h"

int main(int argc, char** argv) {
    OrvaneApplication app(argc, argv);
    // The frame ends the process itself (its exit question); closing the last window does not.
    app.setQuitOnLastWindowClosed(false);
    vb::setAppTitle(QStringLiteral("图书采购子系统"));
    registerRoutes();
    Main();
    // Main is back when the login is gone: either the frame carries on, or nothing does.
    if (!vb::FormRegistry::exists<Mainfrm>() || !vb::form<Mainfrm>().isLoaded()) return 0;
    return app.exec();
}
