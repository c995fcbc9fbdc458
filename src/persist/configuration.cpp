#include "persist/configuration.h"

#include "orlo/scan.h"
#include "persist/own_document.h"

namespace {

constexpr const char* kInterface = "ui";
constexpr const char* kWindowPos = "window-pos";
constexpr const char* kLangId = "lang-id";
constexpr const char* kFlags = "flags";
constexpr const char* kColorBackground = "color-bkgnd";
constexpr const char* kTrue = "true";

void read_interface(const Trellis::XMLNode& node, UninstallPara& para) {
  para.windowPos = node.get(kWindowPos, "").c_str();
  const Trellis::TL_String language = node.get(kLangId, "");
  if (language.empty()) return;
  int langId = 0;
  ORLO::scan(language.c_str(), "%d", {langId});
  para.langId = static_cast<uint16_t>(langId);
}

}  // namespace

void writeConfiguration(const UninstallPara& para) {
  const auto document = create_own_document(para.cfgPath);
  Trellis::XMLWriter& writer = *document;
  writer.create(kInterface);
  if (!para.windowPos.empty()) writer[kWindowPos] = Trellis::TL_String(para.windowPos);
  writer[kLangId] = Trellis::TL_String(String::formatted("%d", int{para.langId}));
  writer.back();
  writer.create(kFlags);
  writer[kColorBackground] = para.colorBackground ? kTrue : "false";
  writer.back();
  writer.back();
}

bool readConfiguration(UninstallPara& para) {
  Trellis::XMLDoc doc;
  if (!read_own_document(para.cfgPath, doc)) return false;
  const Trellis::XMLNode* const root = own_root(doc);
  if (root == nullptr) return true;
  if (compare_document_version(*root) > 0) return false;
  if (const Trellis::XMLNode* const node = root->find(Trellis::XMLPath(kInterface)))
    read_interface(*node, para);
  if (const Trellis::XMLNode* const node = root->find(Trellis::XMLPath(kFlags)))
    para.colorBackground = node->get(kColorBackground, "") == kTrue;
  return true;
}
