#include "platform/form.h"

#include "platform/errors.h"

#include <QAbstractButton>
#include <QApplication>
#include <QCloseEvent>
#include <QEventLoop>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QLayout>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenuBar>
#include <QPushButton>
#include <QScreen>
#include <QTimer>

namespace vb {

QString ctlName(const QString& base, int index) {
    return base + u'_' + QString::number(index);
}

namespace {
QPointer<QMdiArea>& mdiAreaStore() {
    static QPointer<QMdiArea> area;
    return area;
}

const char* const kFormProperty = "vbForm";

Form* formOf(QWidget* w) {
    for (; w; w = w->parentWidget())
        if (QObject* f = w->property(kFormProperty).value<QObject*>())
            return qobject_cast<Form*>(f);
    return nullptr;
}

// The key of an access key (Alt+letter or Alt+digit), 0 for any other key.
int accessKeyOf(const QKeyEvent* e) {
    if ((e->modifiers() & ~Qt::KeypadModifier) != Qt::AltModifier) return 0;
    const int k = e->key();
    if ((k >= Qt::Key_A && k <= Qt::Key_Z) || (k >= Qt::Key_0 && k <= Qt::Key_9)) return k;
    return 0;
}

bool hasMnemonic(const QString& text, int key) {
    return QKeySequence::mnemonic(text) ==
           QKeySequence(QKeyCombination(Qt::AltModifier, Qt::Key(key)));
}

// The control of a form that an access key names: a button (or check box, option) by
// the & mark of its caption, or the buddy of a label.
QWidget* accessTarget(QWidget* window, int key) {
    for (QAbstractButton* b : window->findChildren<QAbstractButton*>())
        if (b->isVisible() && b->isEnabled() && hasMnemonic(b->text(), key)) return b;
    for (QLabel* l : window->findChildren<QLabel*>())
        if (l->buddy() && l->isVisible() && l->buddy()->isEnabled() && hasMnemonic(l->text(), key))
            return l->buddy();
    return nullptr;
}

// An access key acts as a click of the mouse on its control: the focus goes there first,
// so the LostFocus rule of the field that is left runs; a rule that takes the focus back
// (a refused entry) keeps the Click from happening. The rule takes it back through the
// event queue, so the Click waits behind it.
void pressAccessKey(QWidget* target) {
    auto* button = qobject_cast<QAbstractButton*>(target);
    if (!button) {
        target->setFocus(Qt::ShortcutFocusReason);
        return;
    }
    if (button->focusPolicy() == Qt::NoFocus) {
        button->click();
        return;
    }
    button->setFocus(Qt::ShortcutFocusReason);
    QPointer<QAbstractButton> b = button;
    QTimer::singleShot(0, button, [b] {
        if (b && b->window()->focusWidget() == b && b->isEnabled() && b->isVisible()) b->click();
    });
}

// The menu letters of the frame a child form stands in; nullptr outside the frame.
QMenuBar* frameMenuOf(QWidget* formWindow) {
    QWidget* top = formWindow->window();
    if (top == formWindow) return nullptr;
    return top->findChild<QMenuBar*>();
}

// Access keys of every form, in one place. A child form's own keys (the & marks of its
// buttons, and its key preview) come before the frame's menu letters: Qt would hand the
// letter to whichever shortcut it met first, so the form claims the key before the
// shortcuts are looked at, and the frame's menu gets only what the form leaves.
class AccessKeys : public QObject {
public:
    using QObject::QObject;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        const auto type = event->type();
        if ((type != QEvent::ShortcutOverride && type != QEvent::KeyPress) ||
            !watched->isWidgetType())
            return false;
        auto* ke = static_cast<QKeyEvent*>(event);
        const int key = accessKeyOf(ke);
        if (!key) return false;
        auto* w = static_cast<QWidget*>(watched);
        // Only at the key's first target, not again as it travels up to the parents.
        if (QWidget* focus = w->window()->focusWidget(); focus && focus != w) return false;
        Form* f = formOf(w);
        if (!f || !f->isLoaded()) return false;
        QWidget* fw = f->window();
        if (fw->findChild<QMenuBar*>(QString(), Qt::FindDirectChildrenOnly))
            return false; // the frame
        QWidget* target = accessTarget(fw, key);
        if (type == QEvent::ShortcutOverride) {
            if (!target && !f->keyPreview()) return false;
            ke->accept();
            return true;
        }
        // The key press itself: the form's key preview has had it and left it.
        if (target) {
            pressAccessKey(target);
            return true;
        }
        if (QMenuBar* bar = frameMenuOf(fw)) {
            for (QAction* a : bar->actions()) {
                if (!a->isVisible() || !a->isEnabled() || !hasMnemonic(a->text(), key)) continue;
                if (a->menu())
                    bar->setActiveAction(a);
                else
                    a->trigger();
                return true;
            }
        }
        return false;
    }
};

void installAccessKeys() {
    static QPointer<AccessKeys> keys;
    if (keys || !qApp) return;
    keys = new AccessKeys(qApp);
    qApp->installEventFilter(keys);
}
} // namespace

Form::Form(const QString& name) : m_name(name) {}

Form::~Form() {
    endModal();
    if (m_sub)
        delete m_sub.data();
    else if (m_window)
        delete m_window.data();
}

void Form::setMdiArea(QMdiArea* area) {
    mdiAreaStore() = area;
}
QMdiArea* Form::mdiArea() {
    return mdiAreaStore().data();
}

QWidget* Form::window() {
    if (!isLoaded()) Load();
    return m_window.data();
}

void Form::Load() {
    if (isLoaded()) return;
    // Before any form's key preview, so that the previews see a key first.
    installAccessKeys();
    auto* w = new QWidget(nullptr, isTopLevelForm() ? Qt::Window : Qt::Widget);
    w->setObjectName(m_name);
    w->setProperty(kFormProperty, QVariant::fromValue<QObject*>(this));
    w->setAttribute(Qt::WA_DeleteOnClose, false);
    w->installEventFilter(this);
    m_window = w;
    build(w);
    // Enter on a focused command button presses it, as Space does, in every form (Qt
    // does that only for buttons of a dialog).
    for (QPushButton* b : w->findChildren<QPushButton*>()) b->setAutoDefault(true);
    onLoad();
}

bool Form::Unload(int mode) {
    if (!isLoaded() || m_unloading) return true;
    if (!queryUnload(mode)) return false;
    m_unloading = true;
    struct Reset {
        bool& flag;
        ~Reset() { flag = false; }
    } reset{m_unloading};
    onUnload();
    QWidget* w = m_window.data();
    QMdiSubWindow* sub = m_sub.data();
    m_window = nullptr;
    m_sub = nullptr;
    if (w) {
        w->removeEventFilter(this);
        w->hide();
    }
    if (sub) {
        sub->removeEventFilter(this);
        sub->hide();
        sub->deleteLater(); // takes the window with it
    } else if (w) {
        w->deleteLater();
    }
    endModal();
    return true;
}

QWidget* Form::frameWidget() const {
    if (m_sub) return m_sub.data();
    return m_window.data();
}

void Form::Show(int modal) {
    QWidget* w = window();
    if (modal) {
        if (m_sub) {
            // A modal show takes the window out of the MDI area, as a dialog.
            m_sub->setWidget(nullptr);
            w->setParent(nullptr);
            m_sub->deleteLater();
            m_sub = nullptr;
        }
        w->setWindowFlags(Qt::Dialog | Qt::WindowTitleHint | Qt::WindowCloseButtonHint);
        w->setWindowModality(Qt::ApplicationModal);
        w->show();
        w->raise();
        w->activateWindow();
        onActivate();
        QEventLoop loop;
        m_modalLoop = &loop;
        loop.exec(QEventLoop::DialogExec);
        m_modalLoop = nullptr;
        if (m_window) m_window->setWindowModality(Qt::NonModal);
        return;
    }
    QMdiArea* area = mdiArea();
    if (!isTopLevelForm() && area && !m_sub) {
        // The size and place the form has from its design or its Load.
        const QSize size = w->size();
        const QPoint at = w->pos();
        QMdiSubWindow* sub = area->addSubWindow(w);
        sub->setObjectName(m_name + QStringLiteral("_mdi"));
        sub->installEventFilter(this);
        sub->setAttribute(Qt::WA_DeleteOnClose, false);
        m_sub = sub;
        sub->show();
        placeInFrame(area, size, at);
    }
    if (m_sub) {
        m_sub->show();
        area->setActiveSubWindow(m_sub);
    } else {
        w->show();
        w->raise();
        w->activateWindow();
    }
    onActivate();
}

void Form::placeInFrame(QMdiArea* area, QSize size, QPoint at) {
    QMdiSubWindow* sub = m_sub.data();
    // The title bar and borders come on top of the form's own size; they are known only
    // once the sub-window has laid the form out.
    if (QLayout* l = sub->layout()) l->activate();
    const QSize extra = sub->size() - m_window->size();
    const QSize whole = size + extra;
    sub->resize(whole);
    // The whole form in sight: a frame too small for it grows, as far as the screen lets it.
    QWidget* top = area->window();
    // The area's own frame and scroll bars may take back a pixel or two: try again.
    for (int tries = 0; tries < 3; ++tries) {
        const QSize view = area->viewport()->size();
        const QSize lack(std::max(0, whole.width() - view.width()),
                         std::max(0, whole.height() - view.height()));
        if (lack.width() <= 0 && lack.height() <= 0) break;
        if (!(top->windowState() & (Qt::WindowMaximized | Qt::WindowFullScreen))) {
            QScreen* screen = top->screen() ? top->screen() : QGuiApplication::primaryScreen();
            const QSize room =
                screen ? screen->availableGeometry().size() : QSize(1 << 15, 1 << 15);
            const QSize frameExtra = top->frameGeometry().size() - top->size();
            top->resize(
                std::min(top->width() + lack.width(), room.width() - frameExtra.width()),
                std::min(top->height() + lack.height(), room.height() - frameExtra.height()));
            if (QLayout* l = top->layout()) l->activate();
        }
    }
    const QSize now = area->viewport()->size();
    sub->move(std::max(0, std::min(at.x(), now.width() - whole.width())),
              std::max(0, std::min(at.y(), now.height() - whole.height())));
}

void Form::Hide() {
    if (!isLoaded()) return;
    if (QWidget* f = frameWidget()) f->hide();
    endModal();
}

bool Form::isVisible() const {
    const QWidget* f = frameWidget();
    return f && f->isVisible();
}

void Form::endModal() {
    if (m_modalLoop) m_modalLoop->exit(0);
}

void Form::quitModal() {
    endModal();
}

QString Form::caption() const {
    return m_window ? m_window->windowTitle() : QString();
}

void Form::setCaption(const QString& text) {
    window()->setWindowTitle(text);
    if (m_sub) m_sub->setWindowTitle(text);
}

int Form::Left() const {
    return m_window ? toTwips(frameWidget()->x()) : 0;
}
int Form::Top() const {
    return m_window ? toTwips(frameWidget()->y()) : 0;
}
int Form::Width() const {
    return m_window ? toTwips(frameWidget()->frameGeometry().width()) : 0;
}
int Form::Height() const {
    return m_window ? toTwips(frameWidget()->frameGeometry().height()) : 0;
}
int Form::ScaleWidth() const {
    return m_window ? toTwips(m_window->width()) : 0;
}
int Form::ScaleHeight() const {
    return m_window ? toTwips(m_window->height()) : 0;
}

void Form::Move(int left, int top) {
    QWidget* f = window() ? frameWidget() : nullptr;
    f->move(twips(left), twips(top));
}

void Form::Move(int left, int top, int width, int height) {
    QWidget* f = window() ? frameWidget() : nullptr;
    f->setGeometry(twips(left), twips(top), twips(width), twips(height));
}

void Form::setKeyPreview(bool on) {
    if (on == m_keyPreview) return;
    m_keyPreview = on;
    if (on)
        qApp->installEventFilter(this);
    else
        qApp->removeEventFilter(this);
}

QWidget* Form::findControl(const QString& objectName) {
    return window()->findChild<QWidget*>(objectName);
}

void Form::missingControl(const QString& name) const {
    throw VbError(errObjectRequired, QStringLiteral("控件 '%1' 不存在于 %2").arg(name, m_name));
}

bool Form::eventFilter(QObject* watched, QEvent* event) {
    const bool own = watched == m_window.data() || watched == m_sub.data();
    if (own) {
        switch (event->type()) {
        case QEvent::Close: {
            // The close box goes through QueryUnload; the window itself is not closed by Qt.
            event->ignore();
            if (!m_unloading) Unload(vbFormControlMenu);
            return true;
        }
        case QEvent::Resize:
            if (watched == m_window.data()) onResize();
            break;
        case QEvent::Hide:
            if (watched == frameWidget() && m_modalLoop && !m_unloading) endModal();
            break;
        default:
            break;
        }
    }
    if (m_keyPreview && event->type() == QEvent::KeyPress && m_window && watched->isWidgetType()) {
        auto* target = static_cast<QWidget*>(watched);
        auto* ke = static_cast<QKeyEvent*>(event);
        // An unhandled key travels up to the parents of its first target: the form sees it
        // once, at that first target.
        const bool propagated = event == m_lastPreviewed && m_lastTarget &&
                                target != m_lastTarget && target->isAncestorOf(m_lastTarget);
        if (!propagated && (target == m_window || m_window->isAncestorOf(target))) {
            m_lastPreviewed = event;
            m_lastTarget = target;
            if (previewKeyDown(ke)) return true;
            if (!ke->text().isEmpty() && previewKeyPress(ke)) return true;
        }
    }
    return QObject::eventFilter(watched, event);
}

// ---- registry --------------------------------------------------------------------------

std::map<std::type_index, std::unique_ptr<Form>>& FormRegistry::slots() {
    static std::map<std::type_index, std::unique_ptr<Form>> s;
    return s;
}

Form* FormRegistry::byName(const QString& name) {
    for (auto& [type, f] : slots())
        if (f && f->name().compare(name, Qt::CaseInsensitive) == 0) return f.get();
    return nullptr;
}

void FormRegistry::destroyAll() {
    quitModalLoops();
    auto& s = slots();
    for (auto& [type, f] : s)
        if (f) f->Unload(vbAppWindows);
    s.clear();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

void FormRegistry::quitModalLoops() {
    for (auto& [type, f] : slots())
        if (f) f->quitModal();
}

} // namespace vb
