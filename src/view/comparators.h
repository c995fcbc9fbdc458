// The natural orders of the list's columns.
#pragma once

#include "inventory/entry.h"

/// Negative, 0 or positive. Every comparator is a total preorder: safe to sort and search by.
using Compare = int (*)(const UninstallEntry& a, const UninstallEntry& b);

/// One for each column of the list, and one for the tree of packages and their sub packages, which
/// no column shows.
inline constexpr int comparatorCount = 32;
inline constexpr int kTreeColumn = 31;

/// `column` from 0 to comparatorCount - 1.
Compare comparator(int column);
