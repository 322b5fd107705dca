#pragma once
// The ids of the main window's commands. The numbers are the ones the menu has
// always had; feature folders register what each one does (Command.h).

namespace tarvel::command {

constexpr int NewCarSet = 6000, NewEditorWindow = 6047, Open = 6001, OpenInNewWindow = 6048, Save = 6002,
              SaveAs = 6003, AutofileSetAs = 6051, AutofileRemove = 6052, AutofileOpen = 6053, CarLoad = 6055,
              CarSaveAs = 6056, CarImport = 6057, CarExport = 6058, HelmetsLoad = 6004, HelmetsSaveAs = 6005,
              HelmetsImport = 6061, HelmetsExport = 6062, FirstHelmetLoad = 6030, SecondHelmetLoad = 6031,
              FirstHelmetSaveAs = 6032, SecondHelmetSaveAs = 6033, CockpitLoad = 6063, TeamLoad = 6034,
              TeamSaveAs = 6035, PerformanceLoad = 6038, PerformanceSaveAs = 6039, Exit = 6019,
              CarNumberPositions = 6065, CockpitDesign = 6029, CockpitColours = 6010, PitSettings = 6011,
              Wheels = 6012, DriverMenuHelmets = 6037, FirstHelmetEdit = 6013, SecondHelmetEdit = 6014,
              SoundEffects = 6028, JamFiles = 6027, CarDamage = 6040, OnboardCameras = 6046,
              ChampionshipPoints = 6042, NumberOfLaps = 6041, GameSettings = 6015, CarPerformance = 6020,
              ActiveDrivers = 6021, SpareDrivers = 6044, CalculateGrid = 6023, CalculateRace = 6024,
              CarSettings = 6043, ImportFromGame = 6007, ExportToGame = 6008, LaunchGame = 6045,
              CreateDosPatch = 6036, CarViewer = 6022, EditInformation = 6025, ProgramConfiguration = 6016,
              Help = 6018, AboutCarSet = 6026, About = 6017, CarPopupView = 1005;
// Commands of our own, beyond the original menu.
constexpr int RestoreGameFiles = 6100, Undo = 6101, Redo = 6102, RecentCarSets = 6103;

}  // namespace tarvel::command
