#pragma once
// 中图法简表: the main classes of the Chinese Library Classification in Grid1 and, for
// the class picked there, its second-level classes in Grid2, both from fenlei.Qvx in the
// program's folder. It only shows; it gives nothing back.
//
// The frame opens it with Hide() then Show(): the first time that loads it (and reads the
// file); later presses bring the loaded form back as it was.

#include "classify/fenleireader.h"
#include "platform/form.h"

#include <QString>

namespace vb {
class FlexGrid;
}

class fenleihelp : public vb::Form {
    Q_OBJECT
public:
    fenleihelp();

protected:
    void build(QWidget* w) override;
    void onLoad() override;

private:
    vb::FlexGrid* grid(int which);
    void clearGrid(int which);
    void setGridCols(int which);
    void loadDaLei(const QString& fileName);
    void Grid1_Click();
    void Grid2_Click();
    // Rows of one section into a grid: the row number hidden in column 0, the line in 1.
    void fillGrid(vb::FlexGrid* g, const QStringList& lines);
    // The read failed: says so for a missing file and returns false; a file that cannot
    // be opened raises the runtime error, which nothing here catches.
    bool checkRead(classify::ReadStatus status, const QString& path);

    QString configFile;
};
