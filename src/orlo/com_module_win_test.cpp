#include <gtest/gtest.h>

#include "orlo/com_module.h"
#include "orlo/orlowin.h"

namespace ORLO {
namespace {

TEST(ComModule, OfTheSystemHoldsWhatItExports) {
  const HMODULE ole = GetModuleHandleA("OLE32");
  const ComModule& module = com_module();
  ASSERT_NE(ole, nullptr);
  EXPECT_EQ(module[ComFunction::initialize],
            reinterpret_cast<ModuleFunctions::Function>(GetProcAddress(ole, "CoInitializeEx")));
  EXPECT_EQ(&com_module(), &module);
}

}  // namespace
}  // namespace ORLO
