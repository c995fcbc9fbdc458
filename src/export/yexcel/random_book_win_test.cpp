// The books of random_book_test.cpp in real files.
#include <windows.h>

#include "export/yexcel/random_book_test_support.h"
#include "platform/compound_file_win_test_support.h"

namespace {

using YExcel::Document;
using YExcel::test::RandomBook;

std::string in_code_page(const std::u16string& path) {
  return String(path.c_str()).c_str();
}

TEST(RandomBooks, AreReadBackFromRealFiles) {
  const TemporaryFolder folder(u"zolvane-books-");
  const std::u16string path = folder.file(u"a.xls");
  const auto storage = make_system_storage();
  for (uint32_t seed = 0; seed < 30; ++seed) {
    SCOPED_TRACE(seed);
    RandomBook book(seed);
    {
      Document document(*storage);
      book.fill(document);
      ASSERT_TRUE(document.SaveAs(in_code_page(path)));
    }
    const auto streams = read_compound_file(path);
    ASSERT_TRUE(streams);
    ASSERT_EQ(streams->size(), 1u);
    book.expect_in(streams->at(u"Workbook"));
    if (HasFailure()) return;
  }
}

}  // namespace
