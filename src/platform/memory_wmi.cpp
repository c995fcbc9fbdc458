#include "platform/memory_wmi.h"

#include <utility>

#include "orlo/com_error.h"
#include "orlo/locale.h"
#include "platform/utf16.h"

namespace {

constexpr std::string_view kByteOrderMark = "\xFF\xFE";
/// DISP_E_TYPEMISMATCH, as for an array.
constexpr auto kTypeMismatch = static_cast<int32_t>(0x80020005U);

String narrow(std::u16string_view text) {
  return ORLO::system_locale().narrow(text.data(), text.size());
}

/// Takes the first line off `text`. Where output was redirected, a line may end in CR CR LF.
std::u16string_view take_line(std::u16string_view& text) {
  const size_t end = text.find(u'\n');
  std::u16string_view line = text.substr(0, end);
  text.remove_prefix(end == text.npos ? text.size() : end + 1);
  while (!line.empty() && line.back() == u'\r')
    line.remove_suffix(1);
  return line;
}

std::string key_of(const std::string& query, const std::string& name_space) {
  return std::string(name_space).append(": ").append(query);
}

}  // namespace

class MemoryWmi::Query final : public WmiQuery {
 public:
  explicit Query(MemoryWmi& wmi) : wmi_(wmi), refused_(wmi.refuses_) { ++wmi_.connections_; }
  Query(const Query&) = delete;
  Query& operator=(const Query&) = delete;
  ~Query() override { --wmi_.connections_; }

  bool Execute(const char* query, const char* name_space, WmiInstances& results) override {
    results.clear();
    const std::string key = key_of(query, name_space);
    wmi_.queries_.push_back(key);
    return !refused_ && wmi_.execute(key, results);
  }

 private:
  MemoryWmi& wmi_;
  const bool refused_;
};

void MemoryWmi::answer(const std::string& query, const std::string& name_space,
                       WmiInstances instances) {
  answers_[key_of(query, name_space)] = std::move(instances);
}

bool MemoryWmi::load(const std::string& query, const std::string& name_space,
                     std::string_view text) {
  if (!text.starts_with(kByteOrderMark)) return false;
  const std::u16string units = utf16_from_bytes(text.substr(kByteOrderMark.size()));
  WmiInstances instances;
  bool begins = true;
  for (std::u16string_view rest = units; !rest.empty();) {
    const std::u16string_view line = take_line(rest);
    const size_t end = line.find(u'=');
    if (!line.empty() && end == line.npos) return false;
    if (!line.empty() && begins) instances.emplace_back();
    begins = line.empty();
    if (line.empty() || end + 1 == line.size()) continue;
    instances.back()[narrow(line.substr(0, end))] = narrow(line.substr(end + 1));
  }
  answer(query, name_space, std::move(instances));
  return true;
}

std::unique_ptr<WmiQuery> MemoryWmi::connect() {
  return std::make_unique<Query>(*this);
}

bool MemoryWmi::execute(const std::string& key, WmiInstances& results) {
  const auto found = answers_.find(key);
  if (found == answers_.end()) return false;
  for (const WmiInstance& instance : found->second) {
    if (fail_after_ && results.size() == *fail_after_) return false;
    results.emplace_back();
    for (const auto& [name, value] : instance) {
      if (throw_at_ == name.c_str()) throw ORLO::ComError(kTypeMismatch);
      results.back()[name] = value;
    }
  }
  return !fail_after_ || results.size() < *fail_after_;
}
