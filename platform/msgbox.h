#pragma once
// MsgBox with the legacy flag values. Production shows a QMessageBox; tests install a
// ScriptedMsgBox that records every box and answers from a queue.

#include <QString>
#include <QStringList>

#include <deque>
#include <memory>
#include <vector>

namespace vb {

// The title of the forms' message boxes, where no other is named.
inline const QString kMsgTitle = QStringLiteral("操作提示");

// Button sets, icons and default of the legacy flags.
enum MsgBoxFlags : int {
    vbOKOnly = 0,
    vbOKCancel = 1,
    vbAbortRetryIgnore = 2,
    vbYesNoCancel = 3,
    vbYesNo = 4,
    vbRetryCancel = 5,
    vbCritical = 16,
    vbQuestion = 32,
    vbExclamation = 48,
    vbInformation = 64,
    vbDefaultButton2 = 256,
    vbDefaultButton3 = 512,
};
// Answers.
enum MsgBoxResult : int {
    vbOK = 1,
    vbCancel = 2,
    vbAbort = 3,
    vbRetry = 4,
    vbIgnore = 5,
    vbYes = 6,
    vbNo = 7,
};

struct MsgBoxCall {
    QString prompt;
    int flags = 0;
    QString title;
};

class MsgBoxProvider {
public:
    virtual ~MsgBoxProvider() = default;
    virtual int show(const MsgBoxCall& call) = 0;
};

// The title the runtime uses when none is given: the application's title.
QString appTitle();
void setAppTitle(const QString& title);

int MsgBox(const QString& prompt, int flags = 0, const QString& title = QString());

// Replace the provider; returns the previous one. nullptr restores the real boxes.
std::shared_ptr<MsgBoxProvider> setMsgBoxProvider(std::shared_ptr<MsgBoxProvider> p);

// For tests: records every box, answers from a queue. With the queue empty it answers
// the box's default button (OK, Yes, or No when 256 is set), so a test that forgot to
// script a question still sees it recorded.
class ScriptedMsgBox : public MsgBoxProvider {
public:
    int show(const MsgBoxCall& call) override;
    void answer(int result) { m_answers.push_back(result); }
    void answer(std::initializer_list<int> results) { m_answers.insert(m_answers.end(), results); }
    const std::vector<MsgBoxCall>& calls() const { return m_calls; }
    QStringList prompts() const;
    const MsgBoxCall& last() const { return m_calls.back(); }
    void clear() {
        m_calls.clear();
        m_answers.clear();
    }
    size_t pendingAnswers() const { return m_answers.size(); }

private:
    std::vector<MsgBoxCall> m_calls;
    std::deque<int> m_answers;
};

// Installs a ScriptedMsgBox for the life of the guard.
class ScopedScriptedMsgBox {
public:
    ScopedScriptedMsgBox();
    ~ScopedScriptedMsgBox();
    ScopedScriptedMsgBox(const ScopedScriptedMsgBox&) = delete;
    ScopedScriptedMsgBox& operator=(const ScopedScriptedMsgBox&) = delete;
    ScriptedMsgBox& operator*() { return *m_box; }
    ScriptedMsgBox* operator->() { return m_box.get(); }

private:
    std::shared_ptr<ScriptedMsgBox> m_box;
    std::shared_ptr<MsgBoxProvider> m_previous;
};

} // namespace vb
