// The name table: printed names and further spellings of all leaves, and the lookup in both directions.
#include "term/kinds.h"

#include <array>
#include <unordered_map>

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

int name_number(std::string_view word) {
  // The words never change, so the index is built once; the first row that has a word wins. "Integer" and "Decimal" are
  // kinds of literals and no words; "Integer" is written for the set.
  static const std::unordered_map<std::string_view, int> index = [] {
    std::unordered_map<std::string_view, int> words;
    for (int row = Infty; row < row_count && name_rows[row].number <= Iff; ++row) {
      if (!name_rows[row].printed.empty()) {
        words.emplace(name_rows[row].printed, name_rows[row].number);
      }
    }
    for (const alias_row& alias : alias_rows) {
      words.emplace(alias.written, alias.number);
    }
    return words;
  }();
  const auto found = index.find(word);
  return found == index.end() ? -1 : found->second;
}

}  // namespace vetro
