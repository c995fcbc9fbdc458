#include "orlo/com_module.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace ORLO {
namespace {

void some_function() {}

/// Has all functions but one, and notes what it is asked for.
class FakeFunctions : public ModuleFunctions {
 public:
  Function find(const char* module, const char* name) override {
    asked.push_back(std::string(module) + "." + name);
    return missing == name ? nullptr : &some_function;
  }
  std::string missing;
  std::vector<std::string> asked;
};

const std::vector<std::string> kAll = {"OLE32.CoResumeClassObjects", "OLE32.CoAddRefServerProcess",
                                       "OLE32.CoReleaseServerProcess", "OLE32.CoInitializeEx",
                                       "OLE32.CoCreateInstanceEx"};

TEST(ComModule, LooksItsFunctionsUpInTheirOrder) {
  FakeFunctions functions;
  const ComModule module(functions);
  EXPECT_EQ(functions.asked, kAll);
  EXPECT_EQ(module[ComFunction::create_instance], &some_function);
}

TEST(ComModule, MissingFunctionIsAnErrorOfTheLibrary) {
  for (size_t i = 0; i < kAll.size(); ++i) {
    SCOPED_TRACE(kAll[i]);
    FakeFunctions functions;
    functions.missing = kAll[i].substr(kAll[i].find('.') + 1);
    try {
      const ComModule module(functions);
      ADD_FAILURE() << "nothing was thrown";
    } catch (const ORLOException& exception) {
      EXPECT_EQ(exception.code, 0x42FF0007u);
    }
    EXPECT_EQ(functions.asked.size(), i + 1);
  }
}

}  // namespace
}  // namespace ORLO
