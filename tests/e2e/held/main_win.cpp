// Zolvane on services that stop, fail or die at points that a test has named: the whole program, to
// be met in the middle of what it is doing.
//
// The environment variable ZOLVANE_HELD names what happens, as "hold@source1 fail@hand-over":
//   start        the main thread opens its first key
//   sourceN      the reader begins with the Nth Uninstall key it reads, counted over all passes
//   productN     the reader asks the installer for its first product, counted likewise
//   servicingN   the reader opens the key of the servicing packages, counted likewise
//   wmiN         the reader connects to WMI or sends it a query, both counted, likewise
//   hand-over    the main thread reads the first date of a row
//   iconN        the icons' thread is about to extract the Nth icon, counted likewise
//   watch        a watcher of the registry waits for the next change, having told of the last one
// hold  sets the event "zolvane-held-reached" and waits for "zolvane-held-go"
// fail  throws an exception of the program's own
// die   throws what nobody knows
// crash reads memory that isn't there
// Each happens once. ZOLVANE_TRACE names a file that gets a line for each point that is reached,
// whatever happens there. ZOLVANE_LIVE names a file that gets a line with the live handles for each
// beginning of a pass: handles, registry keys.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>

#include "inventory/hooked_registry_test_support.h"
#include "orlo/exception.h"
#include "orlo/owned_handle.h"
#include "orlo/thread.h"
#include "platform/accounts.h"
#include "platform/installer.h"
#include "platform/wmi.h"
#include "start/system_services.h"
#include "view/addresses.h"

namespace {

constexpr DWORD kLimit = 120000;

/// To the file that the environment names, if it does.
void append_line(const char* variable, const std::string& line) {
  const char* const path = std::getenv(variable);
  if (path == nullptr) return;
  if (std::FILE* const file = std::fopen(path, "a")) {
    std::fprintf(file, "%s\n", line.c_str());
    std::fclose(file);
  }
}

class Points {
 public:
  Points()
      : main_thread_(GetCurrentThreadId()),
        reached_(CreateEventA(nullptr, FALSE, FALSE, "zolvane-held-reached")),
        go_(CreateEventA(nullptr, FALSE, FALSE, "zolvane-held-go")) {
    const char* const named = std::getenv("ZOLVANE_HELD");
    std::string rest = named != nullptr ? named : "";
    for (size_t end; !rest.empty(); rest.erase(0, end == std::string::npos ? end : end + 1)) {
      end = rest.find(' ');
      named_.insert(rest.substr(0, end));
    }
  }

  /// Called with the points' names on whatever thread comes there.
  void reach(const std::string& point) {
    append_line("ZOLVANE_TRACE", point);
    if (take("hold@" + point)) {
      SetEvent(reached_);
      WaitForSingleObject(go_, kLimit);
    }
    if (take("fail@" + point)) throw ORLO::UserException(String("held at " + point));
    if (take("die@" + point)) throw 42;
    if (take("crash@" + point)) crash();
  }
  bool on_main_thread() const { return GetCurrentThreadId() == main_thread_; }

 private:
  static void crash() {
    const volatile int* volatile nowhere = nullptr;
    // NOLINTNEXTLINE(clang-analyzer-core.NullDereference): the fault that is asked for.
    static_cast<void>(*nowhere);
  }
  bool take(const std::string& what) {
    const ORLO::Lock hold(lock_);
    return named_.erase(what) > 0;
  }

  const DWORD main_thread_;
  const HANDLE reached_;
  const HANDLE go_;
  ORLO::CriticalSection lock_;
  std::set<std::string> named_;
};

class HeldRegistry : public HookedRegistry {
 public:
  HeldRegistry(Points& points, Registry& behind, Hook hook)
      : HookedRegistry(behind, std::move(hook)), points_(points) {}
  RegStatus open(int32_t root, const char* path, uint32_t access, RegistryKey& key) override {
    if (std::strstr(path, "Component Based Servicing") != nullptr) {
      points_.reach("servicing" + std::to_string(++servicing_));
    }
    return HookedRegistry::open(root, path, access, key);
  }
  using HookedRegistry::open;
  RegStatus notify(const RegistryKey& key, bool subtree, uint32_t filter,
                   ORLO::Event& event) override {
    points_.reach("watch");
    return HookedRegistry::notify(key, subtree, filter, event);
  }

 private:
  Points& points_;
  int servicing_ = 0;  ///< the reader's
};

class HeldExtractor : public IconExtractor {
 public:
  HeldExtractor(IconExtractor& behind, Points& points) : behind_(behind), points_(points) {}
  /// The pane's icons come on the main thread, and are none of a pass.
  std::unique_ptr<Icon> extract(const char* file, int32_t index, bool large) override {
    if (!points_.on_main_thread()) points_.reach("icon" + std::to_string(++count_));
    return behind_.extract(file, index, large);
  }

 private:
  IconExtractor& behind_;
  Points& points_;
  int count_ = 0;  ///< the icons' thread's
};

class HeldInstaller : public Installer {
 public:
  HeldInstaller(Installer& behind, Points& points) : behind_(behind), points_(points) {}
  void set_internal_ui(uint32_t level, void** owner) override {
    behind_.set_internal_ui(level, owner);
  }
  InstallerStatus product_at(uint32_t index, InstallerName& code) override {
    if (index == 0) points_.reach("product" + std::to_string(++count_));
    return behind_.product_at(index, code);
  }
  InstallerStatus feature_at(const char* product, uint32_t index, InstallerName& feature,
                             InstallerName& parent) override {
    return behind_.feature_at(product, index, feature, parent);
  }
  int32_t feature_state(const char* product, const char* feature) override {
    return behind_.feature_state(product, feature);
  }
  std::optional<String> product_info(const char* product, const char* property) override {
    return behind_.product_info(product, property);
  }

 private:
  Installer& behind_;
  Points& points_;
  int count_ = 0;  ///< the reader's
};

class HeldWmi : public Wmi {
 public:
  HeldWmi(Wmi& behind, Points& points) : behind_(behind), points_(points) {}
  std::unique_ptr<WmiQuery> connect() override {
    reach();
    return std::make_unique<Query>(*this, behind_.connect());
  }

 private:
  class Query : public WmiQuery {
   public:
    Query(HeldWmi& wmi, std::unique_ptr<WmiQuery> behind) : wmi_(wmi), behind_(std::move(behind)) {}
    bool Execute(const char* query, const char* name_space, WmiInstances& results) override {
      wmi_.reach();
      return behind_->Execute(query, name_space, results);
    }

   private:
    HeldWmi& wmi_;
    const std::unique_ptr<WmiQuery> behind_;
  };

  void reach() { points_.reach("wmi" + std::to_string(++count_)); }
  Wmi& behind_;
  Points& points_;
  int count_ = 0;  ///< the reader's
};

class HeldClock : public ORLO::Clock {
 public:
  HeldClock(const ORLO::Clock& behind, Points& points) : behind_(behind), points_(points) {}
  ORLO::SystemTime now() const override { return behind_.now(); }
  ORLO::ZoneState zone(ORLO::TimeZoneInfo& zone) const override {
    reach();
    return behind_.zone(zone);
  }
  bool to_local(const ORLO::TimeZoneInfo* zone, const ORLO::SystemTime& utc,
                ORLO::SystemTime& local) const override {
    reach();
    return behind_.to_local(zone, utc, local);
  }
  bool to_local(ORLO::FileTime utc, ORLO::FileTime& local) const override {
    return behind_.to_local(utc, local);
  }

 private:
  void reach() const {
    if (points_.on_main_thread()) points_.reach("hand-over");
  }
  const ORLO::Clock& behind_;
  Points& points_;
};

}  // namespace

int WINAPI WinMain(HINSTANCE instance, HINSTANCE, LPSTR command_line, int) {
  Points points;
  int sources = 0;
  SystemServices system(ZOLVANE_UPDATE_URL);
  const ProgramServices services = system.services();
  const HookedRegistry* held = nullptr;
  HeldRegistry held_registry(
      points, services.registry, [&](const std::string& operation, uint32_t index) {
        if (points.on_main_thread()) {
          if (operation == "open") points.reach("start");
        } else if (operation == "subkey_at" && index == 0) {
          if (sources++ % 3 == 0) {
            append_line("ZOLVANE_LIVE", std::to_string(ORLO::live_handles()) + " " +
                                            std::to_string(held->open_keys()));
          }
          points.reach("source" + std::to_string(sources));
        }
      });
  held = &held_registry;
  const HeldClock clock(services.clock, points);
  HeldExtractor held_icons(services.icons, points);
  HeldInstaller held_installer(services.installer, points);
  HeldWmi held_wmi(services.wmi, points);
  return run_program(
      instance, command_line,
      {held_registry, services.files, clock, services.shell, held_icons, held_installer, held_wmi,
       services.accounts, services.storage, services.inspection, services.update});
}
