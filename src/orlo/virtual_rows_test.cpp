#include "orlo/virtual_rows.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace ORLO {
namespace {

class VirtualRowsTest : public testing::Test {
 protected:
  const char* text(uint32_t id, int column) { return rows.text(id, column, fill).c_str(); }

  VirtualRows rows;
  int fills = 0;
  const VirtualRows::Fill fill = [this](uint32_t id, VirtualRows::Texts& texts) {
    ++fills;
    texts = {String::formatted("name %d", id), String::formatted("size %d", id)};
  };
};

TEST_F(VirtualRowsTest, IdsGrowAndAreNeverUsedTwice) {
  EXPECT_EQ(rows.add(), 1u);
  EXPECT_EQ(rows.add(), 2u);
  rows.remove(2);
  EXPECT_EQ(rows.add(), 3u);
  rows.clear();
  EXPECT_EQ(rows.count(), 0u);
  EXPECT_EQ(rows.add(), 4u);
}

TEST_F(VirtualRowsTest, RowIsFilledOnItsFirstDisplayOnly) {
  const uint32_t first = rows.add();
  const uint32_t second = rows.add();
  EXPECT_EQ(fills, 0);
  EXPECT_STREQ(text(second, 1), "size 2");
  EXPECT_STREQ(text(second, 0), "name 2");
  EXPECT_EQ(fills, 1);
  EXPECT_STREQ(text(first, 0), "name 1");
  EXPECT_EQ(fills, 2);
}

TEST_F(VirtualRowsTest, RowThatCameWithItsDataIsNotFilled) {
  const uint32_t id = rows.add({"ready"});
  EXPECT_STREQ(text(id, 0), "ready");
  EXPECT_STREQ(text(id, 1), "");
  EXPECT_EQ(fills, 0);
}

TEST_F(VirtualRowsTest, CellsThatAreNotThereAreEmpty) {
  const uint32_t id = rows.add();
  const struct {
    uint32_t id;
    int column;
  } cells[] = {{id, 2}, {id, -1}, {id, 0x7fffffff}, {0, 0}, {id + 1, 0}, {0xffffffff, 0}};
  for (const auto& cell : cells) {
    SCOPED_TRACE(testing::Message() << cell.id << '/' << cell.column);
    EXPECT_STREQ(text(cell.id, cell.column), "");
  }
  rows.remove(id);
  EXPECT_STREQ(text(id, 0), "");
}

TEST_F(VirtualRowsTest, FailureWhileFillingIsPassedOnOnce) {
  const uint32_t id = rows.add();
  const VirtualRows::Fill failing = [](uint32_t, VirtualRows::Texts&) {
    throw std::runtime_error("gone");
  };
  EXPECT_THROW(rows.text(id, 0, failing), std::runtime_error);
  EXPECT_STREQ(rows.text(id, 0, failing).c_str(), "");
}

TEST_F(VirtualRowsTest, FillingMayRemoveTheRowItself) {
  const uint32_t id = rows.add();
  const VirtualRows::Fill removing = [&](uint32_t which, VirtualRows::Texts& texts) {
    texts = {"lost"};
    rows.remove(which);
  };
  EXPECT_STREQ(rows.text(id, 0, removing).c_str(), "");
  EXPECT_EQ(rows.count(), 0u);
}

}  // namespace
}  // namespace ORLO
