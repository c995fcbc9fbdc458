#include "view/addresses.h"

#include <gtest/gtest.h>

#include <string>

namespace {

TEST(Addresses, AreSecureAndUnderTheReservedDomainUntilAPublisherSetsThem) {
  for (const std::string address : {ZOLVANE_HOME_PAGE, ZOLVANE_ISSUE_TRACKER, ZOLVANE_UPDATE_URL}) {
    SCOPED_TRACE(address);
    EXPECT_EQ(address.rfind("https://example.org/", 0), 0u);
  }
}

TEST(Addresses, LinkTheMailAddressThatIsShown) {
  EXPECT_EQ(std::string(ZOLVANE_MAIL_LINK), std::string("mailto:") + ZOLVANE_MAIL);
  const std::string domain = "@example.org";
  const std::string mail = ZOLVANE_MAIL;
  ASSERT_GT(mail.size(), domain.size());
  EXPECT_EQ(mail.substr(mail.size() - domain.size()), domain);
}

}  // namespace
