// The numbers of the main window's commands, of the windows' controls and of the actions' pictures.
#pragma once

namespace corvalt {

inline constexpr int kCmdScan = 1001;
inline constexpr int kCmdRepair = 1002;
inline constexpr int kCmdRestore = 1003;
inline constexpr int kCmdIgnoreList = 1004;
inline constexpr int kCmdExport = 1005;
inline constexpr int kCmdOpenInRegedit = 1006;
inline constexpr int kCmdExit = 1007;
inline constexpr int kCmdHelp = 1008;
inline constexpr int kCmdFaq = 1009;  // required, but hidden and without effect: in no menu and no table
inline constexpr int kCmdHomePage = 1010;
inline constexpr int kCmdRecommend = 1011;
inline constexpr int kCmdUpgrade = 1012;
inline constexpr int kCmdAbout = 1013;
inline constexpr int kCmdDiskCleanup = 1014;
inline constexpr int kCmdStartupManager = 1015;
inline constexpr int kCmdUninstallManager = 1016;
inline constexpr int kCmdProcessManager = 1017;

// Entries of the context menu that are required and have no command behind them yet.
inline constexpr int kCmdModifyProperties = 1018;
inline constexpr int kCmdBackupEntry = 1019;
inline constexpr int kCmdRemoveEntry = 1020;
inline constexpr int kCmdShowCommandLine = 1021;
inline constexpr int kCmdRefresh = 1022;

inline constexpr int kSectionsTreeId = 2001;
inline constexpr int kResultsTreeId = 2002;
inline constexpr int kChooserId = 2003;
inline constexpr int kToolbarId = 2004;
inline constexpr int kSummaryId = 2005;

// Controls of the dialogs; their OK and Cancel have the system's numbers. Each dialog has its own window, so
// that only the numbers of one dialog must differ.
inline constexpr int kRepairButtonId = 100;  // of the progress dialog
inline constexpr int kDialogListId = 101;
inline constexpr int kDialogTextId = 101;
inline constexpr int kRestoreButtonId = 102;
inline constexpr int kRemoveButtonId = 103;
inline constexpr int kViewButtonId = 104;

// Places in the list of action pictures.
inline constexpr int kNoPicture = -1;
inline constexpr int kImageScan = 5;
inline constexpr int kImageRestore = 6;
inline constexpr int kImageIgnoreList = 9;
inline constexpr int kImageRepair = 10;

}  // namespace corvalt
