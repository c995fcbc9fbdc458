#include "inspect/patch_rows.h"

#include <algorithm>
#include <iterator>
#include <numeric>
#include <random>
#include <string>
#include <vector>

#include "inspect/patch_bed_test_support.h"
#include "platform/resource_ids.h"

namespace {

class PatchRows : public PatchBedTest {
 protected:
  /// The text of one column for a patch with this number in the value `name`.
  std::string text_for(int index, const char* name, uint32_t number) {
    registry_.set_number(product_patch_key("P"), name, number);
    return column(index).at(0);
  }
};

using Order = std::vector<int>;

TEST_F(PatchRows, HaveSixColumnsWithTheirTitlesAndWidths) {
  const PatchColumn expected[] = {{IDS_PATCH_ID, 50},     {IDS_PATCH_NAME, 200},
                                  {IDS_PATH, 200},        {IDS_PATCH_DATE, 114},
                                  {IDS_PATCH_STATE, 100}, {IDS_REMOVABLE, 50}};
  ASSERT_EQ(std::size(expected), size_t{kPatchColumns});
  for (int i = 0; i < kPatchColumns; ++i) {
    EXPECT_EQ(patch_column(i).title, expected[i].title) << i;
    EXPECT_EQ(patch_column(i).width, expected[i].width) << i;
  }
}

TEST_F(PatchRows, AreNoneForAProductWithoutPatches) {
  EXPECT_TRUE(read().empty()) << "no registry at all";
  registry_.create(product_key(kPackedProduct));
  registry_.create(product_patch_key("P1", "another"));
  registry_.create(patch_key("P2"));
  EXPECT_TRUE(read().empty());
  EXPECT_EQ(registry_.open_keys(), 0u);
}

TEST_F(PatchRows, HaveATextForEachColumn) {
  registry_.set_text(patch_key("P1"), "LocalPackage", u"C:\\p1.msp");
  registry_.set_text(product_patch_key("P1"), "DisplayName", u"Patch one");
  registry_.set_number(product_patch_key("P1"), "State", 1);
  registry_.set_number(product_patch_key("P1"), "Uninstallable", 1);
  add("P1", "20110301");
  const std::vector<PatchRow> rows = read();
  ASSERT_EQ(rows.size(), 1u);
  Texts texts;
  for (const String& text : rows[0])
    texts.emplace_back(text.c_str());
  EXPECT_EQ(texts, (Texts{"P1", "Patch one", "C:\\p1.msp", shown("20110301"),
                          "text " + std::to_string(IDS_PATCH_APPLIED), "yes"}));
}

TEST_F(PatchRows, ShowAWordForEachStateThatHasOne) {
  const std::pair<uint32_t, int> words[] = {{0, IDS_PATCH_BROKEN},
                                            {1, IDS_PATCH_APPLIED},
                                            {2, IDS_PATCH_SUPERSEDED},
                                            {4, IDS_PATCH_OBSOLETED},
                                            {8, IDS_PATCH_REGISTERED}};
  for (const auto& [state, id] : words)
    EXPECT_EQ(text_for(4, "State", state), "text " + std::to_string(id)) << state;
}

TEST_F(PatchRows, ShowStateThreeAsItsNumber) {
  EXPECT_EQ(text_for(4, "State", 3), "3");
}

TEST_F(PatchRows, ShowAnyOtherStateAsItsNumber) {
  for (const uint32_t state : {5U, 6U, 7U, 9U, 15U, 16U, 258U, 0x7FFFFFFFU, 0x80000000U})
    EXPECT_EQ(text_for(4, "State", state), std::to_string(state));
  EXPECT_EQ(text_for(4, "State", 0xFFFFFFFF), "4294967295") << "without a sign";
}

TEST_F(PatchRows, AreBrokenWhereNoStateIsTold) {
  registry_.create(product_patch_key("P1"));
  EXPECT_EQ(column(4).at(0), "text " + std::to_string(IDS_PATCH_BROKEN));
}

TEST_F(PatchRows, SayYesOrNoAboutRemoval) {
  EXPECT_EQ(text_for(5, "Uninstallable", 1), "yes");
  EXPECT_EQ(text_for(5, "Uninstallable", 0), "no");
  EXPECT_EQ(text_for(5, "Uninstallable", 2), "yes");
  EXPECT_EQ(text_for(5, "Uninstallable", 0xFFFFFFFF), "yes");
}

TEST_F(PatchRows, WithoutANameHaveAnEmptyCell) {
  add("P1", "20110301");
  registry_.set_text(product_patch_key("P2"), "DisplayName", u"");
  add("P2", "20110302");
  EXPECT_EQ(column(1), (Texts{"", ""}));
  EXPECT_EQ(column(2), (Texts{"", ""}));
}

TEST_F(PatchRows, OfAPatchWhoseKeyCannotBeOpenedHaveItsKeyAndWhatNothingMeans) {
  add("P1", "20110301");
  registry_.fail("open", product_patch_key("P1"), kRegAccessDenied);
  const std::vector<PatchRow> rows = read();
  ASSERT_EQ(rows.size(), 1u);
  EXPECT_STREQ(rows[0][0].c_str(), "P1");
  EXPECT_STREQ(rows[0][3].c_str(), "");
  EXPECT_STREQ(rows[0][5].c_str(), "no");
}

TEST_F(PatchRows, OfPatchesOfWhichNothingIsKnownHaveTheirKeysOnlyAndComeFirst) {
  PatchMap details;
  details["P1"].installed = "20110301";
  const std::vector<PatchRow> rows = make_patch_rows({"P1", "P2", "P3"}, details, patch_services());
  ASSERT_EQ(rows.size(), 3u);
  EXPECT_STREQ(rows[0][0].c_str(), "P2");
  EXPECT_STREQ(rows[1][0].c_str(), "P3");
  EXPECT_STREQ(rows[2][0].c_str(), "P1");
  for (size_t i = 1; i < kPatchColumns; ++i)
    EXPECT_STREQ(rows[0][i].c_str(), "") << i;
}

TEST_F(PatchRows, AreThoseOfTheProductAlone) {
  add("P1", "20110301");
  registry_.create(product_patch_key("P2", "another"));
  EXPECT_EQ(column(0), Texts{"P1"});
}

TEST_F(PatchRows, AreFoundByTheCodeAsItIsWritten) {
  add("P1", "20110301");
  EXPECT_EQ(column(0, "12345678ABCDEF0123456789ABCDEF01"), Texts{"P1"}) << "braces don't matter";
  for (const char* code :
       {"{12345678-abcd-ef01-2345-6789abcdef01}", "", "{", "no code",
        "{12345678-ABCD-EF01-2345-6789ABCDEF0}", "{12345678-ABCD-EF01-2345-6789ABCDEF012}"}) {
    EXPECT_EQ(column(0, code), Texts()) << code;
  }
}

TEST_F(PatchRows, AreReadForAMalformedCodeThatARegistryHasLikewise) {
  registry_.create(product_patch_key("P1", "no code"));
  EXPECT_EQ(column(0, "{no code}"), Texts{"P1"});
}

TEST_F(PatchRows, StandInTheOrderOfTheirDates) {
  EXPECT_EQ(order_of({"2011-03-01", "2010-01-01", "2012-05-05"}), (Order{2, 1, 3}));
  EXPECT_EQ(order_of({"2012-05-05", "2011-03-01", "2010-01-01"}), (Order{3, 2, 1}));
  EXPECT_EQ(order_of({"2010-01-01", "2011-03-01", "2012-05-05"}), (Order{1, 2, 3}));
  EXPECT_EQ(order_of({"20110301", "20100101", "20120505"}), (Order{2, 1, 3}));
  EXPECT_EQ(column(3), (Texts{shown("20100101"), shown("20110301"), shown("20120505")}));
}

TEST_F(PatchRows, OfEqualDatesKeepTheOrderOfTheirKeys) {
  EXPECT_EQ(order_of({"20110301", "20100101", "20110301", "20100101", "20110301"}),
            (Order{2, 4, 1, 3, 5}));
}

TEST_F(PatchRows, OfOneDateInSeveralFormsKeepTheOrderOfTheirKeys) {
  EXPECT_EQ(
      order_of({"2011-03-03", "20110303", "03.03.2011", "03/03/2011", "Mar 3 2011", "2011-03-03"}),
      (Order{1, 2, 3, 4, 5, 6}));
}

TEST_F(PatchRows, WithoutADateStandInFrontOfAllDates) {
  EXPECT_EQ(order_of({"20110301", "", "20100101", "rubbish", ""}), (Order{2, 4, 5, 3, 1}));
  EXPECT_EQ(order_of({"", "20110301", ""}), (Order{1, 3, 2}));
  EXPECT_EQ(order_of({"", "", ""}), (Order{1, 2, 3}));
}

TEST_F(PatchRows, WithoutADateStandInFrontOfADateThatNoCalendarHas) {
  ASSERT_EQ(shown("20111399"), "");
  EXPECT_EQ(order_of({"20110301", "20111399", ""}), (Order{3, 1, 2}))
      << "though nothing is shown of either";
}

TEST_F(PatchRows, WithADateThatNoCalendarHasGoToTheEnd) {
  EXPECT_EQ(order_of({"20110301", "20111399"}), (Order{1, 2}));
  EXPECT_EQ(order_of({"20111399", "20110301"}), (Order{1, 2})) << "no date is before such a one";
}

TEST_F(PatchRows, ShowDatesOfEveryForm) {
  const char* const dates[] = {"20110301",
                               "2011-03-01",
                               "01.03.2011",
                               "03/01/2011",
                               "Mar 1 2011",
                               "2011-03-01T10:11:12",
                               "01.03.2011 10:11:12",
                               "01.03.2011 00:00:00",
                               "Tue, 1 Mar 2011 10:11:12 GMT",
                               "rubbish",
                               "",
                               "20110332",
                               "0",
                               "2011030",
                               "201103011"};
  for (const char* date : dates) {
    add_all({date});
    EXPECT_EQ(column(3), Texts{shown(date)}) << date;
  }
  EXPECT_EQ(shown("2011-03-01"), shown("20110301"));
  EXPECT_EQ(shown("01.03.2011"), shown("20110301"));
  EXPECT_GT(shown("01.03.2011 10:11:12").size(), 15u);
}

TEST_F(PatchRows, AreComparedByTheFirstFifteenCharactersOfTheShownDate) {
  // The minute's last digit is the sixteenth: 10:19 is read as 10:01. The month of the clock is one
  // of winter, as that of the dates, so that their times are shown as they were written.
  EXPECT_EQ(order_of({"02.02.2011 10:19:00", "02.02.2011 10:15:00"}), (Order{1, 2}))
      << "not before 10:01";
  EXPECT_EQ(order_of({"02.02.2011 10:19:00", "02.02.2011 09:15:00"}), (Order{2, 1}));
  EXPECT_EQ(order_of({"02.02.2011 10:20:00", "02.02.2011 10:01:59"}), (Order{2, 1}))
      << "before 10:02, with the seconds that aren't shown";
  EXPECT_EQ(order_of({"02.02.2011 10:20:00", "02.02.2011 10:02:00"}), (Order{1, 2}));
}

TEST_F(PatchRows, WithATimeAreStillAllListed) {
  const Texts dates = {"05.05.2011 10:19:00",
                       "05.05.2011 10:15:00",
                       "20110505",
                       "05.05.2011 10:11:12",
                       "",
                       "20110506"};
  Order order = order_of(dates);
  EXPECT_EQ(order, modelled_order(dates));
  std::sort(order.begin(), order.end());
  EXPECT_EQ(order, (Order{1, 2, 3, 4, 5, 6}));
}

TEST_F(PatchRows, OfOneDateStandInTheOrderOfTheBytesOfTheirKeys) {
  for (const char* key : {"b", "_", "A10", "C", "A2"})
    add(key, "20110301");
  EXPECT_EQ(column(0), (Texts{"A10", "A2", "C", "_", "b"}));
}

TEST_F(PatchRows, AgreeWithAPlainListOnRandomDates) {
  const char* const forms[] = {"",
                               "rubbish",
                               "20110301",
                               "2011-03-01",
                               "20110113",
                               "20110212",
                               "20111201",
                               "25.12.2010",
                               "25/12/2009",
                               "20110230",
                               "20111399",
                               "05.05.2011 10:19:00",
                               "05.05.2011 10:15:00",
                               "05.05.2011 09:59:59",
                               "2011-05-05T10:02:00",
                               "Tue, 1 Mar 2011 10:11:12 GMT",
                               "Tue, 1 Mar 2011 23:11:12 -0500",
                               "May 5 2011 10:01:30",
                               "16000101",
                               "Jan 5 70000"};
  std::mt19937 random(7);
  for (int round = 0; round < 1000; ++round) {
    Texts dates(random() % 12);
    for (std::string& date : dates)
      date = forms[random() % std::size(forms)];
    ASSERT_EQ(order_of(dates), modelled_order(dates)) << round;
  }
}

TEST_F(PatchRows, OfTwoThousandPatchesAreQuickInTheWorstOrder) {
  constexpr int kCount = 2000;
  Texts dates;
  dates.reserve(kCount);
  for (int i = 0; i < kCount; ++i)
    dates.push_back(std::to_string(4000 - i) + "0101");
  Order expected(kCount);
  std::iota(expected.rbegin(), expected.rend(), 1);
  EXPECT_EQ(order_of(dates), expected);
}

}  // namespace
