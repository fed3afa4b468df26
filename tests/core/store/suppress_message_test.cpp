#include "core/store/suppress_message.h"

#include <gtest/gtest.h>

#include "store_home.h"

namespace vonel::store {
namespace {

TEST(SuppressMessageTest, OnlyMailNamingAnExclusiveAddressOfItsAccountPasses) {
  testing::StoreHome home;
  cSHAREDSettings& settings = home.context.Settings;
  message::clsMessage m;
  m.FromAccount = 3;
  m.setTo_Email("Sales@Example.com");
  EXPECT_FALSE(SuppressMessage(m, settings));  // no exclusive address: nothing held back

  settings.StoreSetting("Exclusive1_3", Value("support@example.com"));
  EXPECT_TRUE(SuppressMessage(m, settings));
  m.CC = "team, SUPPORT@example.com";
  EXPECT_FALSE(SuppressMessage(m, settings));

  m.CC.clear();
  settings.StoreSetting("Exclusive0_3", Value("sales@example.com"));
  EXPECT_FALSE(SuppressMessage(m, settings));
  m.FromAccount = 4;  // another account's addresses don't count
  EXPECT_FALSE(SuppressMessage(m, settings));
}

}  // namespace
}  // namespace vonel::store
