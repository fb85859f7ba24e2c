#include "ui/windows/images.h"

#include <algorithm>
#include <array>

#include "ui/windows/window.h"

namespace corvalt {

int DrawnSize(int wanted) {
  constexpr std::array<int, 4> kSizes = {16, 20, 24, 32};
  const auto above = std::upper_bound(kSizes.begin(), kSizes.end(), wanted);
  return above == kSizes.begin() ? kSizes.front() : *(above - 1);
}

TIcon LoadPicture(int number, int size) {
  return TIcon(static_cast<HICON>(
      LoadImageW(ProgramInstance(), MAKEINTRESOURCEW(number), IMAGE_ICON, size, size, LR_DEFAULTCOLOR)));
}

TImageList LoadImages(int first, int count, int size) {
  TImageList list(ImageList_Create(size, size, ILC_COLOR32 | ILC_MASK, count, 0));
  ImageList_SetImageCount(list.Get(), static_cast<UINT>(count));
  for (int i = 0; i < count; ++i) {
    if (const TIcon icon = LoadPicture(first + i, size))
      ImageList_ReplaceIcon(list.Get(), i, icon.Get());
  }
  return list;
}

}  // namespace corvalt
