#include "platform/wmi_walk_win.h"

#include <algorithm>
#include <cstdint>
#include <span>

#include "orlo/com_error.h"
#include "orlo/system_text.h"

namespace {

struct ArrayTraits {
  using Handle = SAFEARRAY*;
  static Handle invalid() noexcept { return nullptr; }
  static void close(Handle array) noexcept { SafeArrayDestroy(array); }
};
using OwnedArray = ORLO::OwnedHandle<ArrayTraits>;

class OwnedVariant {
 public:
  OwnedVariant() noexcept { VariantInit(&value); }
  OwnedVariant(const OwnedVariant&) = delete;
  OwnedVariant& operator=(const OwnedVariant&) = delete;
  ~OwnedVariant() { VariantClear(&value); }

  VARIANT value;
};

OwnedCom<IWbemServices> connect_server(IWbemLocator& locator, const char* name_space) {
  const ORLO::OwnedBstr name = ORLO::to_bstr(name_space);
  IWbemServices* found = nullptr;
  const HRESULT status =
      locator.ConnectServer(name.get(), nullptr, nullptr, nullptr, 0, nullptr, nullptr, &found);
  OwnedCom<IWbemServices> services(found);
  if (FAILED(status)) services.reset();
  return services;
}

/// Calls are made in the name of whoever runs the program.
bool set_blanket(IWbemServices& services) {
  return SUCCEEDED(CoSetProxyBlanket(&services, RPC_C_AUTHN_WINNT, RPC_C_AUTHZ_NONE, nullptr,
                                     RPC_C_AUTHN_LEVEL_CALL, RPC_C_IMP_LEVEL_IMPERSONATE, nullptr,
                                     EOAC_NONE));
}

OwnedCom<IEnumWbemClassObject> exec_query(IWbemServices& services, const char* query) {
  const ORLO::OwnedBstr language = ORLO::to_bstr("WQL");
  const ORLO::OwnedBstr text = ORLO::to_bstr(query);
  IEnumWbemClassObject* found = nullptr;
  const HRESULT status =
      services.ExecQuery(language.get(), text.get(),
                         WBEM_FLAG_FORWARD_ONLY | WBEM_FLAG_RETURN_IMMEDIATELY, nullptr, &found);
  OwnedCom<IEnumWbemClassObject> instances(found);
  if (FAILED(status)) instances.reset();
  return instances;
}

/// Null where the object doesn't tell its names, or not as one row of texts.
OwnedArray property_names(IWbemClassObject& object) {
  SAFEARRAY* found = nullptr;
  const HRESULT status = object.GetNames(nullptr, WBEM_FLAG_NONSYSTEM_ONLY, nullptr, &found);
  OwnedArray names(found);
  VARTYPE type = VT_EMPTY;
  if (FAILED(status) || !names || SafeArrayGetDim(found) != 1 ||
      FAILED(SafeArrayGetVartype(found, &type)) || type != VT_BSTR) {
    names.reset();
  }
  return names;
}

/// Up to its first NUL, so that the length of the text is that of what is seen.
String text_of(BSTR text) {
  return String(reinterpret_cast<const char16_t*>(text));
}

String text_of(VARIANT& value) {
  OwnedVariant text;
  ORLO::check_com(static_cast<int32_t>(VariantChangeType(&text.value, &value, 0, VT_BSTR)));
  return text_of(text.value.bstrVal);
}

bool read_property(IWbemClassObject& object, BSTR name, WmiInstance& result) {
  OwnedVariant value;
  if (FAILED(object.Get(name, 0, &value.value, nullptr, nullptr))) return false;
  if (value.value.vt == VT_NULL) return true;
  result[text_of(name)] = text_of(value.value);
  return true;
}

bool read_properties(IWbemClassObject& object, WmiInstance& result) {
  const OwnedArray names = property_names(object);
  if (!names || names.get()->pvData == nullptr) return false;
  // Read where they lie, as an index beyond the last one may be more than an index holds.
  const std::span found(static_cast<const BSTR*>(names.get()->pvData),
                        names.get()->rgsabound[0].cElements);
  return std::all_of(found.begin(), found.end(), [&](BSTR name) {
    return name != nullptr && read_property(object, name, result);
  });
}

}  // namespace

bool run_wmi_query(IWbemLocator& locator, const char* query, const char* name_space,
                   WmiInstances& results) {
  results.clear();
  const OwnedCom<IWbemServices> services = connect_server(locator, name_space);
  if (!services || !set_blanket(*services.get())) return false;
  const OwnedCom<IEnumWbemClassObject> instances = exec_query(*services.get(), query);
  return instances && read_wmi_instances(*instances.get(), results);
}

bool read_wmi_instances(IEnumWbemClassObject& instances, WmiInstances& results) {
  for (;;) {
    IWbemClassObject* found = nullptr;
    ULONG count = 0;
    const HRESULT status = instances.Next(static_cast<LONG>(WBEM_INFINITE), 1, &found, &count);
    const OwnedCom<IWbemClassObject> object(found);
    if (status != WBEM_S_NO_ERROR) return SUCCEEDED(status);
    results.emplace_back();
    if (!object || !read_properties(*object.get(), results.back())) return false;
  }
}
