// Which packages the list shows.
#pragma once

#include "inventory/entry.h"
#include "view/search.h"

/// Items of the type selection, each of which shows what the one before it shows and more.
inline constexpr int kTypeNormal = 0;
inline constexpr int kTypeSubPackages = 1;
inline constexpr int kTypeSystemComponents = 2;
inline constexpr int kTypeOsUpdates = 3;
inline constexpr int kTypeAll = 4;

/// What is false hides rows.
struct ShowFlags {
  bool showUnnamed = false;
  bool showSystemComponents = false;
  bool showOsUpdates = false;
  bool showSubPackages = false;
  bool showMicrosoft = true;

  /// Leaves `showMicrosoft` alone, which has a switch of its own.
  void select_type(int index) noexcept;
};

bool is_os_update(const UninstallEntry& entry) noexcept;
/// By Microsoft, for Windows, or an update of the operating system.
bool is_microsoft(const UninstallEntry& entry) noexcept;

bool acceptRow(const UninstallEntry& entry, const ShowFlags& flags, const Search& search) noexcept;
