#include "platform/memory/memoryregistry.h"

#include <string>

#include "platform/memory/memoryregistrystore.h"

namespace corvalt {

namespace {

std::string HexOf(const TBytes& bytes) {
  constexpr char kDigits[] = "0123456789abcdef";
  std::string text;
  for (const std::uint8_t byte : bytes) {
    text.push_back(kDigits[byte >> 4]);
    text.push_back(kDigits[byte & 15]);
  }
  return text;
}

// Units rather than UTF-8, so that ill-formed names differ in a dump.
std::string Escaped(TextView text) {
  std::string escaped;
  for (const char16_t unit : text) {
    if (unit >= 0x20 && unit < 0x7F) {
      escaped.push_back(static_cast<char>(unit));
    } else {
      escaped.append("<").append(std::to_string(unit)).append(">");
    }
  }
  return escaped;
}

std::string RightsText(TMemoryRights rights) {
  switch (rights) {
    case TMemoryRights::NoSubKeys:
      return " no subkeys";
    case TMemoryRights::Read:
      return " read only";
    case TMemoryRights::Nothing:
      return " denied";
    default:
      return {};
  }
}

class TDump {
 public:
  TDump(const TMemoryHives& hives, TDumpDetail detail) : m_hives(hives), m_detail(detail) {
  }

  void Add(const TOpenMemoryKey& key, const std::string& path) {
    const TMemoryKey& own = *key.Key;
    m_lines.push_back("[" + path + "]" + (own.IsLink ? " link" : "") + RightsText(own.Rights));
    if (m_detail == TDumpDetail::Attributes) {
      m_lines.push_back(path + " class " + Escaped(own.ClassName) + (own.IsVolatile ? " volatile" : "") +
                        " security " + HexOf(own.Security) + " time " + std::to_string(own.LastWrite));
    }
    for (const TRawValue* value : m_hives.OrderedValues(key)) {
      m_lines.push_back(path + " | " + Escaped(value->Name) + " = " + std::to_string(value->Type) + ":" +
                        HexOf(value->Data));
    }
    for (const Text& name : m_hives.SubKeyNames(key))
      Add(m_hives.Find(key, {name}, false), path + "\\" + Escaped(name));
  }

  std::vector<std::string> Lines() && {
    return std::move(m_lines);
  }

 private:
  const TMemoryHives& m_hives;
  TDumpDetail m_detail;
  std::vector<std::string> m_lines;
};

struct TFullPath {
  explicit TFullPath(TextView fullPath) {
    const std::size_t rootEnd = fullPath.find(u'\\');
    RootKey = RootKeyFromName(fullPath.substr(0, rootEnd));
    Names = ParseKeyPath(rootEnd == TextView::npos ? TextView() : fullPath.substr(rootEnd))->Names;
  }
  TRootKey RootKey;
  std::vector<Text> Names;
};

}  // namespace

std::unique_ptr<RegistryStore> TMemoryRegistry::CreateStore(TRegistryAccess access) {
  return std::make_unique<TMemoryRegistryStore>(*this, access);
}

void TMemoryRegistry::Note(std::string_view what, TextView path) const {
  if (m_journal != nullptr)
    m_journal->Add(std::string(what) + " " + EncodeUtf8(path));
}

TOpenMemoryKey TMemoryRegistry::Open(TextView fullPath) const {
  const TFullPath path(fullPath);
  return m_hives.Find(m_hives.Root(path.RootKey), path.Names, false);
}

TMemoryKey& TMemoryRegistry::Make(TextView fullPath) {
  const TFullPath path(fullPath);
  TMemoryKeyPointer key = m_hives.Find(m_hives.Root(path.RootKey), path.Names, true).Key;
  if (!key)
    key = m_hives.Build(m_hives.Root(path.RootKey), path.Names);
  return *key;
}

void TMemoryRegistry::AddKey(TextView fullPath) {
  Make(fullPath);
}

void TMemoryRegistry::Set(TextView fullPath, TextView name, TextView text) {
  SetRaw(fullPath, {Text(name), kRegSz, StringBytes(text)});
}

void TMemoryRegistry::SetExpand(TextView fullPath, TextView name, TextView text) {
  SetRaw(fullPath, {Text(name), kRegExpandSz, StringBytes(text)});
}

void TMemoryRegistry::SetInteger(TextView fullPath, TextView name, std::uint32_t value) {
  SetRaw(fullPath, {Text(name), kRegDword, IntegerBytes(value)});
}

void TMemoryRegistry::SetRaw(TextView fullPath, const TRawValue& value) {
  m_hives.WriteValue(Make(fullPath), value);
}

void TMemoryRegistry::RemoveKey(TextView fullPath) {
  if (const TOpenMemoryKey key = Open(fullPath))
    m_hives.Delete(key.Key);
}

void TMemoryRegistry::Deny(TextView fullPath) {
  LetUse(fullPath, TMemoryRights::Nothing);
}

void TMemoryRegistry::LetUse(TextView fullPath, TMemoryRights rights) {
  Make(fullPath).Rights = rights;
}

void TMemoryRegistry::MakeLink(TextView fullPath, TextView targetFullPath) {
  Make(targetFullPath);
  const TMemoryKeyPointer target = Open(targetFullPath).Key;
  TMemoryKey& link = Make(fullPath);
  link.IsLink = true;
  link.LinkTarget = target;
}

void TMemoryRegistry::FailListing(TextView fullPath) {
  Make(fullPath).ListingFails = true;
}

void TMemoryRegistry::SetClass(TextView fullPath, TextView className) {
  Make(fullPath).ClassName = Text(className);
}

void TMemoryRegistry::MakeVolatile(TextView fullPath) {
  Make(fullPath).IsVolatile = true;
}

void TMemoryRegistry::SetSecurity(TextView fullPath, const TBytes& descriptor) {
  Make(fullPath).Security = descriptor;
}

void TMemoryRegistry::SetLastWrite(TextView fullPath, std::uint64_t time) {
  Make(fullPath).LastWrite = time;
}

bool TMemoryRegistry::HasKey(TextView fullPath) const {
  return static_cast<bool>(Open(fullPath));
}

const TMemoryKey* TMemoryRegistry::KeyAt(TextView fullPath) const {
  return Open(fullPath).Key.get();
}

const TRawValue* TMemoryRegistry::FindValue(TextView fullPath, TextView name) const {
  const TOpenMemoryKey key = Open(fullPath);
  return key ? TMemoryHives::FindValue(key, name) : nullptr;
}

bool TMemoryRegistry::HasValue(TextView fullPath, TextView name) const {
  return FindValue(fullPath, name) != nullptr;
}

std::vector<std::string> TMemoryRegistry::Dump(TextView fullPath, TDumpDetail detail) const {
  TDump dump(m_hives, detail);
  if (const TOpenMemoryKey key = Open(fullPath))
    dump.Add(key, Escaped(fullPath));
  return std::move(dump).Lines();
}

}  // namespace corvalt
