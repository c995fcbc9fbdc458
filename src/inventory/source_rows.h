// What the sources of the inventory have in common.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <set>

#include "inventory/package_schema.h"
#include "orlo/datetime.h"
#include "platform/files.h"
#include "platform/registry.h"

/// Takes each row while the source goes on; called on the source's thread.
using RowSink = std::function<void(const Row&)>;

/// Hands the row over and erases its key from `unseenKeys`.
void deliver_row(const Row& row, const RowSink& deliver, std::set<RowKey>& unseenKeys);

/// A row of empty cells but for the source and a size that isn't known.
Row make_source_row(const String& source);

/// Whether the file that an icon specification names can be opened; its index plays no part.
bool icon_exists(const String& icon, Files& files);

/// Whether what an enumeration tells in the code page opens that subkey and no other key. An empty
/// name opens the key itself, as one that begins with a NUL does, and a backslash, which other
/// characters may turn into, leads further down.
bool is_subkey_name(const char* name, uint32_t length);

/// None if the key tells nothing of itself.
std::optional<Registry::KeyInfo> info_of(Registry& registry, const RegistryKey& key);

/// A file time as a local date; the empty date if it can't be converted.
DateTime local_date(ORLO::FileTime time, const ORLO::Clock& clock);
