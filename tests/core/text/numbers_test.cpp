#include "core/text/numbers.h"

#include <gtest/gtest.h>

namespace vonel::text {
namespace {

TEST(PrintForm, ReservesTheSignColumnAndEndsInABlank) {
  EXPECT_EQ(printForm(5LL), " 5 ");
  EXPECT_EQ(printForm(-1LL), "-1 ");
  EXPECT_EQ(printForm(0LL), " 0 ");
  EXPECT_EQ(printForm(0.5), " .5 ");
  EXPECT_EQ(printForm(-0.25), "-.25 ");
  EXPECT_EQ(printForm(0.99f), " .99 ");
  EXPECT_EQ(printForm(0.7f), " .7 ");  // a single float prints at its own precision
  EXPECT_EQ(printForm(static_cast<double>(0.7f)), " .699999988079071 ");
}

TEST(PrintForm, SwitchesToExponentOutsideTheFixedRange) {
  EXPECT_EQ(printForm(123456789012345.0), " 123456789012345 ");
  EXPECT_EQ(printForm(1e15), " 1E+15 ");
  EXPECT_EQ(printForm(0.0001), " .0001 ");
  EXPECT_EQ(printForm(0.00001), " 1E-05 ");
  EXPECT_EQ(printForm(12345678.0f), " 1.234568E+07 ");
  EXPECT_EQ(plainText(0.5), "0.5");
  EXPECT_EQ(plainText(-0.5), "-0.5");
}

TEST(Val, ReadsTheLeadingNumberAndSkipsBlanksAnywhere) {
  EXPECT_EQ(val(" 5 "), 5);
  EXPECT_EQ(val(" .99 "), 0.99);
  EXPECT_EQ(val("1 2 3abc"), 123);
  EXPECT_EQ(val("-1.5e2x"), -150);
  EXPECT_EQ(val("&HFF"), 255);
  EXPECT_EQ(val("&O17"), 15);
  EXPECT_EQ(val("abc"), 0);
  EXPECT_EQ(val(""), 0);
  EXPECT_EQ(val("1e"), 1);
}

TEST(ToNumber, AcceptsOnlyAWholeNumber) {
  EXPECT_EQ(toNumber(" 0 "), 0.0);
  EXPECT_EQ(toNumber("-1 "), -1.0);
  EXPECT_EQ(toNumber("True"), -1.0);
  EXPECT_EQ(toNumber("&H10"), 16.0);
  EXPECT_EQ(toNumber("1D3"), 1000.0);
  EXPECT_FALSE(toNumber(""));
  EXPECT_FALSE(toNumber("   "));
  EXPECT_FALSE(toNumber("12abc"));
  EXPECT_FALSE(toNumber("1 2"));
  EXPECT_FALSE(toNumber("&HZZ"));
  EXPECT_FALSE(toNumber("nan"));
}

TEST(Rounding, HalvesGoToTheEvenNeighbour) {
  EXPECT_EQ(roundHalfEven(0.5), 0);
  EXPECT_EQ(roundHalfEven(1.5), 2);
  EXPECT_EQ(roundHalfEven(2.5), 2);
  EXPECT_EQ(roundHalfEven(-2.5), -2);
  EXPECT_DOUBLE_EQ(roundHalfEven(0.125, 2), 0.12);
  EXPECT_DOUBLE_EQ(roundHalfEven(0.375, 2), 0.38);
  EXPECT_EQ(toWhole<short>(1e9), 32767);
  EXPECT_EQ(toWhole<short>(-1e9), -32768);
  EXPECT_EQ(toWhole<int>(3.5), 4);
}

}  // namespace
}  // namespace vonel::text
