#include "core/text/dates.h"

#include <gtest/gtest.h>

namespace vonel::text {
namespace {

TEST(Dates, SerialNumbersCountFromTheEndOf1899) {
  EXPECT_EQ((DateTime{1899, 12, 30, 0, 0, 0}.serial()), 0);
  EXPECT_EQ((DateTime{2001, 12, 25, 0, 0, 0}.serial()), 37250);
  EXPECT_DOUBLE_EQ((DateTime{1900, 1, 1, 18, 0, 0}.serial()), 2.75);
  const DateTime moment{2024, 2, 29, 23, 59, 59};
  EXPECT_EQ(DateTime::fromSerial(moment.serial()), moment);
  EXPECT_EQ((DateTime{2001, 12, 25}.weekday()), 3);  // a Tuesday
  EXPECT_EQ((DateTime{2024, 3, 1}.addDays(-1)), (DateTime{2024, 2, 29}));
}

TEST(Dates, StoreFormRoundTripsAndRefusesNonsense) {
  const DateTime moment{2026, 11, 23, 7, 5, 9};
  EXPECT_EQ(formatStoreDate(moment), "2026-11-23 07:05:09");
  EXPECT_EQ(parseStoreDate("2026-11-23 07:05:09"), moment);
  EXPECT_EQ(parseStoreDate("2026-11-23"), (DateTime{2026, 11, 23}));
  EXPECT_FALSE(parseStoreDate("2026-02-30 00:00:00"));
  EXPECT_FALSE(parseStoreDate("2026-11-23 24:00:00"));
  EXPECT_FALSE(parseStoreDate("23/11/2026"));
  EXPECT_FALSE(parseStoreDate(""));
}

TEST(Dates, PicturesFollowTheOldFormatter) {
  const DateTime moment{2001, 12, 5, 14, 7, 3};
  EXPECT_EQ(formatDate(moment, "YYYYMMDD"), "20011205");
  EXPECT_EQ(formatDate(moment, "DD/MMM/YYYY"), "05/Dec/2001");
  EXPECT_EQ(formatDate(moment, "HH.MM.SS"), "14.07.03");  // MM after the hour is minutes
  EXPECT_EQ(formatDate(moment, "MMMM YY"), "December 01");
  EXPECT_EQ(formatDate(moment, "ddd"), "Wed");
}

}  // namespace
}  // namespace vonel::text
