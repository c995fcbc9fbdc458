#include "export/yexcel/random_book_test_support.h"
#include "platform/memory_storage.h"

namespace {

using YExcel::Document;
using YExcel::test::RandomBook;

TEST(RandomBooks, AreReadBackAsTheyWere) {
  for (uint32_t seed = 0; seed < 100; ++seed) {
    SCOPED_TRACE(seed);
    RandomBook book(seed);
    MemoryStorage storage;
    {
      Document document(storage);
      book.fill(document);
      ASSERT_TRUE(document.SaveAs("a.xls"));
    }
    book.expect_in(storage.file(u"a.xls")->at(u"Workbook"));
    if (HasFailure()) return;
  }
}

}  // namespace
