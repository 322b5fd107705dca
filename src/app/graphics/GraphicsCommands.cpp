// The pictures of the current team: its livery and the helmets, from and to
// bitmap files and the game; the picture editors' entries.

#include "carset/TeamPanel.h"
#include "shell/Asker.h"
#include "shell/Command.h"
#include "shell/CommandIds.h"
#include "shell/Document.h"
#include "shell/MainWindow.h"
#include "shell/Session.h"
#include "shell/Workbench.h"

#include "carset/CarSetPictures.h"
#include "graphics/Helmets.h"
#include "graphics/RemapDialog.h"

namespace tarvel {
namespace {

const char* const kBitmapFilter = "Bitmap Files (*.BMP *.bmp)";
const char* const kPictureFilter = "Bitmap Files (*.BMP *.bmp *.PNG *.png)";

QString askOpen(Workbench& bench, const char* title) { return bench.asker.openFile(&bench.window, title, kPictureFilter); }

// Shows a failed result; whether it succeeded.
template <class T>
bool succeeded(Workbench& bench, const Result<T>& result) {
    return showStatus(bench, result ? Status{} : Status(fail(result.error())));
}

// A picture of width x height for the game palette: an 8-bit bitmap by its
// indices; a 24/32-bit BMP or a PNG as the user takes it from the "Map to Game
// Palette" dialog. Nothing when it was refused (said) or the user cancelled.
std::optional<BitmapBuffer> loadPicture(Workbench& bench, const std::filesystem::path& path, int width, int height) {
    if (!isTrueColour(probePictureFile(path))) {
        auto bitmap = LoadBitmap8(path, width, height);
        if (!succeeded(bench, bitmap)) return std::nullopt;
        return std::move(*bitmap);
    }
    auto picture = LoadRgbaPicture(path, width, height);
    if (!succeeded(bench, picture)) return std::nullopt;
    return mapInDialog(&bench.window, std::move(*picture), PicturePalette::Game);
}

// A save-file dialog and the replace question; empty when the user stopped.
QString askSave(Workbench& bench, const char* title) {
    const QString path = bench.asker.saveFile(&bench.window, title, kBitmapFilter, "BMP");
    if (path.isEmpty() || !confirmReplace(bench, path)) return {};
    return path;
}

GraphicsOptions options(const Workbench& bench) { return graphicsOptions(bench.session.config); }
std::filesystem::path gameFolder(const Workbench& bench) { return bench.session.config.gameFolder; }

// Changes the current team's livery, keeping what it was for the Undo button.
void changeLivery(Workbench& bench, std::string_view what, const std::function<Status(CarSet&, int)>& change) {
    bench.document.rememberLivery();
    const int team = bench.document.currentTeam();
    const StepName step{std::string(what) + " livery of team " + std::to_string(team + 1)};
    const Status status = bench.document.edit(step, Document::Livery, [&](CarSet& set) { return change(set, team); });
    if (!status) bench.document.forgetLivery();
    showStatus(bench, status);
}

void carLoad(Workbench& bench) {
    const QString path = askOpen(bench, "Select New Car");
    if (path.isEmpty()) return;
    const auto livery = loadPicture(bench, toPath(path), kLiveryWidth, kLiveryHeight);
    if (!livery) return;
    changeLivery(bench, "Load", [&](CarSet& set, int team) { return takeTeamLivery(set, team, *livery, toPath(path)); });
}

void carSaveAs(Workbench& bench) {
    const QString path = askSave(bench, "Save Car As...");
    if (path.isEmpty()) return;
    showStatus(bench, saveTeamLivery(bench.document.set(), bench.document.currentTeam(), toPath(path), options(bench)));
}

void carImport(Workbench& bench) {
    WaitCursor wait;
    changeLivery(bench, "Import", [&](CarSet& set, int team) {
        return importTeamCarFromGame(set, team, gameFolder(bench), bench.session.workingFolder, options(bench));
    });
}

// Writes into the game and says "File Patched Successfully!" when it worked.
void patchGame(Workbench& bench, const std::function<Status()>& patch) {
    Status status;
    {
        WaitCursor wait;
        status = patch();
    }
    showMessage(bench, status ? Message{MessageId::FilePatchedSuccessfully, {}} : status.error());
}

void helmetsLoad(Workbench& bench) {
    const QString path = askOpen(bench, "Load Helmets");
    if (path.isEmpty()) return;
    const auto sheet = loadPicture(bench, toPath(path), kHelmetSheetBitmapWidth, kHelmetSheetBitmapHeight);
    if (!sheet) return;
    bench.document.edit(StepName{"Load helmets"}, Document::Helmets,
                        [&](CarSet& set) { return setHelmetSheetPixels(set, *sheet); });
}

void helmetsSaveAs(Workbench& bench) {
    const QString path = askSave(bench, "Save Helmets As...");
    if (path.isEmpty()) return;
    showStatus(bench, saveHelmetSheetFile(bench.document.set(), toPath(path), options(bench)));
}

void helmetsImport(Workbench& bench) {
    Status status;
    {
        WaitCursor wait;
        status = bench.document.edit(StepName{"Import helmets"}, Document::Helmets, [&](CarSet& set) {
            return importHelmetsFromGame(set, gameFolder(bench), bench.session.workingFolder, options(bench));
        });
    }
    showStatus(bench, status);
}

void singleHelmetLoad(Workbench& bench, int car) {
    const QString path = askOpen(bench, "Load Single Helmet");
    if (path.isEmpty()) return;
    const auto single = loadPicture(bench, toPath(path), kHelmetWidth, kHelmetHeight);
    if (!single) return;
    const int helmet = 2 * bench.document.currentTeam() + car;
    BitmapBuffer sheet = helmetSheetBitmap(bench.document.set());
    if (!showStatus(bench, StoreHelmet(sheet, helmet, *single))) return;
    const StepName step{"Load helmet of driver " + std::to_string(car + 1) + " of team " +
                        std::to_string(bench.document.currentTeam() + 1)};
    bench.document.edit(step, Document::Helmets, [&](CarSet& set) { return setHelmetSheetPixels(set, sheet); });
}

void singleHelmetSaveAs(Workbench& bench, int car) {
    const QString path = askSave(bench, "Save Helmet As...");
    if (path.isEmpty()) return;
    BitmapBuffer single = blankSingleHelmet();
    if (!showStatus(bench, ExtractHelmet(helmetSheetBitmap(bench.document.set()), 2 * bench.document.currentTeam() + car,
                                         single)))
        return;
    showStatus(bench, SaveSingleHelmet(toPath(path), single, options(bench)));
}

}  // namespace

void addGraphicsCommands(Workbench& bench) {
    namespace c = command;
    CommandRegistry& r = bench.commands;
    Workbench* b = &bench;
    auto gameKnown = [b] { return b->session.gameKnown(); };

    r.add({.id = c::CarLoad, .order = 120, .menu = "&File|&Car", .text = "&Load", .separatorBefore = true,
           .run = [b] { carLoad(*b); }});
    r.add({.id = c::CarSaveAs, .order = 121, .menu = "&File|&Car", .text = "&Save as...", .run = [b] { carSaveAs(*b); }});
    r.add({.id = c::CarImport, .order = 122, .menu = "&File|&Car", .text = "&Import", .run = [b] { carImport(*b); },
           .enabled = gameKnown});
    r.add({.id = c::CarExport, .order = 123, .menu = "&File|&Car", .text = "&Export",
           .run = [b] {
               patchGame(*b, [b] {
                   return exportTeamCarToGame(b->document.set(), b->document.currentTeam(), gameFolder(*b), options(*b));
               });
           },
           .enabled = gameKnown});
    // The car popup's fifth button: the livery at twice its size. Not in the menu.
    r.add({.id = c::CarPopupView, .run = [b] { b->window.panel().showEnlargedLivery(); }});

    r.add({.id = c::HelmetsLoad, .order = 130, .menu = "&File|&Helmets|&All", .text = "&Load",
           .run = [b] { helmetsLoad(*b); }});
    r.add({.id = c::HelmetsSaveAs, .order = 131, .menu = "&File|&Helmets|&All", .text = "&Save as...",
           .run = [b] { helmetsSaveAs(*b); }});
    r.add({.id = c::HelmetsImport, .order = 132, .menu = "&File|&Helmets|&All", .text = "&Import",
           .run = [b] { helmetsImport(*b); }, .enabled = gameKnown});
    r.add({.id = c::HelmetsExport, .order = 133, .menu = "&File|&Helmets|&All", .text = "&Export",
           .run = [b] { patchGame(*b, [b] { return exportHelmetsToGame(b->document.set(), gameFolder(*b), options(*b)); }); },
           .enabled = gameKnown});
    r.add({.id = c::FirstHelmetLoad, .order = 134, .menu = "&File|&Helmets|&First driver", .text = "&Load",
           .run = [b] { singleHelmetLoad(*b, 0); }});
    r.add({.id = c::FirstHelmetSaveAs, .order = 135, .menu = "&File|&Helmets|&First driver", .text = "&Save as...",
           .run = [b] { singleHelmetSaveAs(*b, 0); }});
    r.add({.id = c::SecondHelmetLoad, .order = 136, .menu = "&File|&Helmets|&Second driver", .text = "&Load",
           .run = [b] { singleHelmetLoad(*b, 1); }});
    r.add({.id = c::SecondHelmetSaveAs, .order = 137, .menu = "&File|&Helmets|&Second driver", .text = "&Save as...",
           .run = [b] { singleHelmetSaveAs(*b, 1); }});

    r.add({.id = c::CarNumberPositions, .order = 200, .menu = "&Edit", .text = "Car &Number Positions",
           .separatorBefore = true});
    r.add({.id = c::Wheels, .order = 204, .menu = "&Edit", .text = "&Wheels"});
    r.add({.id = c::DriverMenuHelmets, .order = 205, .menu = "&Edit|&Helmets", .text = "&Driver Menu"});
    r.add({.id = c::FirstHelmetEdit, .order = 206, .menu = "&Edit|&Helmets", .text = "&First driver"});
    r.add({.id = c::SecondHelmetEdit, .order = 207, .menu = "&Edit|&Helmets", .text = "&Second driver"});
    r.add({.id = c::JamFiles, .order = 209, .menu = "&Edit", .text = "&JAM files"});
}

}  // namespace tarvel
