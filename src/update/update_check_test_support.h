// A check for updates on stand-ins: a main window that answers by script, servers in memory, a
// folder of its own for temporary files.
#pragma once

#include <gtest/gtest.h>

#include <deque>
#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "orlo/file_test_support.h"
#include "orlo/fixed_clock.h"
#include "platform/memory_internet.h"
#include "platform/memory_own_key.h"
#include "platform/memory_shell.h"
#include "platform/memory_temporary_files.h"
#include "platform/resource_ids.h"
#include "update/pad_test_support.h"
#include "update/update_check.h"

/// Answers questions by script, No when that is at its end, and writes down what happens.
class RecordingUpdateFrame : public UpdateFrame {
 public:
  struct Box {
    std::string text;
    std::string title;
    bool is_question = false;
  };

  std::deque<bool> answers;
  std::vector<Box> boxes;
  /// "tell", "ask", "hide", "show ADDRESS", "range N", "position N", "close", "cursor back", "end".
  std::vector<std::string> log;

  void* window() override { return &window_; }
  void tell(const String& text, const String& title) override {
    boxes.push_back({text.c_str(), title.c_str(), false});
    log.emplace_back("tell");
  }
  bool ask(const String& text, const String& title) override {
    boxes.push_back({text.c_str(), title.c_str(), true});
    log.emplace_back("ask");
    if (answers.empty()) return false;
    const bool answer = answers.front();
    answers.pop_front();
    return answer;
  }
  void hide() override { log.emplace_back("hide"); }
  std::unique_ptr<ShownDownload> show_download(const String& url) override {
    log.push_back(std::string("show ") + url.c_str());
    return std::make_unique<Shown>(log);
  }
  void end_process() override { log.emplace_back("end"); }

 private:
  class Shown : public ShownDownload {
   public:
    explicit Shown(std::vector<std::string>& log) : log_(log) {}
    ~Shown() override { log_.emplace_back("cursor back"); }
    void set_range(int kilobytes) override { log_.push_back("range " + std::to_string(kilobytes)); }
    void set_position(int kilobytes) override {
      log_.push_back("position " + std::to_string(kilobytes));
    }
    void close() noexcept override { log_.emplace_back("close"); }

   private:
    std::vector<std::string>& log_;
  };

  char window_ = 0;
};

/// Writes down, among what happens in a frame, what it is asked to open.
class LoggingShell : public MemoryShell {
 public:
  explicit LoggingShell(std::vector<std::string>& log) : log_(log) {}
  bool open(const ShellStart& start) override {
    log_.push_back(std::string(start.verb) + ' ' + start.file);
    owner = start.owner;
    show = start.show;
    arguments = start.arguments;
    return MemoryShell::open(start);
  }

  void* owner = nullptr;
  int show = 0;
  std::string arguments;

 private:
  std::vector<std::string>& log_;
};

/// As in the string tables.
struct UpdateText {
  unsigned id;
  const char* english;
  const char* german;
};

inline constexpr UpdateText kUpdateTexts[] = {
    {IDS_MESSAGE, "Message", "Hinweismeldung"},
    {IDS_UPDATE_CHECK, "Program Update Check", "Suche nach Programm-Updates"},
    {IDS_ASK_RUN_SETUP, "Do you want to run the setup from \"%#s\"?",
     "M\xf6\x63hten Sie das Setup von \"%#s\" einspielen?"},
    {IDS_ASK_DOWNLOAD_PAGE, "Do you want to open the web page \"%#s\" to download the new version?",
     "M\xf6\x63hten Sie die Web-Seite \"%#s\" \xf6\x66\x66nen, um die neue Version "
     "herunterzuladen?"},
    {IDS_NEW_VERSION, "There is available a new program version %#s (%#s) of \"%#s\" from %#s %#s",
     "Eine neue Progamm-Version  %#s (%#s) des \"%#s\" von %#s %#s ist verf\xfcgbar."},
    {IDS_VERSION_CHECK_FAILED, "The check for the current version using the internet failed.",
     "Die aktuelle Version konnte nicht aus dem Internet ermittelt werden."},
    {IDS_NEWEST_VERSION, "Active version: %#s\n\nThe newest version of %#s is %#s (%#s)",
     "derzeit aktive Version: %#s\n\nDer neueste %#s ist die Version %#s vom %#s."},
    {IDS_NO_UPDATE_NEEDED, "No update is needed.", "Es ist keine Aktualisierung erforderlich."},
};

inline constexpr char kDescriptionUrl[] = "http://update.example/zolvane.xml";
inline constexpr char kSetupUrl[] = "http://download.example/files/setup.exe";
inline constexpr char kOwnKey[] = "Software\\Quillmere\\Zolvane";
inline constexpr char kLastCheckValue[] = "Software\\Quillmere\\Zolvane: last update check";

/// As the user's locale has it.
inline std::string shown_date(uint16_t year, uint16_t month, uint16_t day) {
  const ORLO::SystemTime date{year, month, 0, day};
  return String::formatted("%D", &date).c_str();
}

/// Version 5.3 on an evening in Berlin.
class UpdateBed : public testing::Test {
 protected:
  using Lines = std::vector<std::string>;

  void serve(const std::string& url, const std::string& body) {
    internet_.answers[url] = {body, static_cast<int64_t>(body.size()), 0};
  }
  void describe(const PadText& text) { serve(kDescriptionUrl, text.xml()); }

  std::string text_of(unsigned id) const {
    for (const UpdateText& text : kUpdateTexts) {
      if (text.id == id) return german_ ? text.german : text.english;
    }
    ADD_FAILURE() << "no text " << id;
    return {};
  }
  UpdateServices services() {
    return {internet_, key_,   files_,
            shell_,    clock_, [this](unsigned id) { return String(text_of(id)); }};
  }
  UpdateCheck check() { return {settings_, services(), frame_}; }

  std::string in_folder(const std::string& name) {
    return std::string(files_.folder().c_str()) + name;
  }
  /// The names of what the folder for temporary files holds.
  std::vector<std::string> left_files() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder_.path("")))
      names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
  }
  /// The texts of all boxes.
  std::string boxes() const {
    std::string all;
    for (const RecordingUpdateFrame::Box& box : frame_.boxes)
      all += (box.is_question ? "?[" : "[") + box.title + "] " + box.text + '\n';
    return all;
  }
  std::vector<std::string> fetched() const {
    std::vector<std::string> urls;
    for (const MemoryInternet::Request& request : internet_.requests)
      urls.push_back(request.url);
    return urls;
  }

  UpdateSettings settings_{"zolvane",     kOwnKey, kDescriptionUrl, "5.3", "zolvane 5.3",
                           "WIN6.1.7601", true};
  TempFolder folder_;
  MemoryInternet internet_;
  MemoryOwnKey key_;
  FolderTemporaryFiles files_{folder_.path("")};
  ORLO::FixedClock clock_{{2026, 11, 0, 5, 20, 12}};
  RecordingUpdateFrame frame_;
  LoggingShell shell_{frame_.log};
  bool german_ = false;
};
