#include "orlo/collation_host.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace ORLO {
namespace {

/// One step of a comparison. Most characters are one, ligatures are two.
struct Element {
  uint8_t primary = 0;
  uint8_t accent = 0;
  bool capital = false;
};

struct Weights {
  Element first;
  Element second;  // primary 0 if there is none
};

// In sort order; what isn't named here sorts in front, by its code.
constexpr std::string_view kSymbols =
    "'-\x96\x97 \xa0\t\n\v\f\r!\"#$%&()*,./:;?@[\\]^\x88_`{|}~\xa1\xa6\xa8\xaf\xb4\xb8\xbf\x98"
    "\x91\x92\x82\x93\x94\x84\x8b\x9b\xa2\xa3\xa4\xa5\x80+<=>\xb1\xab\xbb\xd7\xf7\xa7\xa9\xac\xae"
    "\xb0\xb5\xb6\xb7\x85\x86\x87\x95\x89\x99";
constexpr std::string_view kDigits =
    "0\xbc\xbd\xbe"
    "123456789";
constexpr uint8_t kFirstSymbol = 40;

enum Accent : uint8_t { none, raised, acute, grave, circumflex, umlaut, tilde, ring, caron, other };

struct Derived {
  char character;
  const char* base;
  Accent accent;
};

constexpr Derived kDerived[] = {
    {'\xaa', "a", raised},     {'\xba', "o", raised},     {'\xb9', "1", raised},
    {'\xb2', "2", raised},     {'\xb3', "3", raised},     {'\xe1', "a", acute},
    {'\xe0', "a", grave},      {'\xe2', "a", circumflex}, {'\xe4', "a", umlaut},
    {'\xe3', "a", tilde},      {'\xe5', "a", ring},       {'\xe6', "ae", none},
    {'\xe7', "c", other},      {'\xf0', "d", other},      {'\xe9', "e", acute},
    {'\xe8', "e", grave},      {'\xea', "e", circumflex}, {'\xeb', "e", umlaut},
    {'\x83', "f", other},      {'\xed', "i", acute},      {'\xec', "i", grave},
    {'\xee', "i", circumflex}, {'\xef', "i", umlaut},     {'\xf1', "n", tilde},
    {'\xf3', "o", acute},      {'\xf2', "o", grave},      {'\xf4', "o", circumflex},
    {'\xf6', "o", umlaut},     {'\xf5', "o", tilde},      {'\xf8', "o", other},
    {'\x9c', "oe", none},      {'\x9a', "s", caron},      {'\xdf', "ss", none},
    {'\xfe', "th", none},      {'\xfa', "u", acute},      {'\xf9', "u", grave},
    {'\xfb', "u", circumflex}, {'\xfc', "u", umlaut},     {'\xfd', "y", acute},
    {'\xff', "y", umlaut},     {'\x9e', "z", caron},
};

constexpr char kCapitalS = '\x8a';
constexpr char kCapitalOE = '\x8c';
constexpr char kCapitalZ = '\x8e';
constexpr char kCapitalY = '\x9f';

constexpr uint8_t index_of(char c) {
  return static_cast<uint8_t>(c);
}

/// The capital of a letter of kDerived, or 0 if it has none.
constexpr char capital_of(char c) {
  switch (index_of(c)) {
    case 0x9a:
      return kCapitalS;
    case 0x9c:
      return kCapitalOE;
    case 0x9e:
      return kCapitalZ;
    case 0xff:
      return kCapitalY;
    default:
      return index_of(c) >= 0xe0 ? static_cast<char>(index_of(c) - 0x20) : '\0';
  }
}

constexpr void set_derived(std::array<Weights, 256>& table, const Derived& derived) {
  Weights weights = table[index_of(derived.base[0])];
  weights.first.accent = derived.accent;
  if (derived.base[1] != '\0') weights.second = table[index_of(derived.base[1])].first;
  table[index_of(derived.character)] = weights;
  const char capital = capital_of(derived.character);
  if (capital == '\0') return;
  weights.first.capital = true;
  weights.second.capital = true;
  table[index_of(capital)] = weights;
}

constexpr std::array<Weights, 256> make_weights() {
  std::array<Weights, 256> table{};
  for (uint8_t code = 1; code < 0x20; ++code)
    table[code].first.primary = code;
  uint8_t weight = kFirstSymbol;
  for (const char c : kSymbols)
    table[index_of(c)].first.primary = weight++;
  for (const char c : kDigits)
    table[index_of(c)].first.primary = weight++;
  for (char c = 'a'; c <= 'z'; ++c) {
    table[index_of(c)].first.primary = weight;
    table[index_of(c) - 0x20U].first = {weight++, none, true};
  }
  for (const Derived& derived : kDerived)
    set_derived(table, derived);
  return table;
}

constexpr std::array<Weights, 256> kWeights = make_weights();

/// Walks over the elements of a text; characters without weight are passed over.
class Elements {
 public:
  explicit Elements(const char* text) noexcept : at_(text) {}

  /// Primary 0 at the end.
  Element next() noexcept {
    if (pending_.primary != 0) return take_pending();
    while (*at_ != '\0') {
      const Weights& weights = kWeights[index_of(*at_++)];
      pending_ = weights.second;
      if (weights.first.primary != 0) return weights.first;
    }
    return {};
  }

 private:
  Element take_pending() noexcept {
    const Element element = pending_;
    pending_ = {};
    return element;
  }

  const char* at_;
  Element pending_;
};

}  // namespace

int stand_in_collate(const char* a, const char* b, bool ignore_case) noexcept {
  Elements left(a);
  Elements right(b);
  int by_accent = 0;
  int by_case = 0;
  for (;;) {
    const Element x = left.next();
    const Element y = right.next();
    if (x.primary != y.primary) return x.primary < y.primary ? -1 : 1;
    if (x.primary == 0) break;
    if (by_accent == 0) by_accent = x.accent - y.accent;
    if (by_case == 0) by_case = static_cast<int>(x.capital) - static_cast<int>(y.capital);
  }
  if (by_accent != 0) return by_accent < 0 ? -1 : 1;
  return ignore_case ? 0 : by_case;
}

}  // namespace ORLO
