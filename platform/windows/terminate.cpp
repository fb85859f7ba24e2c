// What the C++ library runs when an exception is caught nowhere. Its own handler prints the exception's type,
// for which it brings the whole demangler of C++ names along, 50 KB. This object takes its place; the
// system's error report names the program and the address.
#include <cstdlib>

// The library's name.
namespace __gnu_cxx {  // NOLINT(bugprone-reserved-identifier)

// NOLINTNEXTLINE(bugprone-reserved-identifier,readability-identifier-naming)
void __verbose_terminate_handler() {
  std::abort();
}

}  // namespace __gnu_cxx
