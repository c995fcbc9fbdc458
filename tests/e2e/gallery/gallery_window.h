// The gallery's main window: a button for each demonstration, some pads, the log.
#pragma once

#include <memory>

#include "log.h"
#include "orlo/controller.h"
#include "orlo/message_hook.h"
#include "orlo/thread.h"
#include "pads.h"

namespace gallery {

class GalleryWindow : public ORLO::Controller {
 public:
  static constexpr const char* kTitle = "Gallery";

  explicit GalleryWindow(HWND window);
  ~GalleryWindow() override;

  LRESULT WndProc(UINT message, WPARAM wparam, LPARAM lparam) override;
  LRESULT Command(unsigned id, unsigned code, HWND control) override;
  LRESULT Frame(unsigned id) override;

 private:
  struct Demo;
  static const Demo kDemos[];

  void make_buttons();
  void make_pads();
  void show_modal_note();
  void show_modeless_links();
  void show_rows();
  void show_many();
  void wait();
  void go_on();
  void ask_file_name();
  void fail();
  void paint_badly();
  void toggle_object();
  void name_cursor() const;

  const Log log_;
  const HWND cursor_name_;
  BadPad* bad_pad_ = nullptr;
  ORLO::Event go_;
  bool object_alive_ = false;
  std::unique_ptr<ORLO::ScopedMessageHook> mouse_hook_;
};

}  // namespace gallery
