// Files in front of others, to change things between two calls.
#pragma once

#include <functional>
#include <utility>

#include "platform/files.h"

class HookedFiles final : public Files {
 public:
  /// `hook` is called before each call.
  HookedFiles(Files& behind, std::function<void()> hook)
      : behind_(behind), hook_(std::move(hook)) {}

  bool is_file(const char* path) override {
    hook_();
    return behind_.is_file(path);
  }
  bool can_open(const char* path) override {
    hook_();
    return behind_.can_open(path);
  }
  std::optional<String> search_path(const char* name, const char* extension) override {
    hook_();
    return behind_.search_path(name, extension);
  }
  std::optional<String> expand_environment(const char* text, size_t limit) override {
    hook_();
    return behind_.expand_environment(text, limit);
  }
  std::optional<String> system_folder() override {
    hook_();
    return behind_.system_folder();
  }
  std::optional<String> windows_folder() override {
    hook_();
    return behind_.windows_folder();
  }

 private:
  Files& behind_;
  const std::function<void()> hook_;
};
