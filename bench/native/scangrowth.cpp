// How the cost of a scan grows with what there is to look at: the time per entry for 1,000, 10,000 and
// 100,000 entries, which an O(n log n) scan keeps nearly the same, and the memory that a problem takes beyond
// its texts. Processor time, so that other programs don't count. On the doubles: their own cost is in every
// figure.

#include <malloc.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <fstream>
#include <functional>
#include <string>

#include "bench/support/memoryscan.h"

namespace corvalt {

namespace {

constexpr std::array<std::size_t, 3> kSizes = {1000, 10000, 100000};
constexpr std::size_t kManyValues = 500000;

// A letter-and-digit text of the length, different for each number and without a pattern.
Text Scrambled(std::size_t number, std::size_t length) {
  constexpr TextView kDigits = u"0123456789ABCDEF";
  std::uint64_t state = number * 0x9E3779B97F4A7C15ULL + 1;
  Text text;
  for (std::size_t i = 0; i < length; ++i) {
    state = state * 6364136223846793005ULL + 1442695040888963407ULL;
    text.push_back(kDigits[state >> 60]);
  }
  return text;
}

Text ClassIdOf(std::size_t number) {
  const Text digits = Scrambled(number, 32);
  return u"{" + digits.substr(0, 8) + u"-" + digits.substr(8, 4) + u"-" + digits.substr(12, 4) + u"-" +
         digits.substr(16, 4) + u"-" + digits.substr(20) + u"}";
}

Text Classes(TextView rest) {
  return u"HKEY_CLASSES_ROOT\\" + Text(rest);
}

void AddAssociations(TMemoryScan& scan, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) {
    const Text type = u"Vendor." + Scrambled(i, 12);
    scan.System.Registry.Set(Classes(u"." + Scrambled(i, 8)), u"", type);
    scan.System.Registry.Set(Classes(type + u"\\DefaultIcon"), u"", u"C:\\Gone\\" + type + u".ico");
    scan.System.Registry.AddKey(Classes(type + u"\\Shell\\open"));
  }
}

void AddBrokenClass(TMemoryScan& scan, TextView name) {
  scan.System.Registry.Set(Classes(u"CLSID\\" + Text(name) + u"\\InprocServer32"), u"",
                           u"C:\\Gone\\server.dll");
}

void AddLink(TMemoryScan& scan, std::size_t number, TextView classId) {
  scan.System.Registry.Set(Classes(u"Interface\\" + ClassIdOf(number + 5000000) + u"\\ProxyStubClsid32"), u"",
                           classId);
}

void AddLinksToBrokenClasses(TMemoryScan& scan, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) {
    AddBrokenClass(scan, ClassIdOf(i));
    AddLink(scan, i, ClassIdOf(i));
  }
}

void AddLinksToIntactClasses(TMemoryScan& scan, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) {
    AddBrokenClass(scan, ClassIdOf(i));
    scan.System.Registry.AddKey(Classes(u"CLSID\\" + ClassIdOf(i + 1000000)));
    AddLink(scan, i, ClassIdOf(i + 1000000));
  }
}

// Links to classes that exist, whose names are parts of broken ones' names.
void AddLinksToParts(TMemoryScan& scan, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) {
    const Text classId = ClassIdOf(i);
    const Text part = classId.substr(3, 30);
    AddBrokenClass(scan, classId);
    scan.System.Registry.AddKey(Classes(u"CLSID\\" + part));
    AddLink(scan, i, part);
  }
}

// The same with names that differ only in their ends: the parts are the same for 70 letters.
void AddLinksToPartsOfLikeNames(TMemoryScan& scan, std::size_t count) {
  const Text stem(100, u'a');
  for (std::size_t i = 0; i < count; ++i) {
    AddBrokenClass(scan, stem + Scrambled(i, 10) + u"}");
    scan.System.Registry.AddKey(Classes(u"CLSID\\" + stem.substr(30) + Scrambled(i, 10)));
    AddLink(scan, i, stem.substr(30) + Scrambled(i, 10));
  }
}

void AddValues(TMemoryScan& scan, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) {
    const Text key = u"HKEY_CURRENT_USER\\Software\\Vendor" + DecimalText(static_cast<std::int64_t>(i / 4));
    scan.System.Registry.Set(key, Scrambled(i, 12), u"C:\\Gone\\" + Scrambled(i, 12) + u".exe");
  }
}

void AddValuesAndIgnoredTexts(TMemoryScan& scan, std::size_t count) {
  AddValues(scan, count);
  for (std::size_t i = 0; i < count; ++i)
    scan.Reg.IgnoreList.push_back(u"HKEY_CURRENT_USER\\Software\\Gone Vendor\\" + Scrambled(i + 1000000, 20));
}

struct TCase {
  const char* Name;
  std::int32_t Section;
  void (*Fill)(TMemoryScan& scan, std::size_t count);
  double Limit = 0;  // of how many times as much the last entry is as the first; 0: none
};

constexpr TCase kCases[] = {
    {"File Associations: extensions and types", 6, AddAssociations},
    {"Custom Controls: broken classes, linked to", 4, AddLinksToBrokenClasses},
    {"Custom Controls: links to intact classes", 4, AddLinksToIntactClasses},
    {"Custom Controls: links to parts of names", 4, AddLinksToParts},
    {"Custom Controls: parts of names much alike", 4, AddLinksToPartsOfLikeNames, 1.15},
    {"Ignore list: entries and problems", 22, AddValuesAndIgnoredTexts},
    {"Files and Folders: values", 22, AddValues},
};

// A figure of /proc/self/status in bytes, 0 when it is not there.
std::size_t StatusBytes(const std::string& name) {
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);) {
    if (line.starts_with(name + ":"))
      return std::stoul(line.substr(name.size() + 1)) * 1024;
  }
  return 0;
}

// Lets the peak begin at what is in use now, and returns that.
std::size_t BeginPeak() {
  malloc_trim(0);
  std::ofstream("/proc/self/clear_refs") << "5";
  return StatusBytes("VmRSS");
}

// In a process of its own, so that no scan finds the memory that another left behind.
void RunApart(const std::function<void()>& routine) {
  std::fflush(stdout);
  const pid_t child = fork();
  if (child != 0) {
    waitpid(child, nullptr, 0);
    return;
  }
  routine();
  std::fflush(stdout);
  _exit(0);
}

void PrintMemory(const TCase& growth) {
  TMemoryScan scan;
  growth.Fill(scan, kSizes.back());
  const std::size_t before = BeginPeak();
  scan.Run({growth.Section});
  const std::size_t taken = StatusBytes("VmHWM") - before;
  const std::size_t texts = scan.TextBytes();
  const std::size_t count = scan.ProblemCount();
  std::printf("%-46s %8zu problems  %5zu bytes each, of these texts %zu, beyond them %zu\n", growth.Name,
              count, taken / count, texts / count, (taken - texts) / count);
}

// Microseconds an entry, the best of as many runs as make the small sizes worth a look.
double TimeAnEntry(const TCase& growth, std::size_t size) {
  TMemoryScan scan;
  growth.Fill(scan, size);
  double best = 0;
  for (std::size_t run = 0; run < std::max<std::size_t>(1, 20000 / size); ++run) {
    const double taken = scan.Run({growth.Section});
    best = run == 0 ? taken : std::min(best, taken);
  }
  return best / static_cast<double>(size) * 1e6;
}

const char* Verdict(double ratio, double limit) {
  if (limit == 0)
    return "";
  return ratio <= limit ? "met" : "MISSED";
}

void PrintTimes(const TCase& growth) {
  std::printf("%-46s", growth.Name);
  double first = 0;
  double last = 0;
  for (const std::size_t size : kSizes) {
    last = TimeAnEntry(growth, size);
    first = first == 0 ? last : first;
    std::printf(" %9.2f", last);
    std::fflush(stdout);
  }
  std::printf("   x %.2f %s\n", last / first, Verdict(last / first, growth.Limit));
}

// Whether a very large scan is still linear: what an entry of it costs against one of a large scan.
void PrintManyValues() {
  constexpr double kLimit = 1.1;
  const TCase& values = kCases[std::size(kCases) - 1];
  const double large = TimeAnEntry(values, kSizes.back());
  const double veryLarge = TimeAnEntry(values, kManyValues);
  std::printf("\n%s, %zu against %zu: %.2f against %.2f   x %.2f %s\n", values.Name, kManyValues,
              kSizes.back(), veryLarge, large, veryLarge / large, Verdict(veryLarge / large, kLimit));
}

int RunBenchmark() {
  std::printf("Peak memory of a scan, beyond what stood in memory before it\n");
  for (const TCase& growth : kCases)
    RunApart([&growth] { PrintMemory(growth); });
  std::printf("\n%-46s %9zu %9zu %9zu\n", "Microseconds an entry, with entries", kSizes[0], kSizes[1],
              kSizes[2]);
  for (const TCase& growth : kCases)
    RunApart([&growth] { PrintTimes(growth); });
  RunApart(PrintManyValues);
  return 0;
}

}  // namespace

}  // namespace corvalt

int main() {
  return corvalt::RunBenchmark();
}
