#include "start/post_update.h"

#include "orlo/overlapped_file.h"
#include "orlo/read_line.h"

namespace {

constexpr size_t kLongestPath = 260;

/// The first line; empty if there is no such file, which is closed again.
String first_line(const String& path) {
  ORLO::OverlappedInFile file(path.c_str(), ORLO::kOpenExisting, ORLO::kShareRead,
                              ORLO::kSequentialScan);
  ORLO::LineBuffer line(kLongestPath + 1);
  ORLO::read_line(file, line, kLongestPath);
  return line.c_str();
}

}  // namespace

int clean_up_after_update(Leftovers& leftovers) {
  const String marker = String::formatted("%szolvane.tmp", leftovers.temporary_folder());
  const String setup = first_line(marker);
  if (setup.empty()) return 1;
  leftovers.remove(marker.c_str());
  leftovers.remove_at_next_start(setup.c_str());
  return 0;
}
