#include "inventory/installer_patches.h"

#include <set>
#include <string>
#include <vector>

#include "inventory/hooked_registry_test_support.h"
#include "inventory/installer_bed_test_support.h"

namespace {

std::string packed(const std::string& code) {
  return PackProductCode(code).c_str();
}

TEST(PackProductCode, ReversesTheGroupsOfDigits) {
  EXPECT_EQ(packed("{12345678-ABCD-EF01-2345-6789ABCDEF01}"), "87654321DCBA10FE32547698BADCFE10");
}

TEST(PackProductCode, ReversesEachOfTheElevenRunsInPlace) {
  EXPECT_EQ(packed("0123456789abcdefghijklmnopqrstuv"), "76543210ba98fedchgjilknmporqtsvu");
}

TEST(PackProductCode, NeedsNeitherBracesNorDashes) {
  for (const char* code :
       {"12345678-ABCD-EF01-2345-6789ABCDEF01", "{12345678ABCDEF0123456789ABCDEF01",
        "12345678ABCDEF0123456789ABCDEF01}", "-{}12345678-AB{CDEF0123456789ABCDEF01--"}) {
    EXPECT_EQ(packed(code), "87654321DCBA10FE32547698BADCFE10") << code;
  }
}

TEST(PackProductCode, OnlyStripsATextOfAnotherLength) {
  const std::pair<const char*, const char*> cases[] = {
      {"", ""},
      {"{}-", ""},
      {"no code", "no code"},
      {"{12345678-ABCD-EF01-2345-6789ABCDEF0}", "12345678ABCDEF0123456789ABCDEF0"},
      {"{12345678-ABCD-EF01-2345-6789ABCDEF012}", "12345678ABCDEF0123456789ABCDEF012"},
      {"{1-2}", "12"},
  };
  for (const auto& [code, expected] : cases)
    EXPECT_EQ(packed(code), expected) << code;
}

TEST(PackProductCode, KeepsTheCaseOfLetters) {
  EXPECT_EQ(packed("{12345678-abcd-EF01-2345-6789abcdef01}"), "87654321dcba10FE32547698badcfe10");
}

TEST(PackProductCode, LeavesTheCodeThatItIsGivenAsItIs) {
  const String code = kProduct;
  const String& same = code;
  PackProductCode(same);
  EXPECT_STREQ(code.c_str(), kProduct);
}

class InstallerPatches : public InstallerBedTest {
 protected:
  RegStatus load() {
    const RegStatus status = LoadInstallerPatches(registry_, patches_, products_);
    EXPECT_EQ(registry_.open_keys(), 0u);
    return status;
  }
  /// Its texts and numbers in one; "-" if there is no such patch.
  std::string patch(const char* key) const {
    const auto found = patches_.find(key);
    if (found == patches_.end()) return "-";
    const PatchInfo& info = found->second;
    return String::formatted("%s|%s|%s|%u|%u", info.displayName, info.localPackage, info.installed,
                             info.state, info.uninstallable)
        .c_str();
  }
  /// Patches of a product, each with a comma after it; "-" if there is no such product.
  std::string patches_of(const char* product) const {
    const auto found = products_.find(product);
    if (found == products_.end()) return "-";
    std::string all;
    for (const String& patch : found->second)
      all += patch.c_str() + std::string(",");
    return all;
  }

  PatchMap patches_;
  ProductPatchMap products_;
};

TEST_F(InstallerPatches, AreNoneWithoutTheRootKey) {
  patches_["stale"].state = 1;
  products_["kept"].insert("p");
  EXPECT_EQ(load(), kRegFileNotFound);
  EXPECT_TRUE(patches_.empty());
  EXPECT_EQ(patches_of("kept"), "p,") << "this map is only added to";
  registry_.create(user_data());
  registry_.fail("open", "", kRegAccessDenied);
  EXPECT_EQ(load(), kRegAccessDenied);
}

TEST_F(InstallerPatches, HaveTheirTextsAndNumbersFromBothPlaces) {
  registry_.set_text(patch_key("P1"), "LocalPackage", u"C:\\p1.msp");
  registry_.set_text(product_patch_key("P1"), "DisplayName", u"Patch one");
  registry_.set_text(product_patch_key("P1"), "Installed", u"20240115");
  registry_.set_number(product_patch_key("P1"), "State", 0xFFFFFFFF);
  registry_.set_number(product_patch_key("P1"), "Uninstallable", 1);
  EXPECT_EQ(load(), kRegSuccess);
  EXPECT_EQ(patches_.size(), 1u);
  EXPECT_EQ(patch("P1"), "Patch one|C:\\p1.msp|20240115|4294967295|1");
  EXPECT_EQ(patches_of(kPackedProduct), "P1,");
}

TEST_F(InstallerPatches, ListedUnderAProductOnlyHaveNoPackage) {
  registry_.set_text(product_patch_key("P1"), "DisplayName", u"Patch one");
  registry_.set_number(product_patch_key("P1"), "State", 2);
  load();
  EXPECT_EQ(patch("P1"), "Patch one|||2|0");
}

TEST_F(InstallerPatches, ListedUnderPatchesOnlyHaveNothingButThePackage) {
  registry_.set_text(patch_key("P1"), "LocalPackage", u"C:\\p1.msp");
  registry_.set_text(patch_key("P1"), "DisplayName", u"not this");
  registry_.set_number(patch_key("P1"), "State", 2);
  load();
  EXPECT_EQ(patch("P1"), "|C:\\p1.msp||0|0");
  EXPECT_TRUE(products_.empty());
}

TEST_F(InstallerPatches, KeepThePackageOfTheLastUser) {
  registry_.set_text(patch_key("P1", "S-1"), "LocalPackage", u"C:\\first.msp");
  registry_.set_text(patch_key("P1", "S-2"), "LocalPackage", u"C:\\second.msp");
  load();
  EXPECT_EQ(patch("P1"), "|C:\\second.msp||0|0");
  registry_.create(patch_key("P1", "S-3"));
  load();
  EXPECT_EQ(patch("P1"), "|||0|0") << "the last one has none";
}

TEST_F(InstallerPatches, KeepWhatTheLastProductSays) {
  registry_.set_text(product_patch_key("P1", "A"), "DisplayName", u"of A");
  registry_.set_text(product_patch_key("P1", "A"), "Installed", u"20240115");
  registry_.set_number(product_patch_key("P1", "A"), "State", 7);
  registry_.set_number(product_patch_key("P1", "A"), "Uninstallable", 7);
  registry_.set_text(product_patch_key("P1", "B"), "DisplayName", u"of B");
  load();
  EXPECT_EQ(patch("P1"), "of B|||0|0");
  EXPECT_EQ(patches_of("A"), "P1,");
  EXPECT_EQ(patches_of("B"), "P1,");
}

TEST_F(InstallerPatches, OfAllUsersAreListedUnderTheProduct) {
  registry_.create(product_patch_key("P2", "A", "S-1"));
  registry_.create(product_patch_key("P1", "A", "S-2"));
  load();
  EXPECT_EQ(patches_of("A"), "P1,P2,");
}

TEST_F(InstallerPatches, AreAddedToThoseOfTheProductsKnown) {
  products_["A"].insert("P0");
  registry_.create(product_patch_key("P1", "A"));
  load();
  EXPECT_EQ(patches_of("A"), "P0,P1,");
}

TEST_F(InstallerPatches, OfAProductWithoutTheirKeyAreNone) {
  registry_.create(product_key("A"));
  registry_.create(product_patch_key("P1", "B"));
  load();
  EXPECT_EQ(patches_of("A"), "");
  EXPECT_EQ(patches_of("B"), "P1,");
}

TEST_F(InstallerPatches, AreToldApartByTheCaseOfTheirKeys) {
  registry_.create(patch_key("ABC", "S-1"));
  registry_.create(patch_key("abc", "S-2"));
  load();
  EXPECT_EQ(patches_.size(), 2u);
}

TEST_F(InstallerPatches, NumbersHaveFourBytesOfAnyType) {
  const std::string key = product_patch_key("P1");
  for (const uint32_t type : {kRegDword, kRegBinary, uint32_t{0}, uint32_t{99}}) {
    SCOPED_TRACE(type);
    registry_.set_raw(key, "State", type, std::string("\x02\x01\x00\x00", 4));
    registry_.set_raw(key, "Uninstallable", type, std::string("\xFF\xFF\xFF\xFF", 4));
    load();
    EXPECT_EQ(patch("P1"), "|||258|4294967295");
    for (const size_t size :
         {size_t{0}, size_t{1}, size_t{3}, size_t{5}, size_t{8}, size_t{3000}}) {
      SCOPED_TRACE(size);
      registry_.set_raw(key, "State", type, std::string(size, '\x01'));
      registry_.set_raw(key, "Uninstallable", type, std::string(size, '\x01'));
      load();
      EXPECT_EQ(patch("P1"), "|||0|0");
    }
  }
}

TEST_F(InstallerPatches, TextsEndAtTheirFirstNulWhateverTheirType) {
  const std::string key = product_patch_key("P1");
  const std::u16string_view with_nul(u"Na\0me", 5);
  registry_.set_text(key, "DisplayName", with_nul);
  registry_.set_raw(key, "Installed", kRegMultiSz,
                    std::string("1\0\0\0"
                                "2\0\0\0\0\0",
                                10));
  registry_.set_raw(patch_key("P1"), "LocalPackage", kRegExpandSz, std::string("%\0x\0%\0", 6));
  load();
  EXPECT_EQ(patch("P1"), "Na|%x%|1|0|0");
  registry_.set_raw(key, "DisplayName", kRegBinary, std::string("ab\0c", 4));
  registry_.set_text(key, "Installed", u"");
  registry_.set_text(patch_key("P1"), "LocalPackage", std::u16string(500000, u'x'));
  load();
  EXPECT_EQ(patch("P1"), "ab|" + std::string(500000, 'x') + "||0|0");
}

TEST_F(InstallerPatches, StandThoughTheirKeyCannotBeOpened) {
  registry_.set_text(product_patch_key("P1", "A"), "DisplayName", u"of A");
  registry_.set_text(product_patch_key("P1", "B"), "DisplayName", u"of B");
  registry_.set_text(patch_key("P1"), "LocalPackage", u"C:\\p1.msp");
  registry_.fail("open", product_patch_key("P1", "B"), kRegAccessDenied);
  load();
  EXPECT_EQ(patch("P1"), "of A|C:\\p1.msp||0|0");
  EXPECT_EQ(patches_of("B"), "P1,");
  registry_.fail("open", patch_key("P1"), kRegAccessDenied);
  load();
  EXPECT_EQ(patch("P1"), "of B|||0|0");
}

TEST_F(InstallerPatches, AreReadOnAfterAKeyThatCannotBeOpened) {
  registry_.create(patch_key("P1", "S-1"));
  registry_.create(product_patch_key("P2", "A", "S-1"));
  registry_.create(product_patch_key("P3", "B", "S-1"));
  registry_.create(patch_key("P4", "S-2"));
  registry_.fail("open", user_data("S-1\\Patches"), kRegAccessDenied);
  registry_.fail("open", product_key("A", "S-1") + "\\Patches", kRegAccessDenied);
  load();
  EXPECT_EQ(patch("P1"), "-");
  EXPECT_EQ(patches_of("A"), "");
  EXPECT_EQ(patches_of("B"), "P3,");
  EXPECT_EQ(patch("P4"), "|||0|0");
  products_.clear();
  registry_.fail("open", user_data("S-1\\Products"), kRegAccessDenied);
  load();
  EXPECT_EQ(patch("P1"), "|||0|0");
  EXPECT_TRUE(products_.empty());
  EXPECT_EQ(patch("P4"), "|||0|0");
}

TEST_F(InstallerPatches, EndWhereTheirEnumerationFails) {
  registry_.create(patch_key("P1"));
  registry_.create(patch_key("P2"));
  registry_.create(product_patch_key("P3"));
  registry_.fail("subkey_at", "P2", kRegAccessDenied);
  EXPECT_EQ(load(), kRegSuccess);
  EXPECT_NE(patch("P1"), "-");
  EXPECT_EQ(patch("P2"), "-");
  EXPECT_NE(patch("P3"), "-");
}

TEST_F(InstallerPatches, HaveNoNameThatOpensNoSubkey) {
  registry_.create(patch_key("P1\\x"));
  registry_.create(patch_key("P1\uFF3Cx"));  // told as "P1\\x"
  registry_.create(product_patch_key("P2"));
  NulNameRegistry registry(registry_);
  EXPECT_EQ(LoadInstallerPatches(registry, patches_, products_), kRegSuccess);
  EXPECT_EQ(patches_.size(), 2u);
  EXPECT_NE(patch("P1"), "-");
  EXPECT_NE(patch("P2"), "-");
  EXPECT_EQ(products_.size(), 1u);
  EXPECT_EQ(patches_of(kPackedProduct), "P2,");
}

TEST_F(InstallerPatches, AreThoseOfTheViewOfThisProcess) {
  registry_.create(
      "HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Installer\\UserData\\S-1\\"
      "Patches\\P1");
  EXPECT_EQ(load(), kRegFileNotFound);
  registry_.create(patch_key("P2"));
  load();
  EXPECT_EQ(patch("P1"), "-");
  EXPECT_NE(patch("P2"), "-");
}

TEST_F(InstallerPatches, OfTenThousandKeysWithValuesOfWrongTypeAndSizeAreAllRead) {
  constexpr int kCount = 10000;
  for (int i = 0; i < kCount; ++i) {
    const std::string name = std::to_string(100000 + i);
    const std::string key = product_patch_key(name, std::to_string(i % 100));
    registry_.set_raw(key, "State", kRegSz, std::string(static_cast<size_t>(i % 9), '\x01'));
    registry_.set_raw(key, "DisplayName", kRegDword, "ab");
    registry_.set_number(key, "Installed", 0x61);
    registry_.create(patch_key(name));
  }
  EXPECT_EQ(load(), kRegSuccess);
  EXPECT_EQ(patches_.size(), size_t{kCount});
  EXPECT_EQ(products_.size(), 100u);
  size_t applied = 0;
  for (const auto& [product, patches] : products_)
    applied += patches.size();
  EXPECT_EQ(applied, size_t{kCount});
  EXPECT_EQ(patch("100000"), "ab||a|0|0");
}

/// Notes how much room there is for the names of subkeys.
class RoomRegistry final : public HookedRegistry {
 public:
  explicit RoomRegistry(Registry& behind)
      : HookedRegistry(behind, [](const std::string&, uint32_t) {}) {}
  const std::set<uint32_t>& rooms() const { return rooms_; }

  RegStatus subkey_at(const RegistryKey& key, uint32_t index, char* name,
                      uint32_t& length) override {
    rooms_.insert(length);
    return HookedRegistry::subkey_at(key, index, name, length);
  }

 private:
  std::set<uint32_t> rooms_;
};

TEST_F(InstallerPatches, MayBeAsDeepAndLongNamedAsTheRegistryAllows) {
  const std::string longest(255, 'n');
  registry_.create(product_patch_key(longest, longest, longest));
  registry_.create(patch_key(longest, longest));
  RoomRegistry registry(registry_);
  LoadInstallerPatches(registry, patches_, products_);
  EXPECT_EQ(registry.rooms(), std::set<uint32_t>{260});
  EXPECT_EQ(patches_of(longest.c_str()), longest + ",");
  EXPECT_NE(patch(longest.c_str()), "-");
}

}  // namespace
