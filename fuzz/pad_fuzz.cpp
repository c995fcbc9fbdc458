// A description of a program behind one byte, which says how it is served and what the user
// answers. The bytes are the document, or the texts of its elements, one to a line. A whole check
// is made of it, in the background or on demand.
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "inventory/text_helpers.h"
#include "orlo/exception.h"
#include "orlo/fixed_clock.h"
#include "platform/memory_own_key.h"
#include "update/pad_reader.h"
#include "update/update_check.h"

namespace {

constexpr const char* kDescriptionUrl = "http://update.example/pad.xml";
constexpr const char* kFolder = "/no such folder/";
constexpr const char* kSystem = "WIN6.1.7601";
constexpr const char* kVersion = "5.3";

void demand(bool holds) {
  if (!holds) std::abort();
}

std::string_view view(const String& text) {
  return {text.c_str(), text.length()};
}

bool holds(std::string_view text, const String& piece) {
  return text.find(piece.c_str()) != std::string_view::npos;
}

struct Options {
  explicit Options(uint8_t bits)
      : document((bits & 1) == 0),
        yes((bits & 2) != 0),
        complete((bits & 4) == 0),
        fails((bits & 8) != 0),
        manual((bits & 16) != 0) {}
  const bool document;  ///< else texts of elements
  const bool yes;
  const bool complete;
  const bool fails;   ///< the download
  const bool manual;  ///< else in the background
};

/// Serves the description at its address, and a setup at any other.
class Servers final : public Internet {
 public:
  Servers(const std::string& description, const Options& options)
      : description_(description), options_(options) {}
  bool fetchUrl(const FetchRequest& request, std::ostream& stream,
                TransferProgress* progress) override {
    demand((progress == nullptr) == (request.limit < (uint64_t{1} << 29)));
    if (progress == nullptr) {
      stream << description_;
      return options_.complete;
    }
    if (options_.fails) throw ORLO::INetException(12007);
    stream << "setup";
    return options_.complete;
  }
  std::optional<bool> is_offline() override { return false; }
  std::optional<String> url_path(const char* url) override { return String(url); }
  void cancel() noexcept override {}

 private:
  const std::string& description_;
  const Options& options_;
};

class NoFiles final : public TemporaryFiles {
 public:
  String folder() override { return kFolder; }
  bool can_replace(const char* path) override {
    demand(std::string_view(path).starts_with(kFolder));
    return false;
  }
  void remove(const char* /*path*/) override { std::abort(); }
};

/// Nothing but the folder and what lies in it may be opened; an empty page never is.
class WatchingShell final : public Shell {
 public:
  bool open(const ShellStart& start) override {
    const std::string_view file = start.file;
    if (file.empty()) return false;
    demand(file.starts_with(kFolder));
    const std::string_view name = file.substr(std::string_view(kFolder).size());
    demand(name.find_first_of("/\\:\n\r\t") == name.npos);
    demand(name != "." && name != "..");
    return true;
  }
  Started open_process(const ShellStart& /*start*/) override { std::abort(); }
};

class Frame final : public UpdateFrame {
 public:
  explicit Frame(bool answer) : answer_(answer) {}
  void* window() override { return nullptr; }
  void tell(const String& text, const String& /*title*/) override { told.push_back(text); }
  bool ask(const String& text, const String& /*title*/) override {
    asked.push_back(text);
    return answer_;
  }
  void hide() override {}
  std::unique_ptr<ShownDownload> show_download(const String& /*url*/) override {
    return std::make_unique<Shown>(closed);
  }
  void end_process() override { demand(answer_); }

  std::vector<String> told;
  std::vector<String> asked;
  int closed = 0;

 private:
  class Shown final : public ShownDownload {
   public:
    explicit Shown(int& closed) : closed_(closed) {}
    void set_range(int /*kilobytes*/) override {}
    void set_position(int /*kilobytes*/) override {}
    void close() noexcept override { ++closed_; }

   private:
    int& closed_;
  };
  const bool answer_;
};

bool read(const std::string& description, PadInfo& info) {
  std::stringstream stream(description);
  return read_pad(stream, info);
}

/// The bytes' lines in their elements; the last ones are messages.
std::string in_elements(const std::string& texts) {
  std::istringstream lines(texts);
  std::string version, name, year, url, first, message;
  std::getline(lines, version);
  std::getline(lines, name);
  std::getline(lines, year);
  std::getline(lines, url);
  std::getline(lines, first);
  std::string xml = "<XML_DIZ_INFO><Program_Info><Program_Version>" + version +
                    "</Program_Version><Program_Name>" + name +
                    "</Program_Name><Program_Release_Year>" + year +
                    "</Program_Release_Year></Program_Info><Web_Info><Download_URLs>"
                    "<Primary_Download_URL>" +
                    url +
                    "</Primary_Download_URL></Download_URLs></Web_Info><Company_Info>"
                    "<Contact_Info><Author_First_Name>" +
                    first + "</Author_First_Name></Contact_Info></Company_Info><qm:messages>";
  while (std::getline(lines, message))
    xml += "<qm:msg " + message + "</qm:msg>";
  return xml + "</qm:messages></XML_DIZ_INFO>";
}

void check_messages(const PadInfo& info) {
  size_t most = 0;
  for (const PadMessage& message : info.messages) {
    PadInfo one;
    one.messages.push_back(message);
    demand(view(messagesFor(one, message.version, message.id)) == view(message.text));
    most += message.text.length() + 2;
  }
  const String all = messagesFor(info, kVersion, kSystem);
  demand(all.length() <= most);
  for (const PadMessage& message : info.messages) {
    if (message.version.empty() && message.id.empty())
      demand(view(all).find(view(message.text)) != std::string_view::npos);
  }
}

void check_versions(const String& version) {
  const int order = compareVersions(kVersion, version);
  const int reverse = compareVersions(version, kVersion);
  demand((order > 0) == (reverse < 0) && (order < 0) == (reverse > 0));
}

String text_of(unsigned id) {
  // Both headlines and both questions alike: in each format a text stands for every argument.
  return id == 163 || id == 167 ? "%#s|%#s|%#s|%#s" : id == 122 || id == 162 ? "|%#s|%#s" : "text";
}

/// What the boxes must show of a description that can be used.
void check_boxes(const Frame& frame, const PadInfo& info, bool manual) {
  const bool newer = compareVersions(kVersion, info.programVersion) < 0;
  demand(frame.asked.size() == (newer ? 1u : 0u));
  const bool has_messages = !messagesFor(info, kVersion, kSystem).empty();
  demand(frame.told.size() == (has_messages ? 1u : 0u) + (manual && !newer ? 1u : 0u));
  if (!newer) return;
  const std::string_view text = view(frame.asked[0]);
  demand(holds(text, info.programVersion) && holds(text, info.programName));
  demand(holds(text, info.downloadUrl));
}

void make_check(UpdateCheck& check, bool manual) {
  if (manual) {
    check.checkNow();
  } else {
    demand(check.checkInBackground() == 0);
  }
}

/// `info` is null if the description can't be used.
void check_whole(const std::string& description, const Options& options, const PadInfo* info) {
  Servers servers(description, options);
  MemoryOwnKey key;
  NoFiles files;
  WatchingShell shell;
  const ORLO::FixedClock clock{{2026, 11, 0, 5, 20, 12}};
  Frame frame(options.yes);
  UpdateCheck check({"zolvane", "key", kDescriptionUrl, kVersion, "zolvane 5.3", kSystem, true},
                    {servers, key, files, shell, clock, text_of}, frame);
  try {
    make_check(check, options.manual);
  } catch (const ORLO::INetException&) {
    demand(options.manual && options.fails && frame.closed == 1);
  }
  if (options.complete && info != nullptr) {
    check_boxes(frame, *info, options.manual);
  } else {
    demand(frame.asked.empty() && frame.told.size() == (options.manual ? 1u : 0u));
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 1) return 0;
  const Options options(data[0]);
  const std::string bytes(data + 1, data + size);
  const std::string description = options.document ? bytes : in_elements(bytes);
  PadInfo info;
  const bool good = read(description, info);
  if (good) {
    check_messages(info);
    check_versions(info.programVersion);
    demand(info.infoPageUrl.empty());
  }
  check_whole(description, options, good ? &info : nullptr);
  return 0;
}
