// Reading and writing a document like the history, 10,000 rows, beside libxml2: its tree, and its
// text writer. libxml2 refuses names that begin with a digit, so its twin of the file says bit64.
#include <benchmark/benchmark.h>
#include <libxml/parser.h>
#include <libxml/xmlwriter.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "trellis/trellis.h"

namespace {

constexpr int kRows = 10000;

struct Attribute {
  std::string name;
  std::string value;  ///< in the code page
  std::string utf8;
};
using Attributes = std::vector<Attribute>;

/// What an installer would leave behind, in the order of the columns, in which the program sets it.
Attributes row_of(int number, const char* name_of_64bit) {
  const std::string n = std::to_string(number);
  const std::string folder = "C:\\Program Files (x86)\\Hersteller M\xFCller & Co\\Programm " + n;
  const std::string key = "{90140000-0011-0000-0000-" + std::to_string(1000000 + number) + "0FF1}";
  Attributes row;
  const std::pair<const char*, std::string> cells[] = {
      {"name", key},
      {"source", "HKLM Uninstall"},
      {"displayName", "Programm " + n + " \"Plus\" f\xFCr B\xFCro"},
      {"displayVersion", "5." + n + ".1033"},
      {"displayIcon", folder + "\\bin\\program.exe,0"},
      {"installLocation", folder},
      {"installDate", "20.11.2026"},
      {"uninstallDate", "31.12.2099"},
      {"uninstallCmd", '"' + folder + "\\uninstall.exe\" /x " + key},
      {"modifyCmd", "msiexec.exe /i" + key},
      {"noRemove", "0"},
      {"noModify", "0"},
      {"systemComponent", "0"},
      {"comments",
       number % 3 == 0 ? "A longer comment, <as> some installers leave it & more." : ""},
      {"size", n + "024"},
      {"installerPath", "C:\\Windows\\Installer\\" + n + "af3.msi"},
      {"MSI", "1"},
      {"OK", "1"},
      {name_of_64bit, "0"},
      {"publisher", "Hersteller M\xFCller & Co"},
      {"helpURL", "https://www.example.com/support?id=" + n + "&lang=de"},
      {"aboutURL", "https://www.example.com/"},
      {"keyName", key},
      {"HKEY_ROOT", "-2147483646"}};
  for (const auto& [name, value] : cells) {
    if (!value.empty()) {
      row.push_back({name, value, Trellis::to_utf8(value.data(), value.size())});
    }
  }
  std::sort(row.begin(), row.end(), [](auto& a, auto& b) { return a.name < b.name; });
  return row;
}

std::vector<Attributes> make_rows(const char* name_of_64bit) {
  std::vector<Attributes> rows;
  rows.reserve(kRows);
  for (int i = 0; i < kRows; ++i)
    rows.push_back(row_of(i, name_of_64bit));
  return rows;
}

const std::vector<Attributes>& our_rows() {
  static const auto rows = make_rows("64bit");
  return rows;
}
const std::vector<Attributes>& twin_rows() {
  static const auto rows = make_rows("bit64");
  return rows;
}

void write_rows(const char* path, const std::vector<Attributes>& rows) {
  Trellis::XMLFormat format;
  format.pretty = 0;
  Trellis::XMLWriter writer(std::make_unique<Trellis::tofstream>(path), format);
  format.print_header(writer.out, false);
  writer.create("zolvane");
  writer["version"] = "5.3";
  writer.create("last-entries");
  for (const Attributes& row : rows) {
    writer.create("row");
    for (const Attribute& attribute : row)
      writer[attribute.name] = attribute.value;
    writer.back();
  }
  writer.back();
  writer.back();
}

const xmlChar* native(const char* text) {
  return reinterpret_cast<const xmlChar*>(text);
}

bool write_rows_with_libxml2(const char* path, const std::vector<Attributes>& rows) {
  const xmlTextWriterPtr writer = xmlNewTextWriterFilename(path, 0);
  xmlTextWriterStartDocument(writer, "1.0", "utf-8", nullptr);
  xmlTextWriterStartElement(writer, native("zolvane"));
  xmlTextWriterWriteAttribute(writer, native("version"), native("5.3"));
  xmlTextWriterStartElement(writer, native("last-entries"));
  for (const Attributes& row : rows) {
    xmlTextWriterStartElement(writer, native("row"));
    for (const Attribute& attribute : row) {
      xmlTextWriterWriteAttribute(writer, native(attribute.name.c_str()),
                                  native(attribute.utf8.c_str()));
    }
    xmlTextWriterEndElement(writer);
  }
  const bool good = xmlTextWriterEndDocument(writer) >= 0;
  xmlFreeTextWriter(writer);
  return good;
}

/// Made once, removed at the end.
class Files {
 public:
  Files() {
    write_rows(ours.c_str(), our_rows());
    write_rows(twin.c_str(), twin_rows());
  }
  ~Files() {
    std::error_code ignored;
    for (const std::string& path : {ours, twin, written})
      std::filesystem::remove(path, ignored);
  }
  Files(const Files&) = delete;
  Files& operator=(const Files&) = delete;

  const std::string ours = path("ours");
  const std::string twin = path("twin");
  const std::string written = path("written");

 private:
  static std::string path(const std::string& name) {
    return (std::filesystem::temp_directory_path() / ("zolvane-xml-bench-" + name)).string();
  }
};

const Files& files() {
  static const Files made;
  return made;
}

class CharByCharReader final : public Trellis::XMLReader {
 public:
  using XMLReader::XMLReader;
  int get() override { return XMLReader::get(); }
};

template <typename Reader>
void read_rows(benchmark::State& state) {
  const std::string path = files().ours;
  for (auto _ : state) {
    Trellis::XMLDoc doc;
    Trellis::tifstream in(path.c_str());
    Reader reader(doc, in);
    const Trellis::XMLNode* entries = nullptr;
    if (doc.read(reader, path.c_str())) entries = doc.find("zolvane/last-entries");
    if (entries == nullptr || entries->children.size() != kRows) state.SkipWithError("wrong rows");
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) *
                          static_cast<int64_t>(std::filesystem::file_size(path)));
}

void BM_ReadRows(benchmark::State& state) {
  read_rows<Trellis::XMLReader>(state);
}
BENCHMARK(BM_ReadRows)->Unit(benchmark::kMillisecond);

void BM_ReadRowsByCharacters(benchmark::State& state) {
  read_rows<CharByCharReader>(state);
}
BENCHMARK(BM_ReadRowsByCharacters)->Unit(benchmark::kMillisecond);

void BM_ReadRowsFloor(benchmark::State& state) {
  const std::string path = files().twin;
  for (auto _ : state) {
    const xmlDocPtr doc = xmlReadFile(path.c_str(), nullptr, 0);
    const xmlNodePtr root = xmlDocGetRootElement(doc);
    if (root == nullptr || xmlChildElementCount(root->children) != kRows) {
      state.SkipWithError("wrong rows");
    }
    xmlFreeDoc(doc);
  }
}
BENCHMARK(BM_ReadRowsFloor)->Unit(benchmark::kMillisecond);

void BM_WriteRows(benchmark::State& state) {
  const auto& rows = our_rows();
  const std::string path = files().written;
  for (auto _ : state)
    write_rows(path.c_str(), rows);
  if (std::filesystem::file_size(path) != std::filesystem::file_size(files().ours)) {
    state.SkipWithError("wrong file");
  }
}
BENCHMARK(BM_WriteRows)->Unit(benchmark::kMillisecond);

void BM_WriteRowsFloor(benchmark::State& state) {
  const auto& rows = twin_rows();
  const std::string path = files().written;
  for (auto _ : state) {
    if (!write_rows_with_libxml2(path.c_str(), rows)) state.SkipWithError("not written");
  }
}
BENCHMARK(BM_WriteRowsFloor)->Unit(benchmark::kMillisecond);

}  // namespace
