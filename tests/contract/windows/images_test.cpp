// The sizes in which the program asks for its pictures.
#include "ui/windows/images.h"

#include <gtest/gtest.h>

namespace corvalt {

TEST(Pictures, SmallOnesAreDrawnForEveryUsualScale) {
  EXPECT_EQ(DrawnSize(16), 16);
  EXPECT_EQ(DrawnSize(20), 20);
  EXPECT_EQ(DrawnSize(24), 24);
  EXPECT_EQ(DrawnSize(32), 32);
}

TEST(Pictures, BetweenTwoSizesTheSmallerOneIsTaken) {
  EXPECT_EQ(DrawnSize(30), 24);
  EXPECT_EQ(DrawnSize(36), 32);
  EXPECT_EQ(DrawnSize(72), 32);
}

TEST(Pictures, NoneIsSmallerThanTheSmallest) {
  EXPECT_EQ(DrawnSize(12), 16);
}

}  // namespace corvalt
