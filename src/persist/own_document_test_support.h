// The program's own documents in a folder of a test.
#pragma once

#include <gtest/gtest.h>

#include <fstream>
#include <string>

#include "orlo/file_test_support.h"

inline const std::string kDeclaration = "<?xml version=\"1.0\" encoding=\"utf-8\"?>";

/// A document of the present version around `content`, as the program writes it.
inline std::string own_document(const std::string& content) {
  return kDeclaration + "<zolvane version=\"5.3\">" + content + "</zolvane>\n";
}

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
