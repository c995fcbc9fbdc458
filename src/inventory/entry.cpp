#include "inventory/entry.h"

#include <cstring>

namespace {

using Field = PackageColumn;
using Entry = UninstallEntry;

struct TextField {
  Field column;
  String Entry::*field;
};

struct NumberField {
  Field column;
  int32_t Entry::*field;
};

struct DateField {
  Field column;
  String Entry::*text;
  DateTime Entry::*value;
};

constexpr TextField kTexts[] = {
    {Field::name, &Entry::name},
    {Field::keyName, &Entry::keyName},
    {Field::source, &Entry::source},
    {Field::displayName, &Entry::displayName},
    {Field::displayVersion, &Entry::displayVersion},
    {Field::displayIcon, &Entry::displayIcon},
    {Field::installLocation, &Entry::installLocation},
    {Field::uninstallCmd, &Entry::uninstallCmd},
    {Field::modifyCmd, &Entry::modifyCmd},
    {Field::comments, &Entry::comments},
    {Field::frequency, &Entry::frequencyText},
    {Field::installerPath, &Entry::installerPath},
    {Field::packagePath, &Entry::packagePath},
    {Field::parent, &Entry::parent},
    {Field::parentName, &Entry::parentName},
    {Field::user, &Entry::user},
    {Field::publisher, &Entry::publisher},
    {Field::contact, &Entry::contact},
    {Field::helpURL, &Entry::helpURL},
    {Field::helpPhone, &Entry::helpPhone},
    {Field::aboutURL, &Entry::aboutURL},
    {Field::updateURL, &Entry::updateURL},
};

constexpr NumberField kNumbers[] = {
    {Field::noRemove, &Entry::noRemove},
    {Field::noModify, &Entry::noModify},
    {Field::systemComponent, &Entry::systemComponent},
    {Field::size, &Entry::size},
    {Field::features, &Entry::features},
    {Field::patches, &Entry::patches},
    {Field::frequency, &Entry::frequency},
    {Field::changed, &Entry::changed},
    {Field::is64Bit, &Entry::is64Bit},
    {Field::OK, &Entry::OK},
    {Field::HKEY_ROOT, &Entry::HKEY_ROOT},
};

constexpr DateField kDates[] = {
    {Field::installDate, &Entry::installDate, &Entry::installDateValue},
    {Field::uninstallDate, &Entry::uninstallDate, &Entry::uninstallDateValue},
    {Field::lastUseDate, &Entry::lastUseDate, &Entry::lastUseDateValue},
};

// A merge replaces these where the other has a text.
constexpr String Entry::*kMergedTexts[] = {
    &Entry::name,          &Entry::displayName,     &Entry::displayVersion,
    &Entry::displayIcon,   &Entry::installLocation, &Entry::uninstallDate,
    &Entry::uninstallCmd,  &Entry::modifyCmd,       &Entry::systemComponentText,
    &Entry::comments,      &Entry::sizeText,        &Entry::lastUseDate,
    &Entry::frequencyText, &Entry::installerPath,   &Entry::packagePath,
    &Entry::okText,        &Entry::parent,          &Entry::parentName,
    &Entry::user,          &Entry::publisher,       &Entry::contact,
    &Entry::helpURL,       &Entry::helpPhone,       &Entry::aboutURL,
    &Entry::updateURL,     &Entry::is64BitText,
};

// A merge replaces these where the other's number isn't 0.
constexpr int32_t Entry::*kMergedNumbers[] = {
    &Entry::noRemove, &Entry::noModify, &Entry::systemComponent,
    &Entry::features, &Entry::patches,  &Entry::frequency,
    &Entry::OK,       &Entry::is64Bit,  &Entry::HKEY_ROOT,
};

const char* yes_or_no(int32_t number) {
  return number != 0 ? "yes" : "no";
}

String size_text(int32_t kilobytes) {
  if (kilobytes == -1) return String();
  // The 5 rounds small sizes up; it is part of how sizes have always been shown.
  return String::formatted("%.02f MB", (static_cast<double>(kilobytes) + 5.0) * 0.0009765625);
}

const char* ok_text(int32_t state) {
  switch (state) {
    case 1:
      return "OK";
    case -1:
      return "fix";
    case -2:
      return "-";
    default:
      return "";
  }
}

}  // namespace

UninstallEntry UninstallEntry::fromRow(const Row& row, const ORLO::Clock& clock) {
  UninstallEntry entry;
  for (const TextField& text : kTexts)
    entry.*text.field = cell(row, text.column).text;
  for (const NumberField& number : kNumbers) {
    entry.*number.field = cell(row, number.column).integer();
  }
  for (const DateField& date : kDates) {
    entry.*date.text = cell(row, date.column).text;
    (entry.*date.value).parse((entry.*date.text).c_str(), clock);
  }
  if (entry.keyName.empty()) entry.keyName = entry.name;
  entry.systemComponentText = yes_or_no(entry.systemComponent);
  entry.is64BitText = yes_or_no(entry.is64Bit);
  entry.sizeText = size_text(entry.size);
  entry.okText = ok_text(entry.OK);
  entry.MSI = cell(row, Field::MSI).integer() != 0;
  return entry;
}

void UninstallEntry::merge(const UninstallEntry& other) {
  for (String Entry::*const field : kMergedTexts) {
    if (!(other.*field).empty()) this->*field = other.*field;
  }
  for (int32_t Entry::*const field : kMergedNumbers) {
    if (other.*field != 0) this->*field = other.*field;
  }
  if (!other.source.empty() && std::strstr(source.c_str(), other.source.c_str()) == nullptr) {
    if (!source.empty()) source.append(", ");
    source.append(other.source);
  }
  if (installDate.empty()) installDate = other.installDate;
  // The sort key follows the last source, the shown date stays with the first.
  for (const DateField& date : kDates) {
    if (!(other.*date.value).empty()) this->*date.value = other.*date.value;
  }
  if (other.size != -1) size = other.size;
  MSI = MSI || other.MSI;
}

bool UninstallEntry::same_package(const UninstallEntry& other) const noexcept {
  const bool same_root = HKEY_ROOT == other.HKEY_ROOT || HKEY_ROOT == 0 || other.HKEY_ROOT == 0;
  return same_root && compare_bytes(keyName, other.keyName) == 0;
}
