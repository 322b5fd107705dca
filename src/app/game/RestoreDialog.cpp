#include "game/RestoreDialog.h"

#include "shell/Asker.h"
#include "shell/Session.h"
#include "shell/Workbench.h"

#include <QDialogButtonBox>
#include <QHeaderView>
#include <QLocale>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace tarvel {

QString backupTimeText(const std::string& id) {
    const QString text = QString::fromStdString(id);
    if (text.size() < 15 || text[8] != '-') return text;
    return QString("%1-%2-%3 %4:%5:%6%7")
        .arg(text.mid(0, 4), text.mid(4, 2), text.mid(6, 2), text.mid(9, 2), text.mid(11, 2), text.mid(13, 2),
             text.mid(15));
}

RestoreDialog::RestoreDialog(Workbench& bench, QWidget* parent) : QDialog(parent), bench_(bench) {
    setWindowTitle("Restore Game Files");
    auto* layout = new QVBoxLayout(this);
    list_ = new QTreeWidget(this);
    list_->setHeaderLabels({"Backup taken", "Files", "Size"});
    list_->setRootIsDecorated(false);
    list_->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    list_->setMinimumSize(420, 220);
    layout->addWidget(list_);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    restore_ = buttons->addButton("Restore", QDialogButtonBox::ActionRole);
    connect(restore_, &QPushButton::clicked, this, [this] {
        if (restoreSelected()) accept();
    });
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(list_, &QTreeWidget::currentItemChanged, this, [this] {
        const int row = list_->currentIndex().row();
        restore_->setEnabled(row >= 0 && backups_[std::size_t(row)].complete);
    });
    layout->addWidget(buttons);
    fill();
}

void RestoreDialog::fill() {
    backups_ = listGameBackups(bench_.session.backupsRoot, bench_.session.config.gameFolder);
    list_->clear();
    const QLocale locale;
    for (const GameBackup& backup : backups_) {
        auto* item = new QTreeWidgetItem(list_);
        item->setText(0, backupTimeText(backup.id));
        item->setText(1, backup.complete ? QString::number(backup.files.size()) : QString("incomplete"));
        item->setText(2, backup.complete ? locale.formattedDataSize(qint64(backup.totalSize())) : QString());
        if (!backup.complete) item->setFlags(item->flags() & ~Qt::ItemIsEnabled);
    }
    const bool any = !backups_.empty();
    if (any) list_->setCurrentItem(list_->topLevelItem(0));
    restore_->setEnabled(any && backups_.front().complete);
}

bool RestoreDialog::restoreSelected() {
    const int row = list_->currentIndex().row();
    if (row < 0 || std::size_t(row) >= backups_.size()) return false;
    const std::string id = backups_[std::size_t(row)].id;
    if (bench_.asker.message(this, Message{MessageId::RestoreBackupQuestion, backupTimeText(id).toStdString()},
                             Buttons::YesNo) != Answer::Yes)
        return false;
    const auto restored = RestoreGameFiles(bench_.session.backupsRoot, bench_.session.config.gameFolder, id);
    // The executable may be another release now.
    bench_.session.detectGame();
    if (!restored) {
        bench_.asker.message(this, restored.error());
        fill();
        return false;
    }
    bench_.asker.message(this, Message{MessageId::GameFilesRestored, {}});
    return true;
}

}  // namespace tarvel
