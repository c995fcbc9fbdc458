#include "orlo/format.h"

#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "orlo/exception.h"
#include "orlo/locale.h"
#include "orlo/rstring.h"
#include "orlo/system_time.h"

namespace ORLO {
namespace {

template <typename... Args>
std::string formatted(const char* format, const Args&... args) {
  const String text = String::formatted(format, args...);
  return {text.c_str(), text.length()};
}

template <typename... Args>
size_t measured(const char* format, const Args&... args) {
  const FormatArg list[] = {FormatArg(args)..., FormatArg()};
  return measure_format(format, list, sizeof...(args));
}

/// Switches exception mode on for a scope.
class InExceptionMode {
 public:
  InExceptionMode() { set_exception_mode(true); }
  InExceptionMode(const InExceptionMode&) = delete;
  InExceptionMode& operator=(const InExceptionMode&) = delete;
  ~InExceptionMode() { set_exception_mode(false); }
};

std::optional<uint32_t> error_of(const char* format, LeadByteTest lead_byte = is_lead_byte) {
  try {
    measure_format(format, nullptr, 0, lead_byte);
  } catch (const ORLOException& exception) {
    return exception.code;
  }
  return std::nullopt;
}

constexpr char kNul = '\0';
const SystemTime kAfternoon = {2009, 1, 1, 5, 13, 5, 7, 0};

TEST(Format, CopiesLiteralText) {
  EXPECT_EQ(formatted(""), "");
  EXPECT_EQ(formatted("plain text, 100 #+-.*hI64 \xe4\xff\x01"),
            "plain text, 100 #+-.*hI64 \xe4\xff\x01");
  EXPECT_EQ(formatted("100%%"), "100%");
  EXPECT_EQ(formatted("%%d"), "%d");
}

TEST(Format, PrintsIntegers) {
  struct Row {
    const char* format;
    int64_t value;
    const char* text;
  };
  const Row rows[] = {
      {"%d", 0, "0"},
      {"%d", 42, "42"},
      {"%i", -42, "-42"},
      {"%d", std::numeric_limits<int32_t>::min(), "-2147483648"},
      {"%5d", 42, "   42"},
      {"%-5d|", 42, "42   |"},
      {"%05d", 42, "00042"},
      {"%05d", -42, "-0042"},
      {"%-05d|", 42, "42   |"},
      {"%+d", 42, "+42"},
      {"%+d", -42, "-42"},
      {"% d", 42, " 42"},
      {"% d", -42, "-42"},
      {"%+ d", 42, "+42"},
      {"%+05d", 42, "+0042"},
      {"%.3d", 7, "007"},
      {"%.3d", -7, "-007"},
      {"%6.3d", 7, "   007"},
      {"%06.3d", 7, "   007"},
      {"%-6.3d|", 7, "007   |"},
      {"%.0d", 0, ""},
      {"%.d", 0, ""},
      {"%3.0d", 0, "   "},
      {"%.0d", 5, "5"},
      {"%1d", 12345, "12345"},
      {"%02d.%02d|", 5, "05.|"},
      {"%#d", 5, "5"},
      {"%u", 42, "42"},
      {"%u", -1, "4294967295"},
      {"%+u", 42, "42"},
      {"% u", 42, "42"},
      {"%o", 8, "10"},
      {"%#o", 8, "010"},
      {"%#o", 0, "0"},
      {"%#.3o", 8, "010"},
      {"%#.2o", 8, "010"},
      {"%#.5o", 8, "00010"},
      {"%#.0o", 0, "0"},
      {"%o", -1, "37777777777"},
      {"%x", 255, "ff"},
      {"%X", 255, "FF"},
      {"%#x", 0, "0"},
      {"%#x", 255, "0xff"},
      {"%#X", 255, "0XFF"},
      {"%#8x", 255, "    0xff"},
      {"%#08x", 255, "0x0000ff"},
      {"%-#8x|", 255, "0xff    |"},
      {"%#.4x", 255, "0x00ff"},
      {"%08X", 0x42FF0001, "42FF0001"},
      {"%x", -1, "ffffffff"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.format);
    EXPECT_EQ(formatted(row.format, row.value), row.text);
  }
}

TEST(Format, TakesAsManyBitsAsTheSizeSays) {
  struct Row {
    const char* format;
    int64_t value;
    const char* text;
  };
  const Row rows[] = {
      {"%d", 0x1'0000'0005, "5"},
      {"%d", 0xFFFF'FFFF, "-1"},
      {"%ld", 0x1'0000'0005, "5"},
      {"%lu", -1, "4294967295"},
      {"%hd", 0x1'8000, "-32768"},
      {"%hd", 0x1'0005, "5"},
      {"%hu", -1, "65535"},
      {"%hx", -1, "ffff"},
      {"%ho", -1, "177777"},
      {"%I64d", 0x1'0000'0005, "4294967301"},
      {"%I64d", std::numeric_limits<int64_t>::min(), "-9223372036854775808"},
      {"%I64u", -1, "18446744073709551615"},
      {"%I64x", -1, "ffffffffffffffff"},
      {"%#I64X", 255, "0XFF"},
      {"%I64o", -1, "1777777777777777777777"},
      {"%20I64d", -5, "                  -5"},
      {"%020I64d", -5, "-0000000000000000005"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.format);
    EXPECT_EQ(formatted(row.format, row.value), row.text);
  }
}

TEST(Format, TakesIntegersOfAnyType) {
  enum Colour { red = 3 };
  enum class Size : uint8_t { large = 200 };
  EXPECT_EQ(formatted("%d %u %d %d %d %d", short{-1}, uint8_t{200}, true, 'A', red, Size::large),
            "-1 200 1 65 3 200");
  EXPECT_EQ(formatted("%u", std::numeric_limits<uint32_t>::max()), "4294967295");
  EXPECT_EQ(formatted("%I64u", std::numeric_limits<uint64_t>::max()), "18446744073709551615");
}

TEST(Format, PrintsTextUpToItsFirstNul) {
  struct Row {
    const char* format;
    const char* argument;
    const char* text;
  };
  const Row rows[] = {
      {"%s", "abc", "abc"},
      {"%hs", "abc", "abc"},
      {"%hS", "abc", "abc"},
      {"%5s", "abc", "  abc"},
      {"%-5s|", "abc", "abc  |"},
      {"%05s", "abc", "00abc"},
      {"%.2s", "abc", "ab"},
      {"%.0s", "abc", ""},
      {"%.s", "abc", ""},
      {"%5.2s", "abc", "   ab"},
      {"%.9s", "abc", "abc"},
      {"%s", "", ""},
      {"%3s", "", "   "},
      {"%s", nullptr, ""},
      {"<%s>", nullptr, "<>"},
      {"%#s", "abc", "abc"},
      {"%#.2s", "abc", "ab"},
      {"%#s", nullptr, ""},
      {"\xe4%s\xf6", "\xfc", "\xe4\xfc\xf6"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.format);
    EXPECT_EQ(formatted(row.format, row.argument), row.text);
  }
}

TEST(Format, ReadsNoFurtherThanThePrecision) {
  const std::vector<char> unterminated = {'a', 'b', 'c'};
  const char* const text = unterminated.data();
  EXPECT_EQ(formatted("%.3s", text), "abc");
  EXPECT_EQ(formatted("%.*s", 2, text), "ab");
  EXPECT_EQ(formatted("%.*s", 0, text), "");
  const std::vector<char16_t> wide = {u'a', u'b'};
  EXPECT_EQ(formatted("%.2ls", static_cast<const char16_t*>(wide.data())), "ab");
}

TEST(Format, PrintsAStringWholeWithTheAlternateForm) {
  const String text("ab\0cd", 5, nullptr, 0);
  EXPECT_EQ(formatted("%#s", text), std::string("ab\0cd", 5));
  EXPECT_EQ(formatted("%#hs", text), std::string("ab\0cd", 5));
  EXPECT_EQ(formatted("%#hS", text), std::string("ab\0cd", 5));
  EXPECT_EQ(formatted("%#.3s", text), std::string("ab\0", 3));
  EXPECT_EQ(formatted("%#7s", text), std::string("  ab\0cd", 7));
  EXPECT_EQ(formatted("%-#7s", text), std::string("ab\0cd  ", 7));
  EXPECT_EQ(formatted("%s", text), "ab");
  EXPECT_EQ(formatted("%.1s", text), "a");
  EXPECT_EQ(formatted("%s", text.c_str()), "ab");
  EXPECT_EQ(formatted("%#s", String()), "");
}

TEST(Format, AppendsEveryByteOfAStringThatHoldsNuls) {
  const String text("a\0b", 3, nullptr, 0);
  String result("x");
  result.appendf("%#s", text);
  EXPECT_EQ(std::string(result.c_str(), result.length()), std::string("xa\0b", 4));
  result = "x";
  result.appendf("%s", text);
  EXPECT_STREQ(result.c_str(), "xa");
  EXPECT_EQ(result.length(), 2U);
}

TEST(Format, TakesAStandardStringAsText) {
  EXPECT_EQ(formatted("%s", std::string("abc")), "abc");
}

TEST(Format, PrintsOfWideTextWhatHasAByteOfTheSameNumber) {
  struct Row {
    const char* format;
    const char16_t* argument;
    const char* text;
  };
  const Row rows[] = {
      {"%ls", u"abc", "abc"},
      {"%ws", u"abc", "abc"},
      {"%S", u"abc", "abc"},
      {"%ls", u"\x00e4\x00ff", "\xe4\xff"},
      {"%ls",
       u"a\x20ac"
       u"b",
       "ab"},
      {"%.2ls", u"abc", "ab"},
      {"%.2ls",
       u"\x20ac"
       u"abc",
       "ab"},
      {"%5S", u"abc", "  abc"},
      {"%-5ls|", u"abc", "abc  |"},
      {"%ls", nullptr, ""},
      {"%S", u"", ""},
      {"%lS", u"abc", "abc"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.format);
    EXPECT_EQ(formatted(row.format, row.argument), row.text);
  }
}

TEST(Format, ReadsAStringAs16BitUnitsWithTheAlternateWideForm) {
  const String units("a\0b\0\0\0c\0d", 9, nullptr, 0);
  EXPECT_EQ(formatted("%#ls", units), std::string("ab\0c", 4));
  EXPECT_EQ(formatted("%#S", units), std::string("ab\0c", 4));
  EXPECT_EQ(formatted("%#.2S", units), "ab");
}

TEST(Format, PrintsCharacters) {
  EXPECT_EQ(formatted("%c%hc%C%lc%wc%hC", 'a', 'b', u'c', u'd', u'e', 'f'), "abcdef");
  EXPECT_EQ(formatted("%c", 0x141), "A");
  EXPECT_EQ(formatted("%c", '\xe4'), "\xe4");
  EXPECT_EQ(formatted("%C", 0x141), "");
  EXPECT_EQ(formatted("%C", 0x100), "");
  EXPECT_EQ(formatted("%C", u'\x00e4'), "\xe4");
  EXPECT_EQ(formatted("%3c|%-3c|%03c", 'a', 'b', 'c'), "  a|b  |00c");
  EXPECT_EQ(formatted("%.0c", 'a'), "a");
  EXPECT_EQ(formatted("a%cb", kNul), std::string("a\0b", 3));
}

TEST(Format, PrintsPointersAsEightUpperCaseDigits) {
  // NOLINTNEXTLINE(performance-no-int-to-ptr): the digits of a known address are wanted.
  const auto pointer = [](uintptr_t address) { return reinterpret_cast<const void*>(address); };
  EXPECT_EQ(formatted("%p", pointer(0xabc)), "00000ABC");
  EXPECT_EQ(formatted("%p", pointer(0)), "00000000");
  EXPECT_EQ(formatted("%p", 0x89abcdefLL), "89ABCDEF");
  EXPECT_EQ(formatted("%10p|%-10p|%.2p", pointer(1), pointer(2), pointer(3)),
            "  00000001|00000002  |00000003");
  const char text[] = "text";
  EXPECT_EQ(formatted("%p", static_cast<const char*>(text)),
            formatted("%p", static_cast<const void*>(text)));
}

TEST(Format, TakesWidthAndPrecisionFromTheArguments) {
  EXPECT_EQ(formatted("%*d", 5, 42), "   42");
  EXPECT_EQ(formatted("%*d|", -5, 42), "42   |");
  EXPECT_EQ(formatted("%0*d", 5, 42), "00042");
  EXPECT_EQ(formatted("%.*d", 3, 7), "007");
  EXPECT_EQ(formatted("%0*.*d", 6, -1, 7), "000007");
  EXPECT_EQ(formatted("%.*s", -1, "abc"), "abc");
  EXPECT_EQ(formatted("%*.*s|", 5, 2, "abc"), "   ab|");
  EXPECT_EQ(formatted("%.*f", -1, 0.5), "0.500000");
}

TEST(Format, PrintsRealNumbersWithTheirSignHandledLikeThatOfIntegers) {
  struct Row {
    const char* format;
    double value;
    const char* text;
  };
  const Row rows[] = {
      {"%f", 1.5, "1.500000"},
      {"%.2f", 0.125, "0.13"},
      {"%.0f", 2.5, "3"},
      {"%8.2f", -1.5, "   -1.50"},
      {"%08.2f", -1.5, "-0001.50"},
      {"%-8.2f|", -1.5, "-1.50   |"},
      {"%+.1f", 1.5, "+1.5"},
      {"% .1f", 1.5, " 1.5"},
      {"%e", 1500.0, "1.500000e+003"},
      {"%.1e", -1500.0, "-1.5e+003"},
      {"%g", 0.0001, "0.0001"},
      {"%g", 0.00001, "1e-005"},
      {"%g", 1234567.0, "1.23457e+006"},
      {"%G", 0.00001, "1E-005"},
      {"%.3g", 1234.0, "1.23e+003"},
      {"%g", 100.0, "100"},
      {"%#.0f", 1.0, "1"},
      {"%lf", 1.5, "1.500000"},
      {"%.1f", -0.0, "-0.0"},
      {"%.2f", 1e15, "1000000000000000.00"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.format);
    EXPECT_EQ(formatted(row.format, row.value), row.text);
  }
}

TEST(Format, PrintsLongRealNumbersWhole) {
  const double large = 1e300;
  EXPECT_EQ(formatted("%f", large).size(), 308U);
  EXPECT_EQ(formatted("%.200f", 1.5).size(), 202U);
  EXPECT_EQ(formatted("%.300f", large).size(), 602U);
  EXPECT_EQ(formatted("%.200e", 1.5).size(), 207U);
  EXPECT_EQ(formatted("%300.200f", -1.5).size(), 300U);
}

TEST(Format, StoresTheCountSoFar) {
  int count = -1;
  EXPECT_EQ(formatted("abc%n%d", &count, 5), "abc5");
  EXPECT_EQ(count, 3);
  EXPECT_EQ(formatted("%n", &count), "");
  EXPECT_EQ(count, 0);
}

TEST(Format, StoresOnly16BitsOfTheCountWithTheShortSize) {
  int count = 0x12345678;
  EXPECT_EQ(formatted("abc%hn", &count), "abc");
  EXPECT_EQ(count, 0x12340003);
  count = 0x12345678;
  EXPECT_EQ(formatted("abc%hln", &count), "abc");
  EXPECT_EQ(count, 3);
}

TEST(Format, PrintsDateAndTimeThroughTheLocale) {
  const Locale& locale = system_locale();
  const std::string date = locale.date_text(kAfternoon, nullptr).value();
  const std::string time = locale.time_text(kAfternoon, nullptr).value();
  EXPECT_EQ(formatted("%D", &kAfternoon), date);
  EXPECT_EQ(formatted("%T", &kAfternoon), time);
  EXPECT_EQ(formatted("<%D|%T>", &kAfternoon, &kAfternoon), "<" + date + "|" + time + ">");
  EXPECT_EQ(formatted("%D %#THH:mm#", &kAfternoon, &kAfternoon), date + " 13:05");
}

TEST(Format, TakesThePictureUpToTheNextHashOrTheEnd) {
  EXPECT_EQ(formatted("%#Dyyyy-MM-dd#x", &kAfternoon), "2009-01-05x");
  EXPECT_EQ(formatted("%#Dyyyy-MM-dd", &kAfternoon), "2009-01-05");
  EXPECT_EQ(formatted("%#THH:mm:ss##", &kAfternoon), "13:05:07#");
  EXPECT_EQ(formatted("%#D##T", &kAfternoon), "#T");
  EXPECT_EQ(formatted("%#Ddd#.%#DMM#.", &kAfternoon, &kAfternoon), "05.01.");
  EXPECT_EQ(formatted("%#T'%d'#", &kAfternoon), "%d");
}

TEST(Format, PrintsNothingForADateThatTheCalendarLacks) {
  SystemTime bad = kAfternoon;
  bad.wMonth = 25;
  EXPECT_EQ(formatted("<%D>", &bad), "<>");
  EXPECT_EQ(formatted("<%#Ddd#>", &bad), "<>");
  EXPECT_EQ(formatted("<%#THH:mm#>", &bad), "<13:05>");
  bad.wHour = 24;
  EXPECT_EQ(formatted("<%T>", &bad), "<>");
  EXPECT_EQ(formatted("<%D>", static_cast<const SystemTime*>(nullptr)), "<>");
}

TEST(Format, PrintsACountedRecord) {
  const CountedText by_pointer = {"ab\0cd", 5, ""};
  const CountedText inlined = {nullptr, 2, "xyz"};
  const CountedText empty = {nullptr, 3, ""};
  const CountedText nothing = {nullptr, 3, nullptr};
  const CountedText* const null = nullptr;
  EXPECT_EQ(formatted("%t", &by_pointer), std::string("ab\0cd", 5));
  EXPECT_EQ(formatted("%t", &inlined), "xy");
  EXPECT_EQ(formatted("<%t>", &empty), "<>");
  EXPECT_EQ(formatted("<%t>", &nothing), "<>");
  EXPECT_EQ(formatted("<%t>", null), "<>");
  EXPECT_EQ(formatted("%4t|", &inlined), "  xy|");
}

TEST(Format, AnArgumentThatDoesNotFitPrintsNothingButIsConsumed) {
  const String string("string");
  EXPECT_EQ(formatted("<%s>%d", 5, 6), "<>6");
  EXPECT_EQ(formatted("<%9s>%d", 5, 6), "<>6");
  EXPECT_EQ(formatted("<%d>%d", "text", 6), "<>6");
  EXPECT_EQ(formatted("<%f>%d", 5, 6), "<>6");
  EXPECT_EQ(formatted("<%d>%d", 5.5, 6), "<>6");
  EXPECT_EQ(formatted("<%ls>%d", "text", 6), "<>6");
  EXPECT_EQ(formatted("<%s>%d", u"text", 6), "<>6");
  EXPECT_EQ(formatted("<%ls>%d", string, 6), "<>6");
  EXPECT_EQ(formatted("<%D>%d", &string, 6), "<>6");
  EXPECT_EQ(formatted("<%#Tpicture#>%d", "text", 6), "<>6");
  EXPECT_EQ(formatted("<%t>%d", "text", 6), "<>6");
  EXPECT_EQ(formatted("<%n>%d", 7, 6), "<>6");
  EXPECT_EQ(formatted("<%p>%d", 1.5, 6), "<>6");
  EXPECT_EQ(formatted("<%c>%d", "x", 6), "<>6");
  EXPECT_EQ(formatted("<%x>%d", string, 6), "<>6");
  EXPECT_EQ(formatted("<%*d>%d", "text", 5, 6), "<5>6");
}

TEST(Format, MissingArgumentsPrintNothing) {
  EXPECT_EQ(formatted("<%d%s%f%c%p%D%T%t%n%ls>"), "<>");
  EXPECT_EQ(formatted("%d-%d", 1), "1-");
  EXPECT_EQ(formatted("<%*.*d>"), "<>");
}

TEST(Format, AnUnknownConversionPrintsItselfAndConsumesNoArgument) {
  EXPECT_EQ(formatted("%q%d", 5), "q5");
  EXPECT_EQ(formatted("%y%d", 5), "y5");
  EXPECT_EQ(formatted("%5%%d", 5), "%5");
  EXPECT_EQ(formatted("%\xe4%d", 5),
            "\xe4"
            "5");
  EXPECT_EQ(formatted("%5-d%d", 5), "-d5");
  EXPECT_EQ(formatted("%.-5d%d", 5), "-5d5");
}

TEST(Format, A64BitSizeWithoutItsDigitsIsLiteral) {
  EXPECT_EQ(formatted("%I32d%d", 5), "I32d5");
  EXPECT_EQ(formatted("%Id%d", 5), "Id5");
  EXPECT_EQ(formatted("%I6%d", 5), "I65");
}

TEST(Format, AConversionCutShortByTheEndPrintsNothing) {
  for (const char* format : {"abc%", "abc%5", "abc%-", "abc%.", "abc%.3", "abc%l", "abc%I64"}) {
    SCOPED_TRACE(format);
    EXPECT_EQ(formatted(format, 5), "abc");
  }
}

TEST(Format, PrintsWithFarSizesOnlyTheirLetters) {
  EXPECT_EQ(formatted("%Lf|%Ns|%Fd", 1.5, "text", 5), "Lf|Ns|Fd");
}

TEST(Format, MeasuresTheFixedFigureOfEachConversion) {
  EXPECT_EQ(measured(""), 1U);
  EXPECT_EQ(measured("abc"), 4U);
  EXPECT_EQ(measured("%%"), 2U);
  EXPECT_EQ(measured("%d", 5), 33U);
  EXPECT_EQ(measured("%#x", 5), 35U);
  EXPECT_EQ(measured("%40d", 5), 41U);
  EXPECT_EQ(measured("%40.30d", 5), 71U);
  EXPECT_EQ(measured("%p", 5), 33U);
  EXPECT_EQ(measured("%I64d", 5), 65U);
  EXPECT_EQ(measured("%70I64d", 5), 71U);
  EXPECT_EQ(measured("%f", 1.5), 129U);
  EXPECT_EQ(measured("%e", 1.5), 129U);
  EXPECT_EQ(measured("%G", 1.5), 129U);
  EXPECT_EQ(measured("%200.10f", 1.5), 211U);
  EXPECT_EQ(measured("%c%C", 'a', u'b'), 5U);
  EXPECT_EQ(measured("%9c", 'a'), 10U);
  EXPECT_EQ(measured("%n", 5), 1U);
}

TEST(Format, MeasuresTexts) {
  const String string("ab\0cd", 5, nullptr, 0);
  EXPECT_EQ(measured("%s", "abc"), 4U);
  EXPECT_EQ(measured("%s", ""), 2U);
  EXPECT_EQ(measured("%s", static_cast<const char*>(nullptr)), 2U);
  EXPECT_EQ(measured("%.2s", "abc"), 3U);
  EXPECT_EQ(measured("%9.2s", "abc"), 10U);
  EXPECT_EQ(measured("%-9s", "abc"), 10U);
  EXPECT_EQ(measured("%ls", u"abc"), 4U);
  EXPECT_EQ(measured("%#s", string), 8U);
  EXPECT_EQ(measured("%#.3s", string), 6U);
  EXPECT_EQ(measured("%s", string), 3U);
  const CountedText record = {"abc", 3, ""};
  EXPECT_EQ(measured("%t", &record), 4U);
  EXPECT_EQ(measured("%t", static_cast<const CountedText*>(nullptr)), 2U);
  EXPECT_EQ(measured("%#Tyyyy'abc'#", &kAfternoon),
            1 + 2 + 1 + system_locale().time_text(kAfternoon, "yyyy'abc'").value().size());
}

TEST(Format, MeasuringDoesNotKnowUpperCaseE) {
  EXPECT_EQ(measured("%E", 1.5), 1U);
  EXPECT_EQ(measured("%E%s", 1.5, "abc"), 2U);
  EXPECT_EQ(formatted("%E", 1.5), "1.500000E+000");
  EXPECT_EQ(formatted("%E%s", 1.5, "abc"), "1.500000E+000abc");
}

TEST(Format, NeverWritesBeyondItsRoom) {
  const FormatArg arguments[] = {FormatArg(1.5), FormatArg("a longer text"), FormatArg(-5)};
  char whole[64];
  const size_t length = render_format(whole, sizeof whole, "%E%20s%06d", arguments, 3);
  ASSERT_EQ(std::string_view(whole, length), "1.500000E+000       a longer text-00005");
  for (size_t room = 0; room <= length; ++room) {
    SCOPED_TRACE(room);
    const std::unique_ptr<char[]> exact(new char[room]);
    EXPECT_EQ(render_format(exact.get(), room, "%E%20s%06d", arguments, 3), room);
    EXPECT_EQ(std::string_view(exact.get(), room), std::string_view(whole, room));
  }
}

TEST(Format, TextBehindAMismeasuredConversionIsCutNotOverrun) {
  const std::string long_text(5000, 'x');
  const std::string text = formatted("%E%s%s", 1.5, "abc", long_text);
  EXPECT_EQ(text.substr(0, 16), "1.500000E+000abc");
  EXPECT_LE(text.size(), 16 + long_text.size());
}

TEST(Format, AHugeWidthIsCappedAtAMillion) {
  EXPECT_EQ(formatted("%99999999999d", 5).size(), 1'000'000U);
  EXPECT_EQ(formatted("%.99999999999d", 5).size(), 1'000'000U);
  EXPECT_EQ(formatted("%*d", std::numeric_limits<int32_t>::min(), 5).size(), 1'000'000U);
}

TEST(Format, MeasureIsAnUpperBound) {
  const String string("ab\0cd", 5, nullptr, 0);
  const CountedText record = {"counted", 7, ""};
  const FormatArg arguments[] = {
      FormatArg(-1),          FormatArg(int64_t{1} << 63), FormatArg(-1e300),
      FormatArg("text"),      FormatArg(u"wide"),          FormatArg(string),
      FormatArg(&kAfternoon), FormatArg(&record),          FormatArg(),
  };
  const char types[] = "cCdiuoxXpsStefgGDT";
  for (const char* prefix :
       {"",      "#", "5", "-5", "050", "+",   " ",      ".0",     ".3",      "#.50",
        "60.50", "h", "l", "w",  "I64", "#hl", "100I64", ".90I64", "+.90I64", "#.90I64"}) {
    for (const char* type = types; *type != '\0'; ++type) {
      const std::string format = std::string("%") + prefix + *type + "yyyy";
      SCOPED_TRACE(format);
      for (const FormatArg& argument : arguments) {
        char out[2048];
        const size_t length = render_format(out, sizeof out, format.c_str(), &argument, 1);
        EXPECT_LT(length, measure_format(format.c_str(), &argument, 1));
      }
    }
  }
}

TEST(Format, UnknownConversionsAddNothingOutsideExceptionMode) {
  EXPECT_EQ(measured("%q"), 1U);
  EXPECT_EQ(measured("%y%d", 5), 33U);
  EXPECT_EQ(error_of("%q"), std::nullopt);
}

TEST(Format, UnknownConversionsThrowInExceptionMode) {
  const InExceptionMode scope;
  for (const char* format : {"%q", "%E", "abc %y", "%5%", "%I32d", "%", "%5", "%Lq"}) {
    SCOPED_TRACE(format);
    EXPECT_EQ(error_of(format), kErrorUnknownConversion);
  }
  EXPECT_EQ(error_of("%% %d %Lf %Ns %Fd"), std::nullopt);
  EXPECT_THROW(String::formatted("%q"), ORLOException);
}

TEST(Format, TheCodePageHasNoLeadBytes) {
  for (int byte = 0; byte < 256; ++byte) {
    EXPECT_FALSE(is_lead_byte(static_cast<unsigned char>(byte)));
  }
}

bool is_above_f0(unsigned char byte) noexcept {
  return byte > 0xF0;
}

TEST(Format, TheTrailByteOfALiteralCharacterIsDropped) {
  char out[16];
  size_t length = render_format(out, sizeof out, "a\xf1xb", nullptr, 0, is_above_f0);
  EXPECT_EQ(std::string_view(out, length),
            "a\xf1"
            "b");
  length = render_format(out, sizeof out, "a\xf1%%", nullptr, 0, is_above_f0);
  EXPECT_EQ(std::string_view(out, length), "a\xf1");
  length = render_format(out, sizeof out, "a\xf1", nullptr, 0, is_above_f0);
  EXPECT_EQ(std::string_view(out, length), "a\xf1");
  EXPECT_EQ(measure_format("a\xf1xb", nullptr, 0, is_above_f0), 4U);
}

TEST(Format, ALeadByteInLiteralTextThrowsInExceptionMode) {
  EXPECT_EQ(error_of("a\xf1x", is_above_f0), std::nullopt);
  const InExceptionMode scope;
  EXPECT_EQ(error_of("a\xf1x", is_above_f0), kErrorLeadByteInFormat);
  EXPECT_EQ(error_of("a\xf0x", is_above_f0), std::nullopt);
}

}  // namespace
}  // namespace ORLO
