#include "orlo/smart_ptr.h"

#include <gtest/gtest.h>

namespace ORLO {
namespace {

struct Counted : RefCounter {
  explicit Counted(int& destroyed) : destroyed_count(destroyed) {}
  Counted(const Counted&) = default;
  ~Counted() override { ++destroyed_count; }

  int value = 7;
  int& destroyed_count;
};

struct Plain {
  explicit Plain(int& destroyed) : destroyed_count(destroyed) {}
  Plain(const Plain&) = delete;
  Plain& operator=(const Plain&) = delete;
  ~Plain() { ++destroyed_count; }

  int& destroyed_count;
};

TEST(RefCounter, CountsFromZeroUntilSomebodyHoldsTheObject) {
  int destroyed = 0;
  auto* const object = new Counted(destroyed);
  EXPECT_EQ(object->ref_count, 0U);
  const RefPtr<Counted> pointer(object);
  EXPECT_EQ(object->ref_count, 1U);
}

TEST(RefCounter, ACopyOfAnObjectHasACountOfItsOwn) {
  int destroyed = 0;
  const RefPtr<Counted> pointer(new Counted(destroyed));
  const Counted copy(*pointer);
  EXPECT_EQ(copy.ref_count, 0U);
}

TEST(RefPtr, OnNullNeitherTakesNorReleases) {
  RefPtr<Counted> pointer(nullptr);
  const RefPtr<Counted> copy(pointer);
  pointer = copy;
  EXPECT_FALSE(pointer);
  EXPECT_EQ(copy.get(), nullptr);
}

TEST(RefPtr, TheObjectLivesUntilTheSecondPointerGoes) {
  int destroyed = 0;
  auto* const first = new RefPtr<Counted>(new Counted(destroyed));
  {
    const RefPtr<Counted> second(*first);
    EXPECT_EQ(second->ref_count, 2U);
    delete first;
    EXPECT_EQ(destroyed, 0);
    EXPECT_EQ(second->ref_count, 1U);
    EXPECT_EQ((*second).value, 7);
  }
  EXPECT_EQ(destroyed, 1);
}

TEST(RefPtr, AssignmentReleasesTheOldObjectAfterTakingTheNewOne) {
  int first_destroyed = 0;
  int second_destroyed = 0;
  RefPtr<Counted> pointer(new Counted(first_destroyed));
  const RefPtr<Counted> other(new Counted(second_destroyed));
  pointer = other;
  EXPECT_EQ(first_destroyed, 1);
  EXPECT_EQ(other->ref_count, 2U);
}

/// Owns the one behind it.
struct Link : RefCounter {
  explicit Link(int& destroyed) : destroyed_count(destroyed) {}
  ~Link() override { ++destroyed_count; }

  RefPtr<Link> next;
  int value = 7;
  int& destroyed_count;
};

TEST(RefPtr, AssignmentTakesTheNewObjectBeforeTheOldOneThatOwnsItGoes) {
  int destroyed = 0;
  RefPtr<Link> link(new Link(destroyed));
  link->next = RefPtr<Link>(new Link(destroyed));
  const Link* const second = link->next.get();
  link = link->next;
  EXPECT_EQ(destroyed, 1);
  ASSERT_EQ(link.get(), second);
  EXPECT_EQ(link->ref_count, 1U);
  EXPECT_EQ(link->value, 7);
}

TEST(RefPtr, AssignmentToItselfKeepsTheObject) {
  int destroyed = 0;
  RefPtr<Counted> pointer(new Counted(destroyed));
  const RefPtr<Counted>& same = pointer;
  pointer = same;
  EXPECT_EQ(destroyed, 0);
  EXPECT_EQ(pointer->ref_count, 1U);
}

TEST(SPtr, DestroysWhatItHolds) {
  int destroyed = 0;
  {
    const SPtr<Plain> pointer(new Plain(destroyed));
    EXPECT_TRUE(pointer);
  }
  EXPECT_EQ(destroyed, 1);
}

TEST(SPtr, ANewObjectTakesThePlaceOfTheOldOne) {
  int destroyed = 0;
  SPtr<Plain> pointer(new Plain(destroyed));
  auto* const next = new Plain(destroyed);
  pointer.reset(next);
  EXPECT_EQ(destroyed, 1);
  EXPECT_EQ(pointer.get(), next);
}

TEST(SPtr, HoldsNothingByDefault) {
  SPtr<Plain> pointer;
  EXPECT_FALSE(pointer);
  pointer.reset();
  EXPECT_EQ(pointer.get(), nullptr);
}

}  // namespace
}  // namespace ORLO
