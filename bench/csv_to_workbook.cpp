// A workbook from a text file, so that other programs can be given the same task.
//   csv_to_workbook --make CSV       writes the inventory of the benches: each field in quotes
//   csv_to_workbook CSV STREAM       reads such a file, writes the workbook's stream to a file, and
//                                    prints the seconds of processor time that the writing took
// The compound file around the stream is the platform's work, which a build machine doesn't have.
#include <cstdio>
#include <ctime>
#include <exception>
#include <fstream>
#include <sstream>
#include <string>
#include <string_view>

#include "bench/export_rows.h"

namespace {

constexpr int kRows = 10'000;

/// Has the stream written to a file.
class FileStorage final : public CompoundStorage {
 public:
  explicit FileStorage(const char* path) : path_(path) {}

  std::unique_ptr<CompoundFile> create(const char16_t* /*path*/, StorageStatus& status) override {
    status = 0;
    return std::make_unique<File>(path_);
  }

 private:
  struct Stream final : StorageStream {
    explicit Stream(const char* path) : file(path, std::ios::binary) {}
    StorageStatus write(const void* data, size_t size) override {
      file.write(static_cast<const char*>(data), static_cast<std::streamsize>(size));
      file.close();
      return file.fail() ? -1 : 0;
    }
    std::ofstream file;
  };
  struct File final : CompoundFile {
    explicit File(const char* to) : path(to) {}
    StorageStatus create_stream(const char16_t* /*name*/) override { return 0; }
    StorageStatus commit() override { return 0; }
    std::unique_ptr<StorageStream> open_stream(const char16_t* /*name*/,
                                               StorageStatus& status) override {
      status = 0;
      return std::make_unique<Stream>(path);
    }
    const char* path;
  };

  const char* path_;
};

void put_field(std::string& to, const String& text) {
  to.push_back('"');
  for (const char c : std::string_view(text.c_str(), text.length()))
    to.append(c == '"' ? 2 : 1, c);
  to.push_back('"');
}

bool make(const char* path) {
  std::string text;
  for (const std::vector<String>& row : bench::inventory(kRows).rows) {
    for (const String& cell : row) {
      put_field(text, cell);
      text.push_back(',');
    }
    text.back() = '\n';
  }
  std::ofstream file(path, std::ios::binary);
  file << text;
  file.close();
  return !file.fail();
}

/// The field that begins with a quote at this place, which moves to what follows it.
String read_field(std::string_view text, size_t& at) {
  std::string field;
  for (++at; at < text.size(); ++at) {
    if (text[at] == '"' && (++at == text.size() || text[at] != '"')) break;
    field.push_back(text[at]);
  }
  return field;
}

ExportSheet read(const char* path) {
  std::ifstream file(path, std::ios::binary);
  std::ostringstream bytes;
  bytes << file.rdbuf();
  const std::string text = bytes.str();
  ExportSheet sheet = bench::inventory(0);
  for (size_t at = 0; at < text.size(); ++at) {
    if (at == 0 || text[at - 1] == '\n') sheet.rows.emplace_back();
    sheet.rows.back().push_back(read_field(text, at));
  }
  return sheet;
}

int convert(const char* csv, const char* stream) {
  const ExportSheet sheet = read(csv);
  FileStorage storage(stream);
  const std::clock_t start = std::clock();
  if (sheet.rows.empty() || writeWorkbook(sheet, "a.xls", storage) != 0) return 1;
  const auto took = static_cast<double>(std::clock() - start);
  std::printf("%.6f\n", took / CLOCKS_PER_SEC);
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    if (argc != 3) return 2;
    if (std::string_view(argv[1]) == "--make") return make(argv[2]) ? 0 : 1;
    return convert(argv[1], argv[2]);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
}
