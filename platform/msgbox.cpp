#include "platform/msgbox.h"

#include <QApplication>
#include <QMessageBox>
#include <QPushButton>

namespace vb {
namespace {

QString& titleStore() {
    static QString t = QStringLiteral("OrvaneCG");
    return t;
}

class RealMsgBox : public MsgBoxProvider {
public:
    int show(const MsgBoxCall& call) override {
        QMessageBox box(QApplication::activeWindow());
        box.setWindowTitle(call.title);
        // The legacy box breaks lines at CRLF; Qt wants plain LF.
        QString text = call.prompt;
        text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
        box.setText(text);
        switch (call.flags & 0x70) {
        case vbCritical:
            box.setIcon(QMessageBox::Critical);
            break;
        case vbQuestion:
            box.setIcon(QMessageBox::Question);
            break;
        case vbExclamation:
            box.setIcon(QMessageBox::Warning);
            break;
        case vbInformation:
            box.setIcon(QMessageBox::Information);
            break;
        default:
            box.setIcon(QMessageBox::NoIcon);
        }
        struct B {
            QMessageBox::StandardButton qt;
            int result;
        };
        std::vector<B> buttons;
        switch (call.flags & 7) {
        case vbOKCancel:
            buttons = {{QMessageBox::Ok, vbOK}, {QMessageBox::Cancel, vbCancel}};
            break;
        case vbAbortRetryIgnore:
            buttons = {{QMessageBox::Abort, vbAbort},
                       {QMessageBox::Retry, vbRetry},
                       {QMessageBox::Ignore, vbIgnore}};
            break;
        case vbYesNoCancel:
            buttons = {{QMessageBox::Yes, vbYes},
                       {QMessageBox::No, vbNo},
                       {QMessageBox::Cancel, vbCancel}};
            break;
        case vbYesNo:
            buttons = {{QMessageBox::Yes, vbYes}, {QMessageBox::No, vbNo}};
            break;
        case vbRetryCancel:
            buttons = {{QMessageBox::Retry, vbRetry}, {QMessageBox::Cancel, vbCancel}};
            break;
        default:
            buttons = {{QMessageBox::Ok, vbOK}};
        }
        for (const B& b : buttons) box.addButton(b.qt);
        size_t def = (call.flags & vbDefaultButton3) ? 2 : (call.flags & vbDefaultButton2) ? 1 : 0;
        if (def >= buttons.size()) def = 0;
        box.setDefaultButton(buttons[def].qt);
        const int r = box.exec();
        for (const B& b : buttons)
            if (b.qt == r) return b.result;
        // Closed with Esc or the close box: Cancel where there is one, else the last button.
        for (const B& b : buttons)
            if (b.result == vbCancel) return vbCancel;
        return buttons.back().result;
    }
};

std::shared_ptr<MsgBoxProvider>& provider() {
    static std::shared_ptr<MsgBoxProvider> p = std::make_shared<RealMsgBox>();
    return p;
}

} // namespace

QString appTitle() {
    return titleStore();
}
void setAppTitle(const QString& title) {
    titleStore() = title;
}

int MsgBox(const QString& prompt, int flags, const QString& title) {
    MsgBoxCall call{prompt, flags, title.isNull() ? appTitle() : title};
    return provider()->show(call);
}

std::shared_ptr<MsgBoxProvider> setMsgBoxProvider(std::shared_ptr<MsgBoxProvider> p) {
    auto previous = provider();
    provider() = p ? std::move(p) : std::make_shared<RealMsgBox>();
    return previous;
}

int ScriptedMsgBox::show(const MsgBoxCall& call) {
    m_calls.push_back(call);
    if (!m_answers.empty()) {
        const int r = m_answers.front();
        m_answers.pop_front();
        return r;
    }
    switch (call.flags & 7) {
    case vbOKCancel:
        return (call.flags & vbDefaultButton2) ? vbCancel : vbOK;
    case vbYesNo:
    case vbYesNoCancel:
        return (call.flags & vbDefaultButton2) ? vbNo : vbYes;
    case vbRetryCancel:
        return (call.flags & vbDefaultButton2) ? vbCancel : vbRetry;
    case vbAbortRetryIgnore:
        return vbAbort;
    default:
        return vbOK;
    }
}

QStringList ScriptedMsgBox::prompts() const {
    QStringList out;
    for (const auto& c : m_calls) out << c.prompt;
    return out;
}

ScopedScriptedMsgBox::ScopedScriptedMsgBox() : m_box(std::make_shared<ScriptedMsgBox>()) {
    m_previous = setMsgBoxProvider(m_box);
}

ScopedScriptedMsgBox::~ScopedScriptedMsgBox() {
    setMsgBoxProvider(m_previous);
}

} // namespace vb
