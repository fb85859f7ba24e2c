#include "tests/support/nastyregistry.h"

#include <algorithm>
#include <array>
#include <random>
#include <set>

#include "base/lettercase.h"
#include "base/limits.h"
#include "platform/memory/memoryregistry.h"

namespace corvalt {

namespace {

constexpr std::size_t kValuesAKey = 12;         // on average
constexpr std::size_t kLongestMadePath = 1500;  // units
constexpr std::size_t kBigData = 2 * 1024 * 1024;
constexpr std::size_t kValuesABigOne = 40000;  // values that one of 2 MiB stands for

class TNastyMaker {
 public:
  explicit TNastyMaker(std::uint64_t seed) : m_random(seed) {
  }

  std::vector<TNastyKey> Tree(std::size_t values, TextView topPath) {
    std::vector<TNastyKey> tree;
    tree.push_back({Text(topPath), {}});
    m_paths.insert(tree.back().Path);
    for (std::size_t made = 0; made < values;) {
      const std::size_t count = std::min<std::size_t>(Below(2 * kValuesAKey), values - made);
      tree.back().Values = Values(count);
      made += count;
      tree.push_back({NewPath(tree), {}});
    }
    return tree;
  }

 private:
  std::size_t Below(std::size_t limit) {
    return static_cast<std::size_t>(m_random() % limit);
  }
  bool Chance(std::size_t oneIn) {
    return Below(oneIn) == 0;
  }

  // Often below the newest key, so that the tree grows deep.
  Text NewPath(const std::vector<TNastyKey>& tree) {
    for (;;) {
      const Text& parent = Chance(3) ? tree.back().Path : tree[Below(tree.size())].Path;
      Text path = parent + u"\\";
      path += Name(kLongestKeyName, true);
      if (path.size() < kLongestMadePath && m_paths.insert(path).second)
        return path;
    }
  }

  char16_t Unit() {
    static constexpr TextView kSpecial = u"\"\\[]=@;,-: \t#%'+(){}";
    switch (Below(9)) {
      case 0:
        return kSpecial[Below(kSpecial.size())];
      case 1:
        return static_cast<char16_t>(0xA0 + Below(0x60));  // in most western code pages
      case 2:
        return static_cast<char16_t>(0x400 + Below(0x100));
      case 3:
        return static_cast<char16_t>(0xD800 + Below(0x800));  // a surrogate, mostly without its pair
      case 4:
        return static_cast<char16_t>(1 + Below(0x9F));  // control characters too
      case 5:
        return static_cast<char16_t>(1 + Below(0xFFFF));
      default:
        return static_cast<char16_t>(u'a' + Below(26));
    }
  }

  char16_t PlainUnit() {
    static constexpr TextView kPlain = u"abcdefghijklmnopqrstuvwxyz ABC0123456789\"\\[]=@;,-:äöüß€";
    return kPlain[Below(kPlain.size())];
  }

  Text Units(std::size_t count, bool plain) {
    Text text;
    for (std::size_t i = 0; i < count; ++i)
      text.push_back(plain ? PlainUnit() : Unit());
    return text;
  }

  Text Name(std::size_t longest, bool ofKey) {
    static constexpr std::array<TextView, 14> kTricky = {
        u"@",    u"=",          u"\"",       u"a\r\nb", u"\n",   u" both ", u"-",
        u"hex:", u"dword:0001", u";comment", u"]",      u"x]y[", u"+",      u"a\tb"};
    Text name = Chance(3)    ? Text(kTricky[Below(kTricky.size())])
                : Chance(40) ? Units(longest, Chance(2))
                             : Units(1 + Below(20), !Chance(3));
    if (!Chance(4) && name.size() + 6 < longest)
      name += DecimalText(static_cast<std::int64_t>(Below(100000)));
    if (ofKey)
      std::replace(name.begin(), name.end(), u'\\', u'/');
    return name;
  }

  std::vector<TRawValue> Values(std::size_t count) {
    std::set<Text, TLessIgnoringCase> names;
    std::vector<TRawValue> values;
    while (values.size() < count) {
      TRawValue value;
      value.Name = Chance(10) ? Text() : Name(Chance(50) ? 2000 : 255, false);
      if (!names.insert(value.Name).second)
        continue;
      value.Type = Type();
      value.Data = Data(value.Type);
      values.push_back(std::move(value));
    }
    return values;
  }

  std::uint32_t Type() {
    switch (Below(4)) {
      case 0:
        return static_cast<std::uint32_t>(Below(12));
      case 1:
        return Chance(4) ? static_cast<std::uint32_t>(m_random()) : kRegMultiSz;
      case 2:
        return kRegExpandSz;
      default:
        return kRegSz;
    }
  }

  TBytes Data(std::uint32_t type) {
    if (Chance(kValuesABigOne))
      return RandomBytes(kBigData + Below(1000));
    switch (Below(8)) {
      case 0:
        return RandomBytes(Below(12));
      case 1:
        return RandomBytes(Below(300));
      case 2:
        return {};
      case 3:
        return type == kRegDword ? RandomBytes(4) : UnitBytes(Units(Below(40), true));  // not terminated
      case 4:
        return UnitBytes(Parts(TextView(u"\0", 1), Below(3)));
      case 5:
        return UnitBytes(Units(Below(60), false) + u'\0');
      case 6:
        return UnitBytes(type == kRegMultiSz ? Parts(TextView(u"\0", 1), Below(3)) : Parts(u"\r\n", 1));
      default:
        return UnitBytes(Units(Below(200), true) + u'\0');
    }
  }

  // Two texts with something between them, ended by some NULs.
  Text Parts(TextView between, std::size_t terminators) {
    Text text = Units(Below(20), true);
    text += between;
    text += Units(Below(20), true);
    text.append(terminators, u'\0');
    return text;
  }

  TBytes RandomBytes(std::size_t size) {
    TBytes bytes(size);
    for (std::uint8_t& byte : bytes)
      byte = static_cast<std::uint8_t>(m_random() >> 20);
    return bytes;
  }

  std::mt19937_64 m_random;
  std::set<Text, TLessIgnoringCase> m_paths;
};

}  // namespace

std::vector<TNastyKey> MakeNastyTree(std::uint64_t seed, std::size_t values, TextView topPath) {
  return TNastyMaker(seed).Tree(values, topPath);
}

}  // namespace corvalt
