// Errors of the system, as results and, where a worker must end, as exceptions.
#pragma once

#include <cstdint>
#include <exception>
#include <stdexcept>
#include <string>
#include <utility>

#include "base/text.h"
#include "system/systemlocale.h"

namespace corvalt {

// A Windows error code (winerror.h); 0 is success. TLocale::SystemMessage gives its text.
struct [[nodiscard]] TSystemError {
  std::uint32_t Code = 0;
  bool Failed() const {
    return Code != 0;
  }
  bool operator==(const TSystemError&) const = default;
};

// The codes that the logic tells apart, or raises itself.
inline constexpr std::uint32_t kErrorFileNotFound = 2;
inline constexpr std::uint32_t kErrorPathNotFound = 3;
inline constexpr std::uint32_t kErrorAccessDenied = 5;
inline constexpr std::uint32_t kErrorInvalidData = 13;
inline constexpr std::uint32_t kErrorOutOfMemory = 14;
inline constexpr std::uint32_t kErrorSharingViolation = 32;
inline constexpr std::uint32_t kErrorLockViolation = 33;
inline constexpr std::uint32_t kErrorDiskFull = 112;
inline constexpr std::uint32_t kErrorInvalidName = 123;
inline constexpr std::uint32_t kErrorAlreadyExists = 183;
inline constexpr std::uint32_t kErrorStoppedOnLink = 681;

// Whether the file, or a folder on the way to it, does not exist.
inline bool IsMissing(TSystemError error) {
  return error.Code == kErrorFileNotFound || error.Code == kErrorPathNotFound;
}

// The system's error with this code. Subject is what it is about (a file path), and may be empty.
class TSystemException : public std::runtime_error {
 public:
  explicit TSystemException(TSystemError error, Text subject = {})
      : std::runtime_error("system error " + std::to_string(error.Code)),
        m_error(error),
        m_subject(std::move(subject)) {
  }
  TSystemError Error() const {
    return m_error;
  }
  const Text& Subject() const {
    return m_subject;
  }

 private:
  TSystemError m_error;
  Text m_subject;
};

// An error that the program words itself, in the user's language and as a message box shows it.
class TProgramException : public std::runtime_error {
 public:
  explicit TProgramException(Text message)
      : std::runtime_error(EncodeUtf8(message)), m_message(std::move(message)) {
  }
  const Text& Message() const {
    return m_message;
  }

 private:
  Text m_message;
};

// What to tell the user about a captured exception: the system's own message with its subject before it, the
// program's own words, or what() of anything else. Empty for null.
Text DescribeException(const std::exception_ptr& exception, TLocale& locale);

}  // namespace corvalt
