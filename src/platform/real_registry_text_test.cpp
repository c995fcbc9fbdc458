// Registry texts that real systems left behind. They are no part of the project; the folder that
// holds them is named by the environment variable ZOLVANE_REALDATA.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <map>

#include "orlo/locale.h"
#include "platform/file_bytes_test_support.h"
#include "platform/memory_registry.h"
#include "platform/reg_text.h"
#include "platform/utf16.h"

namespace {

std::string narrow(std::u16string_view text) {
  return ORLO::system_locale().narrow(text.data(), text.size());
}

bool fits_code_page(std::u16string_view text) {
  const std::string narrowed = narrow(text);
  return ORLO::system_locale().widen(narrowed.data(), narrowed.size()) == text;
}

/// Opens a key by its whole path in the native view.
RegistryKey open(MemoryRegistry& registry, std::u16string_view path) {
  const std::map<std::u16string_view, int32_t> roots = {{u"HKEY_LOCAL_MACHINE", kLocalMachine},
                                                        {u"HKEY_CURRENT_USER", kCurrentUser},
                                                        {u"HKEY_USERS", kLocalMachine + 1}};
  const size_t root_end = path.find(u'\\');
  RegistryKey key;
  registry.open(roots.at(path.substr(0, root_end)), narrow(path.substr(root_end + 1)).c_str(),
                kKeyRead | kKeyWow64_64, key);
  return key;
}

/// The value has to come as the text wrote it.
void expect_value(MemoryRegistry& registry, const RegistryKey& key, const RegStatement& expected) {
  SCOPED_TRACE(utf8_from_utf16(expected.name));
  const bool is_text =
      expected.type == kRegSz || expected.type == kRegExpandSz || expected.type == kRegMultiSz;
  const std::string data = is_text ? narrow(utf16_from_bytes(expected.data)) : expected.data;
  std::string buffer(data.size() + 1, '\0');
  uint32_t type = 0;
  uint32_t size = static_cast<uint32_t>(buffer.size());
  EXPECT_EQ(registry.value(key, narrow(expected.name).c_str(), type, buffer.data(), size),
            kRegSuccess);
  EXPECT_EQ(type, expected.type);
  EXPECT_EQ(buffer.substr(0, size), data);
}

void expect_loaded(const std::string& bytes) {
  MemoryRegistry registry;
  EXPECT_TRUE(registry.load(bytes)) << registry.error();
  const RegText text = parse_reg_text(bytes);
  EXPECT_FALSE(text.statements.empty());
  RegistryKey key;
  for (const RegStatement& statement : text.statements) {
    SCOPED_TRACE(statement.line);
    if (statement.kind == RegStatement::Kind::key) {
      key = open(registry, statement.name);
      EXPECT_EQ(static_cast<bool>(key), fits_code_page(statement.name));
    } else if (key && fits_code_page(statement.name)) {
      expect_value(registry, key, statement);
    }
  }
}

}  // namespace

TEST(RealRegistryTexts, LoadAndComeBackAsWritten) {
  const char* folder = std::getenv("ZOLVANE_REALDATA");
  if (folder == nullptr) GTEST_SKIP() << "ZOLVANE_REALDATA names no folder of real data";
  size_t files = 0;
  for (const char* below : {"uninstall", "installer"}) {
    for (const auto& entry :
         std::filesystem::directory_iterator(std::filesystem::path(folder) / below)) {
      if (entry.path().extension() != ".reg") continue;
      SCOPED_TRACE(entry.path().string());
      expect_loaded(file_bytes(entry.path()));
      ++files;
    }
  }
  EXPECT_GT(files, 0u);
}
