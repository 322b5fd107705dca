#pragma once
// "Restore Game Files": the backups taken before each export of the configured
// game, newest first, with their time, files and size; the chosen one is put
// back after a confirmation.

#include "game/GameBackup.h"

#include <QDialog>

#include <vector>

class QPushButton;
class QTreeWidget;

namespace tarvel {

struct Workbench;

class RestoreDialog : public QDialog {
    Q_OBJECT
public:
    explicit RestoreDialog(Workbench& bench, QWidget* parent = nullptr);

    QTreeWidget* list() const { return list_; }
    QPushButton* restoreButton() const { return restore_; }
    // Asks, then restores the selected backup; true when it was put back.
    bool restoreSelected();

private:
    void fill();

    Workbench& bench_;
    std::vector<GameBackup> backups_;
    QTreeWidget* list_;
    QPushButton* restore_;
};

// "20261123-214205" as "2026-11-23 21:42:05" (a suffix kept as it is).
QString backupTimeText(const std::string& id);

}  // namespace tarvel
