#pragma once
// Drives the modal forms of the shell from a test: each step waits until its form is up
// modally, then acts (posted, so an action may open a further modal form of its own).
// Steps that never come due fail the test and leave their modal loops.

#include "platform/form.h"
#include "tests/support/testsupport.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QTimer>

#include <gtest/gtest.h>

#include <deque>
#include <functional>
#include <utility>

class ModalScript {
public:
    explicit ModalScript(int timeoutMs = 10000) : m_timeoutMs(timeoutMs) {
        m_clock.start();
        QObject::connect(&m_timer, &QTimer::timeout, [this] { tick(); });
        m_timer.start(5);
    }
    ~ModalScript() { EXPECT_TRUE(done()) << m_steps.size() << " modal step(s) never came due"; }

    // When form F stands modally on the screen, run act on it.
    template <class F> ModalScript& on(std::function<void(F&)> act) {
        return when(
            [] {
                return vb::FormRegistry::exists<F>() && vb::form<F>().isLoaded() &&
                       vb::form<F>().isModalShowing() && vb::form<F>().isVisible();
            },
            [act] { act(vb::form<F>()); });
    }
    // When ready() holds (any modal window, a popup...), run act.
    ModalScript& when(std::function<bool()> ready, std::function<void()> act) {
        m_steps.push_back({std::move(ready), std::move(act)});
        return *this;
    }
    bool done() const { return m_steps.empty(); }

private:
    void tick() {
        if (m_steps.empty() || m_busy) return;
        if (m_clock.elapsed() > m_timeoutMs) {
            ADD_FAILURE() << "a modal form did not come up in time";
            m_steps.clear();
            vb::FormRegistry::quitModalLoops();
            return;
        }
        if (!m_steps.front().first()) return;
        m_busy = true;
        QTimer::singleShot(0, [this, act = m_steps.front().second] {
            m_busy = false;
            act();
        });
        m_steps.pop_front();
    }

    QTimer m_timer;
    QElapsedTimer m_clock;
    std::deque<std::pair<std::function<bool()>, std::function<void()>>> m_steps; // ready, act
    int m_timeoutMs;
    bool m_busy = false;
};

// Runs `open`, and `inside` (which must close it) once a modal form is up; fails when none
// comes.
inline void whileModal(std::function<void()> inside, const std::function<void()>& open) {
    ModalScript script;
    script.when([] { return QApplication::activeModalWidget() != nullptr; }, std::move(inside));
    open();
    testsupport::settle();
}
