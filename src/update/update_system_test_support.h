// What a main window needs for its updates, in memory: it finds none, and ends no process.
#pragma once

#include "platform/memory_internet.h"
#include "platform/memory_own_key.h"
#include "platform/memory_temporary_files.h"
#include "update/update_services.h"

class MemoryUpdateSystem {
 public:
  /// Refers to this object.
  UpdateSystem system() {
    return {background_, manual_, key_, files_, "", [] {}};
  }

 private:
  MemoryInternet background_;
  MemoryInternet manual_;
  MemoryOwnKey key_;
  FolderTemporaryFiles files_{"nowhere"};
};
