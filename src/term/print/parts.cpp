// Names, constants, parameter types, argument lists: the pieces that both printers write alike.
#include "term/print/parts.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <utility>

#include "term/report.h"

namespace vetro {
namespace {

// Two-byte forms of the letters that a name may hold: ɛ, ten Greek capitals, α to ω without ο.
constexpr bool is_letter_pair(unsigned lead, unsigned next) {
  switch (lead) {
    case 0xC9:
      return next == 0x9B;
    case 0xCE:
      return next == 0x93 || next == 0x94 || next == 0x98 || next == 0x9B || next == 0x9E || next == 0xA0 ||
             next == 0xA3 || next == 0xA6 || next == 0xA8 || next == 0xA9 || (next >= 0xB1 && next <= 0xBE);
    case 0xCF:
      return next >= 0x80 && next <= 0x89;
    default:
      return false;
  }
}

constexpr bool is_digit(char c) { return c >= '0' && c <= '9'; }

// Letters and digits of the language, with a letter in front.
bool is_plain_name(std::string_view name) {
  if (name.empty() || is_digit(name.front())) {
    return false;
  }
  for (std::size_t i = 0; i < name.size(); ++i) {
    const char c = name[i];
    if ((c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || is_digit(c)) {
      continue;
    }
    if (i + 1 == name.size() ||
        !is_letter_pair(static_cast<unsigned char>(c), static_cast<unsigned char>(name[i + 1]))) {
      return false;
    }
    ++i;
  }
  return true;
}

void print_constant(std::string& out, term_ptr t, bool internal) {
  switch (t->constant()) {
    case Integer: {
      char digits[12];
      const auto end = std::to_chars(std::begin(digits), std::end(digits), t->integer()).ptr;
      out.append(digits, end);
      return;
    }
    case Decimal:
      out += t->decimal();
      return;
    default:
      break;
  }
  constexpr std::pair<const_type, std::string_view> signs[] = {
      {Infty, "∞"}, {PosInfty, "+∞"}, {NegInfty, "-∞"}, {EmptySet, "∅"}, {Ellipsis, "..."}};
  if (!internal) {
    for (const auto& [kind, sign] : signs) {
      if (t->constant() == kind) {
        out += sign;
        return;
      }
    }
  }
  out += const_type_internal(t->constant());
}

}  // namespace

void print_variable_name(std::string& out, std::string_view name) {
  if (is_plain_name(name) && name_number(name) < 0) {
    out += name;
    return;
  }
  out += '`';
  for (const char c : name) {
    if (c == '`' || c == '\\') {
      out += '\\';
    }
    out += c;
  }
  out += '`';
}

void print_lambda_type(std::string& out, lambda_type_ptr type) {
  for (; type != nullptr && type->kind == LambdaTypeFunc; type = type->return_type) {
    const bool nested = type->param_type != nullptr && type->param_type->kind == LambdaTypeFunc;
    out += nested ? "(" : "";
    print_lambda_type(out, type->param_type);
    out += nested ? ") -> " : " -> ";
  }
  out += lambda_base_type_name(type == nullptr ? LambdaReal : type->base);
}

void print_lambda_var_type_list(std::string& out, term_span vars, const lambda_var_type_list& types, bool internal) {
  for (std::size_t i = 0; i < vars.size(); ++i) {
    out += i == 0 ? "" : ", ";
    internal ? print_term_internal(out, vars[i]) : print_term(out, vars[i]);
    out += ": ";
    print_lambda_type(out, i < types.size() ? types[i] : nullptr);
  }
}

namespace print_parts {

bool print_leaf(std::string& out, term_ptr t, bool internal) {
  switch (t->type()) {
    case Var:
      print_variable_name(out, t->name());
      return true;
    case Const:
      print_constant(out, t, internal);
      return true;
    case Oper:
      out += oper_type_internal(t->oper());
      return true;
    case Pred:
      out += pred_type_internal(t->pred());
      return true;
    case Connect:
      out += connect_type_internal(t->connect());
      return true;
    case Pattern:
      out += pattern_type_internal(t->pattern());
      return true;
    default:
      return false;
  }
}

void print_list(std::string& out, term_span list, std::string_view separator, print_function print) {
  bool first = true;
  for (term_ptr element : list) {
    if (!std::exchange(first, false)) {
      out += separator;
    }
    print(out, element);
  }
}

void print_groups(std::string& out, term_span list, print_function print) {
  if (!list.empty()) {
    out += '(';
    print_list(out, list, ") (", print);
    out += ')';
  }
}

void print_lambda_head(std::string& out, term_ptr t, bool internal) {
  if (t->vars().empty()) {
    report_error("Error: print_term_aux visiting NULL function parameter list.\n");
    std::exit(1);
  }
  out += "fun ";
  print_lambda_var_type_list(out, t->vars(), t->var_types(), internal);
  if (t->condition() != nullptr) {
    out += " [";
    internal ? print_term_internal(out, t->condition()) : print_term(out, t->condition());
    out += ']';
  }
  out += " . ";
}

void print_quant_word(std::string& out, quant_type quant, const char* message) {
  switch (quant) {
    case Forall:
      out += "forall ";
      return;
    case Exists:
      out += "exists ";
      return;
    case ExistsUnique:
      out += "existsUnique ";
      return;
  }
  report_error(message, static_cast<int>(quant));
  out += "Unknown_quant_type ";
}

void print_tag_head(std::string& out, term_ptr t, print_function print) {
  out += "[@free ";
  print_list(out, t->vars(), ", ", print);
  out += " @] ";
}

std::string_view chain_symbol(pred_type predicate) {
  constexpr std::pair<pred_type, std::string_view> symbols[] = {
      {Eq, "="},
      {Neq, "≠"},
      {Gt, ">"},
      {Ge, "≥"},
      {Lt, "<"},
      {Le, "≤"},
      {Appro, "≈"},
      {IdentEq, "≡"},
      {Divides, "|"},
      {Belong, "∈"},
      {NotBelong, "∉"},
      {Subset, "⊆"},
      {TendsToWithoutIndex, "→"},
  };
  for (const auto& [known, symbol] : symbols) {
    if (known == predicate) {
      return symbol;
    }
  }
  return pred_type_internal(predicate);
}

void print_chain(std::string& out, term_span predicates, term_span operands, print_operand_function print) {
  const auto guarded = [](term_ptr predicate) {
    return predicate->pred() == Divides ||
           (predicate->pred() >= TendsToWithoutIndex && predicate->pred() <= RightAsymEquiv);
  };
  print(out, operands[0], !predicates.empty() && guarded(predicates[0]));
  for (std::size_t i = 0; i < predicates.size(); ++i) {
    out += ' ';
    out += chain_symbol(predicates[i]->pred());
    out += ' ';
    print(out, operands[i + 1], guarded(predicates[i]));
  }
}

void print_scope(std::string& out, term_ptr t, print_function print) {
  if (t->scope() != nullptr) {
    out += " [@scope ";
    print(out, t->scope());
    out += " @]";
  }
}

spine_end end_of_spine(term_ptr t) {
  spine_end end{t->left(), 1};
  for (; is_apply(end.head) && end.head->scope() == nullptr; end.head = end.head->left()) {
    ++end.count;
  }
  return end;
}

term_ptr left_times(term_ptr t, std::size_t steps) {
  for (; steps > 0; --steps) {
    t = t->left();
  }
  return t;
}

void print_arguments(std::string& out, term_ptr t, std::size_t count, print_function print) {
  if (count > 1) {
    print_arguments(out, t->left(), count - 1, print);
    out += ", ";
  }
  print(out, t->right());
}

bool print_point(std::string& out, term_ptr t, const spine_end& end, print_function print) {
  const print_table::print_row* row = print_table::row_of_head(end.head);
  if (row == nullptr || row->form != print_table::row_form::point) {
    return false;
  }
  const auto fixed = static_cast<std::size_t>(row->arity);
  if (end.count <= fixed) {
    return false;
  }
  out += row->text.texts[0];
  print_arguments(out, left_times(t, end.count - fixed), fixed, print);
  out += ")(";
  print_arguments(out, t, end.count - fixed, print);
  out += ')';
  return true;
}

}  // namespace print_parts
}  // namespace vetro
