// Ownership by pointer: shared by a count in the object (RefPtr), or sole (SPtr).
#pragma once

#include <cstdint>

namespace ORLO {

/// Base of objects shared by count. Whoever first holds the object makes the count 1; a copy of
/// an object starts with a count of its own. The count is no atomic: pointers to one object are
/// copied across threads only under the lock of the structure that holds them.
class RefCounter {
 public:
  RefCounter() noexcept = default;
  RefCounter(const RefCounter&) noexcept : ref_count(0) {}
  RefCounter& operator=(const RefCounter&) noexcept { return *this; }
  virtual ~RefCounter() = default;

  uint32_t ref_count = 0;
};

/// The read side of both pointers. Owns nothing.
template <typename T>
class SAccess {
 public:
  virtual ~SAccess() = default;

  T* get() const noexcept { return ptr; }
  T* operator->() const noexcept { return ptr; }
  T& operator*() const noexcept { return *ptr; }
  explicit operator bool() const noexcept { return ptr != nullptr; }

 protected:
  explicit SAccess(T* object) noexcept : ptr(object) {}
  SAccess(const SAccess&) noexcept = default;
  SAccess& operator=(const SAccess&) noexcept = default;

  T* ptr;
};

/// Keeps an object derived from RefCounter alive; the last one to go deletes it.
template <typename T>
class RefPtr : public SAccess<T> {
 public:
  RefPtr() noexcept : SAccess<T>(nullptr) {}
  explicit RefPtr(T* object) noexcept : SAccess<T>(object) { take(); }
  RefPtr(const RefPtr& other) noexcept : SAccess<T>(other) { take(); }
  ~RefPtr() override { release(); }

  /// Takes the new object before it releases the old one: the old one may own the new one.
  RefPtr& operator=(const RefPtr& other) noexcept {
    if (this->ptr == other.ptr) return *this;
    other.take();
    T* const taken = other.ptr;
    release();
    this->ptr = taken;
    return *this;
  }

 private:
  void take() const noexcept {
    if (this->ptr != nullptr) ++this->ptr->ref_count;
  }

  void release() noexcept {
    RefCounter* const object = this->ptr;
    this->ptr = nullptr;
    if (object != nullptr && object->ref_count-- == 1) delete object;
  }
};

/// The sole owner of its object.
template <typename T>
class SPtr : public SAccess<T> {
 public:
  SPtr() noexcept : SAccess<T>(nullptr) {}
  /// Takes the object over.
  explicit SPtr(T* object) noexcept : SAccess<T>(object) {}
  SPtr(const SPtr&) = delete;
  SPtr& operator=(const SPtr&) = delete;
  ~SPtr() override { reset(); }

  /// Destroys the object held and takes over another.
  void reset(T* object = nullptr) noexcept {
    T* const old = this->ptr;
    this->ptr = object;
    delete old;
  }
};

}  // namespace ORLO
