// Descriptions of programs for tests.
#pragma once

#include <sstream>
#include <string>

#include "update/pad_reader.h"

/// Elements with what they hold; an element without a text is left out.
struct PadText {
  std::string name = "Zolvane";
  std::string version = "5.4";
  std::string year = "2026";
  std::string month = "11";
  std::string day = "5";
  std::string size = "123456";
  std::string url = "http://download.example/files/setup.exe";
  std::string company = "Quillmere";
  std::string website = "http://company.example/";
  std::string first = "Ada";
  std::string last = "Byron";
  std::string mail = "ada@author.example";
  std::string messages;  ///< elements qm:msg

  static std::string element(const std::string& name, const std::string& text) {
    return text.empty() ? "" : "<" + name + ">" + text + "</" + name + ">\n";
  }
  std::string program() const {
    return element("Program_Name", name) + element("Program_Version", version) +
           element("Program_Release_Month", month) + element("Program_Release_Day", day) +
           element("Program_Release_Year", year) +
           element("File_Info", element("File_Size_Bytes", size));
  }
  std::string person() const {
    return element("Author_First_Name", first) + element("Author_Last_Name", last) +
           element("Author_Email", mail) + element("Contact_First_Name", "Charles") +
           element("Contact_Last_Name", "Babbage") +
           element("Contact_Email", "charles@contact.example");
  }
  std::string xml() const {
    const std::string web = element("Download_URLs", element("Primary_Download_URL", url));
    return "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n" +
           element("XML_DIZ_INFO",
                   element("Company_Info", element("Company_Name", company) +
                                               element("Company_WebSite_URL", website) +
                                               element("Contact_Info", person())) +
                       element("Program_Info", program()) + element("Web_Info", web) +
                       element("qm:messages", messages));
  }
};

/// What has come of a description.
struct ReadPad {
  bool good = false;
  PadInfo info;
};

inline ReadPad read_pad_text(const std::string& text) {
  std::stringstream stream(text);
  ReadPad read;
  read.good = read_pad(stream, read.info);
  return read;
}
