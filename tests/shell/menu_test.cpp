// The right-button popup, driven by keys: ids count separators (a blanked dash is one
// too), the caption comes back trimmed, and 0 with no caption when it is dismissed.
#include "platform/Menu.h"

#include "tests/support/printto.h"
#include "tests/support/testsupport.h"

#include <QApplication>
#include <QTest>
#include <QTimer>

using namespace Qt::StringLiterals;

namespace {

TEST(MenuTest, RealPopupAtTheMouse) {
    const QStringList items = {u"修改"_s, u"-"_s, u"删除"_s, u" - "_s, u"  打印  "_s};
    QWidget owner;
    owner.show();
    QApplication::setActiveWindow(&owner);
    const std::tuple<std::vector<Qt::Key>, int, const char*> cases[] = {
        {{Qt::Key_Escape}, 0, ""},
        {{Qt::Key_Down, Qt::Key_Down, Qt::Key_Return}, 3, "删除"},
        {{Qt::Key_Down, Qt::Key_Down, Qt::Key_Down, Qt::Key_Return}, 5, "打印"},
    };
    for (const auto& [keys, id, caption] : cases) {
        // Waits for the popup (a loaded machine may be slow to show it), then types.
        QTimer poll;
        int tries = 0;
        QObject::connect(&poll, &QTimer::timeout, [&] {
            QWidget* popup = QApplication::activePopupWidget();
            if (!popup && ++tries < 250) return;
            poll.stop();
            if (!popup) {
                ADD_FAILURE() << "the popup did not show";
                return;
            }
            for (Qt::Key k : keys) QTest::keyClick(popup, k);
        });
        poll.start(20);
        Menu m;
        EXPECT_EQ(m.rightMenu(items), id);
        EXPECT_EQ(m.SelMenuString(), QString::fromUtf8(caption));
    }
}

} // namespace
