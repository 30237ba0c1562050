// The language of the SMT kernel: quantifier-free formulas over linear arithmetic and uninterpreted functions.
//
// Terms and propositions are rows of tables, known by their numbers, and built once each: equal numbers are equal
// structure. Identity never depends on how anything prints.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "smt_solver/src/hash_index.h"

namespace vetro {

enum SmtTermBop : std::uint8_t { LIA_ADD = 1, LIA_MINUS = 2, LIA_MULT = 3, LIA_DIV = 4 };
enum SmtTermUop : std::uint8_t { LIA_NEG = 5 };
enum SmtTermType : std::uint8_t {
  SMT_LiaBTerm = 6,
  SMT_LiaUTerm = 7,
  SMT_NiaBTerm = 8,
  SMT_UFTerm = 9,
  SMT_ConstNum = 10,
  SMT_VarNum = 11,
  SMT_VarName = 12
};
enum SmtPropBop : std::uint8_t { SMTPROP_AND = 13, SMTPROP_OR = 14, SMTPROP_IMPLY = 15, SMTPROP_IFF = 16 };
enum SmtPropUop : std::uint8_t { SMTPROP_NOT = 17 };
enum SmtBinPred : std::uint8_t { SMT_LE = 18, SMT_LT = 19, SMT_GE = 20, SMT_GT = 21, SMT_EQ = 22 };
enum SmtPropType : std::uint8_t {
  SMTB_PROP = 23,
  SMTU_PROP = 24,
  SMTAT_PROP_EQ = 25,
  SMTAT_PROP_LIA = 26,
  SMTTF_PROP = 31
};

using smt_term = std::int32_t;
using smt_prop = std::int32_t;
inline constexpr std::int32_t smt_none = -1;

// What a SMT_VarName stands for. Names of different sorts are different, however they are spelled.
enum class smt_name : std::uint8_t { variable, decimal, constant, oper, pred, connective, absolute, opaque, truth };

// The functions of the language: an application to one argument, and a list of any length.
enum class smt_function : std::uint8_t { ap_uf, tl_uf };
std::string_view smt_function_name(smt_function f);  // "AP_UF", "TL_UF"

struct smt_term_row {
  SmtTermType type;
  std::uint8_t detail;     // operator; or the sort of a name; or the function
  smt_term t1 = smt_none;  // operands; or place and number of the arguments
  smt_term t2 = smt_none;
  std::int64_t number = 0;     // value of a SMT_ConstNum, factors of a SMT_NiaBTerm
  std::string_view text = {};  // name of a SMT_VarName
};

struct smt_prop_row {
  SmtPropType type;
  std::uint8_t detail;        // connective or relation; or the truth value
  std::int32_t a = smt_none;  // propositions, or the terms of an atom
  std::int32_t b = smt_none;
};

class smt_language {
 public:
  smt_term const_num(std::int64_t value);
  smt_term var_name(smt_name sort, std::string_view text);
  smt_term var_name(smt_name sort, std::string_view prefix, std::int64_t number);  // "_op" and 32 give "_op32"
  // SMT_LiaBTerm; or SMT_NiaBTerm for every quotient, and for a product without a SMT_ConstNum. Products are joined on
  // the right, x * (y * z) is x * y * z and x * (y / z) is x * y / z, and nothing else is rearranged.
  smt_term binary(SmtTermBop op, smt_term t1, smt_term t2);
  smt_term negated(smt_term t);  // of a SMT_ConstNum: the negated number
  smt_term uf_term(smt_function f, std::span<const smt_term> arguments);
  smt_term true_term() { return var_name(smt_name::truth, "TRUE"); }

  smt_prop connective(SmtPropBop op, smt_prop p1, smt_prop p2);
  smt_prop negation(smt_prop p);
  smt_prop atom(SmtBinPred relation, smt_term t1, smt_term t2);  // SMTAT_PROP_EQ for SMT_EQ, else SMTAT_PROP_LIA
  smt_prop truth(bool value);

  const smt_term_row& term(smt_term t) const { return terms_[static_cast<std::size_t>(t)]; }
  const smt_prop_row& prop(smt_prop p) const { return props_[static_cast<std::size_t>(p)]; }
  std::span<const smt_term> arguments(smt_term t) const;
  std::size_t term_count() const { return terms_.size(); }

 private:
  smt_term intern(const smt_term_row& row, std::span<const smt_term> arguments);
  smt_prop intern(const smt_prop_row& row);
  smt_term opaque(SmtTermBop op, smt_term t1, smt_term t2);

  std::vector<smt_term_row> terms_;
  std::vector<smt_prop_row> props_;
  std::vector<smt_term> arguments_;
  std::deque<std::string> texts_;
  smt::hash_index term_index_;
  smt::hash_index prop_index_;
};

// Diagnostics: (a + b), a*b, (-a), (a * b), (a / b), f(a,b), numbers and names.
void print_smt_term(std::string& out, const smt_language& language, smt_term t);

}  // namespace vetro
