#include "platform/memory_installer.h"

#include <algorithm>
#include <cstring>
#include <set>

#include "orlo/ascii.h"
#include "platform/reg_text.h"
#include "platform/utf16.h"

namespace {

constexpr size_t kPackedLength = 32;
/// Where the digits of a packed key stand in a code without braces and dashes, and the other way
/// round.
constexpr size_t kPackedPlaces[kPackedLength] = {7,  6,  5,  4,  3,  2,  1,  0,  11, 10, 9,
                                                 8,  15, 14, 13, 12, 17, 16, 19, 18, 21, 20,
                                                 23, 22, 25, 24, 27, 26, 29, 28, 31, 30};
constexpr size_t kDashes[] = {8, 13, 18, 23};

std::string reordered(std::string_view digits) {
  std::string result;
  for (const size_t place : kPackedPlaces)
    result += digits.at(place);
  return result;
}

/// False, with `name` as it was, if the text doesn't fit.
bool copy(const std::string& text, InstallerName& name) {
  if (text.size() >= kInstallerNameRoom) return false;
  std::memcpy(name, text.c_str(), text.size() + 1);
  return true;
}

uint32_t number_of(const RegStatement& value) {
  uint32_t number = 0;
  std::memcpy(&number, value.data.data(), std::min(value.data.size(), sizeof number));
  return number;
}

/// Code page and UTF-8 agree on what tests ask for.
std::string text_of(const RegStatement& value) {
  std::string text = utf8_from_utf16(utf16_from_bytes(value.data));
  text.resize(std::strlen(text.c_str()));
  return text;
}

std::string version_text(uint32_t version) {
  return std::to_string(version >> 24) + "." + std::to_string((version >> 16) & 0xFF) + "." +
         std::to_string(version & 0xFFFF);
}

/// The packed key that a path below "\Installer\`folder`" ends with; empty for another path.
std::string packed_key_in(const std::string& path, const char* folder) {
  const std::string before = std::string("\\Installer\\") + folder + "\\";
  const size_t found = path.rfind(before);
  if (found == path.npos || path.size() != found + before.size() + kPackedLength) return {};
  return path.substr(found + before.size());
}

void set_property(const RegStatement& value, MemoryInstaller::Product& product) {
  const std::string name = utf8_from_utf16(value.name);
  if (name == "ProductName" || name == "ProductIcon") product.properties[name] = text_of(value);
  if (name == "Version") product.properties["VersionString"] = version_text(number_of(value));
}

}  // namespace

std::string packed_product_key(std::string_view code) {
  std::string digits;
  std::copy_if(code.begin(), code.end(), std::back_inserter(digits),
               [](char c) { return c != '{' && c != '}' && c != '-'; });
  return reordered(digits);
}

std::string product_code_of(std::string_view packed_key) {
  std::string code = reordered(packed_key);
  for (const size_t place : kDashes)
    code.insert(place, "-");
  return "{" + code + "}";
}

MemoryInstaller::Product& MemoryInstaller::add(const std::string& code) {
  products_.push_back({code, {}, {}});
  return products_.back();
}

bool MemoryInstaller::load(std::string_view reg_text) {
  const RegText text = parse_reg_text(reg_text);
  // Features may stand before their product.
  std::map<std::string, Product> found;
  std::set<std::string> installed;
  std::string product_key;
  std::string feature_key;
  for (const RegStatement& statement : text.statements) {
    if (statement.kind == RegStatement::Kind::key) {
      const std::string path = utf8_from_utf16(statement.name);
      product_key = packed_key_in(path, "Products");
      feature_key = packed_key_in(path, "Features");
      if (!product_key.empty()) installed.insert(product_key);
    } else if (statement.kind == RegStatement::Kind::value) {
      if (!product_key.empty()) set_property(statement, found[product_key]);
      if (!feature_key.empty()) {
        found[feature_key].features.emplace_back(utf8_from_utf16(statement.name),
                                                 text_of(statement));
      }
    }
  }
  for (const std::string& key : installed) {
    Product& product = add(product_code_of(key));
    product.properties = std::move(found[key].properties);
    product.features = std::move(found[key].features);
  }
  return text.error.empty();
}

void MemoryInstaller::fail(const std::string& call, InstallerStatus status, int times) {
  failures_.push_back({call, status, times});
}

/// Logs the call; the status that it is to fail with, or success.
InstallerStatus MemoryInstaller::enter(const std::string& call) {
  calls_.push_back(call);
  const std::string operation = call.substr(0, call.find(' '));
  for (Failure& failure : failures_) {
    if (failure.times == 0 || (failure.call != call && failure.call != operation)) continue;
    if (failure.times > 0) --failure.times;
    return failure.status;
  }
  return kInstallerSuccess;
}

const MemoryInstaller::Product* MemoryInstaller::product(std::string_view code) const {
  const auto found = std::find_if(
      products_.begin(), products_.end(),
      [code](const Product& product) { return ORLO::equal_nocase(product.code, code); });
  return found != products_.end() ? &*found : nullptr;
}

void MemoryInstaller::set_internal_ui(uint32_t level, void** owner) {
  enter("set_internal_ui " + std::to_string(level));
  if (owner != nullptr) std::swap(ui_owner_, *owner);
}

InstallerStatus MemoryInstaller::product_at(uint32_t index, InstallerName& code) {
  return end_.judge(index, find_product(index, code));
}

InstallerStatus MemoryInstaller::find_product(uint32_t index, InstallerName& code) {
  code[kInstallerNameRoom - 1] = '\0';
  const InstallerStatus status = enter("product_at " + std::to_string(index));
  if (status != kInstallerSuccess) {
    if (left_code_) copy(left_code_->substr(0, kInstallerNameRoom - 1), code);
    return status;
  }
  if (index >= products_.size()) return kInstallerNoMoreItems;
  return copy(products_[index].code, code) ? kInstallerSuccess : kInstallerMoreData;
}

InstallerStatus MemoryInstaller::feature_at(const char* product_code, uint32_t index,
                                            InstallerName& feature, InstallerName& parent) {
  *feature = '\0';
  *parent = '\0';
  const InstallerStatus status =
      enter("feature_at " + (product_code + (' ' + std::to_string(index))));
  if (status != kInstallerSuccess) return status;
  const Product* const found = product(product_code);
  if (found == nullptr) return kInstallerUnknownProduct;
  if (index >= found->features.size()) return kInstallerNoMoreItems;
  const auto& [name, parent_name] = found->features[index];
  const bool fits = copy(name, feature) && copy(parent_name, parent);
  return fits ? kInstallerSuccess : kInstallerMoreData;
}

int32_t MemoryInstaller::feature_state(const char* product_code, const char* feature) {
  enter("feature_state " + (product_code + (std::string(" ") + feature)));
  const Product* const found = product(product_code);
  if (found == nullptr) return kFeatureUnknown;
  const auto is_it = [feature](const auto& known) { return known.first == feature; };
  if (std::none_of(found->features.begin(), found->features.end(), is_it)) return kFeatureUnknown;
  const auto state = found->states.find(feature);
  return state != found->states.end() ? state->second : kFeatureLocal;
}

std::optional<String> MemoryInstaller::product_info(const char* product_code,
                                                    const char* property) {
  const std::string call = "product_info " + (product_code + (std::string(" ") + property));
  if (enter(call) != kInstallerSuccess) return std::nullopt;
  const Product* const found = product(product_code);
  if (found == nullptr) return std::nullopt;
  const auto value = found->properties.find(property);
  if (value == found->properties.end()) return std::nullopt;
  if (value->second.size() >= kInstallerValueRoom) return std::nullopt;
  return String(value->second);
}
