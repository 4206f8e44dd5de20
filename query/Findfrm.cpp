#include "query/Findfrm.h"

#include "data/globals.h"
#include "data/publicHanshu.h"
#include "platform/adodb.h"
#include "platform/errors.h"
#include "platform/events.h"
#include "platform/formkit.h"
#include "platform/maskedbox.h"
#include "platform/msgbox.h"
#include "query/tongji.h"

#include <QComboBox>
#include <QEvent>
#include <QFrame>
#include <QLabel>
#include <QListWidget>
#include <QMouseEvent>
#include <QPushButton>
#include <QTextEdit>

#include <map>

namespace {

const QString kDateMask = QStringLiteral("####-##-##");
const QString kEmptyDate = QStringLiteral("____-__-__");

std::map<QString, Findfrm::Generator>& generators() {
    static std::map<QString, Findfrm::Generator> g;
    return g;
}

// A read-only QTextEdit still takes an input method's commit string when one is sent
// to it; this drops them for the two texts only the form writes.
class NoInputMethod : public QObject {
public:
    explicit NoInputMethod(QWidget* w) : QObject(w) { w->installEventFilter(this); }

protected:
    bool eventFilter(QObject* watched, QEvent* e) override {
        if (e->type() == QEvent::InputMethod) return true;
        return QObject::eventFilter(watched, e);
    }
};

// Mouse events of a label that plays a button: enter/move, press, release, leave.
class LabelMouse : public QObject {
public:
    using Handler = std::function<void(QEvent::Type, const QMouseEvent*)>;
    LabelMouse(QLabel* label, Handler h) : QObject(label), m_handler(std::move(h)) {
        label->setMouseTracking(true);
        label->installEventFilter(this);
    }

protected:
    bool eventFilter(QObject* watched, QEvent* e) override {
        switch (e->type()) {
        case QEvent::MouseMove:
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonRelease:
            m_handler(e->type(), static_cast<QMouseEvent*>(e));
            break;
        case QEvent::Enter:
        case QEvent::Leave:
            m_handler(e->type(), nullptr);
            break;
        default:
            break;
        }
        return QObject::eventFilter(watched, e);
    }

private:
    Handler m_handler;
};

} // namespace

Findfrm::Findfrm() : vb::Form(QStringLiteral("Findfrm")) {}

QString Findfrm::receiverName(const QString& doType) {
    if (doType == QLatin1String("caigou")) return QStringLiteral("CaiGoufrm");
    if (doType == QLatin1String("cgk")) return QStringLiteral("CaiGoufindfrm");
    if (doType == QLatin1String("cgkys")) return QStringLiteral("YanShouBrowerfrm");
    if (doType == QLatin1String("cggys")) return QStringLiteral("cgGYSfrm");
    if (doType == QLatin1String("print") || doType == QLatin1String("totalmx") ||
        doType == QLatin1String("totaltotal"))
        return QStringLiteral("Findfrm");
    return QString();
}

QString Findfrm::dictionarySql(const QString& doType) {
    const QString select = QStringLiteral("Select DbName,FieldName,CnName From FDict Where ");
    if (doType == QLatin1String("cgkys") || doType == QLatin1String("totalmx") ||
        doType == QLatin1String("totaltotal"))
        return select + QStringLiteral("DBname='cgk' OR DBname='cgkys'");
    if (doType == QLatin1String("caigou") || doType == QLatin1String("print"))
        return select + QStringLiteral("DBname='cgk'");
    return select + QStringLiteral("DBname='") + doType + u'\'';
}

void Findfrm::setGenerator(const QString& printType, Generator g) {
    if (g)
        generators()[printType] = std::move(g);
    else
        generators().erase(printType);
}

void Findfrm::build(QWidget* w) {
    w->setWindowTitle(QStringLiteral("查找资料"));
    w->resize(vb::twips(8400), vb::twips(6120));

    vb::label(w, QStringLiteral("Label1_0"), QStringLiteral("查找项目"), 120, 120, 1900, 255);
    auto* fields = vb::place(new QListWidget(w), QStringLiteral("LFields"), 120, 420, 1900, 5040);

    vb::label(w, QStringLiteral("Label1_1"), QStringLiteral("查找条件"), 2160, 120, 1800, 255);
    auto* field = vb::place(new QComboBox(w), QStringLiteral("cSql"), 2160, 420, 1800, 315);
    auto* fuhao = vb::place(new QComboBox(w), QStringLiteral("cFuhao"), 4020, 420, 1080, 315);
    auto* value = vb::place(new vb::MaskEdBox(w), QStringLiteral("lSql"), 5160, 420, 1920, 315);
    auto* add = vb::commandButton(w, QStringLiteral("Command3"), QStringLiteral("&A加入"), 7140,
                                  400, 1140, 375);
    auto* sign = vb::place(new QTextEdit(w), QStringLiteral("signSql"), 2160, 840, 6120, 660);
    auto* merge = vb::commandButton(w, QStringLiteral("Command1_0"), QStringLiteral("&U 条件合并"),
                                    6840, 1580, 1440, 375);

    vb::label(w, QStringLiteral("Label1_2"), QStringLiteral("查找关系"), 2160, 1640, 1800, 255);
    vb::place(new QListWidget(w), QStringLiteral("totalSql"), 2160, 2040, 6120, 1500);

    vb::place(new QComboBox(w), QStringLiteral("cOrderby"), 2160, 3720, 1800, 315);
    for (int i = 0; i < 2; ++i) {
        const int left = 4200 + i * 840;
        auto* lab =
            vb::place(new QLabel(i == 0 ? QStringLiteral("升序") : QStringLiteral("降序"), w),
                      vb::ctlName(QStringLiteral("Label3"), i), left, 3735, 660, 285);
        lab->setAlignment(Qt::AlignCenter);
        lab->setCursor(Qt::PointingHandCursor);
        // The four lines around the label: top, left, bottom, right.
        const int geo[4][4] = {{left - 30, 3705, 720, 15},
                               {left - 30, 3705, 15, 345},
                               {left - 30, 4035, 735, 15},
                               {left + 675, 3705, 15, 345}};
        for (int k = 0; k < 4; ++k) {
            auto* line = vb::place(new QFrame(w), vb::ctlName(QStringLiteral("L%1").arg(k + 1), i),
                                   geo[k][0], geo[k][1], geo[k][2], geo[k][3]);
            line->setAutoFillBackground(true);
        }
        new LabelMouse(lab, [this, i, lab](QEvent::Type t, const QMouseEvent* e) {
            switch (t) {
            case QEvent::Enter:
            case QEvent::MouseMove:
                if (!e || !(e->buttons() & Qt::LeftButton)) setLabelLook(i, 1);
                break;
            case QEvent::MouseButtonPress:
                if (e->button() == Qt::LeftButton) setLabelLook(i, 2);
                break;
            case QEvent::MouseButtonRelease:
                if (e->button() != Qt::LeftButton) break;
                setLabelLook(i, 1);
                if (lab->rect().contains(e->position().toPoint())) Label3_Click(i);
                break;
            case QEvent::Leave:
                setLabelLook(i, 0);
                break;
            default:
                break;
            }
        });
    }
    auto* orderText =
        vb::place(new QTextEdit(w), QStringLiteral("lOrderby"), 2160, 4140, 6120, 660);

    auto* ok = vb::commandButton(w, QStringLiteral("Command1_1"), QStringLiteral("&O  确定"), 3480,
                                 5160, 1215, 375);
    auto* clear = vb::commandButton(w, QStringLiteral("Command2"), QStringLiteral("&C  清除"), 5160,
                                    5160, 1215, 375);
    auto* close = vb::commandButton(w, QStringLiteral("Command1_2"), QStringLiteral("&X  关闭"),
                                    6840, 5160, 1215, 375);

    sign->setAcceptRichText(false);
    orderText->setAcceptRichText(false);
    // Only the form writes these two: read-only also shuts out what never comes as a
    // key (input-method text, paste from the context menu, a drop). The KeyDown
    // handlers below still see and swallow every key.
    sign->setReadOnly(true);
    orderText->setReadOnly(true);
    new NoInputMethod(sign);
    new NoInputMethod(orderText);
    sign->setTabChangesFocus(true);
    orderText->setTabChangesFocus(true);

    for (int i = 0; i < 2; ++i) setLabelLook(i, 0);

    connect(fields, &QListWidget::currentRowChanged, this, [this] { LFields_Click(); });
    connect(fields, &QListWidget::itemDoubleClicked, this, [fuhao] { fuhao->setFocus(); });
    connect(field, &QComboBox::activated, this, [this] { cSql_Click(); });
    vb::enterAsTab(field);
    vb::enterAsTab(fuhao);
    vb::selectAllOnFocus(value);
    vb::onKeyDown(value, [this](int& key, int shift) { lSql_KeyDown(key, shift); });
    // The readable texts are for reading only.
    vb::onKeyDown(sign, [](int& key, int) { key = 0; });
    vb::onKeyDown(orderText, [](int& key, int) {
        // Meant to let the left and right arrows through; the test has never let any key
        // pass, and the list is used that way.
        if (key != vb::vbKeyLeft || key != vb::vbKeyRight) key = 0;
    });
    connect(add, &QPushButton::clicked, this, [this] { Command3_Click(); });
    connect(merge, &QPushButton::clicked, this, [this] { Command1_Click(0); });
    connect(ok, &QPushButton::clicked, this, [this] { Command1_Click(1); });
    connect(close, &QPushButton::clicked, this, [this] { Command1_Click(2); });
    connect(clear, &QPushButton::clicked, this, [this] { Command2_Click(); });
}

QListWidget* Findfrm::LFields() {
    return ctl<QListWidget>(QStringLiteral("LFields"));
}
QComboBox* Findfrm::cSql() {
    return ctl<QComboBox>(QStringLiteral("cSql"));
}
QComboBox* Findfrm::cFuhao() {
    return ctl<QComboBox>(QStringLiteral("cFuhao"));
}
vb::MaskEdBox* Findfrm::lSql() {
    return ctl<vb::MaskEdBox>(QStringLiteral("lSql"));
}
QTextEdit* Findfrm::signSql() {
    return ctl<QTextEdit>(QStringLiteral("signSql"));
}
QListWidget* Findfrm::totalSql() {
    return ctl<QListWidget>(QStringLiteral("totalSql"));
}
QComboBox* Findfrm::cOrderby() {
    return ctl<QComboBox>(QStringLiteral("cOrderby"));
}
QTextEdit* Findfrm::lOrderby() {
    return ctl<QTextEdit>(QStringLiteral("lOrderby"));
}

const findsql::Field& Findfrm::fieldAt(int index) const {
    if (index < 0 || static_cast<size_t>(index) >= fieldDict.size()) vb::raise(vb::errSubscript);
    return fieldDict[static_cast<size_t>(index)];
}

void Findfrm::onLoad() {
    findKind = -1;
    adodb::Connection conn;
    conn.Open(gConnStr);
    adodb::Recordset rs;
    rs.Open(dictionarySql(doType), conn, adodb::adOpenKeyset, adodb::adLockOptimistic, -1);

    QListWidget* fields = LFields();
    QComboBox* order = cOrderby();
    QComboBox* field = cSql();
    const long count = rs.RecordCount();
    if (count >= 1) {
        fieldDict.assign(static_cast<size_t>(count) + 1, {});
        size_t i = 0;
        while (!rs.EOF_()) {
            findsql::Field& f = fieldDict[i];
            f.fieldname = rs.text(QStringLiteral("FieldName"));
            f.cnname = rs.text(QStringLiteral("CnName"));
            f.kind = fieldKind(f.cnname);
            fields->addItem(f.cnname);
            order->addItem(f.cnname);
            field->addItem(f.cnname);
            rs.MoveNext();
            ++i;
        }
    } else {
        fieldDict.assign(46, {});
    }
    // Filled lists have nothing chosen yet.
    order->setCurrentIndex(-1);
    field->setCurrentIndex(-1);
    if (fields->count() > 0) fields->setCurrentRow(0);
}

void Findfrm::onUnload() {
    q.clear();
    doType.clear();
    findKind = -1;
}

void Findfrm::LFields_Click() {
    QListWidget* fields = LFields();
    if (fields->count() == 0 || fields->currentRow() < 0) return;
    QComboBox* field = cSql();
    field->setCurrentIndex(field->findText(fields->currentItem()->text(), Qt::MatchExactly));
    const int16_t kind = fieldAt(fields->currentRow()).kind;
    if (kind != findKind) {
        findKind = kind;
        setFuhaoList();
    }
}

void Findfrm::cSql_Click() {
    const int index = cSql()->currentIndex();
    if (index < 0) return;
    const int16_t kind = fieldAt(index).kind;
    if (kind != findKind) {
        findKind = kind;
        setFuhaoList();
    }
}

void Findfrm::setFuhaoList() {
    QComboBox* fuhao = cFuhao();
    vb::MaskEdBox* value = lSql();
    fuhao->clear();
    fuhao->addItems(findsql::fuhaoList(findKind));
    if (findKind == 2) {
        value->setTextVb(QString());
        value->setMask(kDateMask);
    } else {
        value->setMask(QString());
        value->setTextVb(QString());
    }
    fuhao->setCurrentIndex(0);
}

void Findfrm::lSql_KeyDown(int& keyCode, int /*shift*/) {
    vb::MaskEdBox* value = lSql();
    const QString text = value->Text();
    if (text == kEmptyDate || text.isEmpty()) return;
    QComboBox* field = cSql();
    if (field->currentIndex() < 0) return;
    if (keyCode != vb::vbKeyReturn) return;

    q.addCondition(fieldAt(field->currentIndex()), cFuhao()->currentText(), text);
    signSql()->setPlainText(q.signText);
    // Empty again: with the date mask that reads "____-__-__".
    value->setTextVb(QString());
}

void Findfrm::Command3_Click() {
    int key = vb::vbKeyReturn;
    lSql_KeyDown(key, 0);
}

void Findfrm::Command1_Click(int index) {
    switch (index) {
    case 0:
        if (q.groupSql.isEmpty()) return;
        q.closeGroup();
        totalSql()->addItem(q.totalTexts.back());
        signSql()->clear();
        break;
    case 1:
        findData();
        break;
    default:
        Unload();
        break;
    }
}

void Findfrm::Command2_Click() {
    signSql()->clear();
    totalSql()->clear();
    lOrderby()->clear();
    lSql()->setTextVb(QString());
    QComboBox* order = cOrderby();
    QComboBox* field = cSql();
    order->clear();
    for (int i = 0; i < field->count(); ++i) order->addItem(field->itemText(i));
    order->setCurrentIndex(-1);
    q.clear();
}

void Findfrm::Label3_Click(int index) {
    QComboBox* order = cOrderby();
    if (order->currentText().isEmpty()) {
        vb::MsgBox(QStringLiteral("请选择排序项目，取消该操作。"), vb::vbCritical, vb::kMsgTitle);
        order->setFocus();
        return;
    }
    // The order field is found by its name among all fields.
    // (Not found, the walk ends one past the list, on the spare last entry of fieldDict.)
    QListWidget* fields = LFields();
    int pos = 0;
    for (; pos < fields->count(); ++pos)
        if (fields->item(pos)->text() == order->currentText()) break;
    const QString caption = ctl<QLabel>(QStringLiteral("Label3"), index)->text();
    q.addOrder(fieldAt(pos), index, caption);
    lOrderby()->setPlainText(q.orderText);
    // A field sorted on leaves the list, so it can't be chosen twice.
    order->removeItem(order->currentIndex());
    order->setCurrentIndex(-1);
}

void Findfrm::setLabelLook(int index, int look) {
    QWidget* w = window();
    const QPalette pal = w->palette();
    const QColor face = pal.color(QPalette::Window);
    const QColor light = pal.color(QPalette::HighlightedText);
    const QColor dark = pal.color(QPalette::ButtonText);
    // Raised: light top and left, dark bottom and right; sunken the other way round.
    const QColor topLeft = look == 1 ? light : look == 2 ? dark : face;
    const QColor bottomRight = look == 1 ? dark : look == 2 ? light : face;
    for (int k = 1; k <= 4; ++k) {
        auto* line = w->findChild<QFrame*>(vb::ctlName(QStringLiteral("L%1").arg(k), index));
        if (!line) continue;
        QPalette p = line->palette();
        p.setColor(QPalette::Window, k <= 2 ? topLeft : bottomRight);
        line->setPalette(p);
    }
}

void Findfrm::findData() {
    if (q.isEmpty()) return;
    // What the receiver has to offer is read under "resume next": a form without the
    // members is passed over and the dialog still closes.
    QueryReceiver* receiver = nullptr;
    const QString name = receiverName(doType);
    if (name == QLatin1String("Findfrm"))
        receiver = this;
    else if (!name.isEmpty())
        receiver = dynamic_cast<QueryReceiver*>(vb::FormRegistry::byName(name));

    const QString fixture = receiver ? receiver->fixture_Where : QString();
    const QString total = receiver ? receiver->total_Where : QString();
    q.finish(fixture, total);
    if (receiver) vb::resume([&] { receiver->loadGridData(q.mergedSql, q.orderSql); });
    Unload();
}

void Findfrm::loadGridData(const QString& iiWhere, const QString& iiOrderby) {
    auto it = generators().find(printType);
    if (it != generators().end()) {
        it->second(iiWhere, iiOrderby);
        return;
    }
    tongji::run(printType, iiWhere, iiOrderby);
}
