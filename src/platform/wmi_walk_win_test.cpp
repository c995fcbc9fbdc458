#include "platform/wmi_walk_win.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include "orlo/com_error.h"
#include "orlo/owned_handle.h"
#include "orlo/system_text.h"
#include "platform/wmi_fakes_win_test_support.h"
#include "platform/wmi_server_win_test_support.h"

namespace {

void make_null(VARIANT& value) {
  value.vt = VT_NULL;
}

void make_empty(VARIANT&) {}

FakeProperty text(const std::wstring& name, const std::wstring& content) {
  return {name, [content](VARIANT& value) {
            value.vt = VT_BSTR;
            value.bstrVal = SysAllocStringLen(content.data(), static_cast<UINT>(content.size()));
          }};
}

FakeProperty number(const std::wstring& name, LONG content) {
  return {name, [content](VARIANT& value) {
            value.vt = VT_I4;
            value.lVal = content;
          }};
}

FakeProperty truth(const std::wstring& name, bool content) {
  return {name, [content](VARIANT& value) {
            value.vt = VT_BOOL;
            value.boolVal = content ? VARIANT_TRUE : VARIANT_FALSE;
          }};
}

FakeProperty array(const std::wstring& name) {
  return {name, [](VARIANT& value) {
            value.vt = VT_ARRAY | VT_BSTR;
            value.parray = SafeArrayCreateVector(VT_BSTR, 0, 3);
          }};
}

FakeProperty failing(const std::wstring& name) {
  return {name, nullptr, result_of(WBEM_E_FAILED)};
}

using Properties = std::vector<FakeProperty>;

/// What the walk over some instances comes to. Ends with nothing alive, whatever it comes to.
struct Walk {
  explicit Walk(const std::vector<Properties>& instances, HRESULT last = WBEM_S_FALSE)
      : Walk(
            instances.size(), [&](size_t i) { return new FakeInstance(instances[i]); }, last) {}

  Walk(size_t count, FakeEnumerator::MakeInstance make, HRESULT last = WBEM_S_FALSE) {
    const int fakes = live_fakes();
    const int handles = ORLO::live_handles();
    {
      const OwnedCom<IEnumWbemClassObject> enumerator(
          new FakeEnumerator(count, std::move(make), last));
      try {
        complete = read_wmi_instances(*enumerator.get(), results);
      } catch (const ORLO::ComError& error) {
        thrown = static_cast<HRESULT>(error.hresult);
      }
    }
    EXPECT_EQ(live_fakes(), fakes);
    EXPECT_EQ(ORLO::live_handles(), handles);
  }

  std::string property(size_t index, const char* name) const {
    const auto found = results.at(index).find(name);
    return found != results.at(index).end() ? found->second.c_str() : "-";
  }

  bool complete = false;
  HRESULT thrown = S_OK;
  WmiInstances results;
};

TEST(WmiWalk, TakesThePropertiesOfEachInstance) {
  const Walk walk({{text(L"HotFixID", L"KB1"), text(L"Caption", L"http://one")},
                   {text(L"HotFixID", L"KB2"), text(L"Caption", L"")}});
  EXPECT_TRUE(walk.complete);
  ASSERT_EQ(walk.results.size(), 2u);
  EXPECT_EQ(walk.results[0].size(), 2u);
  EXPECT_EQ(walk.property(0, "HotFixID"), "KB1");
  EXPECT_EQ(walk.property(0, "Caption"), "http://one");
  EXPECT_EQ(walk.property(1, "HotFixID"), "KB2");
  EXPECT_EQ(walk.property(1, "Caption"), "");
}

TEST(WmiWalk, AddsToWhatIsThere) {
  const OwnedCom<IEnumWbemClassObject> enumerator(
      new FakeEnumerator(1, [](size_t) { return new FakeInstance({text(L"a", L"b")}); }));
  WmiInstances results(2);
  EXPECT_TRUE(read_wmi_instances(*enumerator.get(), results));
  EXPECT_EQ(results.size(), 3u);
}

TEST(WmiWalk, EndsWellWithoutAnInstance) {
  const Walk walk(std::vector<Properties>{});
  EXPECT_TRUE(walk.complete);
  EXPECT_TRUE(walk.results.empty());
}

TEST(WmiWalk, EndsWellAtAnyPositiveStatus) {
  for (const HRESULT status :
       {result_of(WBEM_S_FALSE), result_of(WBEM_S_TIMEDOUT), HRESULT{1234}}) {
    const Walk walk({{text(L"a", L"b")}}, status);
    EXPECT_TRUE(walk.complete);
    EXPECT_EQ(walk.results.size(), 1u);
  }
}

TEST(WmiWalk, KeepsTheInstancesFromBeforeAFailure) {
  for (const HRESULT status :
       {result_of(WBEM_E_FAILED), result_of(WBEM_E_INVALID_CLASS), HRESULT{E_OUTOFMEMORY},
        HRESULT_FROM_WIN32(RPC_S_SERVER_UNAVAILABLE)}) {
    const Walk walk({{text(L"a", L"b")}, {text(L"a", L"c")}}, status);
    EXPECT_FALSE(walk.complete);
    ASSERT_EQ(walk.results.size(), 2u);
    EXPECT_EQ(walk.property(1, "a"), "c");
  }
}

TEST(WmiWalk, EndsAtAPropertyThatIsNotTold) {
  const Walk walk({{text(L"a", L"1")},
                   {text(L"a", L"2"), failing(L"b"), text(L"c", L"2")},
                   {text(L"a", L"3")}});
  EXPECT_FALSE(walk.complete);
  EXPECT_EQ(walk.thrown, S_OK);
  ASSERT_EQ(walk.results.size(), 2u);
  EXPECT_EQ(walk.results[1].size(), 1u);
  EXPECT_EQ(walk.property(1, "a"), "2");
}

TEST(WmiWalk, LeavesNullsOut) {
  const Walk walk({{{L"a", &make_null}, text(L"b", L"x"), {L"c", &make_null}}});
  EXPECT_TRUE(walk.complete);
  ASSERT_EQ(walk.results.size(), 1u);
  EXPECT_EQ(walk.results[0].size(), 1u);
  EXPECT_EQ(walk.property(0, "b"), "x");
}

TEST(WmiWalk, TakesNoValueForAnEmptyText) {
  const Walk walk({{{L"a", &make_empty},
                    {L"b", [](VARIANT& value) { value.vt = VT_BSTR; }},
                    text(L"c", L"x")}});
  EXPECT_TRUE(walk.complete);
  ASSERT_EQ(walk.results.size(), 1u);
  EXPECT_EQ(walk.property(0, "a"), "");
  EXPECT_EQ(walk.property(0, "b"), "");
  EXPECT_EQ(walk.property(0, "c"), "x");
}

TEST(WmiWalk, TurnsNumbersIntoText) {
  const Walk walk({{number(L"a", 42),
                    number(L"b", -2147483647 - 1),
                    number(L"c", 0),
                    {L"d",
                     [](VARIANT& value) {
                       value.vt = VT_UI1;
                       value.bVal = 255;
                     }},
                    {L"e",
                     [](VARIANT& value) {
                       value.vt = VT_I2;
                       value.iVal = -3;
                     }},
                    truth(L"f", true)}});
  EXPECT_TRUE(walk.complete);
  ASSERT_EQ(walk.results.size(), 1u);
  EXPECT_EQ(walk.property(0, "a"), "42");
  EXPECT_EQ(walk.property(0, "b"), "-2147483648");
  EXPECT_EQ(walk.property(0, "c"), "0");
  EXPECT_EQ(walk.property(0, "d"), "255");
  EXPECT_EQ(walk.property(0, "e"), "-3");
  EXPECT_NE(walk.property(0, "f"), "-");
}

TEST(WmiWalk, TurnsADateIntoText) {
  const Walk walk({{{L"a", [](VARIANT& value) {
                       value.vt = VT_DATE;
                       value.date = 40193;  // 15 January 2010
                     }}}});
  EXPECT_TRUE(walk.complete);
  ASSERT_EQ(walk.results.size(), 1u);
  EXPECT_NE(walk.property(0, "a").find("2010"), std::string::npos) << walk.property(0, "a");
  EXPECT_NE(walk.property(0, "a").find("15"), std::string::npos) << walk.property(0, "a");
}

TEST(WmiWalk, ThrowsAtAnArray) {
  const Walk walk({{text(L"a", L"1")}, {text(L"a", L"2"), array(L"b"), text(L"c", L"3")}});
  EXPECT_EQ(walk.thrown, DISP_E_TYPEMISMATCH);
  EXPECT_FALSE(walk.complete);
  ASSERT_EQ(walk.results.size(), 2u);
  EXPECT_EQ(walk.results[1].size(), 1u);
}

TEST(WmiWalk, ThrowsAtAnObjectWithoutAText) {
  const int before = live_fakes();
  const Walk walk({{{L"a", [](VARIANT& value) {
                       value.vt = VT_UNKNOWN;
                       value.punkVal = new FakeInstance({});
                     }}}});
  EXPECT_LT(walk.thrown, 0);
  EXPECT_EQ(live_fakes(), before);
}

TEST(WmiWalk, TakesAnInstanceWithoutPropertiesForAnEmptyOne) {
  const Walk walk({{}, {text(L"a", L"1")}});
  EXPECT_TRUE(walk.complete);
  ASSERT_EQ(walk.results.size(), 2u);
  EXPECT_TRUE(walk.results[0].empty());
  EXPECT_EQ(walk.property(1, "a"), "1");
}

TEST(WmiWalk, ReadsNamesWhereverTheirArrayBegins) {
  const Walk walk(1, [](size_t) {
    auto* const instance = new FakeInstance({text(L"a", L"1"), text(L"b", L"2")});
    instance->set_names([](SAFEARRAY*& names) {
      names = SafeArrayCreateVector(VT_BSTR, 5, 2);
      for (LONG i = 5; i < 7; ++i) {
        const ORLO::OwnedBstr name(SysAllocString(i == 5 ? L"a" : L"b"));
        SafeArrayPutElement(names, &i, name.get());
      }
      return S_OK;
    });
    return instance;
  });
  EXPECT_TRUE(walk.complete);
  EXPECT_EQ(walk.property(0, "a"), "1");
  EXPECT_EQ(walk.property(0, "b"), "2");
}

TEST(WmiWalk, EndsAtAnInstanceThatTellsNoNames) {
  const FakeInstance::MakeNames cases[] = {
      [](SAFEARRAY*&) { return result_of(WBEM_E_FAILED); },
      [](SAFEARRAY*& names) {
        names = SafeArrayCreateVector(VT_BSTR, 0, 1);
        return result_of(WBEM_E_FAILED);
      },
      [](SAFEARRAY*& names) {
        names = nullptr;
        return S_OK;
      },
      [](SAFEARRAY*& names) {
        names = SafeArrayCreateVector(VT_I4, 0, 4);
        return S_OK;
      },
      [](SAFEARRAY*& names) {
        names = SafeArrayCreateVector(VT_VARIANT, 0, 4);
        return S_OK;
      },
      [](SAFEARRAY*& names) {
        SAFEARRAYBOUND bounds[] = {{2, 0}, {2, 0}};
        names = SafeArrayCreate(VT_BSTR, 2, bounds);
        return S_OK;
      },
  };
  for (const auto& make_names : cases) {
    SCOPED_TRACE(&make_names - cases);
    const Walk walk(2, [&](size_t index) {
      auto* const instance = new FakeInstance({text(L"a", L"1")});
      if (index == 1) instance->set_names(make_names);
      return instance;
    });
    EXPECT_FALSE(walk.complete);
    EXPECT_EQ(walk.thrown, S_OK);
    ASSERT_EQ(walk.results.size(), 2u);
    EXPECT_EQ(walk.property(0, "a"), "1");
    EXPECT_TRUE(walk.results[1].empty());
  }
}

TEST(WmiWalk, TakesNoNumberForAName) {
  const ORLO::OwnedBstr name(SysAllocString(L"a"));
  const Walk walk(1, [&](size_t) {
    auto* const instance = new FakeInstance({text(L"a", L"1")});
    instance->set_names([&](SAFEARRAY*& names) {
      names = SafeArrayCreateVector(VT_UI4, 0, 1);
      LONG index = 0;
      auto number = static_cast<ULONG>(reinterpret_cast<UINT_PTR>(name.get()));
      SafeArrayPutElement(names, &index, &number);
      return S_OK;
    });
    return instance;
  });
  EXPECT_FALSE(walk.complete);
  ASSERT_EQ(walk.results.size(), 1u);
  EXPECT_TRUE(walk.results[0].empty());
}

TEST(WmiWalk, EndsAtANameThatIsNone) {
  const Walk walk(1, [](size_t) {
    auto* const instance = new FakeInstance({text(L"a", L"1")});
    instance->set_names([](SAFEARRAY*& names) {
      names = SafeArrayCreateVector(VT_BSTR, 0, 1);
      return S_OK;
    });
    return instance;
  });
  EXPECT_FALSE(walk.complete);
}

TEST(WmiWalk, EndsAtAnInstanceThatIsNone) {
  const Walk walk(1, [](size_t) { return static_cast<FakeInstance*>(nullptr); });
  EXPECT_FALSE(walk.complete);
}

TEST(WmiWalk, Takes10000Instances) {
  const Walk walk(10000, [](size_t index) {
    return new FakeInstance({text(L"HotFixID", L"KB" + std::to_wstring(index))});
  });
  EXPECT_TRUE(walk.complete);
  ASSERT_EQ(walk.results.size(), 10000u);
  EXPECT_EQ(walk.property(9999, "HotFixID"), "KB9999");
}

TEST(WmiWalk, TakesTextsInTheCodePageAndOfAnyLength) {
  const Walk walk({{text(L"a", L"\xFC\x20AC\x4E2D"), text(L"b", std::wstring(100000, L'x')),
                    text(L"\xE4", L"name")}});
  EXPECT_EQ(walk.property(0, "a"), "\xFC\x80?");
  EXPECT_EQ(walk.property(0, "b"), std::string(100000, 'x'));
  EXPECT_EQ(walk.property(0, "\xE4"), "name");
}

TEST(WmiWalk, ReadsNamesUpToTheGreatestIndex) {
  const LONG last = std::numeric_limits<LONG>::max();
  const Walk walk(1, [](size_t) {
    auto* const instance = new FakeInstance({text(L"a", L"1"), text(L"b", L"2")});
    instance->set_names([](SAFEARRAY*& names) {
      names = SafeArrayCreateVector(VT_BSTR, last - 1, 2);
      // Not every system puts elements there by their index.
      auto* const elements = static_cast<BSTR*>(names->pvData);
      elements[0] = SysAllocString(L"a");
      elements[1] = SysAllocString(L"b");
      return S_OK;
    });
    return instance;
  });
  EXPECT_TRUE(walk.complete);
  ASSERT_EQ(walk.results.size(), 1u);
  EXPECT_EQ(walk.results[0].size(), 2u);
  EXPECT_EQ(walk.property(0, "b"), "2");
}

TEST(WmiWalk, TextsEndAtTheirFirstNul) {
  const Walk walk({{text(L"a", std::wstring(L"b\0c", 3)), text(L"d", std::wstring(L"\0e", 2))}});
  EXPECT_TRUE(walk.complete);
  ASSERT_EQ(walk.results.size(), 1u);
  EXPECT_EQ(walk.results[0].at("a").length(), 1u);
  EXPECT_EQ(walk.results[0].at("d").length(), 0u);
  EXPECT_EQ(walk.property(0, "a"), "b");
}

/// A megabyte of which only the first character counts.
std::wstring padded(wchar_t first) {
  std::wstring result(512 * 1024, L'\0');
  result[0] = first;
  return result;
}

/// Bytes of memory that the process has for itself.
size_t committed() {
  size_t bytes = 0;
  MEMORY_BASIC_INFORMATION region = {};
  for (const char* at = nullptr; VirtualQuery(at, &region, sizeof region) != 0;
       at = static_cast<const char*>(region.BaseAddress) + region.RegionSize) {
    if (region.State == MEM_COMMIT && region.Type == MEM_PRIVATE) bytes += region.RegionSize;
  }
  return bytes;
}

TEST(WmiWalk, HoldsNothingOfNamesAndTextsThatItHasRead) {
  constexpr size_t kInstances = 8;
  constexpr LONG kNames = 8;
  constexpr size_t kAFewOfThem = 4 * 1024 * 1024;
  const std::wstring large_name = padded(L'a');
  const std::wstring large_text = padded(L'x');
  const size_t before = committed();
  const Walk walk(kInstances, [&](size_t) {
    auto* const instance = new FakeInstance({text(L"a", large_text)});
    instance->set_names([&](SAFEARRAY*& names) {
      names = SafeArrayCreateVector(VT_BSTR, 0, kNames);
      const ORLO::OwnedBstr name(
          SysAllocStringLen(large_name.data(), static_cast<UINT>(large_name.size())));
      for (LONG i = 0; i < kNames; ++i)
        SafeArrayPutElement(names, &i, name.get());
      return S_OK;
    });
    return instance;
  });
  EXPECT_LT(committed(), before + kAFewOfThem);
  EXPECT_TRUE(walk.complete);
  ASSERT_EQ(walk.results.size(), kInstances);
  EXPECT_EQ(walk.property(kInstances - 1, "a"), "x");
}

/// What becomes of a query on a server. Ends with nothing alive, whatever it comes to.
struct Query {
  explicit Query(FakeServer& server) : results(2) {
    const int fakes = live_fakes();
    const int handles = ORLO::live_handles();
    {
      const OwnedCom<IWbemLocator> locator(new FakeLocator(server));
      try {
        complete = run_wmi_query(*locator.get(), "SELECT x", "ROOT/CIMV2", results);
      } catch (const ORLO::ComError& error) {
        thrown = static_cast<HRESULT>(error.hresult);
      }
    }
    EXPECT_EQ(live_fakes(), fakes);
    EXPECT_EQ(ORLO::live_handles(), handles);
  }

  bool complete = false;
  HRESULT thrown = S_OK;
  WmiInstances results;
};

TEST(WmiQueryOnALocator, GivesTheInstancesInPlaceOfWhatWasThere) {
  FakeServer server;
  const Query query(server);
  EXPECT_TRUE(query.complete);
  EXPECT_EQ(query.results.size(), 1u);
}

TEST(WmiQueryOnALocator, AsksInTheNameOfWhoRunsTheProgram) {
  FakeServer server;
  const Query query(server);
  EXPECT_EQ(server.name_space, L"ROOT/CIMV2");
  // Authentication by NT, no authorisation, each call, impersonation, no capabilities.
  EXPECT_EQ(server.blanket_arguments, L"10,0,3,3,0,");
  EXPECT_EQ(server.language, L"WQL");
  EXPECT_EQ(server.text, L"SELECT x");
  EXPECT_EQ(server.flags, 0x30);
}

/// It fails without an instance, and each step after the refusal is left out.
void expect_refused(FakeServer& server, int steps) {
  const Query query(server);
  EXPECT_FALSE(query.complete);
  EXPECT_EQ(query.thrown, S_OK);
  EXPECT_TRUE(query.results.empty());
  EXPECT_EQ(server.name_space, L"ROOT/CIMV2");
  EXPECT_EQ(!server.blanket_arguments.empty(), steps > 1);
  EXPECT_EQ(!server.text.empty(), steps > 2);
}

TEST(WmiQueryOnALocator, FailsWhereTheServerRefuses) {
  for (const bool has_services : {false, true}) {
    FakeServer server;
    server.connecting = result_of(WBEM_E_ACCESS_DENIED);
    server.has_services = has_services;
    expect_refused(server, 1);
  }
  FakeServer server;
  server.has_services = false;
  expect_refused(server, 1);
}

TEST(WmiQueryOnALocator, FailsWhereTheBlanketIsRefused) {
  FakeServer server;
  server.blanket = E_ACCESSDENIED;
  expect_refused(server, 2);
  FakeServer without;
  without.has_security = false;
  expect_refused(without, 1);
}

TEST(WmiQueryOnALocator, FailsWhereTheQueryIsRefused) {
  for (const bool has_enumerator : {false, true}) {
    FakeServer server;
    server.query = result_of(WBEM_E_INVALID_QUERY);
    server.has_enumerator = has_enumerator;
    expect_refused(server, 3);
  }
  FakeServer server;
  server.has_enumerator = false;
  expect_refused(server, 3);
}

TEST(WmiQueryOnALocator, KeepsTheInstancesFromBeforeAFailure) {
  FakeServer server;
  server.make_enumerator = [] {
    return new FakeEnumerator(
        1, [](size_t) { return new FakeInstance({text(L"a", L"b")}); }, E_FAIL);
  };
  const Query query(server);
  EXPECT_FALSE(query.complete);
  EXPECT_EQ(query.results.size(), 1u);
}

TEST(WmiQueryOnALocator, LetsGoOfEverythingWhereAPropertyHasNoText) {
  FakeServer server;
  server.make_enumerator = [] {
    return new FakeEnumerator(1, [](size_t) { return new FakeInstance({array(L"a")}); });
  };
  const Query query(server);
  EXPECT_EQ(query.thrown, DISP_E_TYPEMISMATCH);
}

}  // namespace
