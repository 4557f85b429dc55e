#pragma once
// Properties of one file: path, size, date and three checksums computed in the
// background, with progress, cancel, switches kept under "CHECKSUMS" and copy
// buttons.
#include "src/gui/ThreadCalc.h"
#include "src/gui/WindowBase.h"

#include <QFileInfo>
#include <QTimer>
#include <memory>
#include <vector>

class QCheckBox;
class QLineEdit;
class QProgressBar;
class QPushButton;

namespace tav {
class XNode;
class XPanel;
}

namespace tavFinder {

class WinProperties : public WindowBase {
    Q_OBJECT
public:
    // 'nWin' keeps the window state and the checksum switches (not owned).
    explicit WinProperties(tav::XNode* nWin, QWidget* parent = nullptr);
    ~WinProperties() override;

    // A properties window for the file with the state node "Properties" under
    // "GUI", its tray entry, shown; null for anything but a file.
    static WinProperties* open_window(const QFileInfo& fi);

    QString windowName() const override;
    QFileInfo getCurrentFile() const override { return fi_; }

    void set_file(const QFileInfo& fi);
    void on_calc_all();
    void on_copy_all();
    void on_timer_check_progress();
    void on_close();

    // A calculation is under way (the progress timer runs).
    bool isCalculating() const { return timer_.isActive(); }
    bool isAnyThreadRunning() const;

    // Rows in algorithm order 1, 2, 3.
    ThreadCalc& thread(int i) { return *threads_[size_t(i)]; }
    QLineEdit* fieldChecksum(int i) const { return rows_[size_t(i)].field; }
    QCheckBox* switchChecksum(int i) const { return rows_[size_t(i)].check; }
    QLineEdit* fieldPath() const { return editPath_; }
    QLineEdit* fieldSize() const { return editSize_; }
    QLineEdit* fieldDate() const { return editDate_; }
    QProgressBar* progressBar() const { return progress_; }
    QPushButton* buttonCalc() const { return buttonCalc_; }

private:
    struct Row {
        QCheckBox* check = nullptr;
        QLineEdit* field = nullptr;
    };

    void setup();
    void create_crc_panel(tav::XPanel* panel, int labelWidth, tav::XNode* node, ThreadCalc& t);
    void showIdle();

    QFileInfo fi_;
    QLineEdit* editPath_ = nullptr;
    QLineEdit* editSize_ = nullptr;
    QLineEdit* editDate_ = nullptr;
    ThreadCalc calcMd5_{tav::CheckSum::MD5_ALGO};
    ThreadCalc calcSha1_{tav::CheckSum::SHA1_ALGO};
    ThreadCalc calcSha256_{tav::CheckSum::SHA256_ALGO};
    std::vector<ThreadCalc*> threads_;
    std::vector<Row> rows_;
    QProgressBar* progress_ = nullptr;
    QWidget* spacer_ = nullptr;
    QPushButton* buttonCalc_ = nullptr;
    QTimer timer_;
};

} // namespace tavFinder
