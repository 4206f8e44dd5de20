// The right-button popup: ids count separators, 0 on dismissal.
#include "platform/Menu.h"

#include "tests/support/testsupport.h"

#include <QAction>
#include <QApplication>
#include <QMenu>
#include <QTest>
#include <QTimer>

namespace {

struct PickerGuard {
    explicit PickerGuard(Menu::Picker p) : previous(Menu::setPicker(std::move(p))) {}
    ~PickerGuard() { Menu::setPicker(previous); }
    Menu::Picker previous;
};

const QStringList kItems = {QStringLiteral("修改"), QStringLiteral("-"), QStringLiteral("删除"),
                            QStringLiteral(" - "), QStringLiteral("  打印  ")};

TEST(MenuTest, IdsCountSeparatorsAndTheCaptionIsTrimmed) {
    struct Case {
        Menu::Picker picker;
        int id;
        const char* caption;
    };
    const Case cases[] = {
        {Menu::pickText(QStringLiteral("修改")), 1, "修改"},
        {Menu::pickText(QStringLiteral("删除")), 3, "删除"},
        {Menu::pickId(5), 5, "打印"},
        {[](QMenu&) { return nullptr; }, 0, ""},
    };
    Menu m;
    for (const Case& c : cases) {
        PickerGuard guard(c.picker);
        EXPECT_EQ(m.rightMenu(kItems), c.id);
        EXPECT_EQ(m.SelMenuString(), QString::fromUtf8(c.caption));
    }
}

TEST(MenuTest, BlankedDashesAreSeparatorsAndTakeTheirIds) {
    QList<bool> separators;
    PickerGuard guard([&](QMenu& menu) -> QAction* {
        for (QAction* a : menu.actions()) separators << a->isSeparator();
        return nullptr;
    });
    Menu m;
    EXPECT_EQ(m.rightMenu(kItems), 0);
    EXPECT_EQ(separators, (QList<bool>{false, true, false, true, false}));
    EXPECT_EQ(m.rightMenu({}), 0);
}

// The real popup, driven by keys: Esc dismisses, Down Down Enter takes the second entry.
TEST(MenuTest, RealPopupAtTheMouse) {
    QWidget owner;
    owner.show();
    QApplication::setActiveWindow(&owner);
    struct Case {
        std::vector<Qt::Key> keys;
        int id;
        const char* caption;
    };
    const Case cases[] = {
        {{Qt::Key_Escape}, 0, ""},
        {{Qt::Key_Down, Qt::Key_Down, Qt::Key_Return}, 3, "删除"},
    };
    for (const Case& c : cases) {
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
            for (Qt::Key k : c.keys) QTest::keyClick(popup, k);
        });
        poll.start(20);
        Menu m;
        EXPECT_EQ(m.rightMenu(kItems), c.id);
        EXPECT_EQ(m.SelMenuString(), QString::fromUtf8(c.caption));
    }
}

} // namespace
