#include "smt_solver/src/smt_lang.h"

#include <algorithm>
#include <functional>
#include <utility>

namespace vetro {
namespace {

using smt::mix;

// Longer products are not joined when they are the right operand of another: each joining copies.
constexpr std::int64_t longest_joined_product = 1000;

bool is_const(const smt_term_row& row) { return row.type == SMT_ConstNum; }

void print_joined(std::string& out, const smt_language& language, smt_term a, std::string_view between, smt_term b) {
  print_smt_term(out, language, a);
  out += between;
  print_smt_term(out, language, b);
}

}  // namespace

std::string_view smt_function_name(smt_function f) { return f == smt_function::ap_uf ? "AP_UF" : "TL_UF"; }

// ---- Terms.

smt_term smt_language::const_num(std::int64_t value) {
  return intern({.type = SMT_ConstNum, .detail = 0, .number = value}, {});
}

smt_term smt_language::var_name(smt_name sort, std::string_view text) {
  return intern({.type = SMT_VarName, .detail = static_cast<std::uint8_t>(sort), .text = text}, {});
}

smt_term smt_language::var_name(smt_name sort, std::string_view prefix, std::int64_t number) {
  return var_name(sort, std::string(prefix) + std::to_string(number));
}

smt_term smt_language::binary(SmtTermBop op, smt_term t1, smt_term t2) {
  if (op != LIA_DIV && (op != LIA_MULT || is_const(term(t1)) || is_const(term(t2)))) {
    return intern({.type = SMT_LiaBTerm, .detail = op, .t1 = t1, .t2 = t2}, {});
  }
  if (op == LIA_DIV || term(t2).type != SMT_NiaBTerm || term(t2).number > longest_joined_product) {
    return opaque(op, t1, t2);
  }
  // a * (b * c / d) is a * b * c / d.
  std::vector<std::pair<SmtTermBop, smt_term>> factors;
  for (smt_term t = t2; t != smt_none;) {
    const smt_term_row& row = term(t);
    const bool joined = row.type == SMT_NiaBTerm;
    factors.emplace_back(joined ? static_cast<SmtTermBop>(row.detail) : LIA_MULT, joined ? row.t2 : t);
    t = joined ? row.t1 : smt_none;
  }
  smt_term product = t1;
  for (std::size_t i = factors.size(); i > 0; --i) {
    product = opaque(factors[i - 1].first, product, factors[i - 1].second);
  }
  return product;
}

// The number of such a row is the number of its factors.
smt_term smt_language::opaque(SmtTermBop op, smt_term t1, smt_term t2) {
  const std::int64_t factors = term(t1).type == SMT_NiaBTerm ? term(t1).number + 1 : 2;
  return intern({.type = SMT_NiaBTerm, .detail = op, .t1 = t1, .t2 = t2, .number = factors}, {});
}

smt_term smt_language::negated(smt_term t) {
  return is_const(term(t)) ? const_num(-term(t).number)
                           : intern({.type = SMT_LiaUTerm, .detail = LIA_NEG, .t1 = t}, {});
}

smt_term smt_language::uf_term(smt_function f, std::span<const smt_term> arguments) {
  return intern({.type = SMT_UFTerm, .detail = static_cast<std::uint8_t>(f)}, arguments);
}

std::span<const smt_term> smt_language::arguments(smt_term t) const {
  const smt_term_row& row = term(t);
  return {arguments_.data() + row.t1, static_cast<std::size_t>(row.t2)};
}

smt_term smt_language::intern(const smt_term_row& row, std::span<const smt_term> arguments) {
  std::uint64_t h = mix(row.type, row.detail);
  h = mix(h, static_cast<std::uint64_t>(row.number));
  h = row.type == SMT_VarName ? mix(h, std::hash<std::string_view>{}(row.text)) : h;
  if (row.type != SMT_UFTerm) {
    h = mix(mix(h, static_cast<std::uint32_t>(row.t1)), static_cast<std::uint32_t>(row.t2));
  }
  for (const smt_term a : arguments) {
    h = mix(h, static_cast<std::uint32_t>(a));
  }
  const auto same = [&](smt_term t) {
    const smt_term_row& known = term(t);
    if (known.type != row.type || known.detail != row.detail) {
      return false;
    }
    if (row.type == SMT_UFTerm) {
      const auto known_arguments = this->arguments(t);
      return std::equal(known_arguments.begin(), known_arguments.end(), arguments.begin(), arguments.end());
    }
    return known.t1 == row.t1 && known.t2 == row.t2 && known.number == row.number && known.text == row.text;
  };
  smt_term t = term_index_.find(h, same);
  if (t < 0) {
    t = static_cast<smt_term>(terms_.size());
    terms_.push_back(row);
    if (row.type == SMT_UFTerm) {
      terms_.back().t1 = static_cast<smt_term>(arguments_.size());
      terms_.back().t2 = static_cast<smt_term>(arguments.size());
      arguments_.insert(arguments_.end(), arguments.begin(), arguments.end());
    } else if (row.type == SMT_VarName) {
      terms_.back().text = texts_.emplace_back(row.text);
    }
    term_index_.insert(h, t);
  }
  return t;
}

// ---- Propositions.

smt_prop smt_language::connective(SmtPropBop op, smt_prop p1, smt_prop p2) { return intern({SMTB_PROP, op, p1, p2}); }

smt_prop smt_language::negation(smt_prop p) { return intern({SMTU_PROP, SMTPROP_NOT, p, smt_none}); }

smt_prop smt_language::atom(SmtBinPred relation, smt_term t1, smt_term t2) {
  return intern({relation == SMT_EQ ? SMTAT_PROP_EQ : SMTAT_PROP_LIA, relation, t1, t2});
}

smt_prop smt_language::truth(bool value) { return intern({SMTTF_PROP, static_cast<std::uint8_t>(value ? 1 : 0)}); }

smt_prop smt_language::intern(const smt_prop_row& row) {
  std::uint64_t h = mix(row.type, row.detail);
  h = mix(mix(h, static_cast<std::uint32_t>(row.a)), static_cast<std::uint32_t>(row.b));
  const auto same = [&](smt_prop p) {
    const smt_prop_row& known = prop(p);
    return known.type == row.type && known.detail == row.detail && known.a == row.a && known.b == row.b;
  };
  smt_prop p = prop_index_.find(h, same);
  if (p < 0) {
    p = static_cast<smt_prop>(props_.size());
    props_.push_back(row);
    prop_index_.insert(h, p);
  }
  return p;
}

// ---- Printing.

void print_smt_term(std::string& out, const smt_language& language, smt_term t) {
  const smt_term_row& row = language.term(t);
  switch (row.type) {
    case SMT_LiaBTerm:
      if (row.detail == LIA_ADD || row.detail == LIA_MINUS) {
        out += '(';
        print_joined(out, language, row.t1, row.detail == LIA_ADD ? " + " : " - ", row.t2);
        out += ')';
      } else {
        print_joined(out, language, row.t1, "*", row.t2);
      }
      break;
    case SMT_NiaBTerm:
      out += '(';
      print_joined(out, language, row.t1, row.detail == LIA_MULT ? " * " : " / ", row.t2);
      out += ')';
      break;
    case SMT_LiaUTerm:
      out += "(-";
      print_smt_term(out, language, row.t1);
      out += ')';
      break;
    case SMT_UFTerm: {
      out += smt_function_name(static_cast<smt_function>(row.detail));
      char before = '(';
      for (const smt_term a : language.arguments(t)) {
        out += before;
        print_smt_term(out, language, a);
        before = ',';
      }
      out += before == '(' ? "" : ")";
      break;
    }
    case SMT_ConstNum:
      out += std::to_string(row.number);
      break;
    case SMT_VarNum:
      out += "VAR_" + std::to_string(row.number);
      break;
    case SMT_VarName:
      out += row.text;
      break;
  }
}

}  // namespace vetro
