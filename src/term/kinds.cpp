// The name table: printed names and further spellings of all leaves, and the lookup in both directions.
#include "term/kinds.h"

#include <array>
#include <cstdint>

#include "term/known_words.h"
#include "term/report.h"

namespace vetro {
namespace {

// The printed name of an enumerator, and a spelling that name_dispatch accepts beside it.
struct name_row {
  int number;
  std::string_view printed;
};
struct alias_row {
  std::string_view written;
  int number;
};

#define VETRO_NAME_ROW(number, name, printed) {number, printed},
constexpr name_row name_rows[] = {VETRO_CONST_TYPES(VETRO_NAME_ROW) VETRO_OPER_TYPES(VETRO_NAME_ROW) VETRO_PRED_TYPES(
    VETRO_NAME_ROW) VETRO_CONNECT_TYPES(VETRO_NAME_ROW) VETRO_PATTERN_TYPES(VETRO_NAME_ROW)};
#undef VETRO_NAME_ROW

// Rows of quantifiers (315 to 317) stand between connectives and patterns and have no printed name here.
constexpr int row_count = static_cast<int>(std::size(name_rows));

constexpr bool rows_are_complete() {
  int expected = Integer;
  for (const name_row& row : name_rows) {
    if (row.number != expected) {
      return false;
    }
    expected = row.number == Iff ? PatternWildCard : row.number + 1;
  }
  return expected == PatternIgnore + 1;
}
static_assert(rows_are_complete());

constexpr alias_row alias_rows[] = {
    {"Integer", IntegerSet},
    {"NatPlus", PosIntegerSet},
    {"Nat", NonNegIntegerSet},
    {"Rational", RationalSet},
    {"RationalPlus", PosRationalSet},
    {"Real", RealSet},
    {"RealPlus", PosRealSet},
    {"Complex", ComplexSet},
    {"Frac", Frac},
    {"Sqrt", Sqrt},
    {"sqrtn", Sqrtn},
    {"Cbrt", Cbrt},
    {"Max", Max},
    {"Min", Min},
    {"Sup", Sup},
    {"Inf", Inf},
    {"Ln", Ln},
    {"Lg", Lg},
    {"Log", Log},
    {"Bar", Bar},
    {"Sin", Sin},
    {"Cos", Cos},
    {"Tan", Tan},
    {"Cot", Cot},
    {"Sec", Sec},
    {"Csc", Csc},
    {"Arcsin", Arcsin},
    {"Arccos", Arccos},
    {"Arctan", Arctan},
    {"Arccot", Arccot},
    {"Arcsec", Arcsec},
    {"Arccsc", Arccsc},
    {"Sinh", Sinh},
    {"Cosh", Cosh},
    {"Tanh", Tanh},
    {"Coth", Coth},
    {"Sech", Sech},
    {"Csch", Csch},
    {"Arcsinh", Arcsinh},
    {"Arccosh", Arccosh},
    {"Arctanh", Arctanh},
    {"Arccoth", Arccoth},
    {"Arcsech", Arcsech},
    {"Arccsch", Arccsch},
    {"Sgn", Sgn},
    {"Floor", Floor},
    {"Ceil", Ceil},
    {"Grad", VecGrad},
    {"Rot", VecRot},
    {"Nabla", Nabla},
};

std::string_view printed_name(int number, int first, int last, const char* unknown, const char* message) {
  if (number >= first && number <= last) {
    const int index = number <= Iff ? number : number - PatternWildCard + Iff + 1;
    const std::string_view name = name_rows[index].printed;
    if (!name.empty()) {
      return name;
    }
  }
  report_error(message, number);
  return unknown;
}

}  // namespace

std::string_view const_type_internal(int number) {
  return printed_name(number, Integer, Ellipsis, "Unknown_const_type",
                      "Error: const_type_internal visiting unknown const_type %d.\n");
}

std::string_view oper_type_internal(int number) {
  return printed_name(number, IntervalLoRo, RadiusOfConvergence, "Unknown_oper_type",
                      "Error: oper_type_internal visiting unknown oper_type %d\n");
}

std::string_view pred_type_internal(int number) {
  return printed_name(number, PredChain, Defined, "Unknown_pred_type",
                      "Error: pred_type_internal visitinng unknown pred_type %d\n");
}

std::string_view connect_type_internal(int number) {
  return printed_name(number, Not, Iff, "Unknown_connect_type",
                      "Error: connect_type_internal visiting unknown connect type %d\n");
}

std::string_view pattern_type_internal(int number) {
  return printed_name(number, PatternWildCard, PatternIgnore, "Unknown_pattern_type",
                      "Error: pattern_type_internal visiting unknown pattern type %d\n");
}

namespace {

constexpr std::uint32_t word_hash(std::string_view word) {
  std::uint32_t hash = 2166136261U;
  for (const char c : word) {
    hash = (hash ^ static_cast<std::uint8_t>(c)) * 16777619U;
  }
  return hash ^ (hash >> 15U);
}

// The words, made by the compiler: a place holds a word or is empty, and a word stands at the place of its hash or
// behind it. The first row that has a word wins. "Integer" and "Decimal" are kinds of literals and no words; "Integer"
// is written for the set.
class word_index {
 public:
  constexpr word_index() {
    for (int row = Infty; row < row_count && name_rows[row].number <= Iff; ++row) {
      add({name_rows[row].printed, name_rows[row].number});
    }
    for (const alias_row& alias : alias_rows) {
      add(alias);
    }
  }

  constexpr int number_of(std::string_view word) const {
    const alias_row& found = places_[place_of(word)];
    return found.written.empty() ? -1 : found.number;
  }

 private:
  constexpr std::size_t place_of(std::string_view word) const {
    std::size_t place = word_hash(word) % places_.size();
    while (!places_[place].written.empty() && places_[place].written != word) {
      place = (place + 1) % places_.size();
    }
    return place;
  }
  constexpr void add(const alias_row& row) {
    alias_row& place = places_[place_of(row.written)];
    if (!row.written.empty() && place.written.empty()) {
      place = row;
    }
  }

  std::array<alias_row, 1024> places_{};
};

constexpr word_index words;

}  // namespace

int name_number(std::string_view word) { return words.number_of(word); }

const std::vector<std::string_view>& known_function_words() {
  static const std::vector<std::string_view> known = [] {
    const auto is_function = [](int number) { return number > Ellipsis && number <= Defined; };
    std::vector<std::string_view> list;
    for (const name_row& row : name_rows) {
      if (is_function(row.number) && !row.printed.empty()) {
        list.push_back(row.printed);
      }
    }
    for (const alias_row& alias : alias_rows) {
      if (is_function(alias.number)) {
        list.push_back(alias.written);
      }
    }
    return list;
  }();
  return known;
}

}  // namespace vetro
