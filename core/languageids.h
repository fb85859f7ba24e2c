// Every text that the program shows, by its number in the language files. Code names a text only through
// TextId; what follows or surrounds a text where it is shown is said beside it.
//
// Numbers below 40001 are shared with the other programs of the suite and never change their meaning.
// Texts of this program's own begin at 40001. The numbers 29601 to 29606 are keys of the backup index, not
// texts.
#pragma once

#include <array>
#include <cstdint>

namespace corvalt {

enum class TextId : std::int32_t {
  // Shared by the suite
  MenuFile = 10001,
  ButtonView = 10003,
  MenuHelp = 10004,
  ActionExit = 10005,
  ColumnSize = 10011,
  ButtonOk = 10012,
  ButtonCancel = 10013,
  ButtonClose = 10014,
  ActionHomePage = 10018,
  ActionAbout = 10019,
  ActionExport = 10020,
  GroupTasks = 10022,
  ActionHelpContents = 10023,
  ColumnCreationDate = 10033,
  ButtonRemove = 10034,
  ActionRecommend = 10035,
  TitleConfirm = 10044,
  TitleInformation = 10045,
  ActionUpgrade = 20022,

  // Main window
  ProgramTitle = 11001,  // Its number is also the module id that backups carry in index.ini.
  GroupSections = 11002,
  MenuAction = 11003,
  ActionScan = 11004,
  ActionRepair = 11005,
  ActionRestore = 11006,
  MenuTools = 11007,
  RepairFinalMessage = 11008,
  ConfirmIgnore = 11009,
  ReportSaved = 11010,  // A blank and the file name follow.
  Summary = 11011,      // A blank and the two counts in brackets follow.
  OneProblemFound = 11012,
  ProblemsFound = 11013,
  // Each of the three "selected" texts follows a comma directly.
  OneProblemSelected = 11014,
  ProblemsSelected = 11015,
  NoProblemFound = 11016,
  NoProblemSelected = 11017,

  // Rows of the results tree
  HeaderCount = 11018,
  HeaderScanning = 11019,  // Three dots follow.
  RowLocation = 11020,
  RowAction = 11021,
  ButtonOpenInRegedit = 11022,
  TipOpenInRegedit = 11023,
  ChoiceRepair = 11024,
  ChoiceDoNotRepair = 11025,
  ChoiceIgnore = 11026,
  ButtonProperties = 11027,
  TipProperties = 11028,
  ChoiceRepairFile = 11029,
  ChoiceDoNotRepairFile = 11030,

  // Progress dialog
  ScanComplete = 11031,
  ButtonRepair = 11032,
  InviteRepair = 11033,
  RepairComplete = 11034,
  ScanningSection = 11035,   // A blank, the section and three dots follow, or a blank and three dots.
  RepairingSection = 11036,  // A blank, the section and three dots follow, or a blank and three dots.

  // Restore dialog
  ButtonRestore = 11037,
  RestoreInstruction = 11038,
  BackupRowPrefix = 11039,  // A blank, a hyphen, a blank and the date follow.
  ConfirmRestore = 11040,   // Argument: the row of the backup.
  RestoreDone = 11041,      // Argument: the row of the backup.

  // Problem descriptions
  MissingFileOfValue = 11042,  // Arguments: value name, value text.
  MissingProgId = 11043,       // Argument: full key of the file type.
  EmptyKey = 11044,
  BrokenClassLink = 11045,  // Argument: class identifier.
  MissingIcon = 11046,      // Argument: icon value.
  BrokenVerb = 11047,       // Arguments: verb, command line or class identifier.
  VerbWithoutCommand = 11048,
  HandlerWithoutClass = 11049,
  MissingInProcessServer = 11050,        // Argument: file.
  MissingLocalServer = 11051,            // Argument: file.
  BrokenTypeLibraryLink = 11052,         // Argument: library identifier.
  InvalidTypeLibraryHelpFolder = 11053,  // Argument: folder value.
  EmptyTypeLibraryKey = 11054,           // Argument: key path.
  MissingTypeLibraryFile = 11055,        // Argument: file.
  MissingApplicationFile = 11056,        // Argument: file.
  MissingFontFile = 11057,               // Arguments: file, font name.
  MissingHelpFile = 11058,               // Arguments: file name, full path.
  MissingSharedFile = 11059,             // Argument: file.
  UnusedSharedFile = 11060,              // Argument: file.
  MissingServiceFile = 11061,            // Argument: file.
  MissingRecentFile = 11062,             // Arguments: value name, file.
  MissingStartMenuFolder = 11064,        // Argument: folder name.
  MissingStartupProgram = 11065,         // Arguments: value name, command.
  NoUninstaller = 11066,
  MissingUninstaller = 11067,  // Argument: uninstall command, or the program name of a cache entry.
  MissingShellFolder = 11068,  // Arguments: value name, folder.

  // Progress of a repair
  DeletingKey = 11069,    // Shown without a name behind it.
  DeletingValue = 11070,  // A blank, the key path and the value name follow.
  DeletingFile = 11071,   // A blank and the file follow.

  // Ignore list manager
  IgnoreListManager = 11072,
  IgnoreListExplanation = 11073,  // Argument: the program title.
  ColumnIgnoredEntry = 11074,

  // Failures
  TitleError = 40001,
  ScanFailed = 40002,                  // Argument: the reason.
  CatalogueUnreadable = 40003,         // Argument: file. A reason of ScanFailed.
  RepairFailedBeforeDeletion = 40004,  // Argument: the reason.
  BackupNotVerified = 40005,           // A reason of RepairFailedBeforeDeletion.
  RepairFailed = 40006,                // Argument: the reason.
  MaintenanceFailed = 40007,           // Argument: the reason.
  ReportNotSaved = 40008,              // Argument: the reason.
  BackupsNotListed = 40009,            // Argument: the reason.
  BackupMissing = 40010,               // Argument: the row of the backup.
  BackupDamaged = 40011,               // Argument: the row of the backup.
  BackupUnreadable = 40012,            // Arguments: the row of the backup, the reason.
  BackupNotRemoved = 40013,            // Arguments: the row of the backup, the reason.
  // Argument: the row of the backup. One or both of the next two follow, on lines of their own.
  RestoreIncomplete = 40014,
  LinesSkipped = 40015,       // Argument: their number.
  EntriesNotWritten = 40016,  // Argument: their number.

  // The end of a repair that left something; on lines of their own, in the window below RepairFinalMessage.
  EntriesNotSaved = 40060,    // Argument: their number.
  EntriesNotDeleted = 40061,  // Argument: their number.

  // Shown in the empty results tree
  HintScan = 40017,

  // About box
  AboutVersion = 40020,  // Argument: the version number.
  AboutPurpose = 40021,

  // Menu entries without a number in the suite
  ActionModifyProperties = 40027,
  ActionBackupEntry = 40028,
  ActionRemoveEntry = 40029,
  ActionShowCommandLine = 40030,
  ActionRefresh = 40031,

  // Results tree and report
  ColumnProblems = 40032,
  ConfirmOverwrite = 40033,  // Argument: the file.

  // What assistive technology calls a row's default action
  ActionCheckRow = 40034,
  ActionUncheckRow = 40035,

  // Shown at the start
  UseThe64BitProgram = 40036,

  // The backup folder
  BackupsInUse = 40050,        // Argument: the program's title.
  BackupFolderIsLink = 40051,  // Argument: the folder.
  ChangesNotListed = 40052,    // Argument: the reason.

  // Restoring a backup
  NothingRestored = 40080,     // Argument: the backup.
  BackupNotSupported = 40081,  // Argument: the backup.
  BackupForeign = 40082,       // Arguments: the computer and the user that it was made on and by.
  BackupNotWhole = 40083,
  RestoreAnyway = 40084,         // Follows one of the two before in a line of its own.
  SkippedLine = 40085,           // Arguments: its number and its text.
  MoreSkippedLines = 40086,      // Argument: their number.
  AttributesNotWritten = 40087,  // Argument: their number.
  UseForeign = 40088,            // Of the console program.
  RestoreStopped = 40089,        // Arguments: the number of keys created and of values written.

  // The console program's usage errors, with the word that is wrong as the argument, and its outcomes
  NoCommand = 40100,
  UnknownCommand = 40101,
  UnknownOption = 40102,
  UnexpectedArgument = 40103,
  OptionGivenTwice = 40104,
  OptionNeedsValue = 40105,
  NoSuchSection = 40106,
  ReportNeedsFile = 40107,
  ReportAndJsonDiffer = 40108,
  RestoreNeedsName = 40109,
  IgnoreNeedsWords = 40110,
  RepairNeedsNoBackup = 40111,
  HelpHint = 40112,
  BackupMadeAllTheSame = 40113,
  ScanCancelled = 40114,
  NothingDeleted = 40115,
  NothingDeletedWithoutYes = 40116,
  BackupNamed = 40117,
  EntriesRepaired = 40118,
  EntriesNotReached = 40119,
  IgnoreListNotStored = 40121,
  NoSuchIgnoreEntry = 40122,

  // The console program's help, line by line
  HelpTitle = 40130,
  HelpSections = 40131,
  HelpScan = 40132,
  HelpRepair = 40133,
  HelpBackups = 40134,
  HelpRestore = 40135,
  HelpIgnore = 40136,
  HelpHelp = 40137,
  HelpVersion = 40138,
  HelpOptionSections = 40139,
  HelpOptionReport = 40140,
  HelpOptionJson = 40141,
  HelpOptionQuiet = 40142,
  HelpOptionYes = 40143,
  HelpOptionNoBackup = 40144,
  HelpInterrupt = 40145,
  HelpEncoding = 40146,
  HelpExitCodes = 40147,
  HelpExitDone = 40148,
  HelpExitLeft = 40149,
  HelpExitUsage = 40150,
  HelpExitFailed = 40151,
  HelpOptionForeign = 40152,
  HelpExitInterrupted = 40153,

  // The console program's command that removes what this program has stored
  HelpPurge = 40160,
  BackupsThatGo = 40161,   // Argument: their number. Said before anything is removed, as are the next two.
  SettingsThatGo = 40162,  // Argument: the key.
  WhatStays = 40163,       // Argument: the backup folder.
  NothingPurgedWithoutYes = 40164,
  SettingsNotRemoved = 40165,  // Argument: the key.
};

struct TTextEntry {
  TextId Id;
  int Placeholders;  // how many of "%s" and "%s2" the text holds: 0, 1 (only "%s") or 2 (both)
};

// One entry for each TextId, in the same order.
inline constexpr auto kTextIds = std::to_array<TTextEntry>({
    {TextId::MenuFile, 0},
    {TextId::ButtonView, 0},
    {TextId::MenuHelp, 0},
    {TextId::ActionExit, 0},
    {TextId::ColumnSize, 0},
    {TextId::ButtonOk, 0},
    {TextId::ButtonCancel, 0},
    {TextId::ButtonClose, 0},
    {TextId::ActionHomePage, 0},
    {TextId::ActionAbout, 0},
    {TextId::ActionExport, 0},
    {TextId::GroupTasks, 0},
    {TextId::ActionHelpContents, 0},
    {TextId::ColumnCreationDate, 0},
    {TextId::ButtonRemove, 0},
    {TextId::ActionRecommend, 0},
    {TextId::TitleConfirm, 0},
    {TextId::TitleInformation, 0},
    {TextId::ActionUpgrade, 0},
    {TextId::ProgramTitle, 0},
    {TextId::GroupSections, 0},
    {TextId::MenuAction, 0},
    {TextId::ActionScan, 0},
    {TextId::ActionRepair, 0},
    {TextId::ActionRestore, 0},
    {TextId::MenuTools, 0},
    {TextId::RepairFinalMessage, 0},
    {TextId::ConfirmIgnore, 0},
    {TextId::ReportSaved, 0},
    {TextId::Summary, 0},
    {TextId::OneProblemFound, 0},
    {TextId::ProblemsFound, 1},
    {TextId::OneProblemSelected, 0},
    {TextId::ProblemsSelected, 1},
    {TextId::NoProblemFound, 0},
    {TextId::NoProblemSelected, 0},
    {TextId::HeaderCount, 1},
    {TextId::HeaderScanning, 0},
    {TextId::RowLocation, 0},
    {TextId::RowAction, 0},
    {TextId::ButtonOpenInRegedit, 0},
    {TextId::TipOpenInRegedit, 0},
    {TextId::ChoiceRepair, 0},
    {TextId::ChoiceDoNotRepair, 0},
    {TextId::ChoiceIgnore, 0},
    {TextId::ButtonProperties, 0},
    {TextId::TipProperties, 0},
    {TextId::ChoiceRepairFile, 0},
    {TextId::ChoiceDoNotRepairFile, 0},
    {TextId::ScanComplete, 0},
    {TextId::ButtonRepair, 0},
    {TextId::InviteRepair, 0},
    {TextId::RepairComplete, 0},
    {TextId::ScanningSection, 0},
    {TextId::RepairingSection, 0},
    {TextId::ButtonRestore, 0},
    {TextId::RestoreInstruction, 0},
    {TextId::BackupRowPrefix, 0},
    {TextId::ConfirmRestore, 1},
    {TextId::RestoreDone, 1},
    {TextId::MissingFileOfValue, 2},
    {TextId::MissingProgId, 1},
    {TextId::EmptyKey, 0},
    {TextId::BrokenClassLink, 1},
    {TextId::MissingIcon, 1},
    {TextId::BrokenVerb, 2},
    {TextId::VerbWithoutCommand, 0},
    {TextId::HandlerWithoutClass, 0},
    {TextId::MissingInProcessServer, 1},
    {TextId::MissingLocalServer, 1},
    {TextId::BrokenTypeLibraryLink, 1},
    {TextId::InvalidTypeLibraryHelpFolder, 1},
    {TextId::EmptyTypeLibraryKey, 1},
    {TextId::MissingTypeLibraryFile, 1},
    {TextId::MissingApplicationFile, 1},
    {TextId::MissingFontFile, 2},
    {TextId::MissingHelpFile, 2},
    {TextId::MissingSharedFile, 1},
    {TextId::UnusedSharedFile, 1},
    {TextId::MissingServiceFile, 1},
    {TextId::MissingRecentFile, 2},
    {TextId::MissingStartMenuFolder, 1},
    {TextId::MissingStartupProgram, 2},
    {TextId::NoUninstaller, 0},
    {TextId::MissingUninstaller, 1},
    {TextId::MissingShellFolder, 2},
    {TextId::DeletingKey, 0},
    {TextId::DeletingValue, 0},
    {TextId::DeletingFile, 0},
    {TextId::IgnoreListManager, 0},
    {TextId::IgnoreListExplanation, 1},
    {TextId::ColumnIgnoredEntry, 0},
    {TextId::TitleError, 0},
    {TextId::ScanFailed, 1},
    {TextId::CatalogueUnreadable, 1},
    {TextId::RepairFailedBeforeDeletion, 1},
    {TextId::BackupNotVerified, 0},
    {TextId::RepairFailed, 1},
    {TextId::MaintenanceFailed, 1},
    {TextId::ReportNotSaved, 1},
    {TextId::BackupsNotListed, 1},
    {TextId::BackupMissing, 1},
    {TextId::BackupDamaged, 1},
    {TextId::BackupUnreadable, 2},
    {TextId::BackupNotRemoved, 2},
    {TextId::RestoreIncomplete, 1},
    {TextId::LinesSkipped, 1},
    {TextId::EntriesNotWritten, 1},
    {TextId::EntriesNotSaved, 1},
    {TextId::EntriesNotDeleted, 1},
    {TextId::HintScan, 0},
    {TextId::AboutVersion, 1},
    {TextId::AboutPurpose, 0},
    {TextId::ActionModifyProperties, 0},
    {TextId::ActionBackupEntry, 0},
    {TextId::ActionRemoveEntry, 0},
    {TextId::ActionShowCommandLine, 0},
    {TextId::ActionRefresh, 0},
    {TextId::ColumnProblems, 0},
    {TextId::ConfirmOverwrite, 1},
    {TextId::ActionCheckRow, 0},
    {TextId::ActionUncheckRow, 0},
    {TextId::UseThe64BitProgram, 0},
    {TextId::BackupsInUse, 1},
    {TextId::BackupFolderIsLink, 1},
    {TextId::ChangesNotListed, 1},
    {TextId::NothingRestored, 1},
    {TextId::BackupNotSupported, 1},
    {TextId::BackupForeign, 2},
    {TextId::BackupNotWhole, 0},
    {TextId::RestoreAnyway, 0},
    {TextId::SkippedLine, 2},
    {TextId::MoreSkippedLines, 1},
    {TextId::AttributesNotWritten, 1},
    {TextId::UseForeign, 0},
    {TextId::RestoreStopped, 2},
    {TextId::NoCommand, 0},
    {TextId::UnknownCommand, 1},
    {TextId::UnknownOption, 1},
    {TextId::UnexpectedArgument, 1},
    {TextId::OptionGivenTwice, 1},
    {TextId::OptionNeedsValue, 1},
    {TextId::NoSuchSection, 1},
    {TextId::ReportNeedsFile, 0},
    {TextId::ReportAndJsonDiffer, 0},
    {TextId::RestoreNeedsName, 0},
    {TextId::IgnoreNeedsWords, 0},
    {TextId::RepairNeedsNoBackup, 0},
    {TextId::HelpHint, 0},
    {TextId::BackupMadeAllTheSame, 0},
    {TextId::ScanCancelled, 0},
    {TextId::NothingDeleted, 0},
    {TextId::NothingDeletedWithoutYes, 0},
    {TextId::BackupNamed, 1},
    {TextId::EntriesRepaired, 1},
    {TextId::EntriesNotReached, 1},
    {TextId::IgnoreListNotStored, 0},
    {TextId::NoSuchIgnoreEntry, 1},
    {TextId::HelpTitle, 0},
    {TextId::HelpSections, 0},
    {TextId::HelpScan, 0},
    {TextId::HelpRepair, 0},
    {TextId::HelpBackups, 0},
    {TextId::HelpRestore, 0},
    {TextId::HelpIgnore, 0},
    {TextId::HelpHelp, 0},
    {TextId::HelpVersion, 0},
    {TextId::HelpOptionSections, 0},
    {TextId::HelpOptionReport, 0},
    {TextId::HelpOptionJson, 0},
    {TextId::HelpOptionQuiet, 0},
    {TextId::HelpOptionYes, 0},
    {TextId::HelpOptionNoBackup, 0},
    {TextId::HelpInterrupt, 0},
    {TextId::HelpEncoding, 0},
    {TextId::HelpExitCodes, 0},
    {TextId::HelpExitDone, 0},
    {TextId::HelpExitLeft, 0},
    {TextId::HelpExitUsage, 0},
    {TextId::HelpExitFailed, 0},
    {TextId::HelpOptionForeign, 0},
    {TextId::HelpExitInterrupted, 0},
    {TextId::HelpPurge, 0},
    {TextId::BackupsThatGo, 1},
    {TextId::SettingsThatGo, 1},
    {TextId::WhatStays, 1},
    {TextId::NothingPurgedWithoutYes, 0},
    {TextId::SettingsNotRemoved, 1},
});

}  // namespace corvalt
