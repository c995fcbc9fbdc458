#include "update/setup_name.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace {

TEST(SetupName, MayBeAnyFileName) {
  for (const char* name : {"setup.exe",
                           "zolvane-5.4.exe",
                           "a",
                           ".hidden",
                           "a b.exe",
                           "s%n.exe",
                           "x?y=1",
                           "~$a",
                           "setup.exe.",
                           "console.exe",
                           "co",
                           "con1",
                           "com",
                           "com0.exe",
                           "com10",
                           "com12",
                           "lpt-1.exe",
                           "lpt",
                           "auxiliary",
                           "xcon",
                           "nulls.txt",
                           "setup.con",
                           "M\xf6wen.exe",
                           "com\xb4",
                           "comx",
                           "conin",
                           "kom1"}) {
    EXPECT_TRUE(is_plain_file_name(name)) << name;
  }
}

TEST(SetupName, MayBeEmpty) {
  EXPECT_TRUE(is_plain_file_name(""));
}

TEST(SetupName, HoldsNoSeparatorOrStream) {
  for (const char* name : {"..\\setup.exe", "a\\b", "\\", "\\\\server\\share\\a.exe", "C:a.exe",
                           "setup.exe:stream", ":", "a/b"}) {
    EXPECT_FALSE(is_plain_file_name(name)) << name;
  }
}

TEST(SetupName, HoldsNoControlCharacter) {
  for (int c = 0; c < 256; ++c) {
    SCOPED_TRACE(c);
    const char text[] = {'a', static_cast<char>(c), 'b'};
    const bool forbidden = c < 0x20 || c == 0x7F || c == '\\' || c == ':' || c == '/';
    EXPECT_EQ(is_plain_file_name({text, sizeof text}), !forbidden);
  }
}

TEST(SetupName, IsNotOfDotsAndBlanksAlone) {
  for (const char* name : {".", "..", "...", " ", ".. ", " ..", ". ."})
    EXPECT_FALSE(is_plain_file_name(name)) << name;
}

TEST(SetupName, IsNoDevice) {
  for (const std::string device :
       {"CON",  "PRN",  "AUX",  "NUL",     "CONIN$",  "CONOUT$", "COM1", "COM2",
        "COM3", "COM4", "COM5", "COM6",    "COM7",    "COM8",    "COM9", "LPT1",
        "LPT2", "LPT3", "LPT4", "LPT5",    "LPT6",    "LPT7",    "LPT8", "LPT9",
        "con",  "Nul",  "cOm1", "COM\xb9", "LPT\xb2", "com\xb3"}) {
    SCOPED_TRACE(device);
    EXPECT_FALSE(is_plain_file_name(device));
    EXPECT_FALSE(is_plain_file_name(device + ".exe"));
    EXPECT_FALSE(is_plain_file_name(device + ".tar.gz"));
    EXPECT_FALSE(is_plain_file_name(device + "."));
    EXPECT_FALSE(is_plain_file_name(device + " "));
    EXPECT_FALSE(is_plain_file_name(device + " . exe"));
    EXPECT_FALSE(is_plain_file_name(" " + device));
    EXPECT_FALSE(is_plain_file_name(" . " + device + " .exe"));
    EXPECT_TRUE(is_plain_file_name(device + "x.exe"));
    EXPECT_TRUE(is_plain_file_name("x" + device));
  }
}

}  // namespace
