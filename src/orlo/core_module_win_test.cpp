#include <gtest/gtest.h>

#include "orlo/core_module_win_test_support.h"
#include "orlo/core_resources.h"
#include "orlo/window_handles.h"

namespace ORLO {
namespace {

constexpr uint16_t kBritish = 0x809;

TEST(RealCoreModule, GivesItsStrings) {
  const RealCoreModule present;
  EXPECT_STREQ(core_string(256, "built in").c_str(), "core: access violation");
  EXPECT_STREQ(core_string(290, "built in").c_str(), "core: last string, with a euro: \x80");
  EXPECT_STREQ(core_string(257, "built in").c_str(), "built in");
  EXPECT_STREQ(core_string(5000, "built in").c_str(), "built in");
}

TEST(RealCoreModule, GivesStringsByLanguage) {
  const RealCoreModule present;
  const auto module = core_module();
  ASSERT_NE(module, nullptr);
  EXPECT_EQ(module->wide_string(1, kBritish), u"Fine");
  EXPECT_EQ(module->wide_string(9, kBritish), u"L&ess");
  EXPECT_EQ(module->wide_string(0, kBritish), u"");
  EXPECT_EQ(module->wide_string(290, kBritish), u"core: last string, with a euro: \x20ac");
  EXPECT_EQ(module->wide_string(1, 0x407), u"");
  EXPECT_EQ(module->wide_string(5000, kBritish), u"");
}

TEST(RealCoreModule, GivesTextsOfLibraryErrors) {
  const RealCoreModule present;
  EXPECT_STREQ(ORLOException(kErrorUnknownConversion).what(),
               "The format has a conversion that nobody knows.\r\n");
  EXPECT_STREQ(ORLOException(0x42FF0002).what(), "unknown error 0x42FF0002");
}

TEST(RealCoreModule, GivesReportsTheirWords) {
  const RealCoreModule present;
  const ExceptionContext context("a test");
  EXPECT_STREQ(exception_text(Exception(4)).c_str(),
               "core: failed during <a test>:\nexception code 4");
}

/// A copy of the module that a test may delete.
class ModuleCopy {
 public:
  ModuleCopy() {
    char temp[MAX_PATH] = {};
    GetTempPathA(sizeof temp, temp);
    folder_ = std::string(temp) + "orlocore-copy";
    CreateDirectoryA(folder_.c_str(), nullptr);
    restore();
  }
  ~ModuleCopy() {
    remove();
    RemoveDirectoryA(folder_.c_str());
  }
  ModuleCopy(const ModuleCopy&) = delete;
  ModuleCopy& operator=(const ModuleCopy&) = delete;

  const std::string& folder() const { return folder_; }
  bool remove() const { return DeleteFileA(file().c_str()) != FALSE; }
  void restore() const {
    EXPECT_TRUE(
        CopyFileA((core_module_folder() + "\\ORLOCORE.dll").c_str(), file().c_str(), FALSE));
  }

 private:
  std::string file() const { return folder_ + "\\ORLOCORE.dll"; }
  std::string folder_;
};

TEST(RealCoreModule, IsUnloadedStraightAfterUse) {
  using OwnedModule = OwnedHandle<NullableHandleTraits<HMODULE, &FreeLibrary>>;
  const RealCoreModule present;
  const int before = OwnedModule::live();
  {
    const auto in_use = core_module();
    ASSERT_NE(in_use, nullptr);
    EXPECT_EQ(OwnedModule::live(), before + 1);
  }
  EXPECT_EQ(OwnedModule::live(), before);
  EXPECT_STREQ(core_string(256, "built in").c_str(), "core: access violation");
  EXPECT_STREQ(ORLOException(2).what(), "unknown error 0x00000002");
  EXPECT_EQ(OwnedModule::live(), before);
}

TEST(RealCoreModule, IsNotLookedForAgainOnceItWasMissing) {
  const ModuleCopy copy;
  const RealCoreModule present(copy.folder());
  ASSERT_TRUE(copy.remove());
  EXPECT_STREQ(core_string(256, "built in").c_str(), "built in");
  copy.restore();
  EXPECT_STREQ(core_string(256, "built in").c_str(), "built in");
}

TEST(RealCoreModule, ResourcesHoldItForTheirScope) {
  using OwnedModule = OwnedHandle<NullableHandleTraits<HMODULE, &FreeLibrary>>;
  const RealCoreModule present;
  const int before = OwnedModule::live();
  {
    const CoreResources core;
    ASSERT_TRUE(core);
    EXPECT_EQ(OwnedModule::live(), before + 1);
    EXPECT_NE(FindResourceExA(core.module(), RT_STRING, MAKEINTRESOURCEA(1), kBritish), nullptr);
    EXPECT_EQ(core.dialog(5000), nullptr);
    EXPECT_FALSE(core.icon(5000));
  }
  EXPECT_EQ(OwnedModule::live(), before);
}

TEST(RealCoreModule, ResourcesDoNotLookForItAgainEither) {
  const ModuleCopy copy;
  const RealCoreModule present(copy.folder());
  EXPECT_TRUE(CoreResources());
  ASSERT_TRUE(copy.remove());
  EXPECT_FALSE(CoreResources());
  copy.restore();
  EXPECT_FALSE(CoreResources());
  EXPECT_STREQ(core_string(256, "built in").c_str(), "built in");
}

TEST(RealCoreModule, ThatIsMissingLeavesTheBuiltInTexts) {
  set_core_module_loader({});
  const ExceptionContext context("a test");
  EXPECT_STREQ(ORLOException(kErrorUnknownConversion).what(), "error 0x42FF0001");
  EXPECT_STREQ(exception_text(Exception(4)).c_str(),
               "Ein Fehler trat auf w\xe4hrend a test:\nexception code 4");
}

}  // namespace
}  // namespace ORLO
