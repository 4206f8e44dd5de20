#include "platform/form.h"

#include "platform/errors.h"

#include <QApplication>
#include <QCloseEvent>
#include <QEventLoop>
#include <QKeyEvent>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QScreen>

namespace vb {

QString ctlName(const QString& base, int index) {
    return base + u'_' + QString::number(index);
}

namespace {
QPointer<QMdiArea>& mdiAreaStore() {
    static QPointer<QMdiArea> area;
    return area;
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
    auto* w = new QWidget(nullptr, isTopLevelForm() ? Qt::Window : Qt::Widget);
    w->setObjectName(m_name);
    w->setAttribute(Qt::WA_DeleteOnClose, false);
    w->installEventFilter(this);
    m_window = w;
    build(w);
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
        const QSize size = w->size();
        QMdiSubWindow* sub = area->addSubWindow(w);
        sub->setObjectName(m_name + QStringLiteral("_mdi"));
        sub->installEventFilter(this);
        sub->setAttribute(Qt::WA_DeleteOnClose, false);
        sub->resize(size + QSize(sub->width() - w->width(), sub->height() - w->height()));
        m_sub = sub;
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
