#pragma once
// The form model of the legacy program, kept once here.
//
// - form<F>() is the one instance of form F, created on first use, alive for the process.
// - Load builds the window and its controls in their design state, then runs onLoad().
//   Touching a control (ctl<T>(), window()) loads the form first. Plain public members
//   of a form do not.
// - Unload asks queryUnload() (which may cancel), runs onUnload() and destroys the
//   window with its controls. Member variables of the form object survive.
// - Show(0) puts the window into the main frame's MDI area (or on top for top-level
//   forms); Show(1) runs a nested event loop until the form is unloaded or hidden.
// - objectNames are the behaviour's control names: "Text1_4" for Text1(4).

#include <QObject>
#include <QPointer>
#include <QString>
#include <QWidget>

#include <functional>
#include <map>
#include <memory>
#include <typeindex>

class QMdiArea;
class QMdiSubWindow;
class QEventLoop;
class QKeyEvent;

namespace vb {

// 15 twips to a pixel at 96 dpi.
constexpr int twips(int t) {
    return t / 15;
}
constexpr int toTwips(int px) {
    return px * 15;
}

// Unload modes handed to queryUnload.
enum UnloadMode : int {
    vbFormControlMenu = 0, // the close box
    vbFormCode = 1,        // Unload from code
    vbAppWindows = 2,
    vbAppTaskManager = 3,
    vbFormMDIForm = 4, // the MDI frame is closing
};

// Name of a member of a control array: ("Text1", 4) -> "Text1_4".
QString ctlName(const QString& base, int index);

class Form : public QObject {
    Q_OBJECT
public:
    explicit Form(const QString& name);
    ~Form() override;

    const QString& name() const { return m_name; }
    bool isLoaded() const { return !m_window.isNull(); }

    // The window; loads the form when needed.
    QWidget* window();
    void Load();
    // Returns false when queryUnload cancelled. A form that is not loaded unloads at once.
    bool Unload(int mode = vbFormCode);
    void Show(int modal = 0);
    void Hide();
    bool isVisible() const;
    bool isModalShowing() const { return m_modalLoop != nullptr; }
    void quitModal();

    QString caption() const;
    void setCaption(const QString& text);

    // Geometry in twips, as the forms set it.
    int Left() const;
    int Top() const;
    int Width() const;
    int Height() const;
    void Move(int left, int top);
    void Move(int left, int top, int width, int height);
    int ScaleWidth() const;
    int ScaleHeight() const;

    // A control by objectName (loads the form); throws VbError 424 when absent.
    template <class T> T* ctl(const QString& objectName) {
        auto* w = window()->findChild<T*>(objectName);
        if (!w) missingControl(objectName);
        return w;
    }
    template <class T> T* ctl(const QString& base, int index) {
        return ctl<T>(ctlName(base, index));
    }
    // Like ctl<T>() but nullptr when absent (reaching controls by name at run time).
    QWidget* findControl(const QString& objectName);

    // KeyPreview: the form's keyPreview handlers see keys before the control does.
    void setKeyPreview(bool on);
    bool keyPreview() const { return m_keyPreview; }

    // The MDI area modeless forms go into (set by the main frame).
    static void setMdiArea(QMdiArea* area);
    static QMdiArea* mdiArea();

    // Whether this form stands outside the MDI area (dialogs, the login, pop-up lists).
    virtual bool isTopLevelForm() const { return false; }

protected:
    // Creates the controls in their design-time state on `w` (already named after the form).
    virtual void build(QWidget* w) = 0;
    virtual void onLoad() {}
    // Return false to cancel the unload ("Cancel = True").
    virtual bool queryUnload(int /*mode*/) { return true; }
    virtual void onUnload() {}
    virtual void onResize() {}
    virtual void onActivate() {}
    // Key preview: return true to swallow the key.
    virtual bool previewKeyDown(QKeyEvent* /*e*/) { return false; }
    virtual bool previewKeyPress(QKeyEvent* /*e*/) { return false; }

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    [[noreturn]] void missingControl(const QString& name) const;
    QWidget* frameWidget() const; // the sub-window when in the MDI area, else the window
    void placeInFrame(QMdiArea* area, QSize size, QPoint at);
    void endModal();

    QString m_name;
    QPointer<QWidget> m_window;
    QPointer<QMdiSubWindow> m_sub;
    QEventLoop* m_modalLoop = nullptr;
    bool m_keyPreview = false;
    const QEvent* m_lastPreviewed = nullptr;
    QPointer<QWidget> m_lastTarget;
    bool m_unloading = false;
};

// The registry behind form<F>(): one instance per form type.
class FormRegistry {
public:
    template <class F> static F& get() {
        auto& slot = slots()[std::type_index(typeid(F))];
        if (!slot) slot = std::make_unique<F>();
        return static_cast<F&>(*slot);
    }
    template <class F> static bool exists() {
        return slots().count(std::type_index(typeid(F))) != 0;
    }
    // All instances by form name (calls "by name at run time").
    static Form* byName(const QString& name);
    // Tests: unload and delete every form, so the next test starts from nothing.
    static void destroyAll();
    // Leave every nested modal loop (the process would have ended).
    static void quitModalLoops();

private:
    static std::map<std::type_index, std::unique_ptr<Form>>& slots();
};

template <class F> F& form() {
    return FormRegistry::get<F>();
}

} // namespace vb
