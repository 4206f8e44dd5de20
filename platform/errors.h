#pragma once
// The three error patterns of the handlers, and the one way the process ends.
//
//  1. resume next:   vb::resume([&] { ... });  then test vb::Err().Number
//  2. trap at end:   try { ... } catch (const vb::VbError& e) { MsgBox(text + "\r\n" +
//  e.description(), ...); }
//  3. no handling:   let it leave the handler; App::notify shows the runtime box and ends.

#include <QString>

#include <exception>
#include <functional>
#include <string>

namespace vb {

// Numbers of the runtime errors the program meets.
enum RuntimeError : int {
    errInvalidCall = 5,
    errOverflow = 6,
    errSubscript = 9,
    errTypeMismatch = 13,
    errFileNotFound = 53,
    errObjectRequired = 424,
    errProvider = -2147467259, // 0x80004005, what the ODBC provider raises
};

class VbError : public std::exception {
public:
    VbError(int number, QString description, QString source = {});
    int number() const { return m_number; }
    const QString& description() const { return m_description; }
    const QString& source() const { return m_source; }
    const char* what() const noexcept override { return m_what.c_str(); }

private:
    int m_number;
    QString m_description;
    QString m_source;
    std::string m_what;
};

// Raise one of the runtime's own errors with its standard text.
[[noreturn]] void raise(int number);
[[noreturn]] void raise(int number, const QString& description);
QString runtimeErrorText(int number);

struct ErrObject {
    int Number = 0;
    QString Description;
    QString Source;
    void Clear() { *this = ErrObject{}; }
};
// The global Err of the runtime.
ErrObject& Err();

// Thrown by App::end in tests (and by the real one never): it unwinds the handler that
// ended the process. resume() lets it through.
class ProcessEnded : public std::exception {
public:
    const char* what() const noexcept override { return "process ended"; }
};

// "On Error Resume Next" for one statement: a VbError is recorded in Err and swallowed;
// anything else passes. Returns true when the statement ran without error. Err is not
// cleared on success, as the runtime keeps the last error until the next one or Clear.
bool resume(const std::function<void()>& statement);

// The runtime's error box: title = application title, text "实时错误 'N':\r\n\r\n" + text.
QString fatalBoxText(const VbError& e);
// Show the box and end the process (pattern 3).
void fatalError(const VbError& e);

} // namespace vb

namespace App {
// Ends the process. Production: QApplication::exit plus std::exit after the event loop
// cannot be trusted to return (modal loops). Tests install a hook that records the end
// and throws vb::ProcessEnded to unwind the handler.
[[noreturn]] void end(int code = 0);
using EndHook = std::function<void(int)>;
// Install a hook; the hook must not return (throw). Returns the previous one.
EndHook setEndHook(EndHook hook);
// How many times end() was called since the hook was installed (for tests).
int endCount();
void resetEndCount();
} // namespace App
