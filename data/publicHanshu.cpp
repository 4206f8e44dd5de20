#include "data/publicHanshu.h"

#include "data/globals.h"
#include "platform/adodb.h"
#include "platform/errors.h"
#include "platform/flexgrid.h"
#include "platform/form.h"
#include "platform/msgbox.h"

QString gConnStr;
QString gServer;
QString gDatabase;
QString gUserName;
QString gLoginName;

QDateTime serverDate() {
    QDateTime result = QDateTime::currentDateTime();
    vb::Err().Clear();
    // Errors jump to the report at the end; the local time stays the answer.
    vb::resume([&] {
        adodb::Connection conn;
        conn.Open(gConnStr, QString(), QString(), adodb::adOptionUnspecified);
        adodb::Recordset rs;
        rs.Open(QStringLiteral("select getdate()"), conn, adodb::adOpenKeyset,
                adodb::adLockOptimistic, adodb::adOptionUnspecified);
        if (rs.RecordCount() > 0) {
            const QVariant v = rs.value(0);
            QDateTime d = v.toDateTime();
            if (!d.isValid()) {
                // A driver that hands the date over as text ("2003-01-31 10:00:00.000").
                const QString s = v.toString();
                d = QDateTime::fromString(s.left(23), QStringLiteral("yyyy-MM-dd HH:mm:ss.zzz"));
                if (!d.isValid())
                    d = QDateTime::fromString(s.left(19), QStringLiteral("yyyy-MM-dd HH:mm:ss"));
            }
            if (d.isValid()) result = d;
        }
    });
    if (vb::Err().Number != 0)
        vb::MsgBox(QStringLiteral("获取服务器日期时出现错误！原因如下：") + QStringLiteral("\r\n") +
                       vb::Err().Description,
                   vb::vbInformation, QStringLiteral("操作提示"));
    return result;
}

int16_t fieldKind(const QString& name) {
    if (name == QStringLiteral("日期") || name == QStringLiteral("预定日期") ||
        name == QStringLiteral("验收日期"))
        return 2;
    if (name == QStringLiteral("验收册数") || name == QStringLiteral("验收价格") ||
        name == QStringLiteral("预定价格") || name == QStringLiteral("预定册数") ||
        name == QStringLiteral("页码"))
        return 1;
    return 0;
}

void setGridRow(int isEdit, vb::Form& form, const QVariantList& values) {
    auto* grid = qobject_cast<vb::FlexGrid*>(form.findControl(QStringLiteral("Grid1")));
    if (!grid) vb::raise(438, QStringLiteral("对象不支持该属性或方法"));
    int row;
    if (isEdit) {
        row = grid->Row();
    } else if (grid->TextMatrix(1, 0).isEmpty()) {
        row = 1; // the first data row is still the blank one
    } else {
        grid->AddItem(QString());
        row = grid->Rows() - 1;
    }
    for (int i = 0; i < values.size(); ++i) {
        const QVariant& v = values[i];
        if (v.isNull() || v.toString().isEmpty()) continue; // an emptied field keeps its old text
        grid->setTextMatrix(row, i, v.toString());
    }
    grid->setRow(row);
    grid->setCol(0);
    grid->setColSel(grid->Cols() - 1);
    if (!isEdit) grid->setTopRow(row);
}
