#include "update/pad_reader.h"

#include <string>
#include <string_view>

#include "inventory/text_helpers.h"
#include "orlo/assertion.h"
#include "trellis/trellis.h"

namespace {

using Trellis::XMLNode;
using Trellis::XMLPath;

bool same(const String& a, const String& b) noexcept {
  return std::string_view(a.c_str(), a.length()) == std::string_view(b.c_str(), b.length());
}

/// Numbers beyond the range wrap, as they do in the runtime's atoi.
int32_t number_at(const XMLNode& node, const char* path) {
  return leading_number(node.sub_text(path).c_str());
}

uint16_t date_number_at(const XMLNode& node, const char* path) {
  return static_cast<uint16_t>(number_at(node, path));
}

void read_program(const XMLNode& program, PadInfo& info) {
  info.programName = program.sub_text("Program_Name");
  info.programVersion = program.sub_text("Program_Version");
  info.releaseDate.year = date_number_at(program, "Program_Release_Year");
  info.releaseDate.month = date_number_at(program, "Program_Release_Month");
  info.releaseDate.day = date_number_at(program, "Program_Release_Day");
  info.fileSize = number_at(program, "File_Info/File_Size_Bytes");
}

/// `role` begins the names of the person's elements.
PadPerson read_person(const XMLNode& contact_info, const std::string& role) {
  return {contact_info.sub_text(role + "_First_Name"), contact_info.sub_text(role + "_Last_Name"),
          contact_info.sub_text(role + "_Email")};
}

void read_company(const XMLNode& company, PadInfo& info) {
  info.companyName = company.sub_text("Company_Name");
  info.companyWebsite = company.sub_text("Company_WebSite_URL");
  const XMLNode* const contact_info = company.find(XMLPath("Contact_Info"));
  if (contact_info == nullptr) return;
  info.author = read_person(*contact_info, "Author");
  info.contact = read_person(*contact_info, "Contact");
}

void read_messages(const XMLNode& messages, PadInfo& info) {
  for (const XMLNode& message : Trellis::XMLChildFilter(messages, "qm:msg"))
    info.messages.push_back({message.get("version", ""), message.get("id", ""), message.text()});
}

/// Whether a message for `wanted` is for `actual`.
bool is_for(const String& wanted, const String& actual) noexcept {
  return wanted.empty() || same(wanted, actual);
}

}  // namespace

bool read_pad(std::istream& stream, PadInfo& info) {
  // A page of some network's own may come in the description's place, with whatever is in it.
  const ORLO::UntoldAssertions untold;
  Trellis::XMLDoc doc;
  Trellis::XMLReader reader(doc, stream);
  if (!doc.read(reader, nullptr)) return false;
  const XMLNode* const root = doc.find(XMLPath("XML_DIZ_INFO"));
  if (root == nullptr) return false;
  if (const XMLNode* const program = root->find(XMLPath("Program_Info")))
    read_program(*program, info);
  info.downloadUrl = root->sub_text("Web_Info/Download_URLs/Primary_Download_URL");
  if (const XMLNode* const company = root->find(XMLPath("Company_Info")))
    read_company(*company, info);
  if (const XMLNode* const messages = root->find(XMLPath("qm:messages")))
    read_messages(*messages, info);
  return true;
}

String messagesFor(const PadInfo& info, const String& version, const String& systemText) {
  String result;
  for (const PadMessage& message : info.messages) {
    if (!is_for(message.version, version) || !is_for(message.id, systemText)) continue;
    if (!result.empty()) result.append("\n\n");
    result.append(message.text);
  }
  return result;
}
