#include "system/filesystemprobe.h"

#include "system/systemerror.h"

namespace corvalt {

bool MeansMissing(std::uint32_t error) {
  constexpr std::uint32_t kBadPathName = 161;
  constexpr std::uint32_t kFileNameTooLong = 206;
  constexpr std::uint32_t kNoDirectory = 267;
  switch (error) {
    case kErrorFileNotFound:
    case kErrorPathNotFound:
    case kErrorInvalidName:
    case kBadPathName:
    case kFileNameTooLong:
    case kNoDirectory:
      return true;
    default:
      return false;
  }
}

}  // namespace corvalt
