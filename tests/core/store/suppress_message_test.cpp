#include "core/store/suppress_message.h"

#include <gtest/gtest.h>

#include "store_home.h"

namespace vonel::store {
namespace {

TEST(SuppressMessageTest, OnlyMailNamingAnExclusiveAddressOfItsAccountPasses) {
  testing::StoreHome home;
  SettingsStore& settings = home.context.settings;
  message::Message m;
  m.fromAccount = 3;
  m.setToEmail("Sales@Example.com");
  EXPECT_FALSE(suppressMessage(m, settings));  // no exclusive address: nothing held back

  settings.set("Exclusive1_3", Value("support@example.com"));
  EXPECT_TRUE(suppressMessage(m, settings));
  m.cc = "team, SUPPORT@example.com";
  EXPECT_FALSE(suppressMessage(m, settings));

  m.cc.clear();
  settings.set("Exclusive0_3", Value("sales@example.com"));
  EXPECT_FALSE(suppressMessage(m, settings));
  m.fromAccount = 4;  // another account's addresses don't count
  EXPECT_FALSE(suppressMessage(m, settings));
}

}  // namespace
}  // namespace vonel::store
