// A server of WMI that lets a test in or refuses it at each step, and notes what it is asked.
#pragma once

#include <functional>
#include <string>

#include "platform/wmi_fakes_win_test_support.h"

/// What a server answers at each step, and what it was told there.
struct FakeServer {
  HRESULT connecting = S_OK;
  HRESULT blanket = S_OK;
  HRESULT query = S_OK;
  bool has_services = true;    ///< hands them out, whatever the status
  bool has_enumerator = true;  ///< likewise
  bool has_security = true;
  std::function<FakeEnumerator*()> make_enumerator = [] {
    return new FakeEnumerator(1, [](size_t) { return new FakeInstance({}); });
  };

  std::wstring name_space;
  std::wstring blanket_arguments;
  std::wstring language;
  std::wstring text;
  LONG flags = 0;
};

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"

class FakeSecurity final : public FakeObject<IClientSecurity> {
 public:
  explicit FakeSecurity(FakeServer& server) : server_(server) {}

  HRESULT STDMETHODCALLTYPE SetBlanket(IUnknown*, DWORD authentication, DWORD authorisation,
                                       OLECHAR* principal, DWORD level, DWORD impersonation,
                                       void* identity, DWORD capabilities) override {
    const bool plain = principal == nullptr && identity == nullptr;
    server_.blanket_arguments = plain ? L"" : L"named ";
    for (const DWORD argument : {authentication, authorisation, level, impersonation, capabilities})
      server_.blanket_arguments.append(std::to_wstring(argument)).append(L",");
    return server_.blanket;
  }
  HRESULT STDMETHODCALLTYPE QueryBlanket(IUnknown*, DWORD*, DWORD*, OLECHAR**, DWORD*, DWORD*,
                                         void**, DWORD*) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE CopyProxy(IUnknown*, IUnknown**) override { return E_NOTIMPL; }

 private:
  FakeServer& server_;
};

class FakeServices final : public FakeObject<IWbemServices> {
 public:
  explicit FakeServices(FakeServer& server) : server_(server) {}

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override {
    const bool known = server_.has_security && IsEqualIID(id, IID_IClientSecurity) != 0;
    *object = known ? static_cast<IClientSecurity*>(new FakeSecurity(server_)) : nullptr;
    return known ? S_OK : E_NOINTERFACE;
  }
  HRESULT STDMETHODCALLTYPE ExecQuery(BSTR language, BSTR query, LONG flags, IWbemContext* context,
                                      IEnumWbemClassObject** instances) override {
    if (context != nullptr) return result_of(WBEM_E_INVALID_PARAMETER);
    server_.language = language;
    server_.text = query;
    server_.flags = flags;
    *instances = server_.has_enumerator ? server_.make_enumerator() : nullptr;
    return server_.query;
  }

  HRESULT STDMETHODCALLTYPE OpenNamespace(BSTR, LONG, IWbemContext*, IWbemServices**,
                                          IWbemCallResult**) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE CancelAsyncCall(IWbemObjectSink*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE QueryObjectSink(LONG, IWbemObjectSink**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetObject(BSTR, LONG, IWbemContext*, IWbemClassObject**,
                                      IWbemCallResult**) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE GetObjectAsync(BSTR, LONG, IWbemContext*, IWbemObjectSink*) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE PutClass(IWbemClassObject*, LONG, IWbemContext*,
                                     IWbemCallResult**) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE PutClassAsync(IWbemClassObject*, LONG, IWbemContext*,
                                          IWbemObjectSink*) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE DeleteClass(BSTR, LONG, IWbemContext*, IWbemCallResult**) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE DeleteClassAsync(BSTR, LONG, IWbemContext*, IWbemObjectSink*) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE CreateClassEnum(BSTR, LONG, IWbemContext*,
                                            IEnumWbemClassObject**) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE CreateClassEnumAsync(BSTR, LONG, IWbemContext*,
                                                 IWbemObjectSink*) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE PutInstance(IWbemClassObject*, LONG, IWbemContext*,
                                        IWbemCallResult**) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE PutInstanceAsync(IWbemClassObject*, LONG, IWbemContext*,
                                             IWbemObjectSink*) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE DeleteInstance(BSTR, LONG, IWbemContext*, IWbemCallResult**) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE DeleteInstanceAsync(BSTR, LONG, IWbemContext*,
                                                IWbemObjectSink*) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE CreateInstanceEnum(BSTR, LONG, IWbemContext*,
                                               IEnumWbemClassObject**) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE CreateInstanceEnumAsync(BSTR, LONG, IWbemContext*,
                                                    IWbemObjectSink*) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE ExecQueryAsync(BSTR, BSTR, LONG, IWbemContext*,
                                           IWbemObjectSink*) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE ExecNotificationQuery(BSTR, BSTR, LONG, IWbemContext*,
                                                  IEnumWbemClassObject**) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE ExecNotificationQueryAsync(BSTR, BSTR, LONG, IWbemContext*,
                                                       IWbemObjectSink*) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE ExecMethod(BSTR, BSTR, LONG, IWbemContext*, IWbemClassObject*,
                                       IWbemClassObject**, IWbemCallResult**) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE ExecMethodAsync(BSTR, BSTR, LONG, IWbemContext*, IWbemClassObject*,
                                            IWbemObjectSink*) override {
    return E_NOTIMPL;
  }

 private:
  FakeServer& server_;
};

class FakeLocator final : public FakeObject<IWbemLocator> {
 public:
  explicit FakeLocator(FakeServer& server) : server_(server) {}

  /// Notes the namespace only if nothing else is said.
  HRESULT STDMETHODCALLTYPE ConnectServer(BSTR name_space, BSTR user, BSTR password, BSTR locale,
                                          LONG flags, BSTR authority, IWbemContext* context,
                                          IWbemServices** services) override {
    const bool plain = user == nullptr && password == nullptr && locale == nullptr && flags == 0 &&
                       authority == nullptr && context == nullptr;
    if (plain) server_.name_space = name_space;
    *services = server_.has_services ? new FakeServices(server_) : nullptr;
    return server_.connecting;
  }

 private:
  FakeServer& server_;
};

#pragma GCC diagnostic pop
