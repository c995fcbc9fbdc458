// What Wmi promises, tested on those in memory here and on the system's own in
// wmi_contract_win_test.cpp.
#include "platform/memory_wmi.h"
#include "platform/wmi_test_support.h"

namespace {

class MemoryWmiBed final : public WmiBed {
 public:
  explicit MemoryWmiBed(bool has_wmi) : has_wmi_(has_wmi) {
    wmi_.answer(kHotfixQuery, kRootNamespace,
                {{{"Description", kBedDescription}, {"HotFixID", kBedHotfix}}});
    if (!has_wmi) wmi_.refuse();
  }

  Wmi& wmi() override { return wmi_; }
  bool has_wmi() const override { return has_wmi_; }

 private:
  MemoryWmi wmi_;
  const bool has_wmi_;
};

WmiBedMaker bed_maker(const char* name, bool has_wmi) {
  return {name, [has_wmi] { return std::make_unique<MemoryWmiBed>(has_wmi); }};
}

std::string property(const WmiInstance& instance, const char* name) {
  const auto found = instance.find(name);
  return found != instance.end() ? found->second.c_str() : "";
}

}  // namespace

void WmiContract::expect_hotfix(WmiQuery& query) {
  WmiInstances results(3);
  EXPECT_EQ(query.Execute(kHotfixQuery, kRootNamespace, results), has_wmi());
  ASSERT_EQ(results.size(), has_wmi() ? 1u : 0u);
  if (!has_wmi()) return;
  EXPECT_EQ(property(results[0], "HotFixID"), kBedHotfix);
  EXPECT_EQ(property(results[0], "Description"), kBedDescription);
}

INSTANTIATE_TEST_SUITE_P(Memory, WmiContract,
                         ::testing::Values(bed_maker("Own", true), bed_maker("Refusing", false)),
                         [](const auto& test) { return std::string(test.param.name); });

TEST_P(WmiContract, GivesTheInstancesOfAClassInPlaceOfWhatWasThere) {
  const auto query = connect();
  ASSERT_NE(query, nullptr);
  expect_hotfix(*query);
}

TEST_P(WmiContract, AnswersAnyNumberOfTimes) {
  const auto query = connect();
  for (int round = 0; round < 3; ++round)
    expect_hotfix(*query);
}

TEST_P(WmiContract, ServesConnectionsBesideAndAfterEachOther) {
  for (int round = 0; round < 3; ++round) {
    const auto first = connect();
    auto second = connect();
    expect_hotfix(*second);
    second.reset();
    expect_hotfix(*first);
  }
}

TEST_P(WmiContract, TakesNoNullForAValue) {
  WmiInstances results;
  connect()->Execute(kHotfixQuery, kRootNamespace, results);
  ASSERT_EQ(results.size(), has_wmi() ? 1u : 0u);
  for (const WmiInstance& instance : results)
    EXPECT_EQ(instance.count("InstallDate"), 0u);
}

TEST_P(WmiContract, GivesNothingOfAClassThatIsNotThere) {
  // Systems differ in whether that is a failure.
  WmiInstances results(2);
  connect()->Execute("SELECT * FROM Zolvane_NoClass", kRootNamespace, results);
  EXPECT_TRUE(results.empty());
}

TEST_P(WmiContract, FailsForWhatIsNotThere) {
  const auto query = connect();
  const struct {
    const char* query;
    const char* name_space;
  } cases[] = {
      {kHotfixQuery, "ROOT/NOWHERE"},
      {"no query", kRootNamespace},
      {"", kRootNamespace},
      {kHotfixQuery, "\\"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(c.name_space) + ": " + c.query);
    WmiInstances results(2);
    EXPECT_FALSE(query->Execute(c.query, c.name_space, results));
    EXPECT_TRUE(results.empty());
  }
  expect_hotfix(*query);
}
