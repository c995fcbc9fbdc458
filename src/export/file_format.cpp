#include "export/file_format.h"

#include <regex.h>

#include <new>

namespace {

/// A compiled expression of POSIX.
class Expression {
 public:
  explicit Expression(const char* text) {
    if (regcomp(&compiled_, text, REG_ICASE | REG_NOSUB) != 0) throw std::bad_alloc();
  }
  ~Expression() { regfree(&compiled_); }
  Expression(const Expression&) = delete;
  Expression& operator=(const Expression&) = delete;

  bool found_in(const char* text) const { return regexec(&compiled_, text, 0, nullptr, 0) == 0; }

 private:
  regex_t compiled_;
};

}  // namespace

bool is_workbook_name(const String& fileName) {
  // The point stands for any character: "Software_xls" is a workbook, too.
  return Expression(".xls$").found_in(fileName.c_str());
}
