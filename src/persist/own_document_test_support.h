// The program's own documents in a folder of a test.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <random>
#include <string>

#include "orlo/file_test_support.h"
#include "orlo/report.h"

inline const std::string kDeclaration = "<?xml version=\"1.0\" encoding=\"utf-8\"?>";

/// A document of the present version around `content`, as the program writes it.
inline std::string own_document(const std::string& content) {
  return kDeclaration + "<zolvane version=\"5.3\">" + content + "</zolvane>\n";
}

/// The text after a few accidents: bytes that have become others, stretches that are gone, stand
/// twice or have been exchanged for what documents are made of.
inline std::string damaged(std::string text, std::mt19937& random) {
  static const std::string pieces[] = {"<",     ">",        "\"",        "/>",
                                       "</",    "<!--",     "-->",       "=",
                                       " ",     "&",        "?>",        std::string(1, '\0'),
                                       "<row ", "]]>",      "<![CDATA[", "<?xml",
                                       "\xc3",  "\xff\xfe", "&#7;",      "\xef\xbb\xbf"};
  const auto pick = [&](size_t below) {
    return std::uniform_int_distribution<size_t>(0, below - 1)(random);
  };
  for (size_t accidents = 1 + pick(4); accidents > 0; --accidents) {
    const size_t at = pick(text.size() + 1);
    const size_t length = pick(std::min<size_t>(text.size() - at, 40) + 1);
    switch (pick(4)) {
      case 0:
        if (at < text.size()) text[at] = static_cast<char>(random());
        break;
      case 1:
        text.erase(at, length);
        break;
      case 2:
        text.insert(pick(text.size() + 1), text.substr(at, length));
        break;
      default:
        text.replace(at, length, pieces[pick(std::size(pieces))]);
    }
  }
  return text;
}

/// No box comes up in its scope.
struct NoReports {
  NoReports() {
    ORLO::set_report_sink([](const String&, const String&) {});
  }
  ~NoReports() { ORLO::set_report_sink({}); }
  NoReports(const NoReports&) = delete;
  NoReports& operator=(const NoReports&) = delete;
};

/// One file, which isn't there at first, in folders that are missing.
class OwnDocumentTest : public testing::Test {
 protected:
  OwnDocumentTest() : path_(folder_.path("Quillmere/deeper/file.xml")) {}
  void put(const std::string& content) {
    std::filesystem::create_directories(std::filesystem::path(path_.c_str()).parent_path());
    std::ofstream(path_.c_str(), std::ios::binary) << content;
  }
  std::string content() const { return folder_.content("Quillmere/deeper/file.xml"); }

  const TempFolder folder_;
  const String path_;
};
