// Exact shape of a term as text: every list is T(...), every scope stands behind "@", every lambda shows its parts.
#pragma once

#include <string>

#include "parser/parser_api.h"
#include "term/print/pretty.h"

namespace vetro {

inline void write_shape(std::string& out, term_ptr t);

inline void write_shapes(std::string& out, term_span list) {
  const char* separator = "";
  for (term_ptr t : list) {
    out += separator;
    write_shape(out, t);
    separator = ", ";
  }
}

inline void write_constant(std::string& out, term_ptr t) {
  if (t->constant() == Integer) {
    out += std::to_string(t->integer());
  } else if (t->constant() == Decimal) {
    out.append("d").append(t->decimal());
  } else {
    out += const_type_internal(t->constant());
  }
}

inline void write_lambda(std::string& out, term_ptr t) {
  const char* separator = "fun(";
  for (std::size_t i = 0; i < t->vars().size(); ++i) {
    out += separator;
    write_shape(out, t->vars()[i]);
    out += ": ";
    print_lambda_type(out, t->var_types()[i]);
    separator = ", ";
  }
  if (t->condition() != nullptr) {
    out += "; ";
    write_shape(out, t->condition());
  }
  out += ". ";
  write_shape(out, t->body());
  out += ")";
}

inline void write_content(std::string& out, term_ptr t) {
  switch (t->type()) {
    case Var:
      out += t->name();
      break;
    case Const:
      write_constant(out, t);
      break;
    case Oper:
      out += oper_type_internal(t->oper());
      break;
    case Pred:
      out += pred_type_internal(t->pred());
      break;
    case Connect:
      out += connect_type_internal(t->connect());
      break;
    case Pattern:
      out += pattern_type_internal(t->pattern());
      break;
    case TermList:
      out += "T(";
      write_shapes(out, t->elements());
      out += ")";
      break;
    case Lambda:
      write_lambda(out, t);
      break;
    case Quant:
      out += t->quant() == Forall ? "all(" : t->quant() == Exists ? "ex(" : "ex1(";
      write_shapes(out, t->vars());
      out += ". ";
      write_shape(out, t->body());
      out += ")";
      break;
    case Apply: {
      write_shape(out, t->left());
      const bool more = t->left()->type() == Apply && t->left()->scope() == nullptr;
      if (more) {
        out.pop_back();
      }
      out += more ? ", " : "(";
      write_shape(out, t->right());
      out += ")";
      break;
    }
    default:
      out += "unexpected variant";
  }
}

inline void write_shape(std::string& out, term_ptr t) {
  if (t == nullptr) {
    out += "null";
    return;
  }
  write_content(out, t);
  if (t->scope() != nullptr) {
    out += "@{";
    write_shape(out, t->scope());
    out += "}";
  }
}

inline std::string shape(term_ptr t) {
  std::string out;
  write_shape(out, t);
  return out;
}

}  // namespace vetro
