// Objects with WMI's interfaces that do what a test says, and count the references to them.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "orlo/system_text.h"
#include "platform/wmi_walk_win.h"

/// How many fakes are alive.
inline int& live_fakes() {
  static int count = 0;
  return count;
}

constexpr HRESULT result_of(WBEMSTATUS status) {
  return static_cast<HRESULT>(status);
}

// COM's interfaces have no destructor; nobody deletes a fake through one.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"

/// Base of the fakes, which count references and delete themselves with the last one.
template <typename Interface>
class FakeObject : public Interface {
 public:
  FakeObject() { ++live_fakes(); }
  FakeObject(const FakeObject&) = delete;
  FakeObject& operator=(const FakeObject&) = delete;
  virtual ~FakeObject() { --live_fakes(); }

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void** object) override {
    *object = nullptr;
    return E_NOINTERFACE;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
  ULONG STDMETHODCALLTYPE Release() override {
    const ULONG left = --references_;
    if (left == 0) delete this;
    return left;
  }

 private:
  ULONG references_ = 1;
};

/// A property: what Get() answers, and the value that it makes.
struct FakeProperty {
  std::wstring name;
  std::function<void(VARIANT&)> make_value;
  HRESULT status = S_OK;
};

class FakeInstance final : public FakeObject<IWbemClassObject> {
 public:
  using MakeNames = std::function<HRESULT(SAFEARRAY*&)>;

  explicit FakeInstance(std::vector<FakeProperty> properties)
      : properties_(std::move(properties)) {}
  /// Answers GetNames() in place of the properties.
  void set_names(MakeNames make) { make_names_ = std::move(make); }

  HRESULT STDMETHODCALLTYPE Get(LPCWSTR name, LONG, VARIANT* value, CIMTYPE*, LONG*) override {
    if (name == nullptr) return result_of(WBEM_E_INVALID_PARAMETER);
    for (const FakeProperty& property : properties_) {
      if (property.name != name) continue;
      if (property.make_value) property.make_value(*value);
      return property.status;
    }
    return result_of(WBEM_E_NOT_FOUND);
  }
  HRESULT STDMETHODCALLTYPE GetNames(LPCWSTR, LONG flags, VARIANT*, SAFEARRAY** names) override {
    if (flags != 0x40) return result_of(WBEM_E_INVALID_PARAMETER);
    if (make_names_) return make_names_(*names);
    *names = SafeArrayCreateVector(VT_BSTR, 0, static_cast<ULONG>(properties_.size()));
    for (LONG i = 0; i < static_cast<LONG>(properties_.size()); ++i) {
      const ORLO::OwnedBstr name(SysAllocString(properties_[static_cast<size_t>(i)].name.c_str()));
      SafeArrayPutElement(*names, &i, name.get());
    }
    return S_OK;
  }

  HRESULT STDMETHODCALLTYPE GetQualifierSet(IWbemQualifierSet**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE Put(LPCWSTR, LONG, VARIANT*, CIMTYPE) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE Delete(LPCWSTR) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE BeginEnumeration(LONG) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE Next(LONG, BSTR*, VARIANT*, CIMTYPE*, LONG*) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE EndEnumeration() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetPropertyQualifierSet(LPCWSTR, IWbemQualifierSet**) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE Clone(IWbemClassObject**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetObjectText(LONG, BSTR*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE SpawnDerivedClass(LONG, IWbemClassObject**) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE SpawnInstance(LONG, IWbemClassObject**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE CompareTo(LONG, IWbemClassObject*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetPropertyOrigin(LPCWSTR, BSTR*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE InheritsFrom(LPCWSTR) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetMethod(LPCWSTR, LONG, IWbemClassObject**,
                                      IWbemClassObject**) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE PutMethod(LPCWSTR, LONG, IWbemClassObject*,
                                      IWbemClassObject*) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE DeleteMethod(LPCWSTR) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE BeginMethodEnumeration(LONG) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE NextMethod(LONG, BSTR*, IWbemClassObject**,
                                       IWbemClassObject**) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE EndMethodEnumeration() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetMethodQualifierSet(LPCWSTR, IWbemQualifierSet**) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE GetMethodOrigin(LPCWSTR, BSTR*) override { return E_NOTIMPL; }

 private:
  const std::vector<FakeProperty> properties_;
  MakeNames make_names_;
};

/// Makes each instance when it is asked for; then answers the last status for ever.
class FakeEnumerator final : public FakeObject<IEnumWbemClassObject> {
 public:
  /// Null is an instance that isn't there.
  using MakeInstance = std::function<FakeInstance*(size_t index)>;

  FakeEnumerator(size_t count, MakeInstance make, HRESULT last = WBEM_S_FALSE)
      : count_(count), make_(std::move(make)), last_(last) {}

  HRESULT STDMETHODCALLTYPE Next(LONG timeout, ULONG count, IWbemClassObject** object,
                                 ULONG* returned) override {
    if (timeout != -1 || count != 1) return result_of(WBEM_E_INVALID_PARAMETER);
    *object = nullptr;
    *returned = 0;
    if (next_ == count_) return last_;
    *object = make_(next_++);
    *returned = 1;
    return WBEM_S_NO_ERROR;
  }

  HRESULT STDMETHODCALLTYPE Reset() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE NextAsync(ULONG, IWbemObjectSink*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE Clone(IEnumWbemClassObject**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE Skip(LONG, ULONG) override { return E_NOTIMPL; }

 private:
  const size_t count_;
  const MakeInstance make_;
  const HRESULT last_;
  size_t next_ = 0;
};

#pragma GCC diagnostic pop
