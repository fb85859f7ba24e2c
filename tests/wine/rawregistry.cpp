// Reads and fills the registry for the tests of the repair, with the system's plain calls and nothing of the
// program's own:
//   wine_rawregistry dump KEY...    every key and value below, one a line, names and data in hexadecimal
//   wine_rawregistry fill COUNT     COUNT problems of two sections, their keys full of odd values

#include <string>
#include <vector>

#include "platform/windows/windowsapi.h"

namespace corvalt {

namespace {

constexpr int kDone = 0;
constexpr int kWrongUsage = 2;
constexpr int kRefused = 3;
constexpr DWORD kLongestName = 16384;

// In UTF-8 where it is plain ASCII, so that a person finds a key again, and unit by unit elsewhere.
std::string NameText(const wchar_t* name, DWORD length) {
  std::string text;
  for (DWORD i = 0; i < length; ++i) {
    const auto unit = static_cast<unsigned>(name[i]);
    if (unit > 0x20 && unit < 0x7F && unit != '%')
      text.push_back(static_cast<char>(unit));
    else
      text += "%" + std::to_string(unit) + ";";
  }
  return text;
}

std::string Hex(const std::vector<BYTE>& data, DWORD size) {
  constexpr char kDigits[] = "0123456789abcdef";
  std::string text;
  for (DWORD i = 0; i < size; ++i) {
    text.push_back(kDigits[data[i] >> 4]);
    text.push_back(kDigits[data[i] & 15]);
  }
  return text;
}

// Whether an enumeration ended at its end; says where it did not. The texts of the performance counters look
// like a key and are none.
bool Complete(LSTATUS status, const std::string& path) {
  const bool isPseudoKey = status == ERROR_INVALID_HANDLE && path.find("\\Perflib\\") != std::string::npos;
  if (status == ERROR_NO_MORE_ITEMS || isPseudoKey)
    return true;
  const std::string line = path + " can't be read whole: " + std::to_string(status) + "\n";
  DWORD written = 0;
  WriteFile(GetStdHandle(STD_ERROR_HANDLE), line.data(), static_cast<DWORD>(line.size()), &written, nullptr);
  return false;
}

bool DumpValues(HKEY key, const std::string& path, std::string& out) {
  std::vector<wchar_t> name(kLongestName);
  std::vector<BYTE> data(1024);
  for (DWORD i = 0;;) {
    DWORD nameLength = kLongestName;
    DWORD size = static_cast<DWORD>(data.size());
    DWORD type = 0;
    const LSTATUS status =
        RegEnumValueW(key, i, name.data(), &nameLength, nullptr, &type, data.data(), &size);
    if (status == ERROR_MORE_DATA) {
      data.resize(data.size() * 4);
      continue;
    }
    if (status != ERROR_SUCCESS)
      return Complete(status, path);
    out += path + "\t" + NameText(name.data(), nameLength) + "\t" + std::to_string(type) + "\t" +
           Hex(data, size) + "\n";
    ++i;
  }
}

bool Dump(HKEY parent, const wchar_t* name, const std::string& path, std::string& out) {
  HKEY key = nullptr;
  const LSTATUS opened = RegOpenKeyExW(parent, name, REG_OPTION_OPEN_LINK, KEY_READ, &key);
  if (opened != ERROR_SUCCESS) {
    out += path + "\tnot opened: " + std::to_string(opened) + "\n";
    return true;
  }
  out += path + "\n";
  bool complete = DumpValues(key, path, out);
  std::vector<wchar_t> child(kLongestName);
  LSTATUS status = ERROR_SUCCESS;
  for (DWORD i = 0; complete && status == ERROR_SUCCESS; ++i) {
    DWORD length = kLongestName;
    status = RegEnumKeyExW(key, i, child.data(), &length, nullptr, nullptr, nullptr, nullptr);
    if (status == ERROR_SUCCESS)
      complete = Dump(key, child.data(), path + "\\" + NameText(child.data(), length), out);
  }
  RegCloseKey(key);
  return complete && Complete(status, path);
}

HKEY RootOf(const std::wstring& name) {
  if (name == L"HKLM")
    return HKEY_LOCAL_MACHINE;
  return name == L"HKU" ? HKEY_USERS : HKEY_CURRENT_USER;
}

int DumpAll(int count, wchar_t** keys) {
  std::string out;
  for (int i = 0; i < count; ++i) {
    const std::wstring full = keys[i];
    const std::size_t end = full.find(L'\\');
    const std::wstring rest = end == std::wstring::npos ? std::wstring() : full.substr(end + 1);
    const std::string path = NameText(full.c_str(), static_cast<DWORD>(full.size()));
    if (!Dump(RootOf(full.substr(0, end)), rest.c_str(), path, out))
      return kRefused;
  }
  DWORD written = 0;
  const HANDLE output = GetStdHandle(STD_OUTPUT_HANDLE);
  const auto size = static_cast<DWORD>(out.size());
  return WriteFile(output, out.data(), size, &written, nullptr) && written == size ? kDone : kRefused;
}

struct TOddValue {
  std::wstring Name;
  DWORD Type;
  std::vector<BYTE> Data;
};

std::vector<TOddValue> OddValues() {
  return {
      {L"Order", REG_BINARY, {0}},
      {L"", REG_SZ, {'d', 0, 0, 0}},
      {L"none", REG_NONE, {}},
      {L"empty string", REG_SZ, {}},
      {L"unterminated", REG_SZ, {'a', 0, 'b', 0}},
      {L"odd", REG_EXPAND_SZ, {'a', 0, 'b'}},
      {L"nul inside", REG_SZ, {'a', 0, 0, 0, 'b', 0, 0, 0}},
      {L"short integer", REG_DWORD, {1, 2, 3}},
      {L"integer", REG_DWORD, {1, 2, 3, 4}},
      {L"big endian", REG_DWORD_BIG_ENDIAN, {0, 0, 0, 1}},
      {L"several", REG_MULTI_SZ, {'a', 0, 0, 0, 0, 0, 'b', 0, 0, 0, 0, 0}},
      {L"resources", REG_RESOURCE_LIST, {1, 2, 3}},
      {L"64 bits", REG_QWORD, {1, 2, 3, 4, 5, 6, 7, 8}},
      {L"unknown", 0xFEDCBA98, {9, 8, 7}},
      {L"line\nbreak = \"[x]\" \\", REG_SZ, {'x', 0, 0, 0}},
      {L"\x4E2D\xD800", REG_SZ, {0x2D, 0x4E, 0x00, 0xD8, 0, 0}},
  };
}

bool FillKey(const std::wstring& path, const std::vector<TOddValue>& values) {
  HKEY key = nullptr;
  if (RegCreateKeyExW(HKEY_CURRENT_USER, path.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key,
                      nullptr) != ERROR_SUCCESS)
    return false;
  bool written = true;
  for (const TOddValue& value : values) {
    // Behind a string that lacks its end no zero may follow, or the system would store it too.
    std::vector<BYTE> data = value.Data;
    data.insert(data.end(), 2, 0xFF);
    written = RegSetValueExW(key, value.Name.c_str(), 0, value.Type, data.data(),
                             static_cast<DWORD>(value.Data.size())) == ERROR_SUCCESS &&
              written;
  }
  RegCloseKey(key);
  return written;
}

int Fill(int count) {
  const std::wstring menu =
      L"Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\MenuOrder\\Start Menu2\\Programs\\Corvalt "
      L"Kill ";
  const std::vector<TOddValue> odd = OddValues();
  std::vector<BYTE> gone;
  for (const wchar_t unit : std::wstring(L"C:\\Corvalt\\gone.exe"))
    gone.insert(gone.end(), {static_cast<BYTE>(unit), 0});
  for (int i = 0; i < count; i += 2) {
    const std::wstring number = std::to_wstring(i);
    if (!FillKey(menu + number, odd) ||
        !FillKey(L"Software\\Corvalt Kill\\" + number, {{L"File", REG_SZ, gone}}))
      return kRefused;
  }
  return kDone;
}

int RunTool(int count, wchar_t** arguments) {
  const std::wstring mode = count > 2 ? arguments[1] : L"";
  if (mode == L"dump")
    return DumpAll(count - 2, arguments + 2);
  if (mode == L"fill")
    return Fill(std::stoi(arguments[2]));
  return kWrongUsage;
}

}  // namespace

}  // namespace corvalt

int wmain(int count, wchar_t** arguments) {
  return corvalt::RunTool(count, arguments);
}
