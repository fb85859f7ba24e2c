// The program's pictures, at the size that the display wants.
#pragma once

#include "ui/windows/controlsapi.h"

namespace corvalt {

// Resource numbers of the icons; each holds every size that a display may want.
inline constexpr int kProgramIcon = 1;
inline constexpr int kFirstSectionIcon = 100;  // and one for each picture of the section list
inline constexpr int kSectionIconCount = 26;
inline constexpr int kFirstActionIcon = 200;  // and one for each action picture, by its number
inline constexpr int kActionIconCount = 11;
inline constexpr int kProgressIcon = 300;

// Owns an image list.
struct TImageListTraits {
  using THandle = HIMAGELIST;
  static HIMAGELIST None() {
    return nullptr;
  }
  static void Close(HIMAGELIST list) {
    ImageList_Destroy(list);
  }
};
using TImageList = TOwned<TImageListTraits>;

// The largest size, in pixels, that the pictures are drawn for and that is not above the wanted one: a
// picture that is stretched loses its clear lines.
int DrawnSize(int wanted);

// Square pictures of this many pixels, one for each resource from first on. A number without a resource gets
// an empty picture, so that the others keep their places.
TImageList LoadImages(int first, int count, int size);

struct TIconTraits {
  using THandle = HICON;
  static HICON None() {
    return nullptr;
  }
  static void Close(HICON icon) {
    DestroyIcon(icon);
  }
};
using TIcon = TOwned<TIconTraits>;

TIcon LoadPicture(int number, int size);

}  // namespace corvalt
