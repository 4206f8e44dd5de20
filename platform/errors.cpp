#include "platform/errors.h"

#include "platform/msgbox.h"

#include <QCoreApplication>

#include <cstdlib>

namespace vb {

VbError::VbError(int number, QString description, QString source)
    : m_number(number), m_description(std::move(description)), m_source(std::move(source)),
      m_what(m_description.toStdString()) {}

QString runtimeErrorText(int number) {
    switch (number) {
    case errInvalidCall:
        return QStringLiteral("无效的过程调用或参数");
    case errOverflow:
        return QStringLiteral("溢出");
    case errSubscript:
        return QStringLiteral("下标越界");
    case errTypeMismatch:
        return QStringLiteral("类型不匹配");
    case errFileNotFound:
        return QStringLiteral("文件未找到");
    case errObjectRequired:
        return QStringLiteral("要求对象");
    default:
        return QStringLiteral("应用程序定义的错误或对象定义的错误");
    }
}

void raise(int number) {
    throw VbError(number, runtimeErrorText(number));
}
void raise(int number, const QString& description) {
    throw VbError(number, description);
}

ErrObject& Err() {
    static ErrObject err;
    return err;
}

bool resume(const std::function<void()>& statement) {
    try {
        statement();
        return true;
    } catch (const VbError& e) {
        Err().Number = e.number();
        Err().Description = e.description();
        Err().Source = e.source();
        return false;
    }
}

QString fatalBoxText(const VbError& e) {
    return QStringLiteral("实时错误 '%1':").arg(e.number()) + QStringLiteral("\r\n\r\n") +
           e.description();
}

void fatalError(const VbError& e) {
    MsgBox(fatalBoxText(e), vbCritical, appTitle());
    App::end(1);
}

} // namespace vb

namespace App {
namespace {
EndHook& hook() {
    static EndHook h;
    return h;
}
int& counter() {
    static int n = 0;
    return n;
}
} // namespace

void end(int code) {
    ++counter();
    if (hook()) {
        hook()(code);
        // A hook must not return; if it does, unwind anyway so the handler stops here.
        throw vb::ProcessEnded();
    }
    // The legacy End: no form gets a last word, no event loop is trusted to return.
    std::_Exit(code);
}

EndHook setEndHook(EndHook h) {
    EndHook previous = std::move(hook());
    hook() = std::move(h);
    return previous;
}

int endCount() {
    return counter();
}
void resetEndCount() {
    counter() = 0;
}

} // namespace App
