#include "inventory/installer_source.h"

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <iterator>
#include <string>
#include <thread>
#include <vector>

#include "inventory/hooked_registry_test_support.h"
#include "inventory/installer_bed_test_support.h"
#include "platform/hooked_files_test_support.h"
#include "platform/hooked_installer_test_support.h"

namespace {

using Field = PackageColumn;

constexpr char kOther[] = "{00000000-0000-0000-0000-0000000000A2}";

std::string text_of(const Row& row, Field column) {
  return cell(row, column).text.c_str();
}

/// As the Uninstall key of a product makes it.
Row uninstall_row(const std::string& name, const std::string& key_name) {
  Row row = make_source_row("HKLM Uninstall");
  cell(row, Field::name).text = name;
  cell(row, Field::keyName).text = key_name;
  cell(row, Field::HKEY_ROOT).set_number(kLocalMachine);
  return row;
}

class InstallerSourceTest : public InstallerBedTest {
 protected:
  void add(const std::string& code, const std::string& name) {
    installer_.add(code).properties = {{"ProductName", name}};
  }
  void read_through(Registry& registry, Installer& installer, Files& files) {
    delivered_.clear();
    InstallerSource source(registry, {installer, files, clock_}, &window_);
    source.ReadMsiProducts(rows_, unseen_, [this](const Row& row) {
      delivered_.push_back(row);
      rows_.add(row);
    });
  }
  const std::vector<Row>& read() {
    read_through(registry_, installer_, files_);
    return delivered_;
  }
  std::vector<std::string> names() const {
    std::vector<std::string> result;
    for (const Row& row : delivered_)
      result.push_back(text_of(row, Field::name));
    return result;
  }
  std::string found(const char* name, Field column) const {
    const auto row = rows_.find(name);
    return row ? text_of(*row, column) : "-";
  }

  int window_ = 0;
  ReaderRows rows_;
  std::set<RowKey> unseen_;
  std::vector<Row> delivered_;
};

TEST_F(InstallerSourceTest, ReadsNothingWithoutProducts) {
  EXPECT_TRUE(read().empty());
  EXPECT_TRUE(rows_.keys().empty());
  EXPECT_FALSE(rows_.changed());
}

TEST_F(InstallerSourceTest, MakesARowOfAProductWithoutOne) {
  add(kProduct, "A name");
  const std::vector<Row>& rows = read();
  ASSERT_EQ(rows.size(), 1u);
  EXPECT_EQ(rows[0].cells.size(), kPackageColumns);
  EXPECT_EQ(text_of(rows[0], Field::name), kProduct);
  EXPECT_EQ(text_of(rows[0], Field::source), "MSI");
  EXPECT_EQ(text_of(rows[0], Field::displayName), "A name");
  EXPECT_EQ(text_of(rows[0], Field::size), "-1");
  EXPECT_EQ(cell(rows[0], Field::size).integer(), -1);
  EXPECT_EQ(text_of(rows[0], Field::MSI), "1");
}

TEST_F(InstallerSourceTest, LeavesTheOtherCellsOfANewRowEmpty) {
  add(kProduct, "A name");
  read();
  for (const Field column :
       {Field::parent,          Field::parentName, Field::installLocation, Field::uninstallDate,
        Field::uninstallCmd,    Field::modifyCmd,  Field::noRemove,        Field::noModify,
        Field::systemComponent, Field::comments,   Field::lastUseDate,     Field::frequency,
        Field::installerPath,   Field::OK,         Field::is64Bit,         Field::user,
        Field::publisher,       Field::contact,    Field::helpURL,         Field::helpPhone,
        Field::aboutURL,        Field::updateURL,  Field::keyName,         Field::HKEY_ROOT}) {
    EXPECT_EQ(text_of(delivered_.at(0), column), "") << static_cast<int>(column);
  }
}

TEST_F(InstallerSourceTest, ErasesTheKeyOfANewRowOnly) {
  const RowKey empty{{"", ""}};
  const RowKey other{{"1", "other"}};
  unseen_ = {empty, other};
  rows_.add(uninstall_row(kProduct, "p"));
  add(kProduct, "A name");
  read();
  EXPECT_EQ(unseen_, (std::set<RowKey>{empty, other}));
  add(kOther, "Another");
  read();
  EXPECT_EQ(unseen_, std::set<RowKey>{other});
}

TEST_F(InstallerSourceTest, EnrichesTheRowOfTheUninstallKey) {
  Row row = uninstall_row(kProduct, kProduct);
  cell(row, Field::displayName).text = "Registered name";
  cell(row, Field::publisher).text = "Maker";
  rows_.add(row);
  installer_.add(kProduct) = {
      kProduct,
      {{"ProductName", "A name"}, {"VersionString", "1.2.3"}, {"LocalPackage", "C:\\1.msi"}},
      {{"Main", ""}}};
  registry_.create(product_patch_key("P1"));
  EXPECT_TRUE(read().empty());
  EXPECT_EQ(rows_.keys().size(), 1u);
  EXPECT_EQ(found(kProduct, Field::source), "HKLM Uninstall");
  EXPECT_EQ(found(kProduct, Field::keyName), kProduct);
  EXPECT_EQ(found(kProduct, Field::displayName), "Registered name");
  EXPECT_EQ(found(kProduct, Field::publisher), "Maker");
  EXPECT_EQ(found(kProduct, Field::displayVersion), "1.2.3");
  EXPECT_EQ(found(kProduct, Field::packagePath), "C:\\1.msi");
  EXPECT_EQ(found(kProduct, Field::features), "1");
  EXPECT_EQ(found(kProduct, Field::patches), "1");
  EXPECT_EQ(found(kProduct, Field::MSI), "1");
}

TEST_F(InstallerSourceTest, TellsOfARowThatItHasEnriched) {
  rows_.add(uninstall_row(kProduct, kProduct));
  Table shown;
  rows_.hand_over(shown);
  ASSERT_FALSE(rows_.changed());
  add(kProduct, "A name");
  read();
  EXPECT_TRUE(rows_.changed());
}

TEST_F(InstallerSourceTest, MatchesANameInLowerCase) {
  rows_.add(uninstall_row("{12345678-abcd-ef01-2345-6789abcdef01}", "k"));
  add(kProduct, "A name");
  EXPECT_TRUE(read().empty());
  EXPECT_EQ(found(kProduct, Field::displayName), "A name");
  EXPECT_EQ(found(kProduct, Field::name), "{12345678-abcd-ef01-2345-6789abcdef01}");
}

TEST_F(InstallerSourceTest, EnrichesTheFirstRowOfAName) {
  rows_.add(uninstall_row(kProduct, "b"));
  rows_.add(uninstall_row(kProduct, "a"));
  add(kProduct, "A name");
  read();
  EXPECT_EQ(found(kProduct, Field::keyName), "a");
  EXPECT_EQ(found(kProduct, Field::displayName), "A name");
  rows_.erase({RowKey{{String("-2147483646"), String("a")}}});
  EXPECT_EQ(found(kProduct, Field::keyName), "b");
  EXPECT_EQ(found(kProduct, Field::displayName), "");
}

TEST_F(InstallerSourceTest, MatchesNoRowOfAnotherKeyName) {
  rows_.add(uninstall_row("another", kProduct));
  add(kProduct, "A name");
  EXPECT_EQ(read().size(), 1u);
}

TEST_F(InstallerSourceTest, ReadsProductsInTheirOrder) {
  add(kOther, "second by name");
  add(kProduct, "first by name");
  read();
  EXPECT_EQ(names(), (std::vector<std::string>{kOther, kProduct}));
  EXPECT_EQ(found(kProduct, Field::displayName), "first by name") << "the last one stands";
}

TEST_F(InstallerSourceTest, HidesTheInstallersWindowsInEachPass) {
  InstallerSource source(registry_, services(), &window_);
  const RowSink nowhere = [](const Row&) {};
  for (int pass = 0; pass < 2; ++pass) {
    installer_.forget_calls();
    int another = 0;
    void* owner = &another;
    installer_.set_internal_ui(5, &owner);
    source.ReadMsiProducts(rows_, unseen_, nowhere);
    EXPECT_EQ(installer_.ui_owner(), &window_);
    EXPECT_EQ(installer_.calls(),
              (std::vector<std::string>{"set_internal_ui 5", "set_internal_ui 2", "product_at 0"}));
  }
}

/// Keeps the address of the owner's variable, as the system may.
class KeepingInstaller final : public MemoryInstaller {
 public:
  void set_internal_ui(uint32_t, void** owner) override {
    owner_ = owner;
    given_.push_back(*owner);
  }
  void** owner() const { return owner_; }
  const std::vector<void*>& given() const { return given_; }

 private:
  void** owner_ = nullptr;
  std::vector<void*> given_;
};

TEST_F(InstallerSourceTest, LetsTheSystemWriteAnOwnerAtAnyTime) {
  KeepingInstaller installer;
  InstallerSource source(registry_, {installer, files_, clock_}, &window_);
  const RowSink nowhere = [](const Row&) {};
  source.ReadMsiProducts(rows_, unseen_, nowhere);
  void** const owner = installer.owner();
  const auto begin = reinterpret_cast<uintptr_t>(&source);
  const auto address = reinterpret_cast<uintptr_t>(owner);
  ASSERT_TRUE(address >= begin && address < begin + sizeof source) << "it lives as the source does";
  EXPECT_EQ(*owner, &window_);
  int another = 0;
  *owner = &another;
  source.ReadMsiProducts(rows_, unseen_, nowhere);
  EXPECT_EQ(installer.owner(), owner);
  EXPECT_EQ(*owner, &window_);
  EXPECT_EQ(installer.given(), (std::vector<void*>{&window_, &window_}));
}

TEST_F(InstallerSourceTest, ReadsThePatchesOnceForAllProducts) {
  add(kProduct, "A name");
  add(kOther, "Another");
  registry_.create(product_patch_key("P1"));
  registry_.create(product_patch_key("P2"));
  registry_.create(product_patch_key("P1", "00000000000000000000000000002A00"));
  read();
  EXPECT_EQ(text_of(delivered_.at(0), Field::patches), "2");
  const std::vector<std::string> calls = registry_.calls();
  EXPECT_EQ(std::count(calls.begin(), calls.end(),
                       "open SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Installer\\UserData"),
            1);
  EXPECT_EQ(registry_.open_keys(), 0u);
}

TEST_F(InstallerSourceTest, DoesWithoutTheInstallersRegistry) {
  add(kProduct, "A name");
  registry_.fail("open", "", kRegAccessDenied, -1);
  ASSERT_EQ(read().size(), 1u);
  EXPECT_EQ(text_of(delivered_[0], Field::patches), "0");
}

TEST_F(InstallerSourceTest, ReadsTheProductBeforeAFailureOnceMore) {
  add(kProduct, "A name");
  add(kOther, "Another");
  installer_.fail("product_at 1", kInstallerBadConfiguration);
  rows_.add(uninstall_row(kProduct, "k"));
  read();
  EXPECT_TRUE(delivered_.empty()) << "index 1 has failed, and 2 is the end";
  const std::vector<std::string>& calls = installer_.calls();
  const std::string first_call = std::string("feature_at ") + kProduct + " 0";
  EXPECT_EQ(std::count(calls.begin(), calls.end(), first_call), 2);
}

TEST_F(InstallerSourceTest, ReadsTheProductThatAFailureLeaves) {
  add(kProduct, "A name");
  installer_.add("gap");
  add(kOther, "Another");
  installer_.fail("product_at 1", kInstallerBadConfiguration);
  installer_.leave_after_failure("left");
  read();
  EXPECT_EQ(names(), (std::vector<std::string>{kProduct, "left", kOther}));
}

TEST_F(InstallerSourceTest, GoesOnAfterAProductThatFails) {
  add(kProduct, "A name");
  add("gap", "");
  add(kOther, "Another");
  installer_.fail("product_at 1", kInstallerBadConfiguration);
  read();
  EXPECT_EQ(names(), (std::vector<std::string>{kProduct, kOther}))
      << "the repeated one finds its own row";
}

TEST_F(InstallerSourceTest, ReadsAProductWithoutACodeWhereTheFirstFails) {
  add("", "");
  add(kProduct, "A name");
  installer_.fail("product_at 0", kInstallerBadConfiguration);
  read();
  EXPECT_EQ(names(), (std::vector<std::string>{"", kProduct}));
  EXPECT_EQ(text_of(delivered_[0], Field::MSI), "1");
}

TEST_F(InstallerSourceTest, EndsWhereTheInstallerOnlyFails) {
  add(kProduct, "A name");
  installer_.fail("product_at", kInstallerBadConfiguration, -1);
  read();
  EXPECT_EQ(names(), std::vector<std::string>{""});
  const std::vector<std::string>& calls = installer_.calls();
  EXPECT_EQ(std::count(calls.begin(), calls.end(), "product_at 99"), 1);
  EXPECT_EQ(std::count(calls.begin(), calls.end(), "product_at 100"), 0);
}

TEST_F(InstallerSourceTest, TakesCodesThatAreNone) {
  const std::string cases[] = {"",
                               "no code",
                               std::string(38, 'x'),
                               std::string(kProduct, 37),
                               std::string(kProduct).substr(1),
                               "{}",
                               "%s%n%d"};
  registry_.create(product_patch_key("P1"));
  for (const std::string& code : cases)
    add(code, "Name of " + code);
  read();
  ASSERT_EQ(delivered_.size(), std::size(cases));
  for (size_t i = 0; i < std::size(cases); ++i) {
    SCOPED_TRACE(cases[i]);
    EXPECT_EQ(text_of(delivered_[i], Field::name), cases[i]);
    EXPECT_EQ(text_of(delivered_[i], Field::displayName), "Name of " + cases[i]);
    const bool lacks_a_brace_only = cases[i].size() == 37;
    EXPECT_EQ(text_of(delivered_[i], Field::patches), lacks_a_brace_only ? "1" : "0");
  }
}

TEST_F(InstallerSourceTest, TakesTheCodeBeforeForOneThatIsTooLong) {
  add(kProduct, "A name");
  add(std::string(39, 'y'), "too long");
  read();
  EXPECT_EQ(names(), std::vector<std::string>{kProduct});
}

TEST_F(InstallerSourceTest, FindsFiveThousandProductsAmongFiveThousandRows) {
  constexpr int kCount = 5000;
  for (int i = 0; i < kCount; ++i) {
    const std::string code = String::formatted("{%08X-0000-0000-0000-000000000000}", i).c_str();
    add(code, "Product " + std::to_string(i));
    // Every second product has a row; the other rows are of no product.
    rows_.add(uninstall_row(i % 2 == 0 ? code : "row " + code, code));
  }
  read();
  EXPECT_EQ(delivered_.size(), size_t{kCount} / 2);
  EXPECT_EQ(rows_.keys().size(), size_t{kCount} + 1);
  EXPECT_EQ(found("{00001386-0000-0000-0000-000000000000}", Field::displayName), "Product 4998");
  EXPECT_EQ(found("row {00001387-0000-0000-0000-000000000000}", Field::displayName), "");
  EXPECT_EQ(found("{00001387-0000-0000-0000-000000000000}", Field::displayName), "Product 4999");
}

/// A pass over rows of Uninstall keys and new ones, with something done before each call.
class RefreshInMidPass : public InstallerSourceTest {
 protected:
  static constexpr int kProducts = 3;

  RefreshInMidPass() {
    for (int i = 0; i < kProducts; ++i) {
      installer_.add(code(i)) = {code(i), {{"ProductName", "new name"}}, {{"Main", ""}}};
      registry_.create(product_patch_key("P1", std::to_string(i)));
    }
    registry_.create(patch_key("P1"));
    files_.add_file("C:\\there.ico");
    files_.set_variable("here", "C:");
  }

  static std::string code(int number) { return "{" + std::to_string(number) + "}"; }

  void fill_rows() {
    rows_.clear();
    for (int i = 0; i < kProducts - 1; ++i) {
      Row row = uninstall_row(code(i), code(i));
      cell(row, Field::displayIcon).text = "%here%\\there.ico";
      rows_.add(row);
    }
  }
  /// The rows are whole, and none of an Uninstall key has come back.
  void expect_sound_rows(bool cleared) {
    for (const RowKey& key : rows_.keys()) {
      const bool own = key == RowKey{{"", ""}};
      EXPECT_TRUE(own || !cleared) << key.texts[1].c_str();
    }
    for (const Row& row : delivered_) {
      EXPECT_EQ(text_of(row, Field::displayName), "new name");
      EXPECT_EQ(text_of(row, Field::features), "1");
    }
  }
  /// Makes a pass that calls `hook` before each call of the registry, the installer or the files.
  void pass(const std::function<void()>& hook) {
    HookedRegistry registry(registry_, [&hook](const std::string&, uint32_t) { hook(); });
    HookedInstaller installer(installer_, hook);
    HookedFiles files(files_, hook);
    read_through(registry, installer, files);
    EXPECT_EQ(registry.open_keys(), 0);
  }
};

TEST_F(RefreshInMidPass, LeavesNoRowBehindAtWhicheverCallItComes) {
  int calls = 0;
  fill_rows();
  pass([&calls] { ++calls; });
  ASSERT_GT(calls, 30);
  // Of the two rows with an icon: its variable expanded, its file opened.
  EXPECT_EQ(std::count(files_.calls().begin(), files_.calls().end(), "can_open C:\\there.ico"), 2);
  EXPECT_EQ(rows_.keys().size(), size_t{kProducts});
  for (int at = 0; at < calls; ++at) {
    SCOPED_TRACE(at);
    fill_rows();
    int call = 0;
    pass([&] {
      if (call++ == at) rows_.clear();
    });
    expect_sound_rows(true);
    EXPECT_LE(rows_.keys().size(), 1u);
  }
}

TEST_F(RefreshInMidPass, ForgetsTheRowUnderWork) {
  fill_rows();
  bool at_work = false;
  HookedInstaller installer(installer_, [&] {
    const std::vector<std::string>& calls = installer_.calls();
    if (!calls.empty() && calls.back() == "feature_at {1} 0") at_work = true;
    if (at_work) rows_.clear();
  });
  read_through(registry_, installer, files_);
  EXPECT_TRUE(at_work);
  EXPECT_FALSE(rows_.has(code(0)));
  EXPECT_FALSE(rows_.has(code(1)));
  EXPECT_EQ(names(), std::vector<std::string>{code(2)});
}

TEST_F(RefreshInMidPass, MayComeFromAnotherThread) {
  std::atomic<bool> done{false};
  std::thread refresher([this, &done] {
    Table shown;
    while (!done) {
      rows_.hand_over(shown);
      rows_.clear();
    }
  });
  for (int round = 0; round < 10; ++round) {
    fill_rows();
    pass([] { std::this_thread::yield(); });
    expect_sound_rows(false);
  }
  done = true;
  refresher.join();
  fill_rows();
  pass([] {});
  EXPECT_EQ(rows_.keys().size(), size_t{kProducts});
  for (int i = 0; i < kProducts; ++i)
    EXPECT_EQ(found(code(i).c_str(), Field::displayName), "new name") << i;
}

}  // namespace
