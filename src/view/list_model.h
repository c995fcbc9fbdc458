// Which packages the list shows, in which order, with which texts.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>

#include "inventory/refresh_cycle.h"
#include "persist/icon_updater.h"
#include "view/row_filter.h"
#include "view/shown_rows.h"

/// Lives on the main thread; another one may visit the icons while it holds the lock that every
/// change is made under. Ids are given to entries in the order of their arrival, from 1. Filter,
/// search and sort state outlast every refresh.
class ListModel : public InventoryView, public IconRows {
 public:
  ListModel(ListControl& list, CellTexts texts);

  void clear_marks() override;
  void begin_batch() override { shown_.begin_batch(); }
  /// Merges into the first entry of the same package, whose line stays where it is; else appends
  /// a new one and, if the filter accepts it, shows it at its place.
  void applyEntry(const UninstallEntry& entry) override;
  /// Takes away the first entry whose `name` and root equal those of the row key.
  void removeEntry(const RowKey& key) override;
  void end_batch() noexcept override { shown_.end_batch(); }
  /// Forgets all entries and empties the list.
  void clear();

  // What the user changes about the filter. All give the number of rows that are shown now; with
  // none the detail pane has nothing to show.
  size_t selectType(int index);
  size_t toggleMicrosoft(bool checked);
  size_t searchChanged(const String& text);
  /// Empties the list and shows what the filter accepts. The line that the user chose last stays
  /// chosen if it is still shown.
  size_t rebuildList();

  /// The user chose a column's header.
  void sortByColumn(int column);
  /// 0 is no grouping. Where the type selection had to change, to show sub packages, the list has
  /// been rebuilt, and the result is the number of rows that are shown now.
  std::optional<size_t> selectGroup(int index);
  /// Tells the control once more how it is grouped.
  void set_group_view();
  /// Gives hidden columns a width.
  void show_all_columns();

  /// Text of a cell; valid until the next call. Empty for an id or column that doesn't exist.
  const String& cellText(uint32_t id, int column);
  /// Null for an id that is gone. Valid until the entry is removed.
  const UninstallEntry* find(uint32_t id) const;
  size_t size() const noexcept { return entries_.size(); }
  /// Shows every package, in the order of the ids.
  void visit_packages(const std::function<void(const UninstallEntry& entry)>& visitor) const;

  int type() const noexcept { return type_; }
  const ShowFlags& flags() const noexcept { return flags_; }
  const SortState& sort_state() const noexcept { return sort_; }
  const Search& search() const noexcept { return search_; }
  /// Gains an entry for every icon of a row that is shown. No entry may be taken out.
  ImageIndexMap& images() noexcept { return images_; }
  /// What the map's numbers stand for, null if that isn't known.
  void use_images(const ImageList* images) noexcept { shown_.use_images(images); }
  void visit_icons(const Visitor& visitor) override;

 private:
  using Entries = std::map<uint32_t, ListRow>;

  ListRow* row(uint32_t id);
  ListRow* find_package(const UninstallEntry& entry);
  template <typename Change>
  void change(ListRow& row, Change make_change);
  void filter(ListRow& row);
  void sort_list();

  ListControl& list_;
  const CellTexts texts_;
  ShowFlags flags_;
  int type_ = kTypeNormal;
  Search search_;
  int groupMode_ = 0;
  SortState sort_;
  ImageIndexMap images_;

  Entries entries_;
  uint32_t next_id_ = 0;
  /// Entries by `keyName`, equal ones in the order of their ids; the field never changes.
  std::multimap<String, ListRow*, ByteOrder> by_key_name_;
  RowOrder order_{sort_};
  ShownRows shown_{list_, sort_};
  String cell_;
};
