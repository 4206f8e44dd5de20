#include "platform/errors.h"
#include "platform/form.h"
#include "platform/runtime.h"
#include "tests/support/testsupport.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

// Before each test: no boxes recorded, no answers left, no end counted; after it: every
// form unloaded and deleted, so tests do not see each other's forms.
class Isolation : public ::testing::EmptyTestEventListener {
    void OnTestStart(const ::testing::TestInfo&) override {
        testsupport::boxes().clear();
        App::resetEndCount();
        vb::Err().Clear();
    }
    void OnTestEnd(const ::testing::TestInfo&) override { vb::FormRegistry::destroyAll(); }
};

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", qgetenv("QT_QPA_PLATFORM").isEmpty() ? QByteArray("offscreen")
                                                                    : qgetenv("QT_QPA_PLATFORM"));
    // Settings of the tests never touch the user's own store.
    QTemporaryDir settings;
    vb::setSettingsPath(settings.path());
    OrvaneApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    testsupport::boxes(); // installs the scripted boxes for the whole run
    App::setEndHook([](int) { throw vb::ProcessEnded(); });
    ::testing::UnitTest::GetInstance()->listeners().Append(new Isolation);
    const int rc = RUN_ALL_TESTS();
    vb::FormRegistry::destroyAll();
    return rc;
}
