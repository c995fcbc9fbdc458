#include "platform/memory_own_key.h"

bool MemoryOwnKey::open(const char* path) {
  calls.push_back(std::string("open ") + path);
  path_ = path;
  open_ = opens_;
  return open_;
}

String MemoryOwnKey::text(const char* name) {
  calls.push_back(std::string("text ") + name);
  const auto found = values.find(whole_name(name));
  return open_ && found != values.end() ? String(found->second.c_str()) : String();
}

RegStatus MemoryOwnKey::set_text(const char* name, const String& text) {
  calls.push_back(std::string("set_text ") + name + ' ' + text.c_str());
  if (!open_) return kRegInvalidHandle;
  if (write_status_ == kRegSuccess) values[whole_name(name)] = text.c_str();
  return write_status_;
}
