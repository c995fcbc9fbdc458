#include "view/search.h"

#include <algorithm>
#include <iterator>

namespace {

using Entry = UninstallEntry;

constexpr String Entry::*kSearchedFields[] = {
    &Entry::name,
    &Entry::source,
    &Entry::displayName,
    &Entry::displayVersion,
    &Entry::installDate,
    &Entry::sizeText,
    &Entry::uninstallCmd,
    &Entry::modifyCmd,
    &Entry::displayIcon,
    &Entry::installLocation,
    &Entry::lastUseDate,
    &Entry::parent,
    &Entry::parentName,
    &Entry::is64BitText,
    &Entry::systemComponentText,
    &Entry::frequencyText,
    &Entry::comments,
    &Entry::user,
    &Entry::publisher,
    &Entry::contact,
    &Entry::helpURL,
    &Entry::helpPhone,
    &Entry::aboutURL,
    &Entry::updateURL,
};

}  // namespace

std::span<String UninstallEntry::*const> searched_fields() noexcept {
  return kSearchedFields;
}

Search::Search(const String& text) {
  if (!text.empty()) pattern_.emplace(String::formatted("*%#s*", text));
}

bool Search::matches(const String& text) const noexcept {
  return active() && pattern_->matches(text);
}

bool Search::matches(const UninstallEntry& entry) const noexcept {
  return std::any_of(std::begin(kSearchedFields), std::end(kSearchedFields),
                     [&](String Entry::*field) { return matches(entry.*field); });
}
