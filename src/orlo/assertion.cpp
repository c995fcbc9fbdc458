#include "orlo/assertion.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include "orlo/report.h"
#include "orlo/report_state.h"

namespace ORLO {
namespace {

thread_local int untold_depth = 0;

struct Failed {
  const char* expression;
  const char* source;
  bool operator==(const Failed& other) const noexcept {
    return std::strcmp(expression, other.expression) == 0 && std::strcmp(source, other.source) == 0;
  }
};

/// Under report_lock().
std::vector<Failed>& reported() {
  static auto& list = *new std::vector<Failed>;
  return list;
}

/// False if it stands there already.
bool note(const Failed& failed) {
  const Lock hold(report_lock());
  auto& list = reported();
  if (std::find(list.begin(), list.end(), failed) != list.end()) return false;
  list.push_back(failed);
  return true;
}

void take_back(const Failed& failed) {
  const Lock hold(report_lock());
  std::erase(reported(), failed);
}

}  // namespace

void assertion_failed(const char* expression, const char* source, int line) noexcept {
  if (untold_depth > 0) return;
  const Failed failed{expression, source};
  try {
    // Noted before it is shown: the box lets messages flow, and the next one may fail alike.
    if (!note(failed)) return;
    if (!report_assertion(expression, source, line)) take_back(failed);
  } catch (...) {
    // Without memory for the note it goes unreported; whoever asserted goes on all the same.
  }
}

UntoldAssertions::UntoldAssertions() noexcept {
  ++untold_depth;
}

UntoldAssertions::~UntoldAssertions() {
  --untold_depth;
}

void forget_failed_assertions() noexcept {
  const Lock hold(report_lock());
  reported().clear();
}

}  // namespace ORLO
