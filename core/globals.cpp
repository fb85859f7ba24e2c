#include "core/globals.h"

#include <algorithm>

#include "base/devicenames.h"
#include "base/lettercase.h"
#include "core/datafiles.h"
#include "core/settings.h"
#include "core/settingskeys.h"
#include "formats/inifile.h"
#include "system/openkey.h"

namespace corvalt {

namespace {

constexpr std::size_t kSystemDirectoryBuffer = 261;
constexpr std::size_t kDriveStringsBuffer = 129;
constexpr TextView kBackupsMaxValue = u"BackupsMax";
constexpr TextView kBackupsDeleteValue = u"BackupsDelete";
constexpr std::int32_t kDefaultBackupsMax = 60;
constexpr std::int32_t kDefaultBackupsDelete = 1;
constexpr TextView kShellFoldersKey =
    u"\\Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders";

bool LacksFolderVariables(const TGlobalVars& vars) {
  return vars.WindowsVersionName == u"98" || vars.WindowsVersionName == u"me";
}

// Asks for environment variables, with the defaults of the Windows versions that don't set them.
class TVariables {
 public:
  TVariables(FileSystemProbe& probe, const TGlobalVars& vars)
      : m_probe(probe), m_defaultsApply(LacksFolderVariables(vars)) {
  }

  Text Get(TextView name) const {
    return m_probe.GetEnvironmentVariable(name);
  }
  Text Get(TextView name, const Text& defaultValue) const {
    Text value = Get(name);
    return value.empty() && m_defaultsApply ? defaultValue : value;
  }

 private:
  FileSystemProbe& m_probe;
  bool m_defaultsApply;
};

void FillVersion(TSystem& system, TGlobalVars& vars) {
  const TSystemVersion version = system.Machine.GetVersion();
  vars.WindowsMajorVersion = static_cast<std::int32_t>(version.Major);
  vars.WindowsVersionName = WindowsVersionNameOf(version);
}

void FillMachineFolders(TSystem& system, TGlobalVars& vars) {
  const TVariables variables(system.Probe, vars);
  vars.WindowsFolder = variables.Get(u"windir");
  const Text windows = WithTrailingBackslash(vars.WindowsFolder);
  const Text programFiles = vars.WindowsFolder.substr(0, 1) + u":\\program files";
  vars.AppDataFolder = variables.Get(u"APPDATA", windows + u"Application Data");
  vars.ProgramFilesFolder = variables.Get(u"ProgramFiles", programFiles);
  vars.CommonFilesFolder = variables.Get(u"CommonProgramFiles", programFiles + u"\\Common Files");
  vars.TempFolder = variables.Get(u"TEMP");
  vars.SystemFolder = system.Machine.GetSystemDirectory(kSystemDirectoryBuffer);
  vars.AllUsersFolder = variables.Get(u"ALLUSERSPROFILE", windows + u"All Users");
  vars.UserProfileFolder = variables.Get(u"USERPROFILE", windows);
}

// The values of the shell folder key of one root, "Common " before the names of those for all users.
void FillShellFolders(TSystem& system, TRootKey rootKey, const Text& prefix, const Text& profileFolder,
                      Text& startup, Text& startMenu, Text& programs) {
  const std::unique_ptr<RegistryStore> store = system.Registry.CreateStore(TRegistryAccess::Read);
  store->SetRootKey(rootKey);
  const TOpenKey key(*store, kShellFoldersKey);
  const auto read = [&](TextView name, TextView defaultFolder) {
    Text folder = store->ReadString(prefix + Text(name));
    return folder.empty() ? WithTrailingBackslash(profileFolder).append(defaultFolder) : folder;
  };
  startup = read(u"Startup", u"Start Menu\\Programs\\Startup\\");
  startMenu = read(u"Start Menu", u"Start Menu\\");
  programs = read(u"Programs", u"Start Menu\\Programs\\");
}

void MakeLongWithBackslash(TSystem& system, TGlobalVars& vars) {
  for (Text* folder :
       {&vars.AppDataFolder, &vars.ProgramFilesFolder, &vars.CommonFilesFolder, &vars.WindowsFolder,
        &vars.TempFolder, &vars.SystemFolder, &vars.AllUsersFolder, &vars.UserProfileFolder,
        &vars.StartupFolder, &vars.CommonStartupFolder, &vars.StartMenuFolder, &vars.CommonStartMenuFolder,
        &vars.ProgramsFolder, &vars.CommonProgramsFolder}) {
    *folder = WithTrailingBackslash(system.Probe.GetLongPathName(*folder).value_or(*folder));
  }
}

void FillFolders(TSystem& system, TGlobalVars& vars) {
  vars.ProgramFolder = FolderOf(system.Machine.ProgramFile());
  FillMachineFolders(system, vars);
  FillShellFolders(system, kHkeyCurrentUser, {}, vars.UserProfileFolder, vars.StartupFolder,
                   vars.StartMenuFolder, vars.ProgramsFolder);
  FillShellFolders(system, kHkeyLocalMachine, u"Common ", vars.AllUsersFolder, vars.CommonStartupFolder,
                   vars.CommonStartMenuFolder, vars.CommonProgramsFolder);
  MakeLongWithBackslash(system, vars);
  if (sizeof(void*) == 8)
    vars.SysWow64Folder = vars.WindowsFolder + u"SysWOW64\\";
}

// The parts of text between separators that are not empty.
std::vector<Text> NonEmptyParts(TextView text, char16_t separator) {
  std::vector<Text> parts;
  while (!text.empty()) {
    const std::size_t end = text.find(separator);
    if (end != 0)
      parts.emplace_back(text.substr(0, end));
    text.remove_prefix(end == TextView::npos ? text.size() : end + 1);
  }
  return parts;
}

void FillSearchFolders(TSystem& system, TGlobalVars& vars) {
  vars.SearchFolders = NonEmptyParts(system.Probe.GetEnvironmentVariable(u"Path"), u';');
  vars.SearchFolders.push_back(vars.WindowsFolder);
  vars.SearchFolders.push_back(vars.SystemFolder);
  vars.SearchFolders.push_back(vars.ProgramFilesFolder + u"Internet Explorer");
}

void FillFixedDrives(TSystem& system, TGlobalVars& vars) {
  Text roots;
  if (system.Probe.GetLogicalDriveStrings(kDriveStringsBuffer, roots) > kDriveStringsBuffer)
    throw TSystemException({kErrorOutOfMemory});
  vars.FixedDrives.clear();
  for (const Text& root : NonEmptyParts(roots, u'\0')) {
    if (system.Probe.GetDriveType(root) == kDriveFixed)
      vars.FixedDrives += UpperCase(root) + u";";
  }
}

void FillSkin(TSystem& system, TGlobalVars& vars) {
  const std::unique_ptr<RegistryStore> store = system.Registry.CreateStore(TRegistryAccess::Read);
  const TOpenKey key(*store, kSuiteKey);
  vars.SkinPath = store->ReadString(kSkinValue);
}

// The folder above a folder; a root is above itself.
Text ParentFolder(const Text& folder) {
  Text parent = FolderOf(TextView(folder).substr(0, folder.empty() ? 0 : folder.size() - 1));
  return parent.empty() ? folder : parent;
}

// Whether a path names a device: by its form ("\\\\.\\"), or by one of its names.
bool NamesDevice(TextView path) {
  const std::vector<Text> names = NonEmptyParts(path, u'\\');
  return path.starts_with(u"\\\\.\\") || std::any_of(names.begin(), names.end(), IsDeviceName);
}

// The data path of the portable mode as its file gives it; a relative one lies in the program's folder. Empty
// for one that can't name a folder: a device, or a folder relative to a drive's current one ("D:data").
Text DataPathOf(const Text& written, const Text& programFolder) {
  // Windows takes "/" for a separator too.
  Text given = ReplaceAll(written, u"/", u"\\");
  const bool hasDrive = given.size() > 1 && given[1] == u':';
  if (given.empty() || NamesDevice(given) || (hasDrive && !given.substr(2).starts_with(u'\\')))
    return {};
  if (hasDrive || given.starts_with(u"\\\\"))
    return given;
  // "\data" begins at the root of the program's drive.
  return given.starts_with(u'\\') ? programFolder.substr(0, 2) + given : programFolder + given;
}

void FillPortableMode(TSystem& system, TGlobalVars& vars, Text& dataPath) {
  vars.IsPortable = false;
  const auto bytes = ReadDataFile(system.Files, vars.ProgramFolder + u"settings.ini");
  if (!bytes)
    return;
  const TIniFile settings = TIniFile::FromBytes(*bytes, system.Locale);
  // The profile calls know no booleans: the suite's programs write 1 and read "not zero".
  const Text type = settings.Read(u"Portable", u"Type").value_or(Text());
  if (ParseInteger(type).value_or(0) == 0)
    return;
  vars.IsPortable = true;
  dataPath = DataPathOf(settings.Read(u"Portable", u"DataPath").value_or(Text()), vars.ProgramFolder);
  if (dataPath.empty())
    dataPath = ParentFolder(vars.ProgramFolder) + u"data\\common\\Administrator\\";
  dataPath = WithTrailingBackslash(dataPath);
}

void WriteWhereMissing(RegistryStore& store, TextView name, std::int32_t defaultValue) {
  if (!store.ValueExists(name))
    store.WriteInteger(name, defaultValue);
}

void FillBackupLimits(TSystem& system, TGlobalVars& vars) {
  const std::unique_ptr<RegistryStore> store = system.Registry.CreateStore(TRegistryAccess::Full);
  if (const TOpenKey key(*store, kSuiteSettingsKey, true); key) {
    WriteWhereMissing(*store, kBackupsMaxValue, kDefaultBackupsMax);
    WriteWhereMissing(*store, kBackupsDeleteValue, kDefaultBackupsDelete);
  }
  vars.BackupsMax = StoredInteger(system, kSuiteSettingsKey, kBackupsMaxValue).value_or(kDefaultBackupsMax);
  vars.BackupsDelete =
      StoredInteger(system, kSuiteSettingsKey, kBackupsDeleteValue).value_or(kDefaultBackupsDelete);
}

void FillSuiteSettings(TSystem& system, TGlobalVars& vars) {
  Text dataPath = vars.AppDataFolder;
  FillPortableMode(system, vars, dataPath);
  vars.SuiteDataFolder = dataPath + u"TessalySoft\\";
  vars.SuiteBackupsFolder = dataPath + u"TessalySoft\\Tessaly Utilities\\Backups\\";
  FillBackupLimits(system, vars);
}

}  // namespace

Text WindowsVersionNameOf(const TSystemVersion& version) {
  switch (version.Major) {
    case 3:
      return u"nt3.51";
    case 4:
      if (version.Minor == 0)
        return version.Is95Family ? u"95" : u"nt4.0";
      return version.Minor == 10 ? u"98" : version.Minor == 90 ? u"me" : u"";
    case 5:
      return version.Minor == 0 ? u"2000" : version.Minor == 1 ? u"xp" : u"";
    case 6:
      return u"vista";
    default:
      return {};
  }
}

void FillGlobalVars(TSystem& system, TGlobalVars& vars) {
  FillVersion(system, vars);
  FillFolders(system, vars);
  FillSearchFolders(system, vars);
  FillFixedDrives(system, vars);
  vars.LanguageName = LoadLanguage(system, vars.ProgramFolder, vars.Texts);
  FillSkin(system, vars);
  FillSuiteSettings(system, vars);
}

}  // namespace corvalt
