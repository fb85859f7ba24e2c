#include "system/machine.h"

namespace corvalt {

Text FolderOf(TextView filePath) {
  const std::size_t separator = filePath.find_last_of(u"\\/");
  return separator == TextView::npos ? Text() : Text(filePath.substr(0, separator + 1));
}

}  // namespace corvalt
