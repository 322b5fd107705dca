#include "carset/FileFlow.h"

#include "shell/Asker.h"
#include "shell/Document.h"
#include "shell/MainWindow.h"
#include "shell/Session.h"
#include "shell/Workbench.h"

namespace tarvel {
namespace {

void rememberOpenFile(Workbench& bench) { bench.session.rememberRecentFile(toPath(bench.document.path()).string()); }

bool saveTo(Workbench& bench, const QString& path) {
    WaitCursor wait;
    if (!showStatus(bench, bench.document.saveTo(path))) return false;
    rememberOpenFile(bench);
    return true;
}

}  // namespace

bool loadCarSetFile(Workbench& bench, const QString& path) {
    std::vector<Message> notices;
    const Status status = bench.document.load(path, &notices);
    for (const Message& notice : notices) showMessage(bench, notice);
    if (!showStatus(bench, status)) return false;
    rememberOpenFile(bench);
    return true;
}

bool saveCarSetFile(Workbench& bench) {
    if (!bench.document.hasFile()) return saveCarSetFileAs(bench);
    return saveTo(bench, bench.document.path());
}

bool saveCarSetFileAs(Workbench& bench) {
    const QString path = bench.asker.saveFile(&bench.window, "Save Car Set As...", kCarSetFilter, "GP2");
    if (path.isEmpty() || !confirmReplace(bench, path)) return false;
    return saveTo(bench, path);
}

bool maybeSave(Workbench& bench) {
    if (!bench.document.isDirty()) return true;
    switch (bench.asker.message(&bench.window, bench.document.saveChangesQuestion(), Buttons::YesNoCancel)) {
        case Answer::Yes: return saveCarSetFile(bench);
        case Answer::No: return true;
        default: return false;
    }
}

void showInformationIfWanted(Workbench& bench) {
    const CarSet& set = bench.document.set();
    if (set.hasInformation && bench.session.config.showInfo)
        bench.asker.showInformation(&bench.window, fromModel(set.information));
}

}  // namespace tarvel
